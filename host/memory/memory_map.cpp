#include "host/memory/memory_map.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "host/kernel/address.h"
#include "host/kernel/fork_lock.h"
#include "host/memory/address_set.h"
#include "host/threads/thread.h"

namespace host {
namespace {

constexpr std::uintptr_t page_bytes = 4096;  // some kernels' pages are larger, which does no harm

struct mapping {
  std::uintptr_t start = 0;
  std::uintptr_t end = 0;
  std::uint64_t offset = 0;
  bool readable = false;
  bool executable = false;
  std::string path;
};

fork_safe_mutex mutex;
std::vector<module_info> loaded_modules;  // the first is the main module
address_set executable;
address_set told;  // mapped or protected by the application: whether it is executable is known
std::vector<module_info> mapped_modules;
bool modules_are_known = false;
std::set<std::uintptr_t> translated_pages;

bool contains(const module_info& module, std::uintptr_t address) {
  return address >= module.start && address < module.end;
}

// "start-end rwxp offset device inode   path"
std::optional<mapping> parse_line(const char* line) {
  mapping out;
  char permissions[5] = {};
  int path_at = 0;
  // NOLINTNEXTLINE(cert-err34-c): the kernel writes these numbers, and they fit
  if (std::sscanf(line, "%" SCNxPTR "-%" SCNxPTR " %4s %" SCNx64 " %*s %*s %n", &out.start,
                  &out.end, permissions, &out.offset, &path_at) < 4) {
    return std::nullopt;
  }
  out.readable = permissions[0] == 'r';
  out.executable = permissions[2] == 'x';
  if (path_at > 0) out.path = line + path_at;
  while (!out.path.empty() && (out.path.back() == '\n' || out.path.back() == ' ')) {
    out.path.pop_back();
  }
  return out;
}

std::vector<mapping> read_mappings() {
  std::vector<mapping> all;
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen("/proc/self/maps", "re"),
                                                   std::fclose);
  if (file == nullptr) return all;
  char* line = nullptr;
  std::size_t capacity = 0;
  while (getline(&line, &capacity, file.get()) > 0) {
    if (auto parsed = parse_line(line)) all.push_back(std::move(*parsed));
  }
  std::free(line);
  return all;
}

bool starts_elf_image(const mapping& m) {
  const bool is_file = m.path.starts_with('/') && m.offset == 0;
  if (!m.readable || !(is_file || m.path == "[vdso]")) return false;
  return std::memcmp(pointer_to<const void>(m.start), ELFMAG, SELFMAG) == 0;
}

// An image is its first mapping and the following ones of the same file.
std::vector<module_info> modules_of(const std::vector<mapping>& mappings) {
  std::vector<module_info> modules;
  for (const mapping& m : mappings) {
    if (m.path.empty()) continue;
    if (starts_elf_image(m)) {
      modules.push_back({.start = m.start, .end = m.end, .full_path = m.path});
    } else if (!modules.empty() && modules.back().full_path == m.path) {
      modules.back().end = m.end;
    }
  }
  return modules;
}

// Reads from the kernel what the process can execute: the first time, and for memory that was
// mapped in a way that this host does not see. qemu-user shows neighbouring mappings as one even if
// only some of them are executable, so what the application's own calls have said comes first.
void read_mappings_again() {
  const std::vector<mapping> all = read_mappings();
  mapped_modules = modules_of(all);
  modules_are_known = true;
  for (const mapping& m : all) {
    if (m.executable && !told.contains(m.start)) executable.put(m.start, m.end);
  }
}

bool look_up_executable(std::uintptr_t address) {
  if (executable.contains(address)) return true;
  if (told.contains(address)) return false;
  read_mappings_again();
  return executable.contains(address);
}

bool is_in_mapped_module(std::uintptr_t start, std::uintptr_t end) {
  return std::ranges::any_of(mapped_modules, [start, end](const module_info& module) {
    return start < module.end && end > module.start;
  });
}

// Whether code was translated from the range, or near it.
bool is_translated(std::uintptr_t start, std::uintptr_t end) {
  const auto first = translated_pages.lower_bound(start & ~(page_bytes - 1));
  return first != translated_pages.end() && *first < end;
}

void forget_translated(std::uintptr_t start, std::uintptr_t end) {
  translated_pages.erase(translated_pages.lower_bound(start), translated_pages.lower_bound(end));
}

}  // namespace

void set_loaded_modules(const loaded_program& program) {
  const std::lock_guard lock(mutex);
  loaded_modules = {program.main_module};
  loaded_modules.insert(loaded_modules.end(), program.other_modules.begin(),
                        program.other_modules.end());
}

std::optional<module_info> main_module() {
  const std::lock_guard lock(mutex);
  if (loaded_modules.empty()) return std::nullopt;
  return loaded_modules.front();
}

std::optional<module_info> module_at(std::uintptr_t address) {
  const std::lock_guard lock(mutex);
  if (!modules_are_known) read_mappings_again();
  for (const auto* modules : {&loaded_modules, &mapped_modules}) {
    for (const module_info& module : *modules) {
      if (contains(module, address)) return module;
    }
  }
  return std::nullopt;
}

bool is_executable(std::uintptr_t address) {
  const std::lock_guard lock(mutex);
  return look_up_executable(address);
}

void note_translated(std::uintptr_t start, std::uintptr_t end) {
  const std::lock_guard lock(mutex);
  for (std::uintptr_t page = start & ~(page_bytes - 1); page < end; page += page_bytes) {
    translated_pages.insert(page);
  }
}

void note_changed(std::uintptr_t start, std::uintptr_t end, mapping_change change) {
  bool stale = false;
  {
    const std::lock_guard lock(mutex);
    const bool may_execute = change == mapping_change::executable;
    may_execute ? executable.put(start, end) : executable.cut(start, end);
    change == mapping_change::removed ? told.cut(start, end) : told.put(start, end);
    if (may_execute || is_in_mapped_module(start, end)) modules_are_known = false;
    stale = is_translated(start, end);
    forget_translated(start, end);
  }
  if (stale) drop_translations_at_once(start, end);
}

void note_rewritten(std::uintptr_t start, std::uintptr_t end) {
  bool stale = false;
  {
    const std::lock_guard lock(mutex);
    stale = is_translated(start, end);
  }
  if (stale) drop_translations(start, end);
}

}  // namespace host
