// Calls, returns and ways out of them: recursion, calls through pointers, switches, longjmp,
// and exceptions, whose unwinder reads return addresses from the stack.
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>

namespace {

[[gnu::noinline]] int depth(int n) { return n == 0 ? 0 : 1 + depth(n - 1); }

[[gnu::noinline]] int throw_from(int n) {
  const std::string local(static_cast<std::size_t>(n), 'x');  // a destructor to run on the way
  if (n == 0) throw std::runtime_error("bottom");
  return throw_from(n - 1) + static_cast<int>(local.size());
}

std::uint32_t interpret(std::uint32_t value, int steps) {
  std::uint32_t state = 1;
  for (int i = 0; i < steps; i++) {
    switch (state % 6) {
      case 0: value += 3; break;
      case 1: value ^= value << 5; break;
      case 2: value -= state; break;
      case 3: value *= 17; break;
      case 4: value = ~value; break;
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
  int caught = 0;
  for (int i = 0; i < 200; i++) {
    try {
      throw_from(i % 20);
    } catch (const std::exception& error) {
      caught += error.what()[0] == 'b' ? 1 : 0;
    }
  }
  std::printf("caught %d\n", caught);
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
