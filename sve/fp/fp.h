// Exact floating point in integer arithmetic: the architecture's half, single and double formats.
//
// A value is an unsigned integer that holds the format's bits, called its carrier: unsigned short,
// unsigned int or unsigned long. The results therefore do not depend on the processor's own FPCR,
// or on whether it has half precision.
//
// Names, results and flags are those of the functions of the architecture's pseudocode. All of them
// have this in common:
// - Every bit pattern of every operand has a defined result. Nothing fails or traps.
// - Controls are read from the FPSCR: RMode if no FPRounding is passed, FZ for single and double
//   precision, FZ16 for half, DN. Flags are ORed into it and never cleared.
// - A denormal operand under the flush control counts as the zero of its sign. This raises IDC in
//   single and double precision, and nothing in half.
// - A NaN operand gives that NaN, quieted, or the default NaN under DN. A signalling one also
//   raises IOC. If there are several, the first signalling one is taken, else the first.
// - A rounded result raises IXC if it is inexact, OFC and IXC if it overflows, and UFC if it is
//   denormal before rounding and inexact. Under the flush control, a result that is denormal before
//   rounding is the zero of its sign and raises only UFC.
//
// Each template exists for the carriers named above its group. All of these functions are exported
// and at global scope, with FPSCR and FPRounding. What they share is in namespace sve.
#pragma once

#include "sve/fp/fpscr.h"

// --- Rounding cores ------------------------------------------------------------------------------

// FPRound, on a significand that is already normalised. sgn is 0 or 1. exp is the biased exponent
// of the result before rounding. It may be negative or exceed the format. mnt holds the bits below
// the leading one, from its top bit down. Bits that were cut off are ORed into bit 0. rm is the
// rounding mode. Of mode, only the flush control is used, and fp16_round_ also uses AHP. Flags are
// ORed into *flags. Under AHP, fp16_round_ gives 0x7fff with the sign, and only IOC, for a value
// that is too large. fp16_round_ and fp32_round_ support FPRounding_ODD. In fp64_round_ it rounds
// towards zero, and so does FPRounding_TIEAWAY in all three.
unsigned short fp16_round_(int sgn, int exp, unsigned short mnt, int rm, int mode, int* flags);
unsigned int fp32_round_(int sgn, int exp, unsigned int mnt, int rm, int mode, int* flags);
unsigned long fp64_round_(int sgn, int exp, unsigned long mnt, int rm, int mode, int* flags);

// The 128-bit product of two values below 2^62.
constexpr unsigned __int128 fp_mul_62x62(unsigned long a, unsigned long b) {
  return static_cast<unsigned __int128>(a) * b;
}

// --- Arithmetic: unsigned short, unsigned int, unsigned long -------------------------------------

// FPAdd, FPSub: op1 + op2, op1 - op2. Infinities that cancel: default NaN, IOC. An exact zero from
// operands of different effective sign is +0, and -0 when rounding towards minus infinity. FPSub
// returns a NaN op2 with the sign as given.
template <class T>
T FPAdd(T op1, T op2, FPSCR& fpscr);
template <class T>
T FPSub(T op1, T op2, FPSCR& fpscr);

// FPMul: op1 x op2. Infinity times zero: default NaN, IOC.
// FPMulX: the same, but infinity times zero is 2.0 with the product's sign, and raises no flag.
template <class T>
T FPMul(T op1, T op2, FPSCR& fpscr);
template <class T>
T FPMulX(T op1, T op2, FPSCR& fpscr);

// FPDiv: op1 / op2. 0/0 and infinity/infinity: default NaN, IOC. A finite number other than zero,
// divided by zero: infinity, DZC. Infinity by zero: infinity, no flag.
template <class T>
T FPDiv(T op1, T op2, FPSCR& fpscr);

// FPSqrt. A zero gives itself. Any other negative operand gives the default NaN, IOC.
template <class T>
T FPSqrt(T op, FPSCR& fpscr);

// FPNeg flips the sign bit, also of NaNs. No flag.
template <class T>
T FPNeg(T op);

// FPAbs clears the sign bit, also of NaNs. No flag. Only for unsigned int and unsigned long.
template <class T>
T FPAbs(T op);

// --- Fused multiply-add: unsigned short, unsigned int, unsigned long -----------------------------

// FPMulAdd: addend + op1 x op2, rounded once. Infinity times zero: default NaN, IOC, even if the
// addend is a quiet NaN. An exact zero: as for FPAdd.
template <class T>
T FPMulAdd(T addend, T op1, T op2, FPSCR& fpscr);

// (a + b x c) x 2^scale, rounded once, for a scale of 0 or below, under a mode word. Flags are ORed
// into *flags.
unsigned short fp16_muladd(unsigned short a, unsigned short b, unsigned short c, int scale,
                           int mode, int* flags);
unsigned int fp32_muladd(unsigned int a, unsigned int b, unsigned int c, int scale, int mode,
                         int* flags);
unsigned long fp64_muladd(unsigned long a, unsigned long b, unsigned long c, int scale, int mode,
                          int* flags);

// FPRecipStepFused: 2 - op1 x op2. Infinity times zero counts as 0, so that the result is 2.0, no
// flag.
// FPRSqrtStepFused: (3 - op1 x op2) / 2, rounded once. Infinity times zero: 1.5, no flag.
// A NaN op1 comes back with its sign flipped.
template <class T>
T FPRecipStepFused(T op1, T op2, FPSCR& fpscr);
template <class T>
T FPRSqrtStepFused(T op1, T op2, FPSCR& fpscr);

// --- Compare, min and max ------------------------------------------------------------------------

// FPCompareEQ, GE, GT; FPCompareUN is "unordered". All carriers. EQ and UN raise IOC only for
// signalling NaNs, GE and GT for any NaN.
template <class T>
bool FPCompareEQ(T op1, T op2, FPSCR& fpscr);
template <class T>
bool FPCompareGE(T op1, T op2, FPSCR& fpscr);
template <class T>
bool FPCompareGT(T op1, T op2, FPSCR& fpscr);
template <class T>
bool FPCompareUN(T op1, T op2, FPSCR& fpscr);

// FPCompare: NZCV in bits 3 to 0: 3 unordered, 6 equal, 2 greater, 8 less. A quiet NaN raises IOC
// if signal_nans is true. Only for unsigned int and unsigned long.
template <class T>
int FPCompare(T op1, T op2, bool signal_nans, FPSCR& fpscr);

// FPMax, FPMin, with +0 above -0. FPMaxNum, FPMinNum: the number, if one operand is a quiet NaN. If
// a flushed denormal is selected, it comes back as a zero. All carriers.
template <class T>
T FPMax(T op1, T op2, FPSCR& fpscr);
template <class T>
T FPMin(T op1, T op2, FPSCR& fpscr);
template <class T>
T FPMaxNum(T op1, T op2, FPSCR& fpscr);
template <class T>
T FPMinNum(T op1, T op2, FPSCR& fpscr);

// --- Conversions ---------------------------------------------------------------------------------

// FPConvert, from carrier F to another carrier T: all six pairs. Widening is exact and ignores
// rounding. A NaN keeps its sign and the top of its fraction. FZ16 flushes a half operand, but no
// half result. Under AHP a half has neither infinities nor NaNs. To half, an infinity then gives
// 0x7fff with its sign, and a NaN the zero of its sign, both with IOC.
// a NaN the zero of its sign, both with IOC.
template <class F, class T>
T FPConvert(F op, FPRounding rounding, FPSCR& fpscr);

// FPToFixed: op x 2^fbits, rounded to an integer of T's width, unsigned if u is true. A value that
// does not fit saturates and raises only IOC. A NaN gives 0 and IOC. fbits is 0 to 64. The pairs
// (F, T) are (unsigned short, all), (unsigned int, unsigned int), (unsigned int, unsigned long),
// (unsigned long, unsigned int), (unsigned long, unsigned long).
template <class F, class T>
T fplibFPToFixed(F op, int fbits, bool u, FPRounding rounding, FPSCR& fpscr);

// The same for a double in parts: exp is biased and at most 1086, mnt has its implicit bit. *flags
// is set, not ORed into, to IOC or IXC if either is raised.
unsigned long FPToFixed_64(int sgn, int exp, unsigned long mnt, bool u, FPRounding rounding,
                           int* flags);

// FixedToFP: op x 2^-fbits for a 64-bit op, unsigned if u is true, with fbits from 0 to 64. Zero
// gives +0. Only the low two bits of rounding are used. FZ16 does not flush a half result. All
// carriers.
template <class T>
T fplibFixedToFP(unsigned long op, int fbits, bool u, FPRounding rounding, FPSCR& fpscr);

// FPRoundInt: op rounded to an integral value. It keeps its sign, also if it is or becomes zero. An
// inexact result raises IXC only if exact is true. All carriers.
template <class T>
T FPRoundInt(T op, FPRounding rounding, bool exact, FPSCR& fpscr);

// --- Estimates and special functions: unsigned short, unsigned int, unsigned long ----------------

// FPRecipEstimate: 1 / op to 8 bits. A result in range never raises IXC. Zero: infinity, DZC. An
// operand too small for a finite reciprocal: OFC, IXC, and infinity or the largest number by RMode.
// A denormal result under the flush control: zero, UFC.
// FPRSqrtEstimate: 1 / sqrt(op) to 8 bits. Zero: infinity of its sign, DZC. Below zero: default
// NaN, IOC.
template <class T>
T FPRecipEstimate(T op, FPSCR& fpscr);
template <class T>
T FPRSqrtEstimate(T op, FPSCR& fpscr);

// FPRecpX: keeps the sign, complements the exponent, and makes the fraction 0. Zeros and denormals:
// the largest exponent.
template <class T>
T FPRecpX(T op, FPSCR& fpscr);

// FPScale: op x 2^scale, rounded.
unsigned short FPScale16(unsigned short op, short scale, FPSCR& fpscr);
unsigned int FPScale32(unsigned int op, int scale, FPSCR& fpscr);
unsigned long FPScale64(unsigned long op, long scale, FPSCR& fpscr);

// FPScale by 0: quiets NaNs, flushes denormals if the control is set, and changes nothing else.
unsigned short FPProcess16(unsigned short op, FPSCR& fpscr);
unsigned int FPProcess32(unsigned int op, FPSCR& fpscr);
unsigned long FPProcess64(unsigned long op, FPSCR& fpscr);

// FPExpA: the low 5 bits of a half, or 6 of the others, select 2^(i/32) or 2^(i/64). The bits above
// them are its exponent field. No flags.
template <class T>
T FPEXPA(T op);

// FPTrigMAdd: coefficient x (0 to 7) + op1 x |op2|, fused. The coefficient is the cosine's if op2
// is negative, else the sine's.
template <class T>
T FPTRIMADD(unsigned long x, T op1, T op2, FPSCR& fpscr);

// FPTrigSMul: op1 squared, rounded as positive. Then the sign is set from bit 0 of op2, unless the
// result is a NaN. op2 is not a floating-point number here.
template <class T>
T FPTRISMUL(T op1, T op2, FPSCR& fpscr);
