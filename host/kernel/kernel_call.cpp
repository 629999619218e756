#include "host/kernel/kernel_call.h"

namespace host {

std::int64_t kernel_call(std::int64_t number, std::uint64_t a0, std::uint64_t a1, std::uint64_t a2,
                         std::uint64_t a3, std::uint64_t a4, std::uint64_t a5) {
  register std::uint64_t x0 asm("x0") = a0;
  register std::uint64_t x1 asm("x1") = a1;
  register std::uint64_t x2 asm("x2") = a2;
  register std::uint64_t x3 asm("x3") = a3;
  register std::uint64_t x4 asm("x4") = a4;
  register std::uint64_t x5 asm("x5") = a5;
  register std::int64_t x8 asm("x8") = number;
  asm volatile("svc #0"
               : "+r"(x0)
               : "r"(x1), "r"(x2), "r"(x3), "r"(x4), "r"(x5), "r"(x8)
               : "memory", "cc");
  return static_cast<std::int64_t>(x0);
}

}  // namespace host
