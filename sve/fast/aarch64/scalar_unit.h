// The processor's scalar floating-point instructions, applied to one element at a time under the
// application's FPCR. That is still in the register when a fast path runs.
//
// Each is an asm statement, so that exactly the instruction written here runs: the compiler may not
// fold, vectorise, repeat or drop it. Volatile keeps all of them in order and before the read of
// the FPSR. Values are integers throughout, so that the compiler has no floating-point value for
// which it could choose an instruction of its own.
#pragma once

#include <cstdint>

#include "sve/state/cpu_state.h"

namespace sve::fast {

// asm needs a literal text, and the registers of the two formats have different names.
#define UNARY(name, mnemonic)                                   \
  static std::uint32_t name(std::uint32_t a) {                  \
    std::uint32_t result;                                       \
    asm volatile(mnemonic " %s0, %s1" : "=w"(result) : "w"(a)); \
    return result;                                              \
  }                                                             \
  static std::uint64_t name(std::uint64_t a) {                  \
    std::uint64_t result;                                       \
    asm volatile(mnemonic " %d0, %d1" : "=w"(result) : "w"(a)); \
    return result;                                              \
  }
#define BINARY(name, mnemonic)                                               \
  static std::uint32_t name(std::uint32_t a, std::uint32_t b) {              \
    std::uint32_t result;                                                    \
    asm volatile(mnemonic " %s0, %s1, %s2" : "=w"(result) : "w"(a), "w"(b)); \
    return result;                                                           \
  }                                                                          \
  static std::uint64_t name(std::uint64_t a, std::uint64_t b) {              \
    std::uint64_t result;                                                    \
    asm volatile(mnemonic " %d0, %d1, %d2" : "=w"(result) : "w"(a), "w"(b)); \
    return result;                                                           \
  }
// The condition is evaluated on the flags of the comparison. Of the conditions used here, only `ne`
// and `vs` hold for unordered operands.
#define COMPARE(name, mnemonic, condition)                    \
  static bool name(std::uint32_t a, std::uint32_t b) {        \
    bool holds;                                               \
    asm volatile(mnemonic " %s1, %s2\n\tcset %w0, " condition \
                 : "=r"(holds)                                \
                 : "w"(a), "w"(b)                             \
                 : "cc");                                     \
    return holds;                                             \
  }                                                           \
  static bool name(std::uint64_t a, std::uint64_t b) {        \
    bool holds;                                               \
    asm volatile(mnemonic " %d1, %d2\n\tcset %w0, " condition \
                 : "=r"(holds)                                \
                 : "w"(a), "w"(b)                             \
                 : "cc");                                     \
    return holds;                                             \
  }
#define CONVERT(name, To, From, mnemonic, operands)              \
  static To name(From a) {                                       \
    To result;                                                   \
    asm volatile(mnemonic " " operands : "=w"(result) : "r"(a)); \
    return result;                                               \
  }

struct scalar_unit {
  explicit scalar_unit(cpu_state* /*state*/) {}

  BINARY(add, "fadd")
  BINARY(subtract, "fsub")
  BINARY(multiply, "fmul")
  BINARY(divide, "fdiv")
  BINARY(max, "fmax")
  BINARY(max_number, "fmaxnm")
  BINARY(min_number, "fminnm")
  BINARY(reciprocal_step, "frecps")
  UNARY(reciprocal_estimate, "frecpe")
  UNARY(negate, "fneg")
  UNARY(square_root, "fsqrt")
  UNARY(round_ties_away, "frinta")

  COMPARE(equal, "fcmp", "eq")
  COMPARE(not_equal, "fcmp", "ne")
  COMPARE(unordered, "fcmp", "vs")
  COMPARE(greater_or_equal, "fcmpe", "ge")
  COMPARE(greater, "fcmpe", "gt")

  CONVERT(to_single, std::uint32_t, std::int32_t, "scvtf", "%s0, %w1")
  CONVERT(to_single, std::uint32_t, std::uint32_t, "ucvtf", "%s0, %w1")
  CONVERT(to_single, std::uint32_t, std::int64_t, "scvtf", "%s0, %x1")
  CONVERT(to_double, std::uint64_t, std::int32_t, "scvtf", "%d0, %w1")
  CONVERT(to_double, std::uint64_t, std::uint32_t, "ucvtf", "%d0, %w1")
  CONVERT(to_double, std::uint64_t, std::int64_t, "scvtf", "%d0, %x1")
  CONVERT(to_double, std::uint64_t, std::uint64_t, "ucvtf", "%d0, %x1")

  // -addend - a x b, rounded once.
  static std::uint32_t negated_multiply_add(std::uint32_t addend, std::uint32_t a,
                                            std::uint32_t b) {
    std::uint32_t result;
    asm volatile("fnmadd %s0, %s1, %s2, %s3" : "=w"(result) : "w"(a), "w"(b), "w"(addend));
    return result;
  }
  static std::uint64_t negated_multiply_add(std::uint64_t addend, std::uint64_t a,
                                            std::uint64_t b) {
    std::uint64_t result;
    asm volatile("fnmadd %d0, %d1, %d2, %d3" : "=w"(result) : "w"(a), "w"(b), "w"(addend));
    return result;
  }
};

#undef UNARY
#undef BINARY
#undef COMPARE
#undef CONVERT

// The FPSR after a fast path: the processor's. Its flags have accumulated on top of the
// application's.
inline std::uint32_t fpsr_after(const cpu_state& /*state*/) {
  std::uint64_t fpsr;
  asm volatile("mrs %0, fpsr" : "=r"(fpsr));
  return static_cast<std::uint32_t>(fpsr);
}

}  // namespace sve::fast
