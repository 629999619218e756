// Conversions between the formats. FZ16 never flushes a half-precision result of a conversion.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

using namespace sve;

namespace {

template <class T>
constexpr bool is_half = format<T>::N == 16;

// The mode word of a conversion. It includes the control for the alternative half-precision format.
int convert_mode(FPSCR fpscr) {
  return fp_mode_word(fpscr) | ((fpscr.word & FPSCR::AHP) != 0 ? fp_mode::AHP : 0);
}

// The fraction of F, moved to the top of the fraction of T.
template <class F, class T>
T convert_fraction(F op) {
  constexpr int up = format<T>::M - format<F>::M;
  const auto fraction = op & format<F>::fraction_mask;
  if constexpr (up > 0) {
    return static_cast<T>(fraction) << up;
  } else {
    return fraction >> -up;
  }
}

// Converts a number whose mantissa has the implicit bit. Widening is exact.
template <class F, class T>
T convert_number(const unpacked<F>& a, int rm, int mode, FPSCR& fpscr) {
  const int exp = a.exp + (format<T>::bias - format<F>::bias);
  if constexpr (sizeof(F) < sizeof(T)) {
    return fp_sign_bit<T>(a.sgn) | (static_cast<T>(exp) << format<T>::M) |
           convert_fraction<F, T>(static_cast<F>(a.mnt));
  } else {
    constexpr int cut = format<F>::M - format<T>::N;
    const T word = static_cast<T>(fp_shift_right_sticky(a.mnt, cut));
    return fp_round(a.sgn, exp, word, rm, mode & ~fp_mode::FZ16, fpscr);
  }
}

template <class F, class T>
T convert_nan(F op, int mode, FPSCR& fpscr) {
  const F quiet = fp_process_nan(op, mode & ~fp_mode::DN, fpscr);
  if ((mode & fp_mode::DN) != 0) return format<T>::default_nan;
  return fp_infinity<T>(fp_is_negative(op)) | convert_fraction<F, T>(quiet);
}

// The operand is not a normal number. Or it has the highest exponent, which is an ordinary one in
// the alternative half-precision format.
template <class F, class T>
[[gnu::cold, gnu::noinline]] T convert_unusual(F op, int rm, int mode, FPSCR& fpscr) {
  const bool alternative = (mode & fp_mode::AHP) != 0;
  const int sgn = fp_is_negative(op);
  op = fp_flush(op, mode, fpscr);
  if (fp_is_zero(op)) return fp_zero<T>(sgn);
  if (!fp_is_special(op) || (is_half<F> && alternative)) {
    return convert_number<F, T>(fp_unpack_normalised(op), rm, mode, fpscr);
  }
  if (is_half<T> && alternative) {
    fpscr.raise(FPSCR::IOC);
    return fp_is_nan(op) ? fp_zero<T>(sgn) : fp_sign_bit<T>(sgn) | (format<T>::sign_bit - 1);
  }
  return fp_is_nan(op) ? convert_nan<F, T>(op, mode, fpscr) : fp_infinity<T>(sgn);
}

}  // namespace

template <class F, class T>
T FPConvert(F op, FPRounding rounding, FPSCR& fpscr) {
  const int mode = convert_mode(fpscr);
  if (!fp_is_normal(op)) [[unlikely]]
    return convert_unusual<F, T>(op, rounding, mode, fpscr);
  return convert_number<F, T>(fp_unpack_normal(op), rounding, mode, fpscr);
}

template unsigned short FPConvert(unsigned int, FPRounding, FPSCR&);
template unsigned short FPConvert(unsigned long, FPRounding, FPSCR&);
template unsigned int FPConvert(unsigned short, FPRounding, FPSCR&);
template unsigned int FPConvert(unsigned long, FPRounding, FPSCR&);
template unsigned long FPConvert(unsigned short, FPRounding, FPSCR&);
template unsigned long FPConvert(unsigned int, FPRounding, FPSCR&);
