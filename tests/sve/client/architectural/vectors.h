// All Z and P registers and the FFR, in memory and in a signal frame. The programs that look at the
// whole vector state share this. They work at any vector length.
#pragma once

#include <asm/sigcontext.h>
#include <signal.h>
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <ucontext.h>

enum { max_vector_bytes = 256, z_count = 32, p_count = 16 };

// Z0 to Z31, P0 to P15 and the FFR, one after another, as STR stores them.
struct vectors {
  _Alignas(16) unsigned char bytes[max_vector_bytes * z_count + max_vector_bytes / 8 * 17];
};

// A subroutine of assembly code and its text.
struct test_case {
  const void* code;
  const char* text;
};

// What run_code loads before the code and stores after it.
struct general_registers {
  uint64_t x[8];
  uint64_t nzcv;
};

unsigned long read_vector_length(void);

// In bytes. It is asked for often, and under emulation each RDVL takes its time.
static inline unsigned long vector_length(void) {
  static unsigned long length;
  if (length == 0) length = read_vector_length();
  return length;
}

// Stores the vector state, and changes no register but X9 and X10.
void store_vectors(struct vectors* out);

// Loads the registers, calls the code, and stores the registers that it leaves. The code may change
// all of X0 to X28.
void run_code(const void* code, const struct vectors* in, struct vectors* out,
              struct general_registers* registers);

static inline unsigned char* z_in(struct vectors* v, unsigned n) {
  return v->bytes + n * vector_length();
}
// P16 is the FFR.
static inline unsigned char* p_in(struct vectors* v, unsigned n) {
  return v->bytes + z_count * vector_length() + n * vector_length() / 8;
}

static uint64_t random_state = 1;

static inline uint64_t next_random(void) {
  random_state = random_state * 6364136223846793005u + 1442695040888963407u;
  return random_state >> 33;
}
static inline void fill(void* bytes, size_t count) {
  for (size_t i = 0; i < count; ++i) ((unsigned char*)bytes)[i] = (unsigned char)next_random();
}

// Arbitrary values. The FFR is true up to a point, like every FFR that instructions make.
static inline void fill_vectors(struct vectors* v) {
  fill(v, sizeof *v);
  const size_t bits = next_random() % (vector_length() + 1);
  unsigned char* const ffr = p_in(v, p_count);
  for (size_t i = 0; i < vector_length(); ++i) {
    const unsigned char bit = (unsigned char)(1 << i % 8);
    ffr[i / 8] = (unsigned char)(i < bits ? ffr[i / 8] | bit : ffr[i / 8] & ~bit);
  }
}

static inline uint32_t checksum(const void* bytes, size_t count) {
  uint32_t sum = 2166136261;
  for (size_t i = 0; i < count; ++i) sum = (sum ^ ((const unsigned char*)bytes)[i]) * 16777619;
  return sum;
}

static inline int is_zero(const unsigned char* bytes, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    if (bytes[i] != 0) return 0;
  }
  return 1;
}

// Prints the registers that are not as before.
static inline void print_changes(struct vectors* before, struct vectors* after) {
  const size_t upper = vector_length() - 16;
  for (unsigned n = 0; n < z_count; ++n) {
    const unsigned char *old = z_in(before, n), *new = z_in(after, n);
    if (memcmp(old, new, vector_length()) == 0) continue;
    printf("  z%u ", n);
    for (int i = 15; i >= 0; --i) printf("%02x", new[i]);
    if (is_zero(new + 16, upper)) {
      puts(", the rest is 0");
    } else if (memcmp(old + 16, new + 16, upper) == 0) {
      puts(", the rest is as before");
    } else {
      printf(", the rest has the checksum %08x\n", checksum(new + 16, upper));
    }
  }
  for (unsigned n = 0; n <= p_count; ++n) {
    if (memcmp(p_in(before, n), p_in(after, n), vector_length() / 8) == 0) continue;
    printf(n == p_count ? "  ffr" : "  p%u", n);
    printf(" %08x\n", checksum(p_in(after, n), vector_length() / 8));
  }
}

// --- Signals -----------------------------------------------------------------------------------

static inline void set_handler(int signal, void (*handler)(int, siginfo_t*, void*), int flags) {
  struct sigaction action = {.sa_flags = SA_SIGINFO | flags};
  action.sa_sigaction = handler;
  sigaction(signal, &action, NULL);
}

// --- In a signal frame -------------------------------------------------------------------------

// The record with this magic number, or NULL.
static inline void* record_in(ucontext_t* context, uint32_t magic) {
  unsigned char* at = (unsigned char*)context->uc_mcontext.__reserved;
  for (;;) {
    struct _aarch64_ctx head;
    memcpy(&head, at, sizeof head);
    if (head.magic == magic) return at;
    if (head.magic == 0) return NULL;
    if (head.magic == EXTRA_MAGIC) {
      struct extra_context extra;
      memcpy(&extra, at, sizeof extra);
      at = (unsigned char*)extra.datap;  // NOLINT(performance-no-int-to-ptr)
    } else {
      at += head.size;
    }
  }
}

// The frame has the low 16 bytes of each Z register in its fpsimd_context. NULL if it has no Z, P
// and FFR.
static inline unsigned char* z_registers_in_frame(ucontext_t* context) {
  struct sve_context* const record = record_in(context, SVE_MAGIC);
  if (record == NULL || record->head.size <= sizeof *record) return NULL;
  return (unsigned char*)record + SVE_SIG_REGS_OFFSET;
}

static inline void read_frame(ucontext_t* context, struct vectors* to) {
  const struct fpsimd_context* const low = record_in(context, FPSIMD_MAGIC);
  const unsigned char* const from = z_registers_in_frame(context);
  memset(to, 0, sizeof *to);
  if (from != NULL) memcpy(to, from, z_count * vector_length() + 17 * vector_length() / 8);
  for (unsigned n = 0; n < z_count; ++n) memcpy(z_in(to, n), &low->vregs[n], 16);
}

static inline void write_frame(ucontext_t* context, struct vectors* from) {
  struct fpsimd_context* const low = record_in(context, FPSIMD_MAGIC);
  unsigned char* const to = z_registers_in_frame(context);
  if (to != NULL) memcpy(to, from, z_count * vector_length() + 17 * vector_length() / 8);
  for (unsigned n = 0; n < z_count; ++n) memcpy(&low->vregs[n], z_in(from, n), 16);
}
