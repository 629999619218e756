// Sorts 12 rows of numbers column by column with an odd-even transposition network. Each of its
// comparators is a minimum and a maximum of two whole rows. The compiler vectorises it, for
// elements of all widths.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <utility>

#include "examples/check.h"

namespace {

constexpr std::size_t rows = 12;
constexpr std::size_t columns = 1237;

template <class T>
using table = std::array<std::array<T, columns>, rows>;

template <class T>
void compare_rows(T* __restrict upper, T* __restrict lower) {
  for (std::size_t i = 0; i < columns; ++i) {
    const T small = std::min(upper[i], lower[i]);
    lower[i] = std::max(upper[i], lower[i]);
    upper[i] = small;
  }
}

template <class T>
__attribute__((noinline)) void sort_columns(table<T>& numbers) {
  for (std::size_t round = 0; round < rows; ++round) {
    for (std::size_t r = round % 2; r + 1 < rows; r += 2) {
      compare_rows(numbers[r].data(), numbers[r + 1].data());
    }
  }
}

template <class T>
SCALAR void sort_columns_scalar(table<T>& numbers) {
  for (std::size_t i = 0; i < columns; ++i) {
    for (std::size_t r = 1; r < rows; ++r) {
      for (std::size_t k = r; k > 0 && numbers[k][i] < numbers[k - 1][i]; --k) {
        std::swap(numbers[k][i], numbers[k - 1][i]);
      }
    }
  }
}

template <class T>
void run(const char* name) {
  static table<T> numbers, expected;
  fill_random(&numbers, sizeof(numbers), sizeof(T));
  expected = numbers;
  sort_columns(numbers);
  sort_columns_scalar(expected);
  check_equal(name, &numbers, &expected, sizeof(numbers));
  std::printf("%-8s %zu columns sorted, %016lx\n", name, columns,
              fingerprint(&numbers, sizeof(numbers)));
}

}  // namespace

int main() {
  run<std::uint8_t>("uint8");
  run<std::int16_t>("int16");
  run<std::uint32_t>("uint32");
  run<std::int64_t>("int64");
}
