// Conversions between the formats. FZ16 never flushes the half result of one.
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/round.h"

namespace sve {
namespace {

template <class T>
constexpr bool is_half = format<T>::N == 16;

// The mode word of a conversion: the alternative half-precision format counts in it.
int convert_mode(FPSCR fpscr) {
  return fp_mode_word(fpscr) | ((fpscr.word & FPSCR::AHP) != 0 ? fp_mode::AHP : 0);
}

// The fraction of F at the top of that of T.
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

// An infinity or a NaN.
template <class F, class T>
[[gnu::cold, gnu::noinline]] T convert_special(F op, int mode, FPSCR& fpscr) {
  const int sgn = fp_is_negative(op);
  if (is_half<T> && (mode & fp_mode::AHP) != 0) {
    fpscr.raise(FPSCR::IOC);
    return fp_is_nan(op) ? fp_zero<T>(sgn) : fp_sign_bit<T>(sgn) | (format<T>::sign_bit - 1);
  }
  if (fp_is_infinity(op)) return fp_infinity<T>(sgn);
  const F quiet = fp_process_nan(op, mode & ~fp_mode::DN, fpscr);
  if ((mode & fp_mode::DN) != 0) return format<T>::default_nan;
  return fp_infinity<T>(sgn) | convert_fraction<F, T>(quiet);
}

// A denormal keeps its exponent here with no leading 1 and isn't normalised: it is far below the
// range of T, where only the sticky bit counts.
template <class F, class T>
T narrow(F op, int rm, int mode, FPSCR& fpscr) {
  constexpr int cut = format<F>::M - format<T>::N;
  const auto a = fp_unpack(op);
  const T word = static_cast<T>(fp_shift_right_sticky(a.mnt, cut));
  const int exp = a.exp - (format<F>::bias - format<T>::bias);
  return fp_round(a.sgn, exp, word, rm, mode, fpscr);
}

template <class F, class T>
T widen(F op) {
  const auto a = fp_unpack_normalised(op);
  const int exp = a.exp + (format<T>::bias - format<F>::bias);
  return fp_sign_bit<T>(a.sgn) | (static_cast<T>(exp) << format<T>::M) |
         convert_fraction<F, T>(static_cast<F>(a.mnt));
}

template <class F, class T>
T convert(F op, FPRounding rounding, int mode, FPSCR& fpscr) {
  op = fp_flush(op, mode, fpscr);
  const bool ordinary = is_half<F> && (mode & fp_mode::AHP) != 0;
  if (fp_is_special(op) && !ordinary) [[unlikely]]
    return convert_special<F, T>(op, mode, fpscr);
  if (fp_magnitude(op) == 0) [[unlikely]]
    return fp_zero<T>(fp_is_negative(op));
  if constexpr (sizeof(F) < sizeof(T)) {
    return widen<F, T>(op);
  } else {
    return narrow<F, T>(op, rounding, mode & ~fp_mode::FZ16, fpscr);
  }
}

}  // namespace

template <class F, class T>
T FPConvert(F op, FPRounding rounding, FPSCR& fpscr) {
  return convert<F, T>(op, rounding, convert_mode(fpscr), fpscr);
}

template unsigned short FPConvert(unsigned int, FPRounding, FPSCR&);
template unsigned short FPConvert(unsigned long, FPRounding, FPSCR&);
template unsigned int FPConvert(unsigned short, FPRounding, FPSCR&);
template unsigned int FPConvert(unsigned long, FPRounding, FPSCR&);
template unsigned long FPConvert(unsigned short, FPRounding, FPSCR&);
template unsigned long FPConvert(unsigned int, FPRounding, FPSCR&);

}  // namespace sve
