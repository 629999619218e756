// The reciprocal square root estimate: 8 bits from a table, by the exponent's parity and the 7 bits
// below the leading one.
#include "sve/fp/estimate_table.h"
#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/unpack.h"

namespace sve {
namespace {

// Zero, infinite, a NaN or negative.
template <class T>
[[gnu::cold, gnu::noinline]] T estimate_special(T op, int mode, int* flags) {
  if (fp_is_nan(op)) return fp_process_nan(op, mode, flags);
  const int sgn = fp_is_negative(op);
  if (fp_magnitude(op) == 0) {
    *flags |= FPSCR::DZC;
    return fp_infinity<T>(sgn);
  }
  return sgn != 0 ? fp_invalid<T>(flags) : fp_zero<T>(0);
}

}  // namespace

template <class T>
T FPRSqrtEstimate(T op, FPSCR& fpscr) {
  using F = format<T>;
  return fp_run(fpscr, [=](int mode, int* flags) -> T {
    const T x = fp_flush(op, mode, flags);
    if (fp_is_special(x) || fp_is_negative(x) || x == 0) [[unlikely]] {
      return estimate_special(x, mode, flags);
    }
    auto a = fp_unpack(x);
    a.exp += F::E;
    const T significand = fp_normalise(static_cast<T>(a.mnt), &a.exp);
    const unsigned half = (a.exp & 1) != 0 ? 0 : 128;
    const unsigned index = half | ((significand >> (F::N - 8)) & 127);
    const int exp = (3 * F::bias - 1 - a.exp) >> 1;
    return (static_cast<word_of<T>>(exp) << F::M) |
           (word_of<T>{recip_sqrt_estimate[index]} << (F::M - 8));
  });
}

template unsigned short FPRSqrtEstimate(unsigned short, FPSCR&);
template unsigned int FPRSqrtEstimate(unsigned int, FPSCR&);
template unsigned long FPRSqrtEstimate(unsigned long, FPSCR&);

}  // namespace sve
