// What the kernel of a processor with SVE shows of the vector state: in signal frames, after system
// calls, in new threads and processes, and by prctl. The processor must have no vectors longer than
// those of this process.
//
// The esr_context is left out. Once a thread has had a fault, the kernel puts the last one into all
// of the thread's frames.
#define _GNU_SOURCE
#include <errno.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/auxv.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include "vectors.h"

enum { at_minsigstksz = 51, esr_record = 0x45535201, usual_frame = 4704 };

extern const struct test_case frame_cases[], frame_cases_end[];
void frame_handler(int signal, siginfo_t* info, void* context);

static struct vectors before, after, in_handler;
static unsigned char* not_accessible;
static volatile unsigned char timer_has_run;

static int are_low_parts_alone(struct vectors* v) {
  for (unsigned n = 0; n < z_count; ++n) {
    if (memcmp(z_in(v, n), z_in(&before, n), 16) != 0) return 0;
    if (!is_zero(z_in(v, n) + 16, vector_length() - 16)) return 0;
  }
  return is_zero(p_in(v, 0), 17 * vector_length() / 8);
}

static const char* describe(struct vectors* v) {
  const size_t bytes = z_count * vector_length() + 17 * vector_length() / 8;
  if (memcmp(v, &before, bytes) == 0) return "as before";
  return are_low_parts_alone(v) ? "low parts alone" : "different";
}

// --- The layout of a frame -----------------------------------------------------------------------

static void print_record(const struct _aarch64_ctx* head) {
  static const struct {
    uint32_t magic;
    const char* name;
  } names[] = {{FPSIMD_MAGIC, "fpsimd"}, {EXTRA_MAGIC, "extra"}, {SVE_MAGIC, "sve"}, {0, "end"}};
  const char* name = "unknown";
  for (int i = 0; i < 4; ++i) name = names[i].magic == head->magic ? names[i].name : name;
  printf(" %s %u", name, head->size);
  if (head->magic == EXTRA_MAGIC) printf(" with %u", ((const struct extra_context*)head)->size);
  if (head->magic == SVE_MAGIC) {
    const struct sve_context* const sve = (const void*)head;
    printf(" with vl %u and flags %u", sve->vl, sve->flags);
  }
}

// Prints the records and the bytes of the frame. A record does not begin where the one before ends
// if a distance is printed between the two.
static void print_records(siginfo_t* info, ucontext_t* context) {
  unsigned char* at = (unsigned char*)context->uc_mcontext.__reserved;
  long length = (long)(context->uc_mcontext.sp - (uintptr_t)info);
  const unsigned char *end = at, *extra = NULL;
  printf("    at %ld:", (long)(at - (unsigned char*)info));
  for (;;) {
    const struct _aarch64_ctx* const head = (void*)at;
    if (at != end) printf(" %+ld", (long)(at - end));
    end = at + (head->magic == 0 ? 16 : head->size);
    if (head->magic != esr_record) print_record(head);
    // A frame that grows with its records is longer by this one.
    if (head->magic == esr_record && length > usual_frame) length -= head->size;
    if (head->magic == EXTRA_MAGIC) {
      extra =
          (void*)((const struct extra_context*)head)->datap;  // NOLINT(performance-no-int-to-ptr)
    }
    if (head->magic == 0 && extra == NULL) break;
    at = head->magic == 0 ? (unsigned char*)extra : at + head->size;
    if (head->magic == 0) extra = NULL;
  }
  printf("; %ld bytes\n", length);
}

// --- Signals -------------------------------------------------------------------------------------

void* vectors_of_handler;  // where the handler stores them, or NULL
static void (*edit)(ucontext_t*);

void handle(int signal, siginfo_t* info, void* context);
void handle(int signal, siginfo_t* info, void* context) {
  ucontext_t* const uc = context;
  static struct vectors in_frame;
  if (edit != NULL) {
    edit(uc);
  } else {
    read_frame(uc, &in_frame);
    printf("  signal %d: %s", signal, describe(&in_frame));
    if (vectors_of_handler != NULL) printf(", and in the handler %s", describe(vectors_of_handler));
    puts("");
    print_records(info, uc);
  }
  if (signal == SIGSEGV || signal == SIGTRAP) uc->uc_mcontext.pc += 4;
  if (signal == SIGALRM) timer_has_run = 1;
}

static void run(const void* code) {
  struct general_registers registers = {
      .x = {(uint64_t)getpid(), SIGUSR1, (uintptr_t)not_accessible, 0, (uintptr_t)&timer_has_run}};
  run_code(code, &before, &after, &registers);
}

static void signals(void) {
  for (int looks = 0; looks < 2; ++looks) {
    vectors_of_handler = looks ? &in_handler : NULL;
    for (const struct test_case* c = frame_cases; c != frame_cases_end; ++c) {
      printf("%s%s\n", c->text, looks ? ", and the handler uses SVE" : "");
      fill_vectors(&before);
      timer_has_run = 0;
      const struct itimerval soon = {{0, 0}, {0, strstr(c->text, "cbz") != NULL ? 20000 : 0}};
      setitimer(ITIMER_REAL, &soon, NULL);
      run(c->code);
      printf("  then %s\n", describe(&after));
    }
  }
  vectors_of_handler = NULL;
}

// --- Frames that the handler changes -------------------------------------------------------------

static struct sve_context* sve(ucontext_t* context) { return record_in(context, SVE_MAGIC); }
static void end_at(void* record) { memset(record, 0, 8); }

static void keep(ucontext_t* context) { (void)context; }
static void change_values(ucontext_t* context) {
  static struct vectors v;
  read_frame(context, &v);
  fill(z_in(&v, 5), vector_length());
  fill(p_in(&v, 3), vector_length() / 8);
  memset(p_in(&v, p_count), 0, vector_length() / 8);
  write_frame(context, &v);
}
static void change_low_part(ucontext_t* context) {
  struct fpsimd_context* const low = record_in(context, FPSIMD_MAGIC);
  memset(&low->vregs[5], 0x66, 16);
}
static void remove_sve(ucontext_t* context) { end_at(sve(context)); }
static void remove_extra(ucontext_t* context) {
  void* const extra = record_in(context, EXTRA_MAGIC);
  if (extra != NULL) end_at(extra);
}
static void leave_header(ucontext_t* context) {
  sve(context)->head.size = sizeof(struct sve_context);
  end_at(sve(context) + 1);
}
static void change_length(ucontext_t* context) { sve(context)->vl ^= 16; }
static void leave_wrong_header(ucontext_t* context) {
  leave_header(context);
  change_length(context);
}
static void resize(ucontext_t* context, int by) {
  struct sve_context* const record = sve(context);
  record->head.size += (unsigned)by;
  end_at((char*)record + record->head.size);
}
static void shorten(ucontext_t* context) { resize(context, -16); }
static void lengthen(ucontext_t* context) {
  if (record_in(context, EXTRA_MAGIC) == NULL) resize(context, 16);
}
static void set_streaming(ucontext_t* context) { sve(context)->flags = 1; }
static void set_other_flags(ucontext_t* context) { sve(context)->flags = 0xfffe; }
static void rename_record(ucontext_t* context) { sve(context)->head.magic = 0x12345678; }
static void remove_fpsimd(ucontext_t* context) { end_at(record_in(context, FPSIMD_MAGIC)); }

static void tell_bad_frame(int signal, siginfo_t* info, void* context) {
  const ucontext_t* const uc = context;
  printf("  signal %d, code %d, its address is SP: %d\n", signal, info->si_code,
         (uint64_t)info->si_addr == uc->uc_mcontext.sp);
  fflush(stdout);
  _exit(0);
}

static void edits(void) {
  static const struct {
    const char* what;
    void (*edit)(ucontext_t*);
  } table[] = {{"as it is", keep},
               {"other values", change_values},
               {"another low part", change_low_part},
               {"no sve_context", remove_sve},
               {"no extra_context", remove_extra},
               {"a header alone", leave_header},
               {"another length", change_length},
               {"a header alone, with another length", leave_wrong_header},
               {"a shorter record", shorten},
               {"a longer record", lengthen},
               {"the flag of streaming mode", set_streaming},
               {"all other flags", set_other_flags},
               {"an unknown record", rename_record},
               {"no fpsimd_context", remove_fpsimd}};
  for (size_t i = 0; i < sizeof table / sizeof table[0]; ++i) {
    printf("The handler returns through a frame with %s\n", table[i].what);
    fflush(stdout);
    if (fork() == 0) {
      fill_vectors(&before);
      edit = table[i].edit;
      set_handler(SIGSEGV, tell_bad_frame, 0);
      run(frame_cases[0].code);
      printf("  then %s\n", describe(&after));
      if (!are_low_parts_alone(&after)) print_changes(&before, &after);
      fflush(stdout);
      _exit(0);
    }
    wait(NULL);
  }
}

// --- New threads and processes, and prctl --------------------------------------------------------

static void print_new_state(const char* where) {
  store_vectors(&after);
  int is_clear = is_zero(p_in(&after, 0), 17 * vector_length() / 8);
  for (unsigned n = 0; n < z_count; ++n) {
    is_clear &= is_zero(z_in(&after, n) + 16, vector_length() - 16);
  }
  printf("  %s: clear %d, PR_SVE_GET_VL %x, AT_MINSIGSTKSZ %lu\n", where, is_clear,
         (unsigned)prctl(PR_SVE_GET_VL), getauxval(at_minsigstksz));
  fflush(stdout);
}

static void* in_thread(void* unused) {
  print_new_state("thread");
  return unused;
}

static void show_children(void) {
  pthread_t thread;
  pthread_create(&thread, NULL, in_thread, NULL);
  pthread_join(thread, NULL);
  if (fork() == 0) {
    print_new_state("child");
    _exit(0);
  }
  wait(NULL);
}

static void lengths(const char* self) {
  const unsigned long length = vector_length();
  const unsigned long arguments[] = {
      length,
      length + 16,
      8192,
      length | PR_SVE_VL_INHERIT,
      length | PR_SVE_SET_VL_ONEXEC,
      length | PR_SVE_VL_INHERIT | PR_SVE_SET_VL_ONEXEC,
      8192 | PR_SVE_VL_INHERIT | PR_SVE_SET_VL_ONEXEC,
      8208,
      length + 8,
      0,
      8 | PR_SVE_VL_INHERIT,
      length | 1 << 16,
      length | 1 << 19,
      length | 1UL << 32,
  };
  for (size_t i = 0; i < sizeof arguments / sizeof arguments[0]; ++i) {
    fflush(stdout);
    if (fork() == 0) {
      const int result = prctl(PR_SVE_SET_VL, arguments[i]);
      printf("PR_SVE_SET_VL %lx: %x, error %d, then %x\n", arguments[i], (unsigned)result,
             result < 0 ? errno : 0, (unsigned)prctl(PR_SVE_GET_VL));
      show_children();
      execl(self, "frames", "executed", NULL);
      _exit(1);
    }
    wait(NULL);
  }
}

int main(int argc, char** argv) {
  if (argc > 1) {
    print_new_state("executed");
    return 0;
  }
  setvbuf(stdout, NULL, _IOLBF, 0);
  printf("HWCAP_SVE %d, AT_MINSIGSTKSZ %lu, PR_SVE_GET_VL %x\n",
         (getauxval(AT_HWCAP) & HWCAP_SVE) != 0, getauxval(at_minsigstksz),
         (unsigned)prctl(PR_SVE_GET_VL));
  not_accessible = mmap(NULL, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  const int handled[] = {SIGTRAP, SIGUSR1, SIGSEGV, SIGALRM};
  for (int i = 0; i < 4; ++i) set_handler(handled[i], frame_handler, 0);
  signals();
  edits();
  lengths("/proc/self/exe");
  (void)argv;
  return 0;
}
