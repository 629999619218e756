#include "sve/client/counters.h"

#include <cstdio>

void update_sve_stats(unsigned int* pc, unsigned int word) {
  const std::lock_guard<std::mutex> lock(icounts_mutex);
  sve_instr_count.fetch_add(1);
  const auto entry = icounts.try_emplace(pc, word, 0).first;
  entry->second.second.fetch_add(1);
}

void dump_sve_stats() {
  for (const auto& [pc, entry] : icounts) {
    std::fprintf(stderr, "%p: 0x%08x %ld\n", static_cast<void*>(pc), entry.first,
                 static_cast<long>(entry.second.load()));
  }
}
