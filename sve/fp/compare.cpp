// Comparisons. A number that is not a NaN orders like the integer made of its magnitude and its
// sign. Both zeros become 0.
#include <type_traits>

#include "sve/fp/fp.h"
#include "sve/fp/nan.h"
#include "sve/fp/unpack.h"

using namespace sve;

namespace {

enum class ordering { less, equal, greater, unordered };

template <class T>
auto signed_value(T op) {
  using integer = std::make_signed_t<word_of<T>>;
  const auto magnitude = static_cast<integer>(fp_magnitude(op));
  return fp_is_negative(op) ? -magnitude : magnitude;
}

// Compares under the controls of the word. A quiet NaN raises IOC if signal_nans is true, a
// signalling NaN always.
template <class T>
ordering compare(T op1, T op2, bool signal_nans, FPSCR& fpscr) {
  const int mode = fp_mode_word(fpscr);
  const T a = fp_flush(op1, mode, fpscr);
  const T b = fp_flush(op2, mode, fpscr);
  if (fp_is_nan(a) || fp_is_nan(b)) [[unlikely]] {
    if (signal_nans || fp_is_signalling(a) || fp_is_signalling(b)) fpscr.raise(FPSCR::IOC);
    return ordering::unordered;
  }
  const auto x = signed_value(a);
  const auto y = signed_value(b);
  if (x == y) return ordering::equal;
  return x > y ? ordering::greater : ordering::less;
}

}  // namespace

template <class T>
bool FPCompareEQ(T op1, T op2, FPSCR& fpscr) {
  return compare(op1, op2, false, fpscr) == ordering::equal;
}

template <class T>
bool FPCompareGE(T op1, T op2, FPSCR& fpscr) {
  const ordering order = compare(op1, op2, true, fpscr);
  return order == ordering::greater || order == ordering::equal;
}

template <class T>
bool FPCompareGT(T op1, T op2, FPSCR& fpscr) {
  return compare(op1, op2, true, fpscr) == ordering::greater;
}

template <class T>
bool FPCompareUN(T op1, T op2, FPSCR& fpscr) {
  return compare(op1, op2, false, fpscr) == ordering::unordered;
}

template <class T>
int FPCompare(T op1, T op2, bool signal_nans, FPSCR& fpscr) {
  constexpr int nzcv[] = {0b1000, 0b0110, 0b0010, 0b0011};  // by ordering
  return nzcv[static_cast<int>(compare(op1, op2, signal_nans, fpscr))];
}

template bool FPCompareEQ(unsigned short, unsigned short, FPSCR&);
template bool FPCompareEQ(unsigned int, unsigned int, FPSCR&);
template bool FPCompareEQ(unsigned long, unsigned long, FPSCR&);
template bool FPCompareGE(unsigned short, unsigned short, FPSCR&);
template bool FPCompareGE(unsigned int, unsigned int, FPSCR&);
template bool FPCompareGE(unsigned long, unsigned long, FPSCR&);
template bool FPCompareGT(unsigned short, unsigned short, FPSCR&);
template bool FPCompareGT(unsigned int, unsigned int, FPSCR&);
template bool FPCompareGT(unsigned long, unsigned long, FPSCR&);
template bool FPCompareUN(unsigned short, unsigned short, FPSCR&);
template bool FPCompareUN(unsigned int, unsigned int, FPSCR&);
template bool FPCompareUN(unsigned long, unsigned long, FPSCR&);
template int FPCompare(unsigned int, unsigned int, bool, FPSCR&);
template int FPCompare(unsigned long, unsigned long, bool, FPSCR&);
