// Sorts keys of several types by VQSort of libhwy, whose version for SVE runs if the processor has
// it. With vectors of 1024 bits or more, libhwy 1.0.3 does not sort keys of 64 bits right. What it
// makes of them differs from run to run, so only the verdict is printed.
//
// The library is opened at run time. Its class is declared here as the library's binary
// interface has it: a pointer, and overloads of the call operator.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <random>
#include <vector>

namespace {

struct sorter {
  void* scratch;
};
struct ascending {};

void* library;

template <typename Function>
Function* function(const char* name) {
  auto* const found = reinterpret_cast<Function*>(dlsym(library, name));
  if (found == nullptr) std::printf("%s\n", dlerror()), std::exit(1);
  return found;
}

template <typename Key>
void sort(const sorter& by, const char* operation, const char* what) {
  const auto vqsort = function<void(const sorter*, Key*, std::size_t, ascending)>(operation);
  std::mt19937_64 random(12);
  for (const std::size_t count : {0, 1, 7, 100, 1000, 5000}) {
    std::vector<Key> keys(count);
    for (Key& key : keys) key = static_cast<Key>(random() >> 3);
    std::vector<Key> expected = keys;
    std::sort(expected.begin(), expected.end());
    vqsort(&by, keys.data(), count, {});
    std::printf("%s %zu: %s\n", what, count, keys == expected ? "sorted" : "not sorted");
  }
}

}  // namespace

int main() {
  library = dlopen("libhwy_contrib.so.1", RTLD_NOW);
  if (library == nullptr) return std::printf("%s\n", dlerror()), 1;
  sorter by{};
  function<void(sorter*)>("_ZN3hwy6SorterC1Ev")(&by);
  sort<std::uint16_t>(by, "_ZNK3hwy6SorterclEPtmNS_13SortAscendingE", "uint16");
  sort<std::int32_t>(by, "_ZNK3hwy6SorterclEPimNS_13SortAscendingE", "int32");
  sort<std::uint64_t>(by, "_ZNK3hwy6SorterclEPmmNS_13SortAscendingE", "uint64");
  sort<float>(by, "_ZNK3hwy6SorterclEPfmNS_13SortAscendingE", "float");
  sort<double>(by, "_ZNK3hwy6SorterclEPdmNS_13SortAscendingE", "double");
}
