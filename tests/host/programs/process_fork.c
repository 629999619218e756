// Tests that fork does what the kernel's does: what the child shares, what it has of its own, which
// process numbers, threads and signals it finds, and how it ends.
#define _GNU_SOURCE
#include <errno.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <stdatomic.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/host/programs/children.h"

static int private_number = 1;
static int* shared;  // visible to all processes
static volatile sig_atomic_t handled;

static void handle(int signal) { handled = signal; }

static void memory(void) {
  IN_CHILD("memory", (private_number = 2, *shared = 3, exit(7)));
  printf("private %d shared %d\n", private_number, *shared);
}

static int has_numbers_of_its_own(pid_t parent) {
  return getpid() == gettid() && getpid() != parent && getppid() == parent;
}

// Each generation's status is one more than that of the next.
static int generations(int depth) {
  if (depth == 0) return 11;
  const pid_t child = fork();
  if (child == 0) _exit(generations(depth - 1));
  int status = 0;
  waitpid(child, &status, 0);
  return WEXITSTATUS(status) + 1;
}

static void ends(void) {
  IN_CHILD("abort", abort());
  IN_CHILD("last thread", pthread_exit(NULL));
  IN_CHILD("generations", _exit(generations(4)));
  const pid_t child = fork();
  if (child == 0) pause();
  kill(child, SIGTERM);
  tell_end("term", child);
}

static void signals(void) {
  signal(SIGUSR1, handle);
  sigset_t blocked, now, pending;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGUSR1);
  sigaddset(&blocked, SIGUSR2);
  sigprocmask(SIG_BLOCK, &blocked, NULL);
  raise(SIGUSR1);
  const pid_t child = fork();
  if (child == 0) {
    sigprocmask(SIG_SETMASK, NULL, &now);
    sigpending(&pending);
    const int inherited = sigismember(&now, SIGUSR1) && sigismember(&now, SIGUSR2);
    const int clean = !sigismember(&pending, SIGUSR1);
    sigprocmask(SIG_UNBLOCK, &blocked, NULL);
    const int quiet = handled == 0;
    raise(SIGUSR1);
    _exit(inherited + 2 * clean + 4 * quiet + 8 * (handled == SIGUSR1));
  }
  tell_end("signals", child);
  sigprocmask(SIG_UNBLOCK, &blocked, NULL);
  printf("handled %d\n", handled);
}

static void raw_flags(void) {
  pid_t* tids = (pid_t*)shared + 16;  // the kernel's for the parent and the child; the child's own
  const long flags = CLONE_CHILD_SETTID | CLONE_CHILD_CLEARTID | CLONE_PARENT_SETTID | SIGCHLD;
  const long child = syscall(SYS_clone, flags, 0, &tids[0], 0, &tids[1]);
  if (child == 0) {
    tids[2] = getpid();
    // The exit clears tids[1], since the memory is shared with the parent.
    syscall(SYS_exit, tids[1] == getpid() ? 0 : 1);
  }
  tell_end("raw flags", (pid_t)child);
  printf("parent's %d child's own %d cleared %d\n", tids[0] == child, tids[2] == child,
         tids[1] == 0);
  printf("refused %ld", syscall(SYS_clone, CLONE_SIGHAND | SIGCHLD, 0, 0, 0, 0));
  printf(" %d\n", errno);
}

static atomic_int stop;

static void* churn(void* argument) {
  while (!stop) {
    void* volatile block = malloc(100);
    free(block);
  }
  return argument;
}

static void* count(void* argument) {
  ++*(int*)argument;
  return NULL;
}

// The process forks while its threads are in the middle of everything. The C library must still
// work in the child.
static void* fork_many(void* argument) {
  int failures = 0;
  for (int i = 0; i < 8; i++) {
    const pid_t child = fork();
    if (child == 0) {
      int counted = 0;
      pthread_t thread;
      free(malloc(100));
      if (pthread_create(&thread, NULL, count, &counted) != 0) _exit(1);
      pthread_join(thread, NULL);
      _exit(counted == 1 ? 0 : 2);
    }
    int status = 1;
    waitpid(child, &status, 0);
    if (status != 0) failures++;
  }
  *(int*)argument = failures;
  return NULL;
}

static void threads(void) {
  pthread_t churning[3], forking;
  int failures = -1;
  for (int i = 0; i < 3; i++) pthread_create(&churning[i], NULL, churn, NULL);
  pthread_create(&forking, NULL, fork_many, &failures);
  pthread_join(forking, NULL);
  stop = 1;
  for (int i = 0; i < 3; i++) pthread_join(churning[i], NULL);
  printf("threads: %d failures\n", failures);
}

int main(void) {
  setbuf(stdout, NULL);
  shared = mmap(NULL, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  memory();
  const pid_t parent = getpid();
  IN_CHILD("numbers", _exit(has_numbers_of_its_own(parent) ? 0 : 1));
  ends();
  signals();
  raw_flags();
  threads();
  return 0;
}
