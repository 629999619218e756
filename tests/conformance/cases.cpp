#include "tests/conformance/cases.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "tests/conformance/exceptions.h"
#include "tests/conformance/random.h"
#include "tests/conformance/words.h"

namespace conformance {
namespace {

constexpr unsigned max_reports_per_row = 2;
constexpr unsigned max_failures_per_row = 20;

// These are too large for a stack, and there is only one thread.
test_case tested;
machine_image native;
cpu_state emulated;
arena_content native_memory;

class row_test {
 public:
  row_test(const row_shape& shape, failure_report report)
      : shape_(shape), exception_(find_exception(shape)), report_(report) {
    result.row = shape.row;
  }

  // Runs at most max_prepared cases. Stops once `wanted` are compared.
  void run(const std::vector<instruction_case>& cases, unsigned wanted) {
    std::vector<std::uint32_t> words;
    words.reserve(cases.size());
    for (const instruction_case& each : cases) words.push_back(native_word(each.word));
    prepare(words);
    for (std::size_t i = 0; i < cases.size() && !done(wanted); ++i) run_one(i, cases[i]);
  }

  bool done(unsigned wanted) const {
    return result.compared >= wanted || result.failed >= max_failures_per_row;
  }

  row_result result{};

 private:
  std::uint32_t native_word(std::uint32_t word) const {
    const bool replaced = exception_ != nullptr && exception_->native_word != nullptr;
    return replaced ? exception_->native_word(word) : word;
  }

  void run_one(std::size_t index, const instruction_case& which) {
    make_state(shape_, which.word, which.state_seed, tested);
    if (shape_.memory) arena() = tested.memory;
    const run_outcome outcome = run_native(index, tested.before, native);
    if (outcome.signal == SIGILL) {
      ++result.reserved;
      return;
    }
    if (outcome.signal != 0) stop_at_native_fault(outcome);
    if (exception_ != nullptr && exception_->correct != nullptr)
      exception_->correct(shape_, which.word, tested.before, native);
    judge(run_emulated_too());
  }

  emulated_outcome run_emulated_too() const {
    if (shape_.memory) {
      native_memory = arena();
      arena() = tested.memory;
    }
    unpack(tested.before, emulated);
    return run_emulated(tested.word, emulated);
  }

  void judge(const emulated_outcome& outcome) {
    ++result.compared;
    const auto found = compare(tested, {&native, &native_memory, &emulated, &arena(), outcome});
    if (found.empty()) return;
    if (result.failed++ < max_reports_per_row) report_(tested, found);
    result.status = row_status::failing;
  }

  // The state is made so that this can't happen.
  [[noreturn]] void stop_at_native_fault(const run_outcome& outcome) const {
    std::fprintf(stderr,
                 "conformance: error in this test itself: %s, word 0x%08x, state seed 0x%016llx, "
                 "raised signal %d on the processor at address 0x%llx\n",
                 std::string{shape_.row->name}.c_str(), tested.word,
                 static_cast<unsigned long long>(tested.state_seed), outcome.signal,
                 static_cast<unsigned long long>(outcome.fault_address));
    std::exit(2);
  }

  const row_shape& shape_;
  const exception* exception_;
  failure_report report_;
};

}  // namespace

instruction_case random_case(const row_shape& shape, std::uint64_t seed, unsigned index) {
  random_source random{derive_seed(seed, shape.row->name, index)};
  const std::uint32_t word = make_word(shape, random);
  return {word, random()};
}

row_result test_row(const row_shape& shape, unsigned count, const case_maker& make,
                    failure_report report) {
  row_test test{shape, report};
  const unsigned limit = 8 * count + 64;
  for (unsigned made = 0; made < limit && !test.done(count);) {
    const unsigned missing = count - test.result.compared;
    const unsigned batch = std::clamp<unsigned>(missing + missing / 8, 1, max_prepared);
    std::vector<instruction_case> cases;
    while (cases.size() < batch) cases.push_back(make(made++));
    test.run(cases, count);
  }
  if (test.result.compared == 0) test.result.status = row_status::failing;
  return test.result;
}

}  // namespace conformance
