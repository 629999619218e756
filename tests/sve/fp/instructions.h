// Instructions of the processor as lambdas from operands to the answer. They clear FPSR before the
// instruction and read it after. The assembler needs its text as one literal, so these are macros:
// they put the mnemonic and the letter of the format ("h", "s", "d") into it, and do nothing else.
#pragma once

#include "tests/sve/fp/operations.h"

// clang-format off
// %0 is the result, %2 to %4 are the operands, and %h2 is the first operand as a half. %1 and
// registers 30 and 31 are free. A scalar instruction sets the higher elements of an SVE register
// to 0.
#define INSTRUCTION(text)                                                                        \
  [](const operands& in) {                                                                       \
    answer out;                                                                                  \
    asm volatile("msr fpsr, xzr\n\t" text "\n\tmrs %1, fpsr"                                     \
                 : "=&w"(out.value), "=&r"(out.flags)                                            \
                 : "w"(in[0]), "w"(in[1]), "w"(in[2])                                            \
                 : "cc", "v30", "v31", "p0");                                                    \
    return out;                                                                                  \
  }

// The instruction for the format T, made from TEXT(letter, ...).
#define FORMS(TEXT, ...)                                                                         \
  []<class T>(const operands& in) {                                                              \
    if constexpr (sizeof(T) == 2) return INSTRUCTION(TEXT("h", __VA_ARGS__))(in);                \
    else if constexpr (sizeof(T) == 4) return INSTRUCTION(TEXT("s", __VA_ARGS__))(in);           \
    else return INSTRUCTION(TEXT("d", __VA_ARGS__))(in);                                         \
  }

#define ONE(f, mnemonic) mnemonic " %" f "0, %" f "2"
#define TWO(f, mnemonic) mnemonic " %" f "0, %" f "2, %" f "3"
#define THREE(f, mnemonic) mnemonic " %" f "0, %" f "2, %" f "3, %" f "4"
#define IF(f, mnemonic, condition)                                                               \
  mnemonic " %" f "2, %" f "3\n\tcset %x1, " condition "\n\tfmov %d0, %x1"
#define NZCV(f, mnemonic)                                                                        \
  mnemonic " %" f "2, %" f "3\n\tmrs %x1, nzcv\n\tlsr %x1, %x1, #28\n\tfmov %d0, %x1"

// Conversions to and from integers in H, W and X; fbits is ", #1" and the like, or "".
#define TO_H(f, mnemonic, fbits) mnemonic " %h0, %" f "2" fbits
#define TO_W(f, mnemonic, fbits) mnemonic " %w1, %" f "2" fbits "\n\tfmov %d0, %x1"
#define TO_X(f, mnemonic, fbits) mnemonic " %x1, %" f "2" fbits "\n\tfmov %d0, %x1"
#define FROM_W(f, mnemonic, fbits) "fmov %x1, %d2\n\t" mnemonic " %" f "0, %w1" fbits
#define FROM_X(f, mnemonic, fbits) "fmov %x1, %d2\n\t" mnemonic " %" f "0, %x1" fbits
#define TO(...) FORMS(TO_H, __VA_ARGS__), FORMS(TO_W, __VA_ARGS__), FORMS(TO_X, __VA_ARGS__)
#define FROM(...) FORMS(FROM_W, __VA_ARGS__), FORMS(FROM_X, __VA_ARGS__)

#define SVE(text) "fmov d30, %d2\n\tfmov d31, %d3\n\t" text "\n\tfmov %d0, d30"
#define SVE_ONE(f, mnemonic) SVE(mnemonic " z30." f ", z30." f)
#define SVE_TWO(f, mnemonic) SVE(mnemonic " z30." f ", z30." f ", z31." f)
#define SVE_MERGING(f, mnemonic)                                                                 \
  SVE("ptrue p0." f ", vl1\n\t" mnemonic " z30." f ", p0/m, z30." f ", z31." f)
#define FTMAD(f, index) SVE("ftmad z30." f ", z30." f ", z31." f ", #" index)
// clang-format on
