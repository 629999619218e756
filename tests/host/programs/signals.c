// The kernel's rules on signals, with a line of output for each. The output is the same natively
// and under the launcher.
#define _GNU_SOURCE
#include <errno.h>
#include <poll.h>
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/signalfd.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <ucontext.h>
#include <unistd.h>

#include "tests/host/programs/run_case.h"

static void handle(int signal, void (*handler)(int, siginfo_t*, void*), int flags,
                   const int* blocked) {
  struct sigaction action = {.sa_flags = SA_SIGINFO | flags};
  action.sa_sigaction = handler;
  sigemptyset(&action.sa_mask);
  for (; blocked != NULL && *blocked != 0; ++blocked) sigaddset(&action.sa_mask, *blocked);
  if (sigaction(signal, &action, NULL) != 0) perror("sigaction");
}

static sigset_t set_of(int signal) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  return set;
}

static void change_mask(int how, int signal) {
  const sigset_t set = set_of(signal);
  pthread_sigmask(how, &set, NULL);
}

static int is_blocked(int signal) {
  sigset_t now;
  pthread_sigmask(SIG_BLOCK, NULL, &now);
  return sigismember(&now, signal);
}

static int is_pending(int signal) {
  sigset_t pending;
  sigpending(&pending);
  return sigismember(&pending, signal);
}

// --- What handlers receive, and in which order they run ----------------------------------------

static volatile int depth, deepest, runs;

static void tell(int signal, siginfo_t* info, void* context) {
  const ucontext_t* const uc = context;
  printf("  signal %d, code %d, from here %d, value %d, blocked in it %d, in the context %d\n",
         signal, info->si_code, info->si_pid == getpid(), info->si_value.sival_int,
         is_blocked(signal), sigismember(&uc->uc_sigmask, signal));
}

static void count(int signal, siginfo_t* info, void* context) {
  (void)signal, (void)info, (void)context;
  ++runs;
}

static void recurse(int signal, siginfo_t* info, void* context) {
  (void)info, (void)context;
  ++depth;
  if (depth > deepest) deepest = depth;
  if (++runs < 4) raise(signal);
  --depth;
}

static void raise_another(int signal, siginfo_t* info, void* context) {
  (void)info, (void)context;
  printf("  %d begins\n", signal);
  if (signal == SIGUSR1) raise(SIGUSR2);
  printf("  %d ends\n", signal);
}

static void information(void) {
  handle(SIGUSR1, tell, 0, NULL);
  handle(SIGRTMIN + 3, tell, SA_NODEFER, NULL);
  raise(SIGUSR1);
  kill(getpid(), SIGUSR1);
  sigqueue(getpid(), SIGUSR1, (union sigval){.sival_int = 42});
  change_mask(SIG_BLOCK, SIGRTMIN + 3);
  for (int i = 0; i < 3; ++i) sigqueue(getpid(), SIGRTMIN + 3, (union sigval){.sival_int = i});
  change_mask(SIG_UNBLOCK, SIGRTMIN + 3);
}

static void nesting(void) {
  static const int usr2[] = {SIGUSR2, 0};
  handle(SIGUSR2, raise_another, 0, NULL);
  handle(SIGUSR1, raise_another, 0, NULL);
  raise(SIGUSR1);
  handle(SIGUSR1, raise_another, 0, usr2);
  raise(SIGUSR1);
  handle(SIGUSR1, recurse, 0, NULL);
  raise(SIGUSR1);
  printf("  deferred: %d runs, %d deep\n", runs, deepest);
  runs = deepest = 0;
  handle(SIGUSR1, recurse, SA_NODEFER, NULL);
  raise(SIGUSR1);
  printf("  not deferred: %d runs, %d deep\n", runs, deepest);
  runs = 0;
  handle(SIGURG, count, SA_RESETHAND, NULL);
  raise(SIGURG);
  raise(SIGURG);
  struct sigaction now;
  sigaction(SIGURG, NULL, &now);
  printf("  reset after %d, to the default %d\n", runs, now.sa_handler == SIG_DFL);
}

// --- Masks and waiting -------------------------------------------------------------------------

static void masks(void) {
  runs = 0;
  handle(SIGUSR1, count, 0, NULL);
  change_mask(SIG_BLOCK, SIGUSR1);
  raise(SIGUSR1);
  raise(SIGUSR1);
  printf("  blocked: %d runs, pending %d\n", runs, is_pending(SIGUSR1));
  change_mask(SIG_UNBLOCK, SIGUSR1);
  printf("  unblocked: %d runs, pending %d\n", runs, is_pending(SIGUSR1));
  handle(SIGFPE, count, 0, NULL);
  change_mask(SIG_BLOCK, SIGFPE);
  raise(SIGFPE);
  printf("  a fault's signal that was sent: %d runs, pending %d, blocked %d\n", runs,
         is_pending(SIGFPE), is_blocked(SIGFPE));
  change_mask(SIG_UNBLOCK, SIGFPE);
  printf("  unblocked: %d runs, pending %d\n", runs, is_pending(SIGFPE));
  static const int usr2[] = {SIGUSR2, 0};
  handle(SIGFPE, raise_another, 0, usr2);
  handle(SIGUSR2, raise_another, 0, NULL);
  sigset_t both = set_of(SIGFPE);
  sigaddset(&both, SIGUSR2);
  sigprocmask(SIG_BLOCK, &both, NULL);
  raise(SIGUSR2);
  raise(SIGFPE);
  sigprocmask(SIG_UNBLOCK, &both, NULL);
  signal(SIGUSR1, SIG_IGN);
  signal(SIGBUS, SIG_IGN);
  raise(SIGUSR1);
  raise(SIGBUS);
  printf("  ignored: %d runs\n", runs);
}

static void waiting(void) {
  runs = 0;
  handle(SIGUSR1, count, 0, NULL);
  change_mask(SIG_BLOCK, SIGUSR1);
  raise(SIGUSR1);
  sigset_t none;
  sigemptyset(&none);
  const int suspended = sigsuspend(&none);
  printf("  sigsuspend %d %s, %d runs, blocked again %d\n", suspended, strerror(errno), runs,
         is_blocked(SIGUSR1));
  raise(SIGUSR1);
  const sigset_t set = set_of(SIGUSR1);
  int taken = 0;
  sigwait(&set, &taken);
  printf("  sigwait took %d, %d runs\n", taken, runs);
  const sigset_t fault = set_of(SIGFPE);
  siginfo_t info = {0};
  change_mask(SIG_BLOCK, SIGFPE);
  raise(SIGFPE);
  taken = sigwaitinfo(&fault, &info);
  printf("  sigwaitinfo took %d, from here %d, pending %d\n", taken, info.si_pid == getpid(),
         is_pending(SIGFPE));
  change_mask(SIG_UNBLOCK, SIGFPE);
  const struct timespec soon = {.tv_nsec = 1000000};
  printf("  sigtimedwait %d %s\n", sigtimedwait(&set, NULL, &soon), strerror(errno));
  const int file = signalfd(-1, &set, 0);
  raise(SIGUSR1);
  struct signalfd_siginfo told;
  const ssize_t length = read(file, &told, sizeof told);
  printf("  signalfd %d bytes, signal %u\n", (int)length, told.ssi_signo);
  close(file);
  raise(SIGUSR1);
  const int ready = ppoll(NULL, 0, NULL, &none);
  printf("  ppoll %d %s, %d runs\n", ready, strerror(errno), runs);
  change_mask(SIG_UNBLOCK, SIGUSR1);
}

// --- Signals in system calls -------------------------------------------------------------------

// The alarm repeats: on a busy machine the first may come before the call that it should interrupt.
static void alarm_every(int microseconds) {
  const struct itimerval often = {{.tv_usec = microseconds}, {.tv_usec = microseconds}};
  setitimer(ITIMER_REAL, &often, NULL);
}

static int write_end;

static void write_byte(int signal, siginfo_t* info, void* context) {
  (void)signal, (void)info, (void)context;
  ++runs;
  if (write(write_end, "x", 1) != 1) perror("write");
}

static void system_calls(void) {
  int written[2];
  int silent[2];
  if (pipe(written) != 0 || pipe(silent) != 0) return;
  write_end = written[1];
  char byte;
  runs = 0;
  handle(SIGALRM, write_byte, SA_RESTART, NULL);
  alarm_every(20000);
  ssize_t got = read(written[0], &byte, 1);
  printf("  read with SA_RESTART: %d, handled %d\n", (int)got, runs > 0);
  runs = 0;
  handle(SIGALRM, count, 0, NULL);
  got = read(silent[0], &byte, 1);
  printf("  read without: %d %s, handled %d\n", (int)got, strerror(errno), runs > 0);
  handle(SIGALRM, count, SA_RESTART, NULL);
  struct timespec rest = {.tv_sec = 1000};
  const int slept = nanosleep(&rest, &rest);
  printf("  nanosleep: %d %s, most of it is left %d\n", slept, strerror(errno), rest.tv_sec > 900);
  const int ready = poll(NULL, 0, 1000000);
  printf("  poll: %d %s\n", ready, strerror(errno));
  runs = 0;
  const int paused = pause();
  printf("  pause: %d %s, handled %d\n", paused, strerror(errno), runs > 0);
  setitimer(ITIMER_REAL, &(struct itimerval){{0, 0}, {0, 0}}, NULL);
  for (int i = 0; i < 2; ++i) {
    close(written[i]);
    close(silent[i]);
  }
}

// --- Stacks ------------------------------------------------------------------------------------

static char alternate[64 << 10];
static volatile int on_alternate;
static sigjmp_buf recovery;

static void look_at_stack(int signal, siginfo_t* info, void* context) {
  (void)signal, (void)info;
  char here;
  const ucontext_t* const uc = context;
  stack_t now;
  sigaltstack(NULL, &now);
  on_alternate = &here >= alternate && &here < alternate + sizeof alternate;
  printf("  on it %d, says so %d, in the context %d, changing it %d\n", on_alternate,
         (now.ss_flags & SS_ONSTACK) != 0, uc->uc_stack.ss_sp == alternate,
         sigaltstack(&now, NULL));
}

static void jump_out(int signal, siginfo_t* info, void* context) {
  (void)info, (void)context;
  siglongjmp(recovery, signal);
}

static __attribute__((noinline)) int use_stack(int levels) {
  volatile char room[4096];
  room[0] = (char)levels;
  return levels == 0 ? 0 : use_stack(levels + 1) + room[0];
}

static void stacks(void) {
  const stack_t stack = {.ss_sp = alternate, .ss_size = sizeof alternate};
  const stack_t small = {.ss_sp = alternate, .ss_size = 1000};
  printf("  too small %d %s\n", sigaltstack(&small, NULL), strerror(errno));
  sigaltstack(&stack, NULL);
  handle(SIGUSR1, look_at_stack, SA_ONSTACK, NULL);
  raise(SIGUSR1);
  handle(SIGUSR1, look_at_stack, 0, NULL);
  raise(SIGUSR1);
  handle(SIGSEGV, jump_out, SA_ONSTACK, NULL);
  const int jumped = sigsetjmp(recovery, 1);
  if (jumped == 0) use_stack(1);
  printf("  out of an overflow by %d, blocked %d\n", jumped, is_blocked(SIGSEGV));
}

// --- Faults ------------------------------------------------------------------------------------

// The third instruction of each faults. X0 and X1 hold an address that cannot be accessed, and X2
// to X29 their own number plus 100.
__asm__(
    ".pushsection .text\n"
    ".arch_extension lse\n"
    ".globl fault_load, fault_load_byte, fault_load_with_writeback\n"
    ".globl fault_store_pair, fault_swap_pair, fault_undefined, fault_break\n"
    "fault_load: nop\n nop\n ldr x28, [x0]\n ret\n"
    "fault_load_byte: nop\n nop\n ldrb w28, [x0]\n ret\n"
    "fault_load_with_writeback: nop\n nop\n ldp x28, x3, [x1, #16]!\n ret\n"
    "fault_store_pair: nop\n nop\n stp x28, x3, [x1]\n ret\n"
    "fault_swap_pair: nop\n nop\n casp x2, x3, x28, x29, [x0]\n ret\n"
    "fault_undefined: nop\n nop\n udf #1\n ret\n"
    "fault_break: nop\n nop\n brk #1\n ret\n"
    ".popsection");
extern const char fault_load[], fault_load_byte[], fault_load_with_writeback[], fault_store_pair[],
    fault_swap_pair[], fault_undefined[], fault_break[];

static const char* expected_pc;
static volatile int wrong_registers;

static void fix_up(int signal, siginfo_t* info, void* context) {
  mcontext_t* const machine = &((ucontext_t*)context)->uc_mcontext;
  printf("  signal %d, code %d, its pc %d, at address 16 %d", signal, info->si_code,
         machine->pc == (uintptr_t)expected_pc, info->si_addr == (void*)16);
  wrong_registers = 0;
  for (int i = 2; i < 30; ++i) wrong_registers += machine->regs[i] != 100 + (uint64_t)i;
  machine->regs[28] = 5000;
  machine->regs[3] = 3000;
  machine->pc += 4;
}

static void fault_at(const char* code) {
  struct machine state = {
      .x = {16, 16}, .nzcv = 0x80000000, .fpsr = 0x08000001, .fpcr = 0x01c00000};
  for (unsigned i = 2; i < 30; ++i) state.x[i] = 100 + i;
  memset(state.q, 0xa5, sizeof state.q);
  const struct machine before = state;
  expected_pc = code + 8;
  run_case(code, &state);
  printf(", wrong registers %d; then vectors kept %d, fpsr %lx, fpcr %lx, flags %lx",
         wrong_registers, memcmp(state.q, before.q, sizeof state.q) == 0, state.fpsr, state.fpcr,
         state.nzcv);
  for (int i = 2; i < 30; ++i) printf(" %lu", state.x[i]);
  puts("");
}

static void return_to_caller(int signal, siginfo_t* info, void* context) {
  mcontext_t* const machine = &((ucontext_t*)context)->uc_mcontext;
  printf("  signal %d, code %d, pc %lx, at it %d\n", signal, info->si_code,
         (unsigned long)machine->pc & 0xfff, (uint64_t)info->si_addr == machine->pc);
  machine->pc = machine->regs[30];
}

static void faults(void) {
  static const int signals[] = {SIGSEGV, SIGBUS, SIGILL, SIGTRAP};
  for (int i = 0; i < 4; ++i) handle(signals[i], fix_up, 0, NULL);
  // The first call of each leaves the code cache, so the host has just seen all registers.
  static const char* const codes[] = {fault_load,       fault_load_byte, fault_load_with_writeback,
                                      fault_store_pair, fault_swap_pair, fault_undefined,
                                      fault_break};
  enum { number = sizeof codes / sizeof codes[0] };
  for (int i = 0; i < 2 * number; ++i) fault_at(codes[i % number]);
  for (int i = 0; i < 4; ++i) handle(signals[i], return_to_caller, 0, NULL);
  void* const page = mmap(NULL, 4096, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  void (*volatile nowhere)(void) = NULL;
  nowhere();
  void (*volatile data)(void) = (void (*)(void))page;
  data();
  munmap(page, 4096);
}

// --- Threads -----------------------------------------------------------------------------------

static volatile int taken_by_thread;
static pthread_t thread;

static void note_thread(int signal, siginfo_t* info, void* context) {
  (void)signal, (void)info, (void)context;
  taken_by_thread += pthread_equal(pthread_self(), thread) ? 1 : 100;
}

static void* spin(void* unused) {
  while (taken_by_thread < 3) {
  }
  return unused;
}

static void threads(void) {
  handle(SIGUSR1, note_thread, 0, NULL);
  pthread_create(&thread, NULL, spin, NULL);
  change_mask(SIG_BLOCK, SIGUSR1);
  for (int i = 1; i <= 2; ++i) {
    pthread_kill(thread, SIGUSR1);
    while (taken_by_thread < i) {
    }
  }
  kill(getpid(), SIGUSR1);  // only the other thread does not block it
  pthread_join(thread, NULL);
  change_mask(SIG_UNBLOCK, SIGUSR1);
  printf("  taken by the thread %d\n", taken_by_thread);
}

static void errors(void) {
  struct sigaction action = {.sa_handler = SIG_IGN};
  printf("  SIGKILL %d %s\n", sigaction(SIGKILL, &action, NULL), strerror(errno));
  printf("  65 %d %s\n", sigaction(65, &action, NULL), strerror(errno));
  const long bad_action = syscall(SYS_rt_sigaction, SIGUSR1, 16, NULL, 8);
  printf("  bad action %ld %s\n", bad_action, strerror(errno));
  const long bad_mask = syscall(SYS_rt_sigprocmask, SIG_BLOCK, 16, NULL, 8);
  printf("  bad mask %ld %s\n", bad_mask, strerror(errno));
  const long bad_stack = syscall(SYS_sigaltstack, 16, NULL);
  printf("  bad stack %ld %s\n", bad_stack, strerror(errno));
}

int main(int argc, char** argv) {
  static const struct {
    const char* name;
    void (*run)(void);
  } parts[] = {{"information", information}, {"nesting", nesting},    {"masks", masks},
               {"waiting", waiting},         {"calls", system_calls}, {"stacks", stacks},
               {"faults", faults},           {"threads", threads},    {"errors", errors}};
  setvbuf(stdout, NULL, _IONBF, 0);
  for (size_t i = 0; i < sizeof parts / sizeof parts[0]; ++i) {
    if (argc > 1 && strcmp(argv[1], parts[i].name) != 0) continue;
    puts(parts[i].name);
    parts[i].run();
  }
  return 0;
}
