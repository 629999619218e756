#include "sve/fp/format.h"
#include "sve/fp/fp.h"

using namespace sve;

template <class T>
T FPNeg(T op) {
  return op ^ format<T>::sign_bit;
}

template <class T>
T FPAbs(T op) {
  return fp_magnitude(op);
}

template unsigned short FPNeg(unsigned short);
template unsigned int FPNeg(unsigned int);
template unsigned long FPNeg(unsigned long);
template unsigned int FPAbs(unsigned int);
template unsigned long FPAbs(unsigned long);
