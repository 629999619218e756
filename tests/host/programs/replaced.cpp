// For the replacing client: UDF #0x5e00 + n stands for a call that adds n to X26, X27 and X28,
// sets X0 to FPCR and FPSR as it found them, X1 to the instruction's address and X2 to a constant.
// With n = 2 it recovers from a fault of its own, with n = 3 it faults.
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <thread>

namespace {

volatile int* volatile unmapped = nullptr;

struct outcome {
  std::uint64_t x0, x1, x2, x26, x27, x28, x19, nzcv, sp_before, sp_after, q7, here;
};

template <int N>
[[gnu::noinline]] outcome run_marker(std::uint64_t fpcr) {
  outcome o{};
  outcome* p = &o;
  asm volatile(
      "msr fpcr, %1\n\t"
      "mov x9, #0x15\n\t"
      "msr fpsr, x9\n\t"
      "mov x26, #260\n\tmov x27, #270\n\tmov x28, #280\n\tmov x19, #190\n\t"
      "mov x9, #77\n\tdup v7.2d, x9\n\t"
      "mov x9, sp\n\tstr x9, [%0, #64]\n\t"
      "adr x9, 1f\n\tstr x9, [%0, #88]\n\t"
      "cmp x26, x27\n"
      "1: .inst %c2\n\t"
      "str x28, [%0, #40]\n\tstp x26, x27, [%0, #24]\n\t"
      "stp x0, x1, [%0]\n\tstp x2, x2, [%0, #16]\n\tstr x26, [%0, #24]\n\tstr x19, [%0, #48]\n\t"
      "mrs x9, nzcv\n\tstr x9, [%0, #56]\n\t"
      "mov x9, sp\n\tstr x9, [%0, #72]\n\tstr d7, [%0, #80]\n\t"
      "msr fpcr, xzr"
      : "+r"(p)
      : "r"(fpcr), "i"(0x5e00 + N)
      : "x0", "x1", "x2", "x9", "x19", "x26", "x27", "x28", "v7", "cc", "memory");
  return o;
}

void check(const char* what, std::uint64_t got, std::uint64_t expected) {
  if (got != expected) std::printf("%s: %#lx, not %#lx\n", what, got, expected);
}

template <int N>
void try_marker() {
  constexpr std::uint64_t round_to_zero = 0xc00000;
  errno = 33;
  const outcome o = run_marker<N>(round_to_zero);
  check("errno", static_cast<std::uint64_t>(errno), 33);
  check("x26", o.x26, 260 + N);
  check("x27", o.x27, 270 + N);
  check("x28", o.x28, 280 + N);
  check("x19", o.x19, 190);
  check("fpcr and fpsr", o.x0, round_to_zero << 32 | 0x15);
  check("address", o.x1, o.here);
  check("constant", o.x2, 0x1234567890);
  check("nzcv", o.nzcv, 0x80000000);
  check("sp", o.sp_after, o.sp_before);
  check("q7", o.q7, 77);
  std::printf("marker %d\n", N);
}

void try_in_loop() {
  for (int i = 0; i < 1000; i++) run_marker<1>(0);
}

}  // namespace

int main(int argc, char** argv) {
  try_marker<0>();
  try_marker<1>();
  try_marker<2>();
  std::thread one(try_in_loop);
  std::thread other(try_in_loop);
  one.join();
  other.join();
  std::thread(try_marker<2>).join();
  if (argc > 1 && std::strcmp(argv[1], "client") == 0) run_marker<3>(0);
  if (argc > 1 && std::strcmp(argv[1], "program") == 0) *unmapped = 1;
  return 6;
}
