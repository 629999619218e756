// What the functions of the floating-point library cost, compared with compiler-rt's routines for
// machines without floating point. bench/floating_point builds and runs it.
//
// Both get the same operands in the same run: random numbers of both signs around 1, like those of
// typical programs. The routines round to nearest and know neither modes nor flags. Only those are
// included that x86-64 has in integer arithmetic. Its conversions of 64-bit integers use the
// hardware.
#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdio>
#include <fnmatch.h>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "sve/fp/fp.h"

extern "C" {
float __addsf3(float, float);
double __adddf3(double, double);
float __subsf3(float, float);
double __subdf3(double, double);
float __mulsf3(float, float);
double __muldf3(double, double);
float __divsf3(float, float);
double __divdf3(double, double);
int __eqsf2(float, float);
int __eqdf2(double, double);
int __gesf2(float, float);
int __gedf2(double, double);
int __gtsf2(float, float);
int __gtdf2(double, double);
int __unordsf2(float, float);
int __unorddf2(double, double);
double __extendsfdf2(float);
float __truncdfsf2(double);
float __extendhfsf2(unsigned short);
unsigned short __truncsfhf2(float);
unsigned short __truncdfhf2(double);
int __fixsfsi(float);
int __fixdfsi(double);
unsigned __fixunssfsi(float);
unsigned __fixunsdfsi(double);
float __floatsisf(int);
double __floatsidf(int);
float __floatunsisf(unsigned);
double __floatunsidf(unsigned);
}

namespace {

using namespace sve;

using half = unsigned short;
using single = unsigned int;
using dword = unsigned long;

constexpr std::size_t operand_count = 4096;
constexpr int rounds = 5, repetitions = 6;

std::string chosen_functions = "*";

template <class T>
constexpr int fraction_bits = sizeof(T) == 2   ? 10
                              : sizeof(T) == 4 ? 23
                                               : 52;

// Floating-point numbers from 2^-8 to 2^9 for unsigned carriers, all integers for signed ones.
template <class T>
std::vector<T> make_operands(unsigned seed) {
  std::mt19937_64 random{seed};
  std::vector<T> result(operand_count);
  for (T& value : result) {
    value = static_cast<T>(random());
    if constexpr (std::is_signed_v<T>) continue;
    const T implicit = T{1} << fraction_bits<T>, sign = T{1} << (8 * sizeof(T) - 1);
    const T bias = static_cast<T>((sign / implicit) / 2 - 1);
    const T exponent = static_cast<T>(bias - 8 + random() % 17);
    value = static_cast<T>((value & (sign | (implicit - 1))) | exponent * implicit);
  }
  return result;
}

// The best of several passes, each over all operands, in nanoseconds per operand.
template <class Pass>
double nanoseconds(Pass pass) {
  double best = std::numeric_limits<double>::max();
  for (int i = 0; i < repetitions; ++i) {
    const auto begin = std::chrono::steady_clock::now();
    pass();
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - begin;
    best = std::min(best, time.count() / operand_count);
  }
  return best;
}

template <class T>
void keep(const T& value) {
  asm volatile("" ::"m"(value));
}

template <class To, class From>
To operand_as(From bits) {
  if constexpr (std::is_floating_point_v<To>)
    return std::bit_cast<To>(bits);
  else
    return static_cast<To>(bits);
}

template <class T, class F>
double library_time(F function) {
  const auto a = make_operands<T>(1), b = make_operands<T>(2), c = make_operands<T>(3);
  return nanoseconds([&] {
    for (std::size_t i = 0; i < operand_count; ++i) {
      FPSCR s{0};
      if constexpr (std::is_invocable_v<F, T, FPSCR&>)
        keep(function(a[i], s));
      else if constexpr (std::is_invocable_v<F, T, T, FPSCR&>)
        keep(function(a[i], b[i], s));
      else
        keep(function(a[i], b[i], c[i], s));
      keep(s);
    }
  });
}

// Measures the routine on operands with the same bits as those of library_time<T>.
template <class T, auto Routine>
struct counterpart {
  static double time() { return time(Routine); }

 private:
  template <class R, class A>
  static double time(R (*)(A)) {
    const auto a = make_operands<T>(1);
    return nanoseconds([&] {
      for (std::size_t i = 0; i < operand_count; ++i) keep(Routine(operand_as<A>(a[i])));
    });
  }

  template <class R, class A>
  static double time(R (*)(A, A)) {
    const auto a = make_operands<T>(1), b = make_operands<T>(2);
    return nanoseconds([&] {
      for (std::size_t i = 0; i < operand_count; ++i)
        keep(Routine(operand_as<A>(a[i]), operand_as<A>(b[i])));
    });
  }
};

struct no_counterpart {};

template <class T, class Counterpart = no_counterpart, class F>
void row(const std::string& name, F function, Counterpart = {}) {
  if (fnmatch(chosen_functions.c_str(), name.c_str(), 0) != 0) return;
  constexpr bool has_counterpart = !std::is_same_v<Counterpart, no_counterpart>;
  double time = std::numeric_limits<double>::max(), other = time;
  for (int i = 0; i < rounds; ++i) {  // alternately, as the machine may be faster at times
    time = std::min(time, library_time<T>(function));
    if constexpr (has_counterpart) other = std::min(other, Counterpart::time());
  }
  std::printf("%-26s %2zu %9.2f", name.c_str(), 8 * sizeof(T), time);
  if (has_counterpart) std::printf(" %12.2f %6.2f", other, time / other);
  std::puts("");
}

template <auto Single, auto Double, class F>
void beside(const std::string& name, F function) {
  row<half>(name, function);
  row<single>(name, function, counterpart<single, Single>{});
  row<dword>(name, function, counterpart<dword, Double>{});
}

template <class F>
void alone(const std::string& name, F function) {
  row<half>(name, function);
  row<single>(name, function);
  row<dword>(name, function);
}

template <class T>
constexpr auto convert =
    [](auto a, FPSCR& s) { return FPConvert<decltype(a), T>(a, FPRounding_TIEEVEN, s); };

template <class T, bool Unsigned>
constexpr auto to_integer = [](auto a, FPSCR& s) {
  return fplibFPToFixed<decltype(a), T>(a, 0, Unsigned, FPRounding_ZERO, s);
};

template <class T, bool Unsigned>
constexpr auto from_integer = [](auto a, FPSCR& s) {
  const long op =
      Unsigned ? static_cast<long>(static_cast<std::make_unsigned_t<decltype(a)>>(a)) : a;
  return fplibFixedToFP<T>(static_cast<dword>(op), 0, Unsigned, FPRounding_TIEEVEN, s);
};

void arithmetic() {
  beside<__addsf3, __adddf3>("FPAdd", [](auto a, auto b, FPSCR& s) { return FPAdd(a, b, s); });
  beside<__subsf3, __subdf3>("FPSub", [](auto a, auto b, FPSCR& s) { return FPSub(a, b, s); });
  beside<__mulsf3, __muldf3>("FPMul", [](auto a, auto b, FPSCR& s) { return FPMul(a, b, s); });
  beside<__divsf3, __divdf3>("FPDiv", [](auto a, auto b, FPSCR& s) { return FPDiv(a, b, s); });
  alone("FPMulX", [](auto a, auto b, FPSCR& s) { return FPMulX(a, b, s); });
  alone("FPSqrt", [](auto a, FPSCR& s) {
    constexpr auto all_but_sign = static_cast<decltype(a)>(~decltype(a){0}) >> 1;
    return FPSqrt(static_cast<decltype(a)>(a & all_but_sign), s);
  });
  alone("FPMulAdd", [](auto a, auto b, auto c, FPSCR& s) { return FPMulAdd(a, b, c, s); });
  alone("FPRecipStepFused", [](auto a, auto b, FPSCR& s) { return FPRecipStepFused(a, b, s); });
  alone("FPRSqrtStepFused", [](auto a, auto b, FPSCR& s) { return FPRSqrtStepFused(a, b, s); });
}

void comparisons() {
  beside<__eqsf2, __eqdf2>("FPCompareEQ",
                           [](auto a, auto b, FPSCR& s) { return FPCompareEQ(a, b, s); });
  beside<__gesf2, __gedf2>("FPCompareGE",
                           [](auto a, auto b, FPSCR& s) { return FPCompareGE(a, b, s); });
  beside<__gtsf2, __gtdf2>("FPCompareGT",
                           [](auto a, auto b, FPSCR& s) { return FPCompareGT(a, b, s); });
  beside<__unordsf2, __unorddf2>("FPCompareUN",
                                 [](auto a, auto b, FPSCR& s) { return FPCompareUN(a, b, s); });
  alone("FPMax", [](auto a, auto b, FPSCR& s) { return FPMax(a, b, s); });
  alone("FPMin", [](auto a, auto b, FPSCR& s) { return FPMin(a, b, s); });
  alone("FPMaxNum", [](auto a, auto b, FPSCR& s) { return FPMaxNum(a, b, s); });
  alone("FPMinNum", [](auto a, auto b, FPSCR& s) { return FPMinNum(a, b, s); });
}

void conversions() {
  row<half>("FPConvert to 32", convert<single>, counterpart<half, __extendhfsf2>{});
  row<half>("FPConvert to 64", convert<dword>);
  row<single>("FPConvert to 16", convert<half>, counterpart<single, __truncsfhf2>{});
  row<single>("FPConvert to 64", convert<dword>, counterpart<single, __extendsfdf2>{});
  row<dword>("FPConvert to 16", convert<half>, counterpart<dword, __truncdfhf2>{});
  row<dword>("FPConvert to 32", convert<single>, counterpart<dword, __truncdfsf2>{});
  beside<__fixsfsi, __fixdfsi>("fplibFPToFixed signed 32", to_integer<single, false>);
  beside<__fixunssfsi, __fixunsdfsi>("fplibFPToFixed unsigned 32", to_integer<single, true>);
  alone("fplibFPToFixed signed 64", to_integer<dword, false>);
  row<int>("fplibFixedToFP to 16", from_integer<half, false>);
  row<int>("fplibFixedToFP to 32", from_integer<single, false>, counterpart<int, __floatsisf>{});
  row<int>("fplibFixedToFP to 64", from_integer<dword, false>, counterpart<int, __floatsidf>{});
  row<int>("fplibFixedToFP u to 32", from_integer<single, true>, counterpart<int, __floatunsisf>{});
  row<int>("fplibFixedToFP u to 64", from_integer<dword, true>, counterpart<int, __floatunsidf>{});
  alone("FPRoundInt", [](auto a, FPSCR& s) { return FPRoundInt(a, s.rounding(), true, s); });
}

constexpr auto scale = [](auto a, auto, FPSCR& s) {
  if constexpr (sizeof a == 2)
    return FPScale16(a, 1, s);
  else if constexpr (sizeof a == 4)
    return FPScale32(a, 1, s);
  else
    return FPScale64(a, 1, s);
};

void special_functions() {
  alone("FPRecipEstimate", [](auto a, FPSCR& s) { return FPRecipEstimate(a, s); });
  alone("FPRSqrtEstimate", [](auto a, FPSCR& s) { return FPRSqrtEstimate(a, s); });
  alone("FPRecpX", [](auto a, FPSCR& s) { return FPRecpX(a, s); });
  alone("FPScale", scale);
  alone("FPEXPA", [](auto a, FPSCR&) { return FPEXPA(a); });
  alone("FPTRIMADD", [](auto a, auto b, FPSCR& s) { return FPTRIMADD(1, a, b, s); });
  alone("FPTRISMUL", [](auto a, auto b, FPSCR& s) { return FPTRISMUL(a, b, s); });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) chosen_functions = argv[1];
  std::puts(
      "ns per operation: the library, compiler-rt, and the ratio of the two\n\n"
      "function                 bits   library  compiler-rt  ratio");
  arithmetic();
  comparisons();
  conversions();
  special_functions();
}
