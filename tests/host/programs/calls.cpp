// Calls, returns and ways out of them: recursion, tables of functions, virtual calls, switches,
// longjmp, and exceptions, whose unwinder reads return addresses from the stack.
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

[[gnu::noinline]] int depth(int n) { return n == 0 ? 0 : 1 + depth(n - 1); }

int ackermann(int m, int n) {
  if (m == 0) return n + 1;
  return n == 0 ? ackermann(m - 1, 1) : ackermann(m - 1, ackermann(m, n - 1));
}

[[gnu::noinline]] int throw_from(int n) {
  const std::string local(static_cast<std::size_t>(n), 'x');  // a destructor to run on the way
  if (n == 0) throw std::runtime_error("bottom");
  return throw_from(n - 1) + static_cast<int>(local.size());
}

struct shape {
  virtual ~shape() = default;
  [[nodiscard]] virtual int area() const = 0;
};
struct square : shape {
  explicit square(int side) : side(side) {}
  [[nodiscard]] int area() const override { return side * side; }
  int side;
};
struct rectangle : shape {
  rectangle(int a, int b) : a(a), b(b) {}
  [[nodiscard]] int area() const override { return a * b; }
  int a;
  int b;
};

std::uint32_t interpret(std::uint32_t value, int steps) {
  std::uint32_t state = 1;
  for (int i = 0; i < steps; i++) {
    switch (state % 9) {
      case 0: value += 3; break;
      case 1: value ^= value << 5; break;
      case 2: value -= state; break;
      case 3: value *= 17; break;
      case 4: value = ~value; break;
      case 5: value >>= 1; break;
      case 6: value += value << 3; break;
      case 7: value ^= 0x5555; break;
      default: value += state; break;
    }
    state = state * 1664525 + value + 1013904223;
  }
  return value;
}

std::jmp_buf back;

[[gnu::noinline]] int jump_from(int n) {
  if (n == 0) std::longjmp(back, 7);
  return n > 0 ? depth(n) + jump_from(n - 1) : 0;
}

[[gnu::noinline]] void* return_address() { return __builtin_return_address(0); }

}  // namespace

int main() {
  std::printf("depth %d\n", depth(50000));
  std::printf("ackermann %d\n", ackermann(2, 300));
  int caught = 0;
  for (int i = 0; i < 200; i++) {
    try {
      throw_from(i % 20);
    } catch (const std::exception& error) {
      caught += error.what()[0] == 'b' ? 1 : 0;
    }
  }
  std::printf("caught %d\n", caught);
  std::vector<std::unique_ptr<shape>> shapes;
  for (int i = 0; i < 100; i++) {
    if (i % 3 == 0) {
      shapes.push_back(std::make_unique<square>(i));
    } else {
      shapes.push_back(std::make_unique<rectangle>(i, 2));
    }
  }
  int area = 0;
  for (const auto& s : shapes) area += s->area();
  std::printf("area %d\n", area);
  std::printf("interpreted %x\n", interpret(12345, 200000));
  const int jumped = setjmp(back);
  if (jumped == 0) jump_from(100);
  std::printf("jumped %d\n", jumped);
  const auto here = reinterpret_cast<std::uintptr_t>(&main);
  const auto address = reinterpret_cast<std::uintptr_t>(return_address());
  std::printf("returns to the program %d\n", address - here < 65536 ? 1 : 0);
  std::function<int(int)> chain = [](int x) { return x; };
  for (int i = 0; i < 50; i++) chain = [chain, i](int x) { return chain(x) + i; };
  std::printf("chain %d\n", chain(5));
  return 0;
}
