// Ends in the way that its argument names.
#define _GNU_SOURCE
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <unistd.h>

static volatile long counters[5];

static void* spin(void* counter) {
  while (counter != NULL) (*(volatile long*)counter)++;
  return NULL;
}

static void* sleep_for_ever(void* counter) {
  ++*(volatile long*)counter;
  while (pause() != 0) {
  }
  return counter;
}

static void* print_late(void* argument) {
  usleep(50000);
  puts("late");
  fflush(stdout);
  return argument;
}

static void start(void* (*body)(void*), void* argument) {
  pthread_t thread;
  pthread_create(&thread, NULL, body, argument);
}

static void* exit_from_thread(void* argument) {
  exit((int)(intptr_t)argument);
  return argument;
}

static void jump_to(uintptr_t address) {
  void (*function)(void);
  memcpy(&function, &address, sizeof function);
  function();
}

static int clone_raw(unsigned long flags) {
  return (int)syscall(SYS_clone, flags, NULL, NULL, NULL, NULL);
}

static int end(const char* how) {
  if (strcmp(how, "status") == 0) return 42;
  if (strcmp(how, "negative") == 0) return -1;
  if (strcmp(how, "abort") == 0) abort();
  if (strcmp(how, "term") == 0) return kill(getpid(), SIGTERM);
  if (strcmp(how, "load") == 0) return *(volatile int*)16;
  if (strcmp(how, "store") == 0) *(volatile int*)16 = 1;
  if (strcmp(how, "null") == 0) jump_to(0);
  if (strcmp(how, "data") == 0) jump_to((uintptr_t)counters);
  if (strcmp(how, "misaligned") == 0) jump_to((uintptr_t)&end + 2);
  if (strcmp(how, "undefined") == 0) asm volatile(".inst 0x00000001");
  if (strcmp(how, "sve") == 0) asm volatile(".inst 0x04a2039c");  // add z28.s, z28.s, z2.s
  if (strcmp(how, "breakpoint") == 0) asm volatile("brk #1");
  if (strcmp(how, "file") == 0) {
    FILE* file = tmpfile();
    void* page = mmap(NULL, 4096, PROT_READ, MAP_SHARED, fileno(file), 0);
    return *(volatile int*)page;
  }
  if (strcmp(how, "threads") == 0) {
    for (int i = 0; i < 4; i++) start(spin, (void*)&counters[i]);
    start(sleep_for_ever, (void*)&counters[4]);
    for (int i = 0; i < 5; i++) {
      while (counters[i] == 0) sched_yield();
    }
    exit(9);
  }
  if (strcmp(how, "thread") == 0) {
    start(exit_from_thread, (void*)5);
    pause();
  }
  if (strcmp(how, "initial") == 0) {
    start(print_late, NULL);
    pthread_exit(NULL);
  }
  if (strcmp(how, "ignore") == 0) return signal(SIGUSR1, SIG_IGN) == SIG_ERR || raise(SIGUSR1);
  if (strcmp(how, "traced") == 0) return (int)ptrace(PTRACE_TRACEME, 0, NULL, NULL);
  if (strcmp(how, "orphan") == 0) return clone_raw(0);
  if (strcmp(how, "sharing") == 0) return clone_raw(CLONE_VM | SIGCHLD);
  if (strcmp(how, "namespace") == 0) return clone_raw(CLONE_NEWPID | SIGCHLD);
  return 100;
}

int main(int argc, char** argv) { return end(argc > 1 ? argv[1] : ""); }
