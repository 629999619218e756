// Exact floating point in integer arithmetic: the architecture's half, single and double formats.
//
// A value is an unsigned integer that holds the format's bits: unsigned short, unsigned int and
// unsigned long, the carriers. Results are therefore the same whatever the processor's own FPCR
// says, and whether or not it has half precision.
//
// Names, results and flags are those of the functions of the architecture's pseudocode. In common:
// - Every bit pattern of every operand has a defined result; nothing fails or traps.
// - Controls are read from the FPSCR: RMode where no FPRounding is passed, FZ for single and double
//   precision, FZ16 for half, DN. Flags are ORed into it and never cleared.
// - A denormal operand under the flush control counts as the zero of its sign. Single and double
//   raise IDC then, half raises nothing.
// - A NaN operand gives that NaN, quieted, or the default NaN under DN; a signalling one raises IOC
//   as well. Of several the first signalling one is taken, else the first.
// - A rounded result raises IXC if inexact, OFC and IXC if it overflows, UFC if it is denormal
//   before rounding and inexact. Under the flush control a result that is denormal before rounding
//   is the zero of its sign and raises UFC alone.
//
// The templates exist for the carriers that stand above each group. All of these functions are
// exported and stand at global scope, with FPSCR and FPRounding; what they share among themselves
// stands in namespace sve.
#pragma once

#include "sve/fp/fpscr.h"

// --- Rounding cores ------------------------------------------------------------------------------

// FPRound, on a significand that is already normalised. sgn is 0 or 1. exp is the biased exponent
// of the result before rounding; it may be negative or exceed the format. mnt holds the bits below
// the leading one from its top bit down, whatever was cut off ORed into bit 0. rm is the rounding
// mode; mode gives the flush control only, and AHP to fp16_round_. Flags are ORed into *flags.
// Under AHP, fp16_round_ gives 0x7fff and IOC alone for what is too large. FPRounding_ODD is
// understood by fp16_round_ and fp32_round_, and is towards zero in fp64_round_, as
// FPRounding_TIEAWAY is in all.
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
// FPMulX: the same, but infinity times zero is 2.0 with the product's sign, and no flag.
template <class T>
T FPMul(T op1, T op2, FPSCR& fpscr);
template <class T>
T FPMulX(T op1, T op2, FPSCR& fpscr);

// FPDiv: op1 / op2. 0/0 and infinity/infinity: default NaN, IOC. A finite number other than zero by
// zero: infinity, DZC. Infinity by zero: infinity, no flag.
template <class T>
T FPDiv(T op1, T op2, FPSCR& fpscr);

// FPSqrt. Zeros give themselves; other negative operands the default NaN, IOC.
template <class T>
T FPSqrt(T op, FPSCR& fpscr);

// FPNeg flips the sign bit, of NaNs too; no flag.
template <class T>
T FPNeg(T op);

// FPAbs clears the sign bit, of NaNs too; no flag. unsigned int and unsigned long only.
template <class T>
T FPAbs(T op);

// --- Fused multiply-add: unsigned short, unsigned int, unsigned long -----------------------------

// FPMulAdd: addend + op1 x op2, rounded once. Infinity times zero: default NaN, IOC, also with a
// quiet NaN for addend. An exact zero: as FPAdd.
template <class T>
T FPMulAdd(T addend, T op1, T op2, FPSCR& fpscr);

// (a + b x c) x 2^scale, rounded once, for a scale of 0 or below, under a mode word; flags are ORed
// into *flags.
unsigned short fp16_muladd(unsigned short a, unsigned short b, unsigned short c, int scale,
                           int mode, int* flags);
unsigned int fp32_muladd(unsigned int a, unsigned int b, unsigned int c, int scale, int mode,
                         int* flags);
unsigned long fp64_muladd(unsigned long a, unsigned long b, unsigned long c, int scale, int mode,
                          int* flags);

// FPRecipStepFused: 2 - op1 x op2; infinity times zero is 0 in it: 2.0, no flag.
// FPRSqrtStepFused: (3 - op1 x op2) / 2, rounded once; infinity times zero: 1.5, no flag.
// A NaN op1 comes back with its sign flipped.
template <class T>
T FPRecipStepFused(T op1, T op2, FPSCR& fpscr);
template <class T>
T FPRSqrtStepFused(T op1, T op2, FPSCR& fpscr);

// --- Compare, min and max ------------------------------------------------------------------------

// FPCompareEQ, GE, GT; FPCompareUN is "unordered". All carriers. Of NaNs EQ and UN raise IOC for
// signalling ones only, GE and GT for any.
template <class T>
bool FPCompareEQ(T op1, T op2, FPSCR& fpscr);
template <class T>
bool FPCompareGE(T op1, T op2, FPSCR& fpscr);
template <class T>
bool FPCompareGT(T op1, T op2, FPSCR& fpscr);
template <class T>
bool FPCompareUN(T op1, T op2, FPSCR& fpscr);

// FPCompare: NZCV in bits 3 to 0: 3 unordered, 6 equal, 2 greater, 8 less. A quiet NaN raises IOC
// if signal_nans. unsigned int and unsigned long only.
template <class T>
int FPCompare(T op1, T op2, bool signal_nans, FPSCR& fpscr);

// FPMax, FPMin, with +0 above -0. FPMaxNum, FPMinNum: the number, if one operand is a quiet NaN. A
// flushed denormal that is chosen comes back as a zero. All carriers.
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
// half result. Under AHP a half has neither infinities nor NaNs: to half, an infinity gives 0x7fff,
// a NaN the zero of its sign, both with IOC.
template <class F, class T>
T FPConvert(F op, FPRounding rounding, FPSCR& fpscr);

// FPToFixed: op x 2^fbits, rounded to an integer of T's width, unsigned if u. What doesn't fit
// saturates and raises IOC alone; a NaN gives 0 and IOC. fbits is 0 to 64. (F, T) as (unsigned
// short, all), (unsigned int, unsigned int), (unsigned int, unsigned long), (unsigned long,
// unsigned int), (unsigned long, unsigned long).
template <class F, class T>
T fplibFPToFixed(F op, int fbits, bool u, FPRounding rounding, FPSCR& fpscr);

// The same of a double in parts: exp biased and at most 1086, mnt with its implicit bit. *flags is
// set, not ORed into, to IOC or IXC if either is raised.
unsigned long FPToFixed_64(int sgn, int exp, unsigned long mnt, bool u, FPRounding rounding,
                           int* flags);

// FixedToFP: op x 2^-fbits for op of 64 bits, unsigned if u, fbits 0 to 64; zero gives +0. Of
// rounding the low two bits count. FZ16 doesn't flush a half result. All carriers.
template <class T>
T fplibFixedToFP(unsigned long op, int fbits, bool u, FPRounding rounding, FPSCR& fpscr);

// FPRoundInt: op rounded to an integral value, its sign kept, of zeros too. Raises IXC for an
// inexact result only if exact. All carriers.
template <class T>
T FPRoundInt(T op, FPRounding rounding, bool exact, FPSCR& fpscr);

// --- Estimates and special functions: unsigned short, unsigned int, unsigned long ----------------

// FPRecipEstimate: 1 / op to 8 bits; never IXC for a result in range. Zero: infinity, DZC. Too
// small for a finite reciprocal: OFC, IXC, and infinity or the largest number by RMode. A denormal
// result under the flush control: zero, UFC. FPRSqrtEstimate: 1 / sqrt(op) to 8 bits. Zero:
// infinity of its sign, DZC. Below zero: default NaN, IOC.
template <class T>
T FPRecipEstimate(T op, FPSCR& fpscr);
template <class T>
T FPRSqrtEstimate(T op, FPSCR& fpscr);

// FPRecpX: sign kept, exponent complemented, fraction 0. Zeros and denormals: the largest exponent.
template <class T>
T FPRecpX(T op, FPSCR& fpscr);

// FPScale: op x 2^scale, rounded.
unsigned short FPScale16(unsigned short op, short scale, FPSCR& fpscr);
unsigned int FPScale32(unsigned int op, int scale, FPSCR& fpscr);
unsigned long FPScale64(unsigned long op, long scale, FPSCR& fpscr);

// FPScale by 0: NaNs quieted, denormals flushed under the control, all else unchanged.
unsigned short FPProcess16(unsigned short op, FPSCR& fpscr);
unsigned int FPProcess32(unsigned int op, FPSCR& fpscr);
unsigned long FPProcess64(unsigned long op, FPSCR& fpscr);

// FPExpA: the low 5 bits of a half, 6 of the others, select 2^(i/32) or 2^(i/64), the bits above
// are its exponent field. No flags.
template <class T>
T FPEXPA(T op);

// FPTrigMAdd: the coefficient x (0 to 7), of the cosine if op2 is negative, + op1 x |op2|, fused.
template <class T>
T FPTRIMADD(unsigned long x, T op1, T op2, FPSCR& fpscr);

// FPTrigSMul: op1 squared, rounded as positive, then the sign of bit 0 of op2 unless it is a NaN.
// op2 is no floating-point number here.
template <class T>
T FPTRISMUL(T op1, T op2, FPSCR& fpscr);
