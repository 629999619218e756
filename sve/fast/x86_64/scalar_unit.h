// The scalar floating-point instructions of a fast path on a processor that is not an AArch64 one.
// The library gives the same results and flags, under the state's FPCR, and ORs the flags into its
// FPSR.
#pragma once

#include <cstdint>

#include "sve/fp/fp.h"
#include "sve/state/cpu_state.h"

namespace sve::fast {

class scalar_unit {
 public:
  explicit scalar_unit(cpu_state* state) : state_(state) {}

  template <class T>
  T add(T a, T b) const {
    return run<T>(FPAdd<carrier<T>>, a, b);
  }
  template <class T>
  T subtract(T a, T b) const {
    return run<T>(FPSub<carrier<T>>, a, b);
  }
  template <class T>
  T multiply(T a, T b) const {
    return run<T>(FPMul<carrier<T>>, a, b);
  }
  template <class T>
  T divide(T a, T b) const {
    return run<T>(FPDiv<carrier<T>>, a, b);
  }
  template <class T>
  T max(T a, T b) const {
    return run<T>(FPMax<carrier<T>>, a, b);
  }
  template <class T>
  T max_number(T a, T b) const {
    return run<T>(FPMaxNum<carrier<T>>, a, b);
  }
  template <class T>
  T min_number(T a, T b) const {
    return run<T>(FPMinNum<carrier<T>>, a, b);
  }
  template <class T>
  T reciprocal_step(T a, T b) const {
    return run<T>(FPRecipStepFused<carrier<T>>, a, b);
  }
  template <class T>
  T reciprocal_estimate(T a) const {
    return run<T>(FPRecipEstimate<carrier<T>>, a);
  }
  template <class T>
  T negate(T a) const {
    return static_cast<T>(FPNeg<carrier<T>>(a));
  }
  template <class T>
  T square_root(T a) const {
    return run<T>(FPSqrt<carrier<T>>, a);
  }
  template <class T>
  T round_ties_away(T a) const {
    return run<T>(FPRoundInt<carrier<T>>, a, FPRounding_TIEAWAY, false);
  }
  template <class T>
  T negated_multiply_add(T addend, T a, T b) const {
    return run<T>(FPMulAdd<carrier<T>>, negate(addend), negate(a), b);
  }

  template <class T>
  bool equal(T a, T b) const {
    return run<bool>(FPCompareEQ<carrier<T>>, a, b);
  }
  template <class T>
  bool not_equal(T a, T b) const {
    return !equal(a, b);
  }
  template <class T>
  bool unordered(T a, T b) const {
    return run<bool>(FPCompareUN<carrier<T>>, a, b);
  }
  template <class T>
  bool greater_or_equal(T a, T b) const {
    return run<bool>(FPCompareGE<carrier<T>>, a, b);
  }
  template <class T>
  bool greater(T a, T b) const {
    return run<bool>(FPCompareGT<carrier<T>>, a, b);
  }

  template <class Integer>
  std::uint32_t to_single(Integer a) const {
    return converted<std::uint32_t>(a);
  }
  template <class Integer>
  std::uint64_t to_double(Integer a) const {
    return converted<std::uint64_t>(a);
  }

 private:
  template <class T>
  using carrier = std::conditional_t<sizeof(T) == 4, unsigned int, unsigned long>;

  template <class Result, class Function, class... Arguments>
  Result run(Function function, Arguments... arguments) const {
    FPSCR local{state_->fpcr};
    const auto result = function(arguments..., local);
    constexpr unsigned flags =
        FPSCR::IOC | FPSCR::DZC | FPSCR::OFC | FPSCR::UFC | FPSCR::IXC | FPSCR::IDC;
    state_->fpsr |= local.word & flags;
    return static_cast<Result>(result);
  }

  template <class T, class Integer>
  T converted(Integer a) const {
    const FPRounding rounding = FPSCR{state_->fpcr}.rounding();
    return run<T>(fplibFixedToFP<carrier<T>>, static_cast<unsigned long>(a), 0,
                  std::is_unsigned_v<Integer>, rounding);
  }

  cpu_state* state_;
};

// The FPSR after a fast path.
inline std::uint32_t fpsr_after(const cpu_state& state) { return state.fpsr; }

}  // namespace sve::fast
