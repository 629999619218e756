// An application's own instructions, SVE instructions with a fast path and SVE instructions that
// use the reference semantics all share one floating-point environment. Each sees the controls that
// the application has set, and each adds to the application's flags.
#include <arm_sve.h>
#include <fenv.h>
#include <stdint.h>
#include <stdio.h>

static void set_fpcr(uint64_t value) { __asm__ volatile("msr fpcr, %0" : : "r"(value)); }
static void set_fpsr(uint64_t value) { __asm__ volatile("msr fpsr, %0" : : "r"(value)); }

static uint64_t fpcr(void) {
  uint64_t value;
  __asm__ volatile("mrs %0, fpcr" : "=r"(value));
  return value;
}

static uint64_t fpsr(void) {
  uint64_t value;
  __asm__ volatile("mrs %0, fpsr" : "=r"(value));
  return value;
}

// One operation by the processor itself, one by a fast path and one by the reference semantics.
// volatile and noinline keep the compiler from computing or moving them.
static __attribute__((noinline)) float divide(volatile float a, volatile float b) { return a / b; }

static __attribute__((noinline)) uint32_t add_single(float a, float b) {
  const svfloat32_t sum = svadd_x(svptrue_b32(), svdup_f32(a), svdup_f32(b));
  return svlastb(svptrue_b32(), svreinterpret_u32(sum));
}

static __attribute__((noinline)) uint64_t multiply_double(double a, double b) {
  const svfloat64_t product = svmul_x(svptrue_b64(), svdup_f64(a), svdup_f64(b));
  return svlastb(svptrue_b64(), svreinterpret_u64(product));
}

static __attribute__((noinline)) uint32_t fused_single(float a, float b, float c) {
  const svfloat32_t sum = svmla_x(svptrue_b32(), svdup_f32(a), svdup_f32(b), svdup_f32(c));
  return svlastb(svptrue_b32(), svreinterpret_u32(sum));
}

static __attribute__((noinline)) uint16_t add_half(float16_t a, float16_t b) {
  const svfloat16_t sum = svadd_x(svptrue_b16(), svdup_f16(a), svdup_f16(b));
  return svlastb(svptrue_b16(), svreinterpret_u16(sum));
}

static __attribute__((noinline)) int any_greater(float a, float b) {
  const svbool_t greater = svcmpgt(svptrue_b32(), svdup_f32(a), svdup_f32(b));
  return svptest_any(svptrue_b32(), greater);
}

static void report(const char* what, uint64_t result) {
  printf("%-42s %16llx  fpsr %08llx\n", what, (unsigned long long)result,
         (unsigned long long)fpsr());
}

static void flags_gather(void) {
  const float16_t largest = (float16_t)65504.0F;
  feclearexcept(FE_ALL_EXCEPT);
  report("nothing yet", 0);
  report("compare with a NaN: invalid", (uint64_t)any_greater(__builtin_nanf(""), 1));
  report("own division by zero", divide(1, 0) > 0);
  report("multiply doubles: inexact", multiply_double(0.1, 0.1));
  report("add halves: overflow", add_half(largest, largest));
  report("multiply doubles: underflow", multiply_double(0x1p-1000, 0x1.8p-74));
  report("own, exact", (uint64_t)divide(6, 2));
  feclearexcept(FE_DIVBYZERO | FE_OVERFLOW);
  report("two flags cleared", (uint64_t)fetestexcept(FE_ALL_EXCEPT));
  report("fused multiply-add, exact", fused_single(1, 2, 3));
  feclearexcept(FE_ALL_EXCEPT);
  report("fused multiply-add: inexact", fused_single(1, 0x1p-13F, 0x1p-13F));
}

static void rounding_is_seen(void) {
  static const int modes[] = {FE_TONEAREST, FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO};
  static const char* const names[] = {"to nearest", "upwards", "downwards", "towards zero"};
  for (int i = 0; i < 4; ++i) {
    fesetround(modes[i]);
    feclearexcept(FE_ALL_EXCEPT);
    puts(names[i]);
    report("  1 + 2^-25, fast path", add_single(1, 0x1p-25F));
    report("  -1 - 2^-25, fast path", add_single(-1, -0x1p-25F));
    report("  1 + 2^-12 in half precision", add_half((float16_t)1, (float16_t)0x1p-12));
    report("  1 + 2^-26, fused", fused_single(1, 0x1p-13F, 0x1p-13F));
    report("  -1 - 2^-26, fused", fused_single(-1, -0x1p-13F, 0x1p-13F));
  }
  fesetround(FE_TONEAREST);
}

static void flushing_is_seen(void) {
  static const struct {
    const char* name;
    uint64_t bits;
  } controls[] = {{"no control", 0}, {"FZ", 1 << 24}, {"FZ16", 1 << 19}, {"DN", 1 << 25}};
  const uint64_t own = fpcr();
  for (int i = 0; i < 4; ++i) {
    set_fpcr(own | controls[i].bits);
    set_fpsr(0);  // also clears the flag of flushed operands, which has no name in C
    puts(controls[i].name);
    report("  2^-140 + 0, fast path", add_single(0x1p-140F, 0));
    report("  2^-140 x 2 + 0, fused", fused_single(0, 0x1p-140F, 2));
    report("  2^-20 + 0 in half precision", add_half((float16_t)0x1p-20, (float16_t)0));
    report("  2^-1060 x 1, fast path", multiply_double(0x1p-1060, 1));
    report("  a NaN with payload + 1", add_single(__builtin_nanf("0x123"), 1));
    report("  the same, fused", fused_single(__builtin_nanf("0x123"), 1, 1));
  }
  set_fpcr(own);
}

int main(void) {
  flags_gather();
  rounding_is_seen();
  flushing_is_seen();
  return 0;
}
