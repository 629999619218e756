#include <type_traits>

#include "sve/fp/fp.h"
#include "tests/sve/fp/instructions.h"

namespace fp_test {
namespace {

using namespace sve;

using half = unsigned short;
using single = unsigned int;
using dword = unsigned long;

template <class L, class T>
constexpr int operand_count = std::is_invocable_v<L, T, FPSCR&>      ? 1
                              : std::is_invocable_v<L, T, T, FPSCR&> ? 2
                                                                     : 3;

template <class T, class L>
auto call(L function, const operands& in, FPSCR& s) {
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return function(static_cast<T>(in[I])..., s);
  }
  (std::make_index_sequence<operand_count<L, T>>{});
}

template <class T, class L>
using result_of = decltype(call<T>(std::declval<L>(), operands{}, std::declval<FPSCR&>()));

// Every change that the function makes to the word counts as a flag, so a lost control shows too.
template <class T, class L>
computation library_computation(L function) {
  return [=](std::uint32_t mode, const auto& batch, auto& answers) {
    for (std::size_t i = 0; i < batch.size(); ++i) {
      FPSCR s{mode};
      answers[i].value = call<T>(function, batch[i], s);
      answers[i].flags = s.word ^ mode;
    }
  };
}

template <class Result, class I>
computation processor_computation(I instruction) {
  return [=](std::uint32_t mode, const auto& batch, auto& answers) {
    asm volatile("msr fpcr, %0" ::"r"(std::uint64_t{mode}));
    for (std::size_t i = 0; i < batch.size(); ++i) {
      answers[i] = instruction(batch[i]);
      answers[i].value = static_cast<Result>(answers[i].value);
    }
    asm volatile("msr fpcr, xzr");
  };
}

enum class last_operand { floating, integer };

std::vector<operation> table;

// Compares a function of operands of type T with an instruction.
template <class T, last_operand Last = last_operand::floating, class I, class L>
void one(const std::string& name, I instruction, L library) {
  table.push_back({name, 8 * sizeof(T), operand_count<L, T>, Last == last_operand::integer,
                   library_computation<T>(library),
                   processor_computation<result_of<T, L>>(instruction)});
}

template <class T>
constexpr const char* letter = sizeof(T) == 2   ? ".h"
                               : sizeof(T) == 4 ? ".s"
                                                : ".d";

template <class T, class I>
auto form(I instruction) {
  return [=](const operands& in) { return instruction.template operator()<T>(in); };
}

template <class T, last_operand Last = last_operand::floating, class I, class L>
void one_form(const std::string& name, I instruction, L library) {
  one<T, Last>(name + letter<T>, form<T>(instruction), library);
}

template <last_operand Last = last_operand::floating, class I, class L>
void all(const std::string& name, I instruction, L library) {
  one_form<half, Last>(name, instruction, library);
  one_form<single, Last>(name, instruction, library);
  one_form<dword, Last>(name, instruction, library);
}

void arithmetic() {
  all("fadd", FORMS(TWO, "fadd"), [](auto a, auto b, FPSCR& s) { return FPAdd(a, b, s); });
  all("fsub", FORMS(TWO, "fsub"), [](auto a, auto b, FPSCR& s) { return FPSub(a, b, s); });
  all("fmul", FORMS(TWO, "fmul"), [](auto a, auto b, FPSCR& s) { return FPMul(a, b, s); });
  all("fmulx", FORMS(TWO, "fmulx"), [](auto a, auto b, FPSCR& s) { return FPMulX(a, b, s); });
  all("fdiv", FORMS(TWO, "fdiv"), [](auto a, auto b, FPSCR& s) { return FPDiv(a, b, s); });
  all("fsqrt", FORMS(ONE, "fsqrt"), [](auto a, FPSCR& s) { return FPSqrt(a, s); });
  all("fneg", FORMS(ONE, "fneg"), [](auto a, FPSCR&) { return FPNeg(a); });
  one_form<single>("fabs", FORMS(ONE, "fabs"), [](auto a, FPSCR&) { return FPAbs(a); });
  one_form<dword>("fabs", FORMS(ONE, "fabs"), [](auto a, FPSCR&) { return FPAbs(a); });
}

void fused() {
  all("fmadd", FORMS(THREE, "fmadd"),
      [](auto a, auto b, auto c, FPSCR& s) { return FPMulAdd(c, a, b, s); });
  all("fmsub", FORMS(THREE, "fmsub"),
      [](auto a, auto b, auto c, FPSCR& s) { return FPMulAdd(c, FPNeg(a), b, s); });
  all("fnmadd", FORMS(THREE, "fnmadd"),
      [](auto a, auto b, auto c, FPSCR& s) { return FPMulAdd(FPNeg(c), FPNeg(a), b, s); });
  all("fnmsub", FORMS(THREE, "fnmsub"),
      [](auto a, auto b, auto c, FPSCR& s) { return FPMulAdd(FPNeg(c), a, b, s); });
  all("frecps", FORMS(TWO, "frecps"),
      [](auto a, auto b, FPSCR& s) { return FPRecipStepFused(a, b, s); });
  all("frsqrts", FORMS(TWO, "frsqrts"),
      [](auto a, auto b, FPSCR& s) { return FPRSqrtStepFused(a, b, s); });
}

void comparisons() {
  all("fcmp.eq", FORMS(IF, "fcmp", "eq"),
      [](auto a, auto b, FPSCR& s) { return FPCompareEQ(a, b, s); });
  all("fcmp.vs", FORMS(IF, "fcmp", "vs"),
      [](auto a, auto b, FPSCR& s) { return FPCompareUN(a, b, s); });
  all("fcmpe.ge", FORMS(IF, "fcmpe", "ge"),
      [](auto a, auto b, FPSCR& s) { return FPCompareGE(a, b, s); });
  all("fcmpe.gt", FORMS(IF, "fcmpe", "gt"),
      [](auto a, auto b, FPSCR& s) { return FPCompareGT(a, b, s); });
  const auto fcmp = [](auto a, auto b, FPSCR& s) { return FPCompare(a, b, false, s); };
  const auto fcmpe = [](auto a, auto b, FPSCR& s) { return FPCompare(a, b, true, s); };
  one_form<single>("fcmp", FORMS(NZCV, "fcmp"), fcmp);
  one_form<dword>("fcmp", FORMS(NZCV, "fcmp"), fcmp);
  one_form<single>("fcmpe", FORMS(NZCV, "fcmpe"), fcmpe);
  one_form<dword>("fcmpe", FORMS(NZCV, "fcmpe"), fcmpe);
  all("fmax", FORMS(TWO, "fmax"), [](auto a, auto b, FPSCR& s) { return FPMax(a, b, s); });
  all("fmin", FORMS(TWO, "fmin"), [](auto a, auto b, FPSCR& s) { return FPMin(a, b, s); });
  all("fmaxnm", FORMS(TWO, "fmaxnm"), [](auto a, auto b, FPSCR& s) { return FPMaxNum(a, b, s); });
  all("fminnm", FORMS(TWO, "fminnm"), [](auto a, auto b, FPSCR& s) { return FPMinNum(a, b, s); });
}

// FCVT doesn't look at FZ16, but FPConvert does: a caller that emulates FCVT clears the control.
template <class T>
constexpr auto convert = [](auto op, FPSCR& s) {
  FPSCR local{s.word & ~FPSCR::FZ16};
  const T result = FPConvert<decltype(op), T>(op, s.rounding(), local);
  s.word |= local.word;
  return result;
};

void conversions() {
  one<single>("fcvt.h.s", INSTRUCTION("fcvt %h0, %s2"), convert<half>);
  one<dword>("fcvt.h.d", INSTRUCTION("fcvt %h0, %d2"), convert<half>);
  one<half>("fcvt.s.h", INSTRUCTION("fcvt %s0, %h2"), convert<single>);
  one<dword>("fcvt.s.d", INSTRUCTION("fcvt %s0, %d2"), convert<single>);
  one<half>("fcvt.d.h", INSTRUCTION("fcvt %d0, %h2"), convert<dword>);
  one<single>("fcvt.d.s", INSTRUCTION("fcvt %d0, %s2"), convert<dword>);
  one<dword>("fcvtxn.s.d", INSTRUCTION("fcvtxn %s0, %d2"),
             [](dword a, FPSCR& s) { return FPConvert<dword, single>(a, FPRounding_ODD, s); });
}

// Conversions to integers of T's width.
template <class T, class I>
void to_width(const std::string& name, FPRounding rounding, bool u, int fbits, I instruction) {
  const auto library = [=](auto a, FPSCR& s) {
    return fplibFPToFixed<decltype(a), T>(a, fbits, u, rounding, s);
  };
  if constexpr (sizeof(T) == sizeof(half))
    one_form<half>(name, instruction, library);
  else
    all(name, instruction, library);
}

template <class H, class W, class X>
void to_integer(const std::string& name, FPRounding rounding, bool u, int fbits, H h, W w, X x) {
  to_width<half>(name + ".h", rounding, u, fbits, h);
  to_width<single>(name + ".w", rounding, u, fbits, w);
  to_width<dword>(name + ".x", rounding, u, fbits, x);
}

// Conversions from integers of F's width to each T.
template <class F, class... T, class I>
void from_width(const std::string& name, bool u, int fbits, I instruction) {
  const auto widened = [=](F a) { return u ? dword{a} : dword(std::make_signed_t<F>(a)); };
  (one<F, last_operand::integer>(
       name + letter<T>, form<T>(instruction),
       [=](F a, FPSCR& s) { return fplibFixedToFP<T>(widened(a), fbits, u, s.rounding(), s); }),
   ...);
}

template <class W, class X>
void from_integer(const std::string& name, bool u, int fbits, W w, X x) {
  from_width<single, half, single, dword>(name + ".w", u, fbits, w);
  from_width<dword, half, single, dword>(name + ".x", u, fbits, x);
}

void integers() {
  to_integer("fcvtns", FPRounding_TIEEVEN, false, 0, TO("fcvtns", ""));
  to_integer("fcvtnu", FPRounding_TIEEVEN, true, 0, TO("fcvtnu", ""));
  to_integer("fcvtps", FPRounding_POSINF, false, 0, TO("fcvtps", ""));
  to_integer("fcvtpu", FPRounding_POSINF, true, 0, TO("fcvtpu", ""));
  to_integer("fcvtms", FPRounding_NEGINF, false, 0, TO("fcvtms", ""));
  to_integer("fcvtmu", FPRounding_NEGINF, true, 0, TO("fcvtmu", ""));
  to_integer("fcvtas", FPRounding_TIEAWAY, false, 0, TO("fcvtas", ""));
  to_integer("fcvtau", FPRounding_TIEAWAY, true, 0, TO("fcvtau", ""));
  to_integer("fcvtzs", FPRounding_ZERO, false, 0, TO("fcvtzs", ""));
  to_integer("fcvtzu", FPRounding_ZERO, true, 0, TO("fcvtzu", ""));
  to_integer("fcvtzs#1", FPRounding_ZERO, false, 1, TO("fcvtzs", ", #1"));
  to_integer("fcvtzu#1", FPRounding_ZERO, true, 1, TO("fcvtzu", ", #1"));
  to_integer("fcvtzs#16", FPRounding_ZERO, false, 16, TO("fcvtzs", ", #16"));
  to_integer("fcvtzu#16", FPRounding_ZERO, true, 16, TO("fcvtzu", ", #16"));
  to_width<dword>("fcvtzs#64.x", FPRounding_ZERO, false, 64, FORMS(TO_X, "fcvtzs", ", #64"));
  to_width<dword>("fcvtzu#64.x", FPRounding_ZERO, true, 64, FORMS(TO_X, "fcvtzu", ", #64"));
  from_integer("scvtf", false, 0, FROM("scvtf", ""));
  from_integer("ucvtf", true, 0, FROM("ucvtf", ""));
  from_integer("scvtf#16", false, 16, FROM("scvtf", ", #16"));
  from_integer("ucvtf#16", true, 16, FROM("ucvtf", ", #16"));
  from_width<dword, half, single, dword>("scvtf#64.x", false, 64, FORMS(FROM_X, "scvtf", ", #64"));
  from_width<dword, half, single, dword>("ucvtf#64.x", true, 64, FORMS(FROM_X, "ucvtf", ", #64"));
}

void integral() {
  const auto to = [](FPRounding rounding) {
    return [=](auto a, FPSCR& s) { return FPRoundInt(a, rounding, false, s); };
  };
  all("frintn", FORMS(ONE, "frintn"), to(FPRounding_TIEEVEN));
  all("frintp", FORMS(ONE, "frintp"), to(FPRounding_POSINF));
  all("frintm", FORMS(ONE, "frintm"), to(FPRounding_NEGINF));
  all("frintz", FORMS(ONE, "frintz"), to(FPRounding_ZERO));
  all("frinta", FORMS(ONE, "frinta"), to(FPRounding_TIEAWAY));
  all("frinti", FORMS(ONE, "frinti"),
      [](auto a, FPSCR& s) { return FPRoundInt(a, s.rounding(), false, s); });
  all("frintx", FORMS(ONE, "frintx"),
      [](auto a, FPSCR& s) { return FPRoundInt(a, s.rounding(), true, s); });
}

constexpr auto trigonometric(unsigned long index) {
  return [=](auto a, auto b, FPSCR& s) { return FPTRIMADD(index, a, b, s); };
}

void special_functions() {
  all("frecpe", FORMS(ONE, "frecpe"), [](auto a, FPSCR& s) { return FPRecipEstimate(a, s); });
  all("frsqrte", FORMS(ONE, "frsqrte"), [](auto a, FPSCR& s) { return FPRSqrtEstimate(a, s); });
  all("frecpx", FORMS(ONE, "frecpx"), [](auto a, FPSCR& s) { return FPRecpX(a, s); });
  const auto fscale = FORMS(SVE_MERGING, "fscale");
  one_form<half, last_operand::integer>("fscale", fscale, FPScale16);
  one_form<single, last_operand::integer>("fscale", fscale, FPScale32);
  one_form<dword, last_operand::integer>("fscale", fscale, FPScale64);
  one_form<half>("fscale#0", fscale, FPProcess16);  // the second operand is 0
  one_form<single>("fscale#0", fscale, FPProcess32);
  one_form<dword>("fscale#0", fscale, FPProcess64);
  all("fexpa", FORMS(SVE_ONE, "fexpa"), [](auto a, FPSCR&) { return FPEXPA(a); });
  all("ftsmul", FORMS(SVE_TWO, "ftsmul"),
      [](auto a, auto b, FPSCR& s) { return FPTRISMUL(a, b, s); });
  all("ftmad#0", FORMS(FTMAD, "0"), trigonometric(0));
  all("ftmad#1", FORMS(FTMAD, "1"), trigonometric(1));
  all("ftmad#2", FORMS(FTMAD, "2"), trigonometric(2));
  all("ftmad#3", FORMS(FTMAD, "3"), trigonometric(3));
  all("ftmad#4", FORMS(FTMAD, "4"), trigonometric(4));
  all("ftmad#5", FORMS(FTMAD, "5"), trigonometric(5));
  all("ftmad#6", FORMS(FTMAD, "6"), trigonometric(6));
  all("ftmad#7", FORMS(FTMAD, "7"), trigonometric(7));
}

}  // namespace

const std::vector<operation>& operations() {
  if (table.empty()) {
    arithmetic();
    fused();
    comparisons();
    conversions();
    integers();
    integral();
    special_functions();
  }
  return table;
}

}  // namespace fp_test
