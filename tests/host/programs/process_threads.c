// Threads at the limits of what programs do: thousands in turn, many at once, detached threads, an
// initial thread that ends before the others, and what the kernel does when a thread ends.
#define _GNU_SOURCE
#include <errno.h>
#include <linux/futex.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
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

enum { at_once = 64 };

static long many = 2000;  // threads in turn; the argument gives another number

static atomic_int counted;
static pthread_barrier_t barrier;
static __thread int own = 3;

static void* count(void* argument) {
  own += 4;
  counted += own == 7;
  return argument;
}

static void* meet(void* argument) {
  for (int i = 0; i < 5; i++) pthread_barrier_wait(&barrier);
  return count(argument);
}

static void in_turn(void) {
  int same = 0;
  char arguments[2];
  for (long i = 0; i < many; i++) {
    pthread_t thread;
    void* result = NULL;
    char* const argument = &arguments[i % 2];
    if (pthread_create(&thread, NULL, count, argument) != 0) break;
    pthread_join(thread, &result);
    same += result == argument;
  }
  printf("in turn: counted %d same %d\n", counted, same);
}

static void together(void) {
  pthread_t threads[at_once];
  counted = 0;
  pthread_barrier_init(&barrier, NULL, at_once);
  for (int i = 0; i < at_once; i++) pthread_create(&threads[i], NULL, meet, NULL);
  for (int i = 0; i < at_once; i++) pthread_join(threads[i], NULL);
  printf("together: counted %d\n", counted);
}

static void detached(void) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  counted = 0;
  for (int i = 0; i < 300; i++) {
    pthread_t thread;
    while (pthread_create(&thread, &attributes, count, NULL) != 0) sched_yield();
  }
  while (counted < 300) sched_yield();
  printf("detached: counted %d\n", counted);
}

// --- Raw threads -------------------------------------------------------------------------------

static char stacks[4][65536] __attribute__((aligned(16)));
static int words[4];  // the kernel clears one when its thread ends
static sem_t ended;

static int raw_thread(void* argument) {
  const int fresh = syscall(SYS_set_tid_address, argument) == gettid();
  counted += fresh;
  return 0;
}

static void await_cleared(int* word) {
  for (int seen; (seen = __atomic_load_n(word, __ATOMIC_ACQUIRE)) != 0;) {
    syscall(SYS_futex, word, FUTEX_WAIT, seen, NULL, NULL, 0);
  }
}

// The kernel clears the word of CLONE_CHILD_CLEARTID unless the thread has given another.
static void raw_threads(void) {
  const int flags = CLONE_VM | CLONE_FS | CLONE_FILES | CLONE_SIGHAND | CLONE_THREAD |
                    CLONE_SYSVSEM | CLONE_CHILD_CLEARTID;
  counted = 0;
  for (int i = 0; i < 3; i += 2) {
    int* given = i == 0 ? &words[0] : &words[3];
    words[2] = words[3] = words[0] = 1;
    clone(raw_thread, stacks[i] + sizeof stacks[0], flags, given, NULL, NULL, &words[2]);
    await_cleared(given);
    printf("raw: given %d first %d counted %d\n", *given, words[2], counted);
  }
}

// --- Robust mutexes ----------------------------------------------------------------------------

static pthread_mutex_t* robust;

static void* die_with_lock(void* argument) {
  pthread_mutex_lock(robust);
  return argument;
}

static void tell_owner(const char* who, int (*lock)(pthread_mutex_t*)) {
  const int error = lock(robust);
  printf("robust, %s: %s\n", who, error == EOWNERDEAD ? "owner died" : strerror(error));
  if (error == EOWNERDEAD) pthread_mutex_consistent(robust);
  if (error == 0 || error == EOWNERDEAD) pthread_mutex_unlock(robust);
}

static void* wait_for_lock(void* argument) {
  sem_post(&ended);
  tell_owner("waiting", pthread_mutex_lock);
  return argument;
}

static void* die_while_another_waits(void* argument) {
  pthread_mutex_lock(robust);
  pthread_create(argument, NULL, wait_for_lock, NULL);
  sem_wait(&ended);
  usleep(20000);
  return NULL;
}

// The emulator has no robust mutexes, and the C library does not check that.
static void robust_mutexes(void) {
  void* head;
  size_t size;
  if (syscall(SYS_get_robust_list, 0, &head, &size) != 0) return;
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
  pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
  robust = mmap(NULL, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  pthread_mutex_init(robust, &attributes);
  pthread_t thread, waiting;
  for (int i = 0; i < 100; i++) {
    pthread_create(&thread, NULL, die_with_lock, NULL);
    pthread_join(thread, NULL);
    tell_owner("thread", pthread_mutex_trylock);  // a thread lets go before it can be joined
  }
  pthread_create(&thread, NULL, die_while_another_waits, &waiting);
  pthread_join(thread, NULL);
  pthread_join(waiting, NULL);
  pid_t child = fork();
  if (child == 0) {
    pthread_mutex_lock(robust);
    _exit(0);
  }
  waitpid(child, NULL, 0);
  tell_owner("process", pthread_mutex_trylock);
  child = fork();
  if (child == 0) {
    pthread_mutex_lock(robust);
    raise(SIGKILL);
  }
  waitpid(child, NULL, 0);
  tell_owner("killed", pthread_mutex_trylock);
}

// --- The end -----------------------------------------------------------------------------------

static void handle(int signal) {
  (void)signal;
  counted = -1;
}

// The process lives on without its initial thread, and the other threads take its signals.
static void* outlive(void* initial) {
  usleep(50000);
  counted = 0;
  signal(SIGUSR1, handle);
  kill(getpid(), SIGUSR1);
  while (counted != -1) usleep(1000);
  printf("initial thread joined %d\n", pthread_join(*(pthread_t*)initial, NULL));
  exit(17);
}

int main(int argc, char** argv) {
  static pthread_t initial;
  if (argc > 1) many = strtol(argv[1], NULL, 10);
  setbuf(stdout, NULL);
  in_turn();
  together();
  detached();
  raw_threads();
  sem_init(&ended, 0, 0);
  robust_mutexes();
  pthread_t thread;
  initial = pthread_self();
  pthread_create(&thread, NULL, outlive, &initial);
  pthread_exit(NULL);
}
