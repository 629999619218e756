// Several kinds of code without SVE, for bench/host: translated NAME ROUNDS runs the given rounds
// and prints a checksum. With 0 rounds it only starts and ends.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

// A thousand blocks of a few instructions each, which are run once.
extern "C" std::uint64_t run_short_blocks(std::uint64_t value);
extern "C" std::uint64_t run_long_blocks(std::uint64_t value);

namespace {

// --- Loops over integers -------------------------------------------------------------------------

std::uint64_t multiply_matrices() {
  constexpr int size = 24;
  static std::uint32_t a[size][size];
  static std::uint32_t b[size][size];
  std::uint64_t sum = 0;
  for (int i = 0; i < size; i++) {
    for (int j = 0; j < size; j++) {
      a[i][j] = static_cast<std::uint32_t>(i * j + 1);
      b[i][j] = static_cast<std::uint32_t>(i + 3 * j);
    }
  }
  for (int i = 0; i < size; i++) {
    for (int j = 0; j < size; j++) {
      std::uint32_t dot = 0;
      for (int k = 0; k < size; k++) dot += a[i][k] * b[k][j];
      sum = sum * 31 + dot;
    }
  }
  return sum;
}

std::uint64_t count_primes() {
  static bool composite[4096];
  std::memset(composite, 0, sizeof composite);
  std::uint64_t primes = 0;
  for (unsigned i = 2; i < std::size(composite); i++) {
    if (composite[i]) continue;
    primes++;
    for (unsigned j = i * i; j < std::size(composite); j += i) composite[j] = true;
  }
  return primes;
}

std::uint64_t collatz() {
  std::uint64_t steps = 0;
  for (std::uint64_t start = 1; start < 200; start++) {
    for (std::uint64_t n = start; n != 1; steps++) n = n % 2 != 0 ? 3 * n + 1 : n / 2;
  }
  return steps;
}

// --- Loops over floating point -------------------------------------------------------------------

// Each block of the loop writes V registers.
std::uint64_t integrate() {
  double position = 1;
  double speed = 0;
  double energy = 0;
  for (int i = 0; i < 20000; i++) {
    const double force = position > 0.5 ? -position : -0.5 * position * position;
    speed += force * 0.001;
    position += speed * 0.001;
    energy += position * position + speed * speed;
  }
  return static_cast<std::uint64_t>(energy);
}

// --- Calls ---------------------------------------------------------------------------------------

[[gnu::noipa]] std::uint64_t fibonacci(std::uint64_t n) {
  return n < 2 ? n : fibonacci(n - 1) + fibonacci(n - 2);
}

struct tree {
  explicit tree(std::uint32_t value) : key(value) {}

  std::unique_ptr<tree> left;
  std::unique_ptr<tree> right;
  std::uint32_t key;
};

[[gnu::noinline]] void insert(std::unique_ptr<tree>& at, std::uint32_t key) {
  if (at == nullptr) {
    at = std::make_unique<tree>(key);
  } else {
    insert(key < at->key ? at->left : at->right, key);
  }
}

[[gnu::noinline]] std::uint64_t fold(const tree* at, std::uint64_t value) {
  if (at == nullptr) return value;
  return fold(at->right.get(), fold(at->left.get(), value) * 31 + at->key);
}

std::uint64_t grow_a_tree() {
  std::unique_ptr<tree> root;
  std::uint32_t key = 1;
  for (int i = 0; i < 200; i++) insert(root, key = key * 1664525 + 1013904223);
  return fold(root.get(), 0);
}

std::uint64_t recurse() { return fibonacci(15); }

// --- Indirect branches ---------------------------------------------------------------------------

enum op : std::uint8_t { push, add, subtract, duplicate, swap, jump_if, drop, halt };

// Counts down from 200 and adds up. Each operation takes a few instructions.
constexpr std::uint8_t program[] = {push, 0,    push, 200,      duplicate, push,    0, add,  swap,
                                    drop, push, 1,    subtract, duplicate, jump_if, 4, drop, halt};

std::uint64_t interpret_by_goto() {
  static const void* const operations[] = {&&do_push, &&do_add,     &&do_subtract, &&do_duplicate,
                                           &&do_swap, &&do_jump_if, &&do_drop,     &&do_halt};
  std::uint64_t stack[16] = {};
  std::uint64_t* top = stack;
  std::uint64_t executed = 0;
  const std::uint8_t* next = program;
#define NEXT() \
  executed++;  \
  goto* operations[*next++]
  NEXT();
do_push:
  *++top = *next++;
  NEXT();
do_add:
  top--;
  *top += top[1];
  NEXT();
do_subtract:
  top--;
  *top -= top[1];
  NEXT();
do_duplicate:
  top++;
  *top = top[-1];
  NEXT();
do_swap:
  std::swap(top[0], top[-1]);
  NEXT();
do_jump_if:
  next = *top-- != 0 ? program + *next : next + 1;
  NEXT();
do_drop:
  top--;
  NEXT();
do_halt:
  return executed;
#undef NEXT
}

std::uint64_t interpret_by_switch() {
  std::uint64_t stack[16] = {};
  std::uint64_t* top = stack;
  std::uint64_t executed = 0;
  for (const std::uint8_t* next = program;; executed++) {
    switch (*next++) {
      case push: *++top = *next++; break;
      case add:
        top--;
        *top += top[1];
        break;
      case subtract:
        top--;
        *top -= top[1];
        break;
      case duplicate:
        top++;
        *top = top[-1];
        break;
      case swap: std::swap(top[0], top[-1]); break;
      case jump_if: next = *top-- != 0 ? program + *next : next + 1; break;
      case drop: top--; break;
      default: return executed;
    }
  }
}

struct shape {
  virtual ~shape() = default;
  [[nodiscard]] virtual std::uint64_t area() const = 0;
};
struct square : shape {
  std::uint64_t side = 3;
  [[nodiscard]] std::uint64_t area() const override { return side * side; }
};
struct rectangle : shape {
  std::uint64_t width = 2;
  std::uint64_t height = 5;
  [[nodiscard]] std::uint64_t area() const override { return width * height; }
};
struct hole : shape {
  [[nodiscard]] std::uint64_t area() const override { return 1; }
};

std::uint64_t call_virtual_functions() {
  static std::vector<std::unique_ptr<shape>> shapes;
  if (shapes.empty()) {
    for (int i = 0; i < 100; i++) {
      shapes.push_back(std::make_unique<square>());
      shapes.push_back(std::make_unique<rectangle>());
      shapes.push_back(std::make_unique<hole>());
    }
  }
  std::uint64_t sum = 0;
  for (const auto& each : shapes) sum += each->area();
  return sum;
}

int compare(const void* a, const void* b) {
  const auto left = *static_cast<const std::uint32_t*>(a);
  const auto right = *static_cast<const std::uint32_t*>(b);
  return left < right ? -1 : static_cast<int>(left > right);
}

std::uint64_t sort_by_callback() {
  std::uint32_t values[200];
  std::uint32_t value = 1;
  for (std::uint32_t& each : values) each = value = value * 1664525 + 1013904223;
  std::qsort(values, std::size(values), sizeof values[0], compare);
  return values[100];
}

std::uint64_t short_blocks() { return run_short_blocks(1); }
std::uint64_t long_blocks() { return run_long_blocks(1); }

constexpr struct {
  const char* name;
  std::uint64_t (*run)();
} kinds[] = {
    {"matrices", multiply_matrices},
    {"primes", count_primes},
    {"collatz", collatz},
    {"integrate", integrate},
    {"fibonacci", recurse},
    {"tree", grow_a_tree},
    {"sort", sort_by_callback},
    {"virtual", call_virtual_functions},
    {"switch", interpret_by_switch},
    {"goto", interpret_by_goto},
    {"short_blocks", short_blocks},
    {"long_blocks", long_blocks},
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  for (const auto& kind : kinds) {
    if (std::strcmp(kind.name, argv[1]) != 0) continue;
    std::uint64_t sum = 0;
    for (long rounds = std::strtol(argv[2], nullptr, 0); rounds > 0; rounds--) {
      sum = sum * 31 + kind.run();
    }
    std::printf("%lx\n", sum);
    return 0;
  }
  return 2;
}
