// exp and sin in double precision with the instructions made for them, compared with the C
// library's.
//
// exp(x) = 2^n 2^(i/64) exp(r), where r is within ln(2) / 128 of 0. FEXPA takes n and i from the
// low bits of a number and looks up the power. Adding 1.5 * 2^46 to x / ln(2) leaves 64 steps per
// unit, so these bits are n and i. The 1023 added to it is the bias of the exponent.
//
// sin(x): r = x - q pi/2 is within pi/4 of 0. The quadrant q says whether to take the sine or the
// cosine of r, and with which sign. FTSMUL adds that choice to the square of r, eight FTMADs take
// the coefficients of one polynomial or the other, and FTSSEL gives the last factor: r or 1, with
// the sign.
#include <arm_sve.h>
#include <math.h>
#include <stdio.h>

#include "examples/check.h"

enum { count = 20011 };

static svfloat64_t exp_of(svbool_t pg, svfloat64_t x) {
  const double shift = 0x1.8p46 + 1023;
  const svfloat64_t shifted = svmla_x(pg, svdup_f64(shift), x, 0x1.71547652b82fep0);  // 1 / ln(2)
  const svfloat64_t power = svexpa(svreinterpret_u64(shifted));
  const svfloat64_t n = svsub_x(pg, shifted, shift);
  svfloat64_t r = svmls_x(pg, x, n, 0x1.62e42fefa39efp-1);  // ln(2), and the rest of it
  r = svmls_x(pg, r, n, 0x1.abc9e3b39803fp-56);
  // The series of exp(r) - 1. The next term, r^6 / 720, is below 2^-54.
  svfloat64_t p = svmad_x(pg, r, svdup_f64(1.0 / 120), 1.0 / 24);
  p = svmad_x(pg, p, r, 1.0 / 6);
  p = svmad_x(pg, p, r, 0.5);
  p = svmad_x(pg, svmul_x(pg, p, r), r, r);
  return svmla_x(pg, power, power, p);
}

static svfloat64_t sin_of(svbool_t pg, svfloat64_t x) {
  const svfloat64_t n = svrintn_x(pg, svmul_x(pg, x, 0x1.45f306dc9c883p-1));  // 2 / pi
  svfloat64_t r = svmls_x(pg, x, n, 0x1.921fb54442d18p0);  // pi / 2, and the rest of it
  r = svmls_x(pg, r, n, 0x1.1a62633145c07p-54);
  const svuint64_t quadrant = svreinterpret_u64(svcvt_s64_x(pg, n));
  const svfloat64_t square = svtsmul(r, quadrant);
  svfloat64_t p = svdup_f64(0);
  p = svtmad(p, square, 7);
  p = svtmad(p, square, 6);
  p = svtmad(p, square, 5);
  p = svtmad(p, square, 4);
  p = svtmad(p, square, 3);
  p = svtmad(p, square, 2);
  p = svtmad(p, square, 1);
  p = svtmad(p, square, 0);
  return svmul_x(pg, p, svtssel(r, quadrant));
}

// Computes the function for numbers evenly spaced from -most to most.
static void results(double* out, double most, svfloat64_t (*function)(svbool_t, svfloat64_t)) {
  const double step = 2 * most / (count - 1);
  for (int64_t i = 0; i < count; i += (int64_t)svcntd()) {
    const svbool_t pg = svwhilelt_b64(i, (int64_t)count);
    const svfloat64_t index = svcvt_f64_x(pg, svindex_s64(i, 1));
    svst1(pg, out + i, function(pg, svmad_x(pg, index, svdup_f64(step), -most)));
  }
}

// The largest difference from the C library's results, in units in their last place.
SCALAR static double largest_error(const double* out, double most, double (*function)(double)) {
  const double step = 2 * most / (count - 1);
  double largest = 0;
  for (int i = 0; i < count; ++i) {
    const double expected = function(fma(i, step, -most));
    if (out[i] == expected) continue;
    largest = fmax(largest, fabs(out[i] - expected) / ldexp(1, ilogb(expected) - 52));
  }
  return largest;
}

static void compare(const char* name, double most, svfloat64_t (*function)(svbool_t, svfloat64_t),
                    double (*expected)(double)) {
  // Half a unit for the last rounding, one for the factors, and half for the C library's own error.
  const double bound = 2;
  static double out[count];
  results(out, most, function);
  const double error = largest_error(out, most, expected);
  check_at_most(name, error, bound);
  printf("%s of %d numbers from %g to %g: at most %g ULP from the C library's, %016lx\n", name,
         count, -most, most, error, fingerprint(out, sizeof(out)));
}

int main(void) {
  compare("exp", 700, exp_of, exp);
  compare("sin", 1000, sin_of, sin);
  return 0;
}
