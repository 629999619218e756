// The longest Collatz chain below 4000: n -> n / 2 or 3 n + 1, until 1. Each of four threads
// processes a vector of starting values at a time, with a predicate of those that have not reached
// 1. So every thread keeps its own vectors and predicates live over long loops.
#include <arm_sve.h>
#include <cstdint>
#include <cstdio>
#include <thread>
#include <vector>

#include "examples/check.h"

namespace {

constexpr std::int64_t limit = 4000;
constexpr std::int64_t thread_count = 4;

// The chain lengths of `count` numbers, beginning with `first`.
void chain_lengths(std::int64_t* lengths, std::int64_t first, std::int64_t count) {
  for (std::int64_t i = 0; i < count; i += static_cast<std::int64_t>(svcntd())) {
    const svbool_t pg = svwhilelt_b64(i, count);
    svint64_t n = svindex_s64(first + i, 1);
    svint64_t length = svdup_s64(0);
    for (svbool_t on_way = svcmpgt(pg, n, 1); svptest_any(pg, on_way);
         on_way = svcmpgt(on_way, n, 1)) {
      const svbool_t odd = svcmpne(on_way, svand_x(on_way, n, 1), 0);
      const svint64_t half = svasr_x(on_way, n, 1);
      n = svsel(odd, svadd_x(on_way, svmul_x(on_way, n, 3), 1), half);
      length = svadd_m(on_way, length, 1);
    }
    svst1(pg, lengths + i, length);
  }
}

SCALAR std::int64_t chain_length(std::int64_t n) {
  std::int64_t length = 0;
  for (; n > 1; ++length) n = n % 2 != 0 ? 3 * n + 1 : n / 2;
  return length;
}

}  // namespace

int main() {
  std::vector<std::int64_t> lengths(limit);
  std::vector<std::thread> threads;
  for (std::int64_t t = 0; t < thread_count; ++t) {
    const std::int64_t first = t * (limit / thread_count);
    threads.emplace_back(chain_lengths, lengths.data() + first, first, limit / thread_count);
  }
  for (std::thread& thread : threads) thread.join();

  std::vector<std::int64_t> expected(limit);
  std::int64_t longest = 0;
  for (std::int64_t n = 0; n < limit; ++n) {
    expected[n] = chain_length(n);
    if (expected[n] > expected[longest]) longest = n;
  }
  check_equal("chain lengths", lengths.data(), expected.data(), limit * sizeof(std::int64_t));
  std::printf("longest chain below %ld: %ld steps from %ld\n", limit, lengths[longest], longest);
}
