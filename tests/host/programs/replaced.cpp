// For the replacing client: UDF #0x5e00 + n stands for a call that sets X0 to FPCR and FPSR as it
// found them, X1 to the instruction's address and X2 to a constant. With n = 1 it recovers from a
// fault of its own, with n = 2 it faults.
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

volatile int* volatile unmapped = nullptr;

void check(const char* what, std::uint64_t got, std::uint64_t expected) {
  if (got != expected) std::printf("%s: %#lx, not %#lx\n", what, got, expected);
}

template <int N>
void try_marker() {
  constexpr std::uint64_t round_to_zero = 0xc00000;
  register std::uint64_t x0 asm("x0");
  register std::uint64_t x1 asm("x1");
  register std::uint64_t x2 asm("x2");
  std::uint64_t here = 0;
  errno = 33;
  asm volatile(
      "msr fpcr, %4\n\t"
      "msr fpsr, %5\n\t"
      "adr %3, 1f\n"
      "1: .inst %c6\n\t"
      "msr fpcr, xzr"
      : "=r"(x0), "=r"(x1), "=r"(x2), "=&r"(here)
      : "r"(round_to_zero), "r"(0x15ull), "i"(0x5e00 + N)
      : "memory");
  const std::uint64_t modes = x0;
  const std::uint64_t address = x1;
  const std::uint64_t constant = x2;
  check("errno", static_cast<std::uint64_t>(errno), 33);
  check("fpcr and fpsr", modes, round_to_zero << 32 | 0x15);
  check("address", address, here);
  check("constant", constant, 0x1234567890);
}

}  // namespace

int main(int argc, char** argv) {
  try_marker<0>();
  try_marker<1>();
  std::thread(try_marker<1>).join();
  if (argc > 1 && std::strcmp(argv[1], "client") == 0) try_marker<2>();
  if (argc > 1 && std::strcmp(argv[1], "program") == 0) *unmapped = 1;
  return 6;
}
