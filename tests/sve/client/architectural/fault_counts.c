// Executes 20 SVE instructions, of which 10 fault once. Each of these counts once: when it has run.
// A handler makes their page accessible.
#define _GNU_SOURCE
#include <signal.h>
#include <stddef.h>
#include <sys/mman.h>

__asm__(".arch_extension sve");

enum { page_bytes = 4096 };
static void* page;

static void make_accessible(int signal) {
  (void)signal;
  mprotect(page, page_bytes, PROT_READ | PROT_WRITE);
}

int main(void) {
  page = mmap(NULL, page_bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  const struct sigaction action = {.sa_handler = make_accessible};
  sigaction(SIGSEGV, &action, NULL);
  for (int i = 0; i < 10; ++i) {
    mprotect(page, page_bytes, PROT_NONE);
    __asm__ volatile("ptrue p0.b; ld1b {z0.b}, p0/z, [%0]" : : "r"(page) : "v0", "memory");
  }
  return 0;
}
