// Prints what libsleef's functions for SVE compute, as hexadecimal bits. The program calls them by
// the vector procedure call standard, so it has a few SVE instructions itself.
#include <arm_sve.h>
#include <dlfcn.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

typedef svfloat64_t (*double_function)(svfloat64_t);
typedef svfloat32_t (*float_function)(svfloat32_t);

static const char* const double_names[] = {
    "Sleef_sindx_u10sve",  "Sleef_cosdx_u35sve",  "Sleef_tandx_u10sve",
    "Sleef_expdx_u10sve",  "Sleef_logdx_u10sve",  "Sleef_cbrtdx_u10sve",
    "Sleef_asindx_u10sve", "Sleef_tanhdx_u10sve", "Sleef_lgammadx_u10sve"};
static const char* const float_names[] = {"Sleef_sinfx_u10sve", "Sleef_expfx_u10sve",
                                          "Sleef_logfx_u10sve", "Sleef_cbrtfx_u10sve",
                                          "Sleef_erffx_u10sve"};

enum { count = 256 };

static void run_double(const char* name, double_function function) {
  double x[count], y[count];
  uint64_t checksum = 0;
  for (int i = 0; i < count; i++) x[i] = (i - 100) * 0.37 + (i == 7 ? 1e300 : 0);
  for (int i = 0; i < count; i += (int)svcntd()) {
    const svbool_t p = svwhilelt_b64(i, count);
    svst1(p, y + i, function(svld1(p, x + i)));
  }
  for (int i = 0; i < count; i++) {
    uint64_t bits;
    memcpy(&bits, y + i, sizeof bits);
    checksum = checksum * 31 + bits;
  }
  printf("%s %a %016llx\n", name, y[123], (unsigned long long)checksum);
}

static void run_float(const char* name, float_function function) {
  float x[count], y[count];
  uint64_t checksum = 0;
  for (int i = 0; i < count; i++) x[i] = (float)(i - 100) * 0.37f;
  for (int i = 0; i < count; i += (int)svcntw()) {
    const svbool_t p = svwhilelt_b32(i, count);
    svst1(p, y + i, function(svld1(p, x + i)));
  }
  for (int i = 0; i < count; i++) {
    uint32_t bits;
    memcpy(&bits, y + i, sizeof bits);
    checksum = checksum * 31 + bits;
  }
  printf("%s %a %016llx\n", name, y[123], (unsigned long long)checksum);
}

int main(void) {
  void* const library = dlopen("libsleef.so.3", RTLD_NOW);
  if (library == NULL) return printf("%s\n", dlerror()), 1;
  for (unsigned i = 0; i < sizeof double_names / sizeof double_names[0]; i++) {
    const double_function function = (double_function)dlsym(library, double_names[i]);
    if (function == NULL) return printf("%s\n", dlerror()), 1;
    run_double(double_names[i], function);
  }
  for (unsigned i = 0; i < sizeof float_names / sizeof float_names[0]; i++) {
    const float_function function = (float_function)dlsym(library, float_names[i]);
    if (function == NULL) return printf("%s\n", dlerror()), 1;
    run_float(float_names[i], function);
  }
}
