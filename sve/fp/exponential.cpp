// The exponential accelerator. It uses bit fields and a table, and no arithmetic.
#include "sve/fp/exponential_table.h"
#include "sve/fp/fp.h"

using namespace sve;

template <class T>
T FPEXPA(T op) {
  using F = format<T>;
  constexpr unsigned entries = exponential_table<T>.size();
  const word_of<T> exponent = (word_of<T>{op} / entries) << F::M;
  return (exponent & F::infinity) | exponential_table<T>[op % entries];
}

template unsigned short FPEXPA(unsigned short);
template unsigned int FPEXPA(unsigned int);
template unsigned long FPEXPA(unsigned long);
