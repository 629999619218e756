// Shared by the tests of the reference functions: contexts of any length, and their flags.
#pragma once

#include <gtest/gtest.h>
#include <string>

#include "sve/semantics/semantics.h"
#include "sve/state/cpu_state.h"
#include "sve/state/integers.h"

using namespace sve::integers;

inline CpuContext context(unsigned vl) {
  CpuContext ctx{};
  ctx.vl = vl;
  return ctx;
}

// The flags as text, such as "nZCv": a capital means that the flag is set.
inline std::string flags(const CpuContext& ctx) {
  std::string result = "nzcv";
  for (unsigned i = 0; i < 4; ++i) {
    if ((ctx.nzcv & sve::flag_n >> i) != 0) result[i] = "NZCV"[i];
  }
  return result;
}
