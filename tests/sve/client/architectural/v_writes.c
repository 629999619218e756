// What is left of the Z registers after instructions that write V registers: in each place where
// these can stand, in signal handlers, in threads, and where a fault comes between two of them.
#define _GNU_SOURCE
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <sys/time.h>

#include "vectors.h"

extern const struct test_case v_write_cases[], v_write_cases_end[];

static struct vectors before, after;
static _Alignas(64) unsigned char memory[2 * max_vector_bytes];
static struct general_registers registers;

static void prepare(void) {
  fill_vectors(&before);
  fill(memory, sizeof memory);
  registers = (struct general_registers){.x = {0, (uintptr_t)memory, 3}};
}

static void cases(void) {
  for (const struct test_case* c = v_write_cases; c != v_write_cases_end; ++c) {
    prepare();
    run_code(c->code, &before, &after, &registers);
    puts(c->text);
    if (registers.x[0] != 0) printf("  x0 %lx\n", registers.x[0]);
    print_changes(&before, &after);
  }
}

// --- Signals -------------------------------------------------------------------------------------

static struct vectors in_frame, in_handler;
static void (*handler_work)(ucontext_t*);

static void handle(int signal, siginfo_t* info, void* context) {
  (void)signal, (void)info;
  read_frame(context, &in_frame);
  handler_work(context);
}

// Handlers of faults may jump out.
static void handle_faults(void (*work)(ucontext_t*)) {
  handler_work = work;
  set_handler(SIGSEGV, handle, SA_NODEFER);
  set_handler(SIGTRAP, handle, SA_NODEFER);
}

// Each runs SVE instructions and writes V registers before and after an instruction that raises a
// signal. X0 is an address that cannot be accessed.
void before_fault(void), fault_between(void), faulting_v_load(void), breakpoint_between(void);
// Writes V20 and V21 between SVE instructions.
void writes_of_handler(void);

static void skip_instruction(ucontext_t* context) { context->uc_mcontext.pc += 4; }

static void write_and_skip(ucontext_t* context) {
  run_code((void*)writes_of_handler, &before, &in_handler, &registers);
  skip_instruction(context);
}

static sigjmp_buf out_of_handler;

// The jump itself writes the low parts of V8 to V15.
static void write_and_jump(ucontext_t* context) {
  (void)context;
  run_code((void*)writes_of_handler, &before, &in_handler, &registers);
  siglongjmp(out_of_handler, 1);
}

static void run_with_fault(const char* text, void (*code)(void), void (*work)(ucontext_t*)) {
  prepare();
  handle_faults(work);
  registers.x[0] = 16;
  memset(&in_handler, 0, sizeof in_handler);
  run_code((void*)code, &before, &after, &registers);
  printf("%s: in the frame\n", text);
  print_changes(&before, &in_frame);
  puts(" afterwards");
  print_changes(&before, &after);
  if (work == skip_instruction) return;
  puts(" in the handler");
  print_changes(&before, &in_handler);
}

static void faults(void) {
  static const struct {
    const char* name;
    void (*code)(void);
  } table[] = {{"fault after a write", before_fault},
               {"fault between writes", fault_between},
               {"fault of a load into V0", faulting_v_load},
               {"breakpoint between writes", breakpoint_between}};
  for (int i = 0; i < 4; ++i) {
    run_with_fault(table[i].name, table[i].code, skip_instruction);
    run_with_fault(table[i].name, table[i].code, write_and_skip);
  }
}

// A load into V0 that faults leaves Z0 as it is, wherever the load is in a block of code. Here it
// comes after different numbers of instructions.
static void faulting_load_anywhere(void) {
  enum { most = 130, nop = (int)0xd503201f, load = 0x3dc00000, ret = (int)0xd65f03c0 };
  const size_t bytes = sizeof(uint32_t) * most * (most + 2);
  uint32_t* const code =
      mmap(NULL, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  for (size_t i = 0; i < most; ++i) {
    uint32_t* at = code + i * (most + 2);
    for (size_t n = 0; n < i; ++n) *at++ = (uint32_t)nop;
    *at++ = load;  // ldr q0, [x0]
    *at = (uint32_t)ret;
  }
  mprotect(code, bytes, PROT_READ | PROT_EXEC);
  __builtin___clear_cache((char*)code, (char*)code + bytes);
  handle_faults(skip_instruction);
  int changed = 0;
  for (size_t i = 0; i < most; ++i) {
    prepare();
    registers.x[0] = 16;
    run_code(code + i * (most + 2), &before, &after, &registers);
    changed += memcmp(z_in(&before, 0), z_in(&in_frame, 0), vector_length()) != 0;
    changed += memcmp(z_in(&before, 0), z_in(&after, 0), vector_length()) != 0;
  }
  printf("faulting loads into V0 that change Z0: %d\n", changed);
}

// Leaves the registers as they are when the code comes back from a jump.
static void nothing(void) {}

static void jumps(void) {
  prepare();
  handle_faults(write_and_jump);
  registers.x[0] = 16;
  if (sigsetjmp(out_of_handler, 0) == 0)
    run_code((void*)fault_between, &before, &after, &registers);
  puts("out of the handler");
  print_changes(&before, &in_frame);
  // What the jump itself leaves is arbitrary, but the state must be able to take new values.
  run_code((void*)nothing, &before, &after, &registers);
  puts(" afterwards");
  print_changes(&before, &after);
}

// --- Signals at any place, and threads ---------------------------------------------------------

// Writes V registers between SVE instructions for X0 rounds. X0 comes back as the number of rounds
// that found a wrong value in a Z register.
void count_wrong_rounds(void);

static volatile int ticks;

static void clobber(ucontext_t* context) {
  (void)context;
  static _Thread_local struct vectors own, left;
  static _Thread_local struct general_registers unused;
  memset(&own, 0x5a, sizeof own);
  run_code((void*)writes_of_handler, &own, &left, &unused);
  ++ticks;
}

static unsigned long wrong_rounds(unsigned long rounds) {
  struct vectors own, left;
  struct general_registers counted = {.x = {rounds}};
  memset(&own, 0x33, sizeof own);
  run_code((void*)count_wrong_rounds, &own, &left, &counted);
  return counted.x[0];
}

static void interruptions(void) {
  prepare();
  handler_work = clobber;
  set_handler(SIGALRM, handle, 0);  // it must not interrupt itself
  const struct itimerval often = {{.tv_usec = 1000}, {.tv_usec = 1000}};
  const struct itimerval never = {{0, 0}, {0, 0}};
  unsigned long wrong = 0;
  setitimer(ITIMER_REAL, &often, NULL);
  while (ticks < 100) wrong += wrong_rounds(100);
  setitimer(ITIMER_REAL, &never, NULL);
  printf("interrupted rounds that are wrong: %lu\n", wrong);
}

static void* run_cases_in_thread(void* wrong) {
  *(unsigned long*)wrong = wrong_rounds(3000);
  return NULL;
}

static void threads(void) {
  pthread_t started[3];
  unsigned long wrong[3];
  for (int i = 0; i < 3; ++i) pthread_create(&started[i], NULL, run_cases_in_thread, &wrong[i]);
  for (int i = 0; i < 3; ++i) pthread_join(started[i], NULL);
  printf("rounds in threads that are wrong: %lu\n", wrong[0] + wrong[1] + wrong[2]);
}

int main(void) {
  setvbuf(stdout, NULL, _IOLBF, 0);
  cases();
  faults();
  faulting_load_anywhere();
  jumps();
  interruptions();
  threads();
  return 0;
}
