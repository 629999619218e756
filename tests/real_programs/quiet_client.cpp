// The launcher's own client without its report at the end. It is for programs that read the
// standard error of their children: a test suite takes two more lines there for a fault.
//
// The client writes its report to the C library's stderr, which becomes a stream to nowhere,
// without a descriptor that the program could see.
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

#include "dr_api.h"

DR_EXPORT int _USES_DR_VERSION_;
int _USES_DR_VERSION_ = 602;

static ssize_t drop(void* /*cookie*/, const char* /*text*/, size_t size) {
  return static_cast<ssize_t>(size);
}

DR_EXPORT void dr_client_main(client_id_t id, int argc, const char* argv[]) {
  using client_main = void(client_id_t, int, const char**);
  void* const client = dlopen("libsve_client.so", RTLD_NOW | RTLD_LOCAL);
  if (client == nullptr) {
    std::fprintf(stderr, "%s\n", dlerror());
    dr_abort();
  }
  stderr = fopencookie(nullptr, "w",
                       {.read = nullptr, .write = drop, .seek = nullptr, .close = nullptr});
  reinterpret_cast<client_main*>(dlsym(client, "dr_client_main"))(id, argc, argv);
}
