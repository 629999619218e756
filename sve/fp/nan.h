// Which NaN an operation returns.
#pragma once

#include <initializer_list>
#include <optional>

#include "sve/fp/format.h"

namespace sve {

template <class T>
constexpr bool fp_is_nan(T op) {
  return fp_magnitude(op) > format<T>::infinity;
}

template <class T>
constexpr bool fp_is_signalling(T op) {
  return fp_is_nan(op) && (op & format<T>::quiet_bit) == 0;
}

template <class T>
constexpr bool fp_is_quiet(T op) {
  return fp_magnitude(op) >= format<T>::default_nan;
}

// The result of an invalid operation, regardless of DN.
template <class T>
inline T fp_invalid(FPSCR& fpscr) {
  fpscr.raise(FPSCR::IOC);
  return format<T>::default_nan;
}

// The result of an operation whose operand op is a NaN.
template <class T>
inline T fp_process_nan(T op, int mode, FPSCR& fpscr) {
  using F = format<T>;
  if ((op & F::quiet_bit) == 0) fpscr.raise(FPSCR::IOC);
  return (mode & fp_mode::DN) != 0 ? F::default_nan : op | F::quiet_bit;
}

// The result if any operand is a NaN: the first signalling one is taken, else the first.
template <class T>
inline std::optional<T> fp_process_nans(std::initializer_list<T> operands, int mode, FPSCR& fpscr) {
  for (const T op : operands) {
    if (fp_is_signalling(op)) return fp_process_nan(op, mode, fpscr);
  }
  for (const T op : operands) {
    if (fp_is_nan(op)) return fp_process_nan(op, mode, fpscr);
  }
  return std::nullopt;
}

}  // namespace sve
