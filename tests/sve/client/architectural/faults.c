// A program that repairs the faults of its SVE loads and stores, as a garbage collector does. Its
// handler looks at all registers, and the instruction runs again or the handler jumps out. The
// pages have fixed addresses, so that the output is the same in every run.
#define _GNU_SOURCE
#include <fcntl.h>
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include "vectors.h"

struct fault_case {
  const void* code;
  const void* instruction;
  const char* text;
};
extern const struct fault_case fault_cases[], fault_cases_end[];
extern const struct fault_case changed_cases[], changed_cases_end[];

enum { page = 4096, both_pages = 2 * page };
static unsigned char* const memory = (unsigned char*)0x20000000;
static unsigned char* const edge = (unsigned char*)0x20000000 + page;

// --- The ways in which the second page cannot be accessed --------------------------------------

static int file;

static void map(unsigned char* at, size_t bytes, int protection, int flags) {
  void* const got =
      mmap(at, bytes, protection, flags | MAP_FIXED, flags & MAP_SHARED ? file : -1, 0);
  if (got != at) exit(2);
}
static void map_both(void) {
  map(memory, both_pages, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS);
  fill(memory, both_pages);
}
static void protect(void) {
  map_both();
  mprotect(edge, page, PROT_NONE);
}
static void protect_from_writing(void) {
  map_both();
  mprotect(edge, page, PROT_READ);
}
static void unprotect(void) { mprotect(edge, page, PROT_READ | PROT_WRITE); }
static void unmap(void) {
  map_both();
  munmap(edge, page);
}
static void map_again(void) {
  map(edge, page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS);
  memset(edge, 0x77, page);
}
static unsigned char second_page[page];
static void shorten_file(void) {
  map_both();
  memcpy(second_page, edge, page);
  unsigned char first_page[page];
  memcpy(first_page, memory, page);
  if (ftruncate(file, page) != 0) exit(2);
  map(memory, both_pages, PROT_READ | PROT_WRITE, MAP_SHARED);
  memcpy(memory, first_page, page);
}
static void lengthen_file(void) {
  if (ftruncate(file, both_pages) != 0) exit(2);
  memcpy(edge, second_page, page);
}

struct obstacle {
  const char* name;
  void (*make)(void);
  void (*repair)(void);
};
static const struct obstacle obstacles[] = {
    {"a protected page", protect, unprotect},
    {"a page that is not mapped", unmap, map_again},
    {"a page for reading", protect_from_writing, unprotect},
};
static const struct obstacle end_of_file = {"the end of a file", shorten_file, lengthen_file};
static const struct obstacle* obstacle;

// --- What the handler sees, and what the instruction leaves --------------------------------------

// It has no padding, so outcomes can be compared as a whole.
struct outcome {
  int signal, code, entries, unstable;
  long address, pc, sp;  // from the edge, from the instruction, and from X28
  unsigned long flags;
  uint64_t x[31];
  uint64_t memory;
  struct vectors in_frame, after;
};

static struct vectors before, in_frame;
static struct outcome outcome;
static const struct fault_case* now;
static sigjmp_buf out_of_handler;

static void look_at(const siginfo_t* info, const mcontext_t* machine) {
  outcome.signal = info->si_signo;
  outcome.code = info->si_code;
  outcome.address = (unsigned char*)info->si_addr - edge;
  outcome.pc = (long)(machine->pc - (uintptr_t)now->instruction);
  outcome.sp = (long)(machine->sp - machine->regs[28]);
  outcome.flags = machine->pstate >> 28;
  memcpy(outcome.x, machine->regs, sizeof outcome.x);
  outcome.x[28] = 0;
}

// Jumps out at the first entry, and repairs at the second. What it sees must be the same.
static void handle(int signal, siginfo_t* info, void* context) {
  (void)signal;
  read_frame(context, &in_frame);
  if (++outcome.entries == 1) {
    outcome.in_frame = in_frame;
    siglongjmp(out_of_handler, 1);
  }
  if (outcome.entries > 2) exit(3);
  outcome.unstable = memcmp(&in_frame, &outcome.in_frame, sizeof in_frame) != 0;
  look_at(info, &((ucontext_t*)context)->uc_mcontext);
  obstacle->repair();
}

static void handle_faults(void (*handler)(int, siginfo_t*, void*)) {
  static unsigned char stack[1 << 16];
  const stack_t alternate = {.ss_sp = stack, .ss_size = sizeof stack};
  sigaltstack(&alternate, NULL);
  set_handler(SIGSEGV, handler, SA_ONSTACK);
  set_handler(SIGBUS, handler, SA_ONSTACK);
}

static struct general_registers start(void) {
  fill_vectors(&before);
  obstacle->make();
  return (struct general_registers){.x = {(uintptr_t)edge, 0, 0, 3}};
}

static void run_case(void) {
  static struct general_registers registers;
  registers = start();
  memset(&outcome, 0, sizeof outcome);
  if (sigsetjmp(out_of_handler, 1) == 0 || outcome.entries == 1) {
    run_code(now->code, &before, &outcome.after, &registers);
  }
  outcome.memory = checksum(memory, outcome.entries == 0 ? page : both_pages);
}

static void print_outcome(void) {
  puts(now->text);
  if (outcome.entries != 0) {
    printf("  signal %d, code %d, address %+ld, pc %+ld, sp %+ld, flags %lx, x %08x\n",
           outcome.signal, outcome.code, outcome.address, outcome.pc, outcome.sp, outcome.flags,
           checksum(outcome.x, sizeof outcome.x));
    if (outcome.unstable) puts("  The vectors are not as at the first time.");
    print_changes(&before, &outcome.in_frame);
    puts(" afterwards");
  }
  print_changes(&before, &outcome.after);
  printf("  memory %08lx\n", outcome.memory);
}

static void run_cases(void) {
  for (unsigned i = 0; i < sizeof obstacles / sizeof obstacles[0]; ++i) {
    obstacle = &obstacles[i];
    printf("Obstacle: %s\n", obstacle->name);
    for (now = fault_cases; now != fault_cases_end; ++now) {
      run_case();
      print_outcome();
    }
  }
}

// At the end of a file, all is as at a protected page, except for the signal. QEMU's user emulation
// does not tell a program of such faults precisely, so there is nothing to compare the output with.
static int run_at_end_of_file(void) {
  int different = 0;
  for (now = fault_cases; now != fault_cases_end; ++now) {
    static struct outcome expected;
    const uint64_t state = random_state;
    obstacle = &obstacles[0];
    run_case();
    memcpy(&expected, &outcome, sizeof outcome);
    expected.signal = expected.signal == 0 ? 0 : SIGBUS;
    expected.code = expected.signal == 0 ? 0 : BUS_ADRERR;
    random_state = state;
    obstacle = &end_of_file;
    run_case();
    if (memcmp(&outcome, &expected, sizeof outcome) == 0) continue;
    ++different;
    print_outcome();
  }
  printf("%d cases are different at the end of a file.\n", different);
  return different != 0;
}

// --- A handler that changes registers ------------------------------------------------------------

static void change_base(ucontext_t* context) {
  context->uc_mcontext.regs[0] = (uintptr_t)edge - 3UL * max_vector_bytes;
}
static void change_index(ucontext_t* context) { context->uc_mcontext.regs[4] = (uint64_t)-96; }
static void change_predicate(ucontext_t* context) {
  memset(p_in(&in_frame, 1), 0, vector_length() / 8);
  p_in(&in_frame, 1)[0] = 1;
  write_frame(context, &in_frame);
}
// Offsets that are valid, or data to be stored.
static void change_z4(ucontext_t* context) {
  for (unsigned i = 0; i < vector_length(); ++i) z_in(&in_frame, 4)[i] = i % 8 == 0 ? 0xc0 : 0xff;
  write_frame(context, &in_frame);
}
static void change_others(ucontext_t* context) {
  fill(z_in(&in_frame, 31), vector_length());
  fill(p_in(&in_frame, 15), vector_length() / 8);
  unsigned char* const ffr = p_in(&in_frame, p_count);
  memset(ffr, 0, vector_length() / 8);
  ffr[0] = 0x7f;
  write_frame(context, &in_frame);
  context->uc_mcontext.regs[6] = 66;
  context->uc_mcontext.pstate ^= 0xf0000000;
}
static void skip(ucontext_t* context) {
  change_z4(context);
  context->uc_mcontext.pc += 4;
}

static void (*change)(ucontext_t*);

static void handle_by_change(int signal, siginfo_t* info, void* context) {
  (void)signal, (void)info;
  if (++outcome.entries > 1) exit(4);
  read_frame(context, &in_frame);
  change(context);
  obstacle->repair();
}

static void run_changed_cases(void) {
  static const struct {
    const char* what;
    void (*change)(ucontext_t*);
  } changes[] = {{"the base", change_base},           {"the index", change_index},
                 {"the predicate", change_predicate}, {"Z4", change_z4},
                 {"other registers", change_others},  {"the PC", skip}};
  obstacle = &obstacles[0];
  for (unsigned i = 0; i < sizeof changes / sizeof changes[0]; ++i) {
    change = changes[i].change;
    printf("The handler changes %s\n", changes[i].what);
    for (now = changed_cases; now != changed_cases_end; ++now) {
      puts(now->text);
      struct general_registers registers = start();
      outcome.entries = 0;
      run_code(now->code, &before, &outcome.after, &registers);
      print_changes(&before, &outcome.after);
      printf("  x6 %lu, flags %lx, memory %08x\n", registers.x[6], registers.nzcv >> 28,
             checksum(memory, both_pages));
    }
  }
}

// faults [file]
int main(int argc, char** argv) {
  (void)argv;
  char name[] = "/tmp/faults-XXXXXX";
  file = mkstemp(name);
  unlink(name);
  handle_faults(handle);
  if (argc > 1) return run_at_end_of_file();
  run_cases();
  handle_faults(handle_by_change);
  run_changed_cases();
  return 0;
}
