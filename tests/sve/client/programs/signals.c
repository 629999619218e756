// The vector state across signals: a handler that uses all of it, and handlers that it is
// interrupted by, leave that of the interrupted code as it was when they return. One that jumps out
// leaves its own: nobody brings back what was before, as with any register.
#include <arm_sve.h>
#include <setjmp.h>
#include <signal.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>
#include <sys/time.h>

enum { max_bytes = 256 * 32 + 32 * 17 };

struct image {
  unsigned char bytes[max_bytes];
};

void hold_vectors(const struct image* in, struct image* out, const volatile int* go_on);

static const volatile int at_once = 0;
static volatile int waiting, handled;
static volatile sig_atomic_t depth;
static sigjmp_buf before;

// The FFR is always a row of ones and a row of zeros, as loads leave it.
static void fill(struct image* image, unsigned seed) {
  const size_t z_bytes = 32 * svcntb(), p_bytes = svcntb() / 8;
  for (size_t i = 0; i < z_bytes + 17 * p_bytes; ++i) {
    seed = seed * 1664525 + 1013904223;
    image->bytes[i] = (unsigned char)(seed >> 24);
  }
  unsigned char* const ffr = image->bytes + z_bytes + 16 * p_bytes;
  memset(ffr, 0, p_bytes);
  memset(ffr, 0xff, seed % p_bytes);
}

static size_t state_bytes(void) { return 32 * svcntb() + 17 * (svcntb() / 8); }

static void use_vectors(int signal) {
  struct image in, out;
  fill(&in, (unsigned)signal * 77 + (unsigned)handled);
  if (++depth < 3) raise(SIGUSR1);
  hold_vectors(&in, &out, &at_once);
  if (memcmp(in.bytes, out.bytes, state_bytes()) != 0) puts("changed within the handler");
  --depth;
  if (++handled >= 120) waiting = 0;
}

static void return_to_interrupted(void) {
  struct sigaction action = {.sa_handler = use_vectors};
  sigaction(SIGALRM, &action, NULL);
  action.sa_flags = SA_NODEFER;
  sigaction(SIGUSR1, &action, NULL);
  const struct itimerval often = {{.tv_usec = 2000}, {.tv_usec = 2000}};
  setitimer(ITIMER_REAL, &often, NULL);
  struct image in, out;
  fill(&in, 1);
  waiting = 1;
  hold_vectors(&in, &out, &waiting);
  setitimer(ITIMER_REAL, &(struct itimerval){{0, 0}, {0, 0}}, NULL);
  printf("120 handlers: %s\n",
         memcmp(in.bytes, out.bytes, state_bytes()) == 0 ? "unchanged" : "changed");
}

static void jump_out(int signal) {
  (void)signal;
  struct image in, out;
  fill(&in, 9);
  hold_vectors(&in, &out, &at_once);
  siglongjmp(before, 1);
}

// Far more than are kept at a time, of which none is ever asked for.
static void leave_by_jumps(void) {
  struct sigaction action = {.sa_handler = jump_out};
  sigaction(SIGUSR1, &action, NULL);
  volatile int jumps = 0;
  while (jumps < 1000) {
    if (sigsetjmp(before, 1) == 0) {
      raise(SIGUSR1);
    } else {
      jumps = jumps + 1;
    }
  }
  struct image in, out;
  fill(&in, 2);
  hold_vectors(&in, &out, &at_once);
  printf("%d jumps: %s\n", jumps,
         memcmp(in.bytes, out.bytes, state_bytes()) == 0 ? "vectors work" : "vectors changed");
}

int main(void) {
  return_to_interrupted();
  leave_by_jumps();
  return 0;
}
