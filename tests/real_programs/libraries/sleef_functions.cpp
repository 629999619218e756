// Prints what libsleef's functions for SVE compute, as hexadecimal bits. The program calls them by
// the vector procedure call standard, so it has a few SVE instructions itself.
#include <arm_sve.h>
#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace {

// A predicate of bytes serves elements of all sizes.
template <typename Vector, typename Element, typename Bits>
void run(void* library, const char* name, Element huge) {
  constexpr int count = 256;
  constexpr auto bytes = static_cast<int>(count * sizeof(Element));
  auto* const function = reinterpret_cast<Vector (*)(Vector)>(dlsym(library, name));
  if (function == nullptr) std::printf("%s\n", dlerror()), std::exit(1);
  std::array<Element, count> x;
  std::array<Element, count> y;
  for (int i = 0; i < count; i++) x[i] = static_cast<Element>(i - 100) * static_cast<Element>(0.37);
  x[7] += huge;
  for (int at = 0; at < bytes; at += static_cast<int>(svcntb())) {
    const svbool_t p = svwhilelt_b8(at, bytes);
    const std::size_t i = at / sizeof(Element);
    svst1(p, &y[i], function(svld1(p, &x[i])));
  }
  std::uint64_t checksum = 0;
  for (const Element value : y) checksum = checksum * 31 + std::bit_cast<Bits>(value);
  std::printf("%s %a %016lx\n", name, static_cast<double>(y[123]), checksum);
}

}  // namespace

int main() {
  void* const library = dlopen("libsleef.so.3", RTLD_NOW);
  if (library == nullptr) return std::printf("%s\n", dlerror()), 1;
  for (const char* name : {"Sleef_sindx_u10sve", "Sleef_cosdx_u35sve", "Sleef_tandx_u10sve",
                           "Sleef_expdx_u10sve", "Sleef_logdx_u10sve", "Sleef_cbrtdx_u10sve",
                           "Sleef_asindx_u10sve", "Sleef_tanhdx_u10sve", "Sleef_lgammadx_u10sve"}) {
    run<svfloat64_t, double, std::uint64_t>(library, name, 1e300);
  }
  for (const char* name : {"Sleef_sinfx_u10sve", "Sleef_expfx_u10sve", "Sleef_logfx_u10sve",
                           "Sleef_cbrtfx_u10sve", "Sleef_erffx_u10sve"}) {
    run<svfloat32_t, float, std::uint32_t>(library, name, 0);
  }
}
