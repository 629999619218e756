#include "host/memory/application_memory.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <mutex>
#include <optional>

#include "host/kernel/fork_lock.h"
#include "host/memory/address_set.h"

namespace host {
namespace {

fork_safe_mutex mutex;
address_set ranges;
memory_range stack;

// "start-end rwxp offset device inode   name"
struct mapping_line {
  std::uint64_t start = 0;
  std::uint64_t end = 0;
  std::uint64_t offset = 0;
  char permissions[5] = {};
  char device[16] = {};
  std::uint64_t inode = 0;
  std::string_view name;
};

std::optional<mapping_line> parse(std::string_view text) {
  const std::string line(text);
  mapping_line out;
  int name_at = 0;
  // NOLINTNEXTLINE(cert-err34-c): the kernel writes these numbers, and they fit
  if (std::sscanf(line.c_str(), "%" SCNx64 "-%" SCNx64 " %4s %" SCNx64 " %15s %" SCNu64 " %n",
                  &out.start, &out.end, out.permissions, &out.offset, out.device, &out.inode,
                  &name_at) < 6) {
    return std::nullopt;
  }
  out.name = text.substr(std::min(text.size(), static_cast<std::size_t>(name_at)));
  return out;
}

// As the kernel prints it, with the name in a column of its own.
std::string format(const mapping_line& line) {
  constexpr std::size_t name_column = 73;
  char head[128];
  const int length = std::snprintf(
      head, sizeof head, "%08" PRIx64 "-%08" PRIx64 " %s %08" PRIx64 " %s %" PRIu64 " ", line.start,
      line.end, line.permissions, line.offset, line.device, line.inode);
  std::string text(head, static_cast<std::size_t>(length));
  if (!line.name.empty()) text.resize(std::max(text.size(), name_column), ' ');
  return text.append(line.name).append("\n");
}

// [vdso], [vvar] and the like: the kernel maps them for the application.
bool is_kernel_mapping(std::string_view name) { return name.starts_with("[v"); }

class mapping_filter {
 public:
  explicit mapping_filter(const std::vector<memory_range>& wanted) : wanted_(wanted) {}

  void add(std::string_view text) {
    if (const auto line = parse(text)) {
      add_mapping(*line);
    } else if (shown_) {  // smaps: more about the mapping
      result_.append(text).append("\n");
    }
  }

  std::string take() { return std::move(result_); }

 private:
  void add_mapping(const mapping_line& line) {
    shown_ = is_kernel_mapping(line.name);
    if (shown_) result_ += format(line);
    for (const memory_range& range : wanted_) {
      if (range.start < line.end && range.end > line.start && !is_kernel_mapping(line.name)) {
        add_part(line, range);
      }
    }
  }

  void add_part(mapping_line line, const memory_range& range) {
    const std::uint64_t start = std::max(line.start, range.start);
    const bool is_file = line.inode != 0;
    if (is_file) line.offset += start - line.start;
    line.start = start;
    line.end = std::min(line.end, range.end);
    if (!range.name.empty()) line.name = range.name;
    // This name is for the host's memory: the kernel has merged it with the application's mapping.
    if (range.name.empty() && (line.name == "[heap]" || line.name == "[stack]")) line.name = "";
    result_ += format(line);
    shown_ = true;
  }

  const std::vector<memory_range>& wanted_;
  std::string result_;
  bool shown_ = false;
};

}  // namespace

void note_loaded_memory(const loaded_program& program) {
  note_mapped(program.main_module.start, program.main_module.end);
  for (const module_info& module : program.other_modules) note_mapped(module.start, module.end);
  const std::lock_guard lock(mutex);
  stack = {program.stack_start, program.stack_end, "[stack]"};
}

void note_mapped(std::uint64_t start, std::uint64_t end) {
  const std::lock_guard lock(mutex);
  ranges.put(start, end);
}

void note_unmapped(std::uint64_t start, std::uint64_t end) {
  const std::lock_guard lock(mutex);
  ranges.cut(start, end);
}

std::vector<memory_range> application_memory() {
  const std::lock_guard lock(mutex);
  std::vector<memory_range> all;
  all.reserve(ranges.ranges().size() + 1);
  for (const auto& [start, end] : ranges.ranges()) all.push_back({start, end, ""});
  const auto place = std::ranges::find_if(
      all, [](const memory_range& range) { return range.start > stack.start; });
  all.insert(place, stack);
  return all;
}

std::string mappings_within(std::string_view text, const std::vector<memory_range>& wanted) {
  mapping_filter filter(wanted);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    filter.add(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return filter.take();
}

}  // namespace host
