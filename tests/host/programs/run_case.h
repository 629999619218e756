#pragma once

#include <stdint.h>

struct machine {
  uint64_t x[30];
  uint64_t nzcv;
  uint64_t fpsr;
  uint64_t q[32][2];
  uint64_t fpcr;
  uint64_t tpidr;
};

// Loads the registers, calls the code, and stores the registers that it leaves. The code must end
// with RET. TPIDR_EL0 is not loaded, but stored like the rest, and then the caller's value is put
// back.
void run_case(const void* code, struct machine* state);
