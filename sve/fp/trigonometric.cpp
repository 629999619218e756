// The trigonometric helpers: one term of a polynomial, and the square with a sign.
#include <array>

#include "sve/fp/fp.h"
#include "sve/fp/multiply.h"
#include "sve/fp/multiply_add.h"
#include "sve/fp/nan.h"

using namespace sve;

namespace {

// The architecture's coefficients, with the highest power last: 8 of a sine's polynomial, then 8 of
// a cosine's.
template <class T>
constexpr std::array<T, 16> coeff = {};

template <>
constexpr std::array<unsigned short, 16> coeff<unsigned short> = {
    0x3c00, 0xb155, 0x2030, 0, 0, 0, 0, 0,  //
    0x3c00, 0xb800, 0x293a, 0, 0, 0, 0, 0};

template <>
constexpr std::array<unsigned int, 16> coeff<unsigned int> = {
    0x3f800000, 0xbe2aaaab, 0x3c088886, 0xb95008b9, 0x36369d6d, 0, 0, 0,
    0x3f800000, 0xbf000000, 0x3d2aaaa6, 0xbab60705, 0x37cd37cc, 0, 0, 0};

template <>
constexpr std::array<unsigned long, 16> coeff<unsigned long> = {
    0x3ff0000000000000, 0xbfc5555555555543, 0x3f8111111110f30c, 0xbf2a01a019b92fc6,
    0x3ec71de351f3d22b, 0xbe5ae5e2b60f7b91, 0x3de5d8408868552f, 0,
    0x3ff0000000000000, 0xbfe0000000000000, 0x3fa5555555555536, 0xbf56c16c16c13a0b,
    0x3efa01a019b1e8d8, 0xbe927e4f7282f468, 0x3e21ee96d2641b13, 0xbda8f76380fbb401};

// The operand is not a normal number.
template <class T>
[[gnu::cold, gnu::noinline]] T square_unusual(T op, int mode, FPSCR& fpscr) {
  op = fp_flush(op, mode, fpscr);
  if (fp_is_nan(op)) return fp_process_nan(op, mode, fpscr);
  if (fp_is_infinity(op) || fp_is_zero(op)) return fp_magnitude(op);
  const auto a = fp_unpack_normalised(op);
  return fp_product(a, a, 0, mode, fpscr);
}

// The square, rounded as a positive number.
template <class T>
T square(T op, int mode, FPSCR& fpscr) {
  if (!fp_is_normal(op)) [[unlikely]]
    return square_unusual(op, mode, fpscr);
  const auto a = fp_unpack_normal(op);
  return fp_product(a, a, 0, mode, fpscr);
}

}  // namespace

template <class T>
T FPTRIMADD(unsigned long x, T op1, T op2, FPSCR& fpscr) {
  const T addend = coeff<T>[x + (fp_is_negative(op2) ? 8 : 0)];
  return fp_multiply_add<T>(addend, op1, fp_magnitude(op2), 0, fp_mode_word(fpscr), fpscr);
}

template <class T>
T FPTRISMUL(T op1, T op2, FPSCR& fpscr) {
  const T result = square(op1, fp_mode_word(fpscr), fpscr);
  return fp_is_nan(result) ? result : result | fp_sign_bit<T>(op2 & 1);
}

template unsigned short FPTRIMADD(unsigned long, unsigned short, unsigned short, FPSCR&);
template unsigned int FPTRIMADD(unsigned long, unsigned int, unsigned int, FPSCR&);
template unsigned long FPTRIMADD(unsigned long, unsigned long, unsigned long, FPSCR&);
template unsigned short FPTRISMUL(unsigned short, unsigned short, FPSCR&);
template unsigned int FPTRISMUL(unsigned int, unsigned int, FPSCR&);
template unsigned long FPTRISMUL(unsigned long, unsigned long, FPSCR&);
