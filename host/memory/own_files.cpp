#include "host/memory/own_files.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

#include "host/kernel/address.h"
#include "host/kernel/guarded_copy.h"
#include "host/kernel/kernel_call.h"
#include "host/memory/advertised_sve.h"
#include "host/memory/application_memory.h"
#include "host/memory/memory_map.h"
#include "host/memory/program_break.h"

namespace host {
namespace {

enum class own_file {
  none,
  executable,
  command_line,
  auxiliary_vector,
  mappings,
  mapping_details,
  processors
};

struct known_file {
  std::string_view name;
  own_file file;
};
constexpr known_file known_files[] = {
    {"exe", own_file::executable},        {"cmdline", own_file::command_line},
    {"auxv", own_file::auxiliary_vector}, {"maps", own_file::mappings},
    {"smaps", own_file::mapping_details},
};

struct {
  std::uint64_t arguments_start = 0;  // of the strings, which follow each other
  std::uint64_t arguments_end = 0;
  std::string auxiliary_vector;
} initial;

std::string link_target(const std::string& link) {
  std::array<char, PATH_MAX> target;
  const ssize_t length = readlink(link.c_str(), target.data(), target.size());
  return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : "";
}

std::string directory_path(int descriptor) {
  if (descriptor == AT_FDCWD) return link_target("/proc/self/cwd");
  return link_target("/proc/self/fd/" + std::to_string(descriptor));
}

bool take_prefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

bool take_number(std::string_view& text) {
  const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
  text.remove_prefix(digits);
  return digits != 0;
}

// Whether a path leads into the process's own directory in /proc, or that of one of its threads. If
// so, leaves only the rest of the path.
bool take_own_directory(std::string_view& path) {
  if (!take_prefix(path, "/proc/")) return false;
  if (take_prefix(path, "thread-self/")) return true;
  const std::string number = std::to_string(getpid()) + "/";
  if (!take_prefix(path, "self/") && !take_prefix(path, number)) return false;
  std::string_view rest = path;
  if (take_prefix(rest, "task/") && take_number(rest) && take_prefix(rest, "/")) path = rest;
  return true;
}

own_file in_own_directory(std::string_view name) {
  const auto* const known =
      std::ranges::find_if(known_files, [name](const known_file& k) { return k.name == name; });
  return known == std::end(known_files) ? own_file::none : known->file;
}

// The last component alone rules out most paths.
own_file own_file_at(std::uint64_t directory, std::uint64_t address) {
  const auto text = read_path(address);
  if (!text) return own_file::none;
  if (*text == "/proc/cpuinfo") return sve_is_advertised() ? own_file::processors : own_file::none;
  const std::size_t slash = text->rfind('/');
  const own_file file = in_own_directory(text->substr(slash + 1));
  if (file == own_file::none) return file;
  const bool is_absolute = text->starts_with("/");
  const std::string path =
      is_absolute ? *text : directory_path(static_cast<int>(directory)) + "/" + *text;
  std::string_view rest = path;
  return take_own_directory(rest) ? in_own_directory(rest) : own_file::none;
}

std::string read_all(const char* path) {
  std::string content;
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  std::array<char, 65536> part;
  for (ssize_t got = 0; (got = read(file, part.data(), part.size())) > 0;) {
    content.append(part.data(), static_cast<std::size_t>(got));
  }
  if (file >= 0) close(file);
  return content;
}

// The break lies somewhere among the other ranges.
std::vector<memory_range> all_memory() {
  std::vector<memory_range> ranges = application_memory();
  const auto [start, end] = program_break_range();
  if (start < end) ranges.push_back({start, end, "[heap]"});
  std::ranges::sort(ranges, {}, &memory_range::start);
  return ranges;
}

std::string command_line() {
  std::string text(initial.arguments_end - initial.arguments_start, '\0');
  guarded_copy(text.data(), pointer_to(initial.arguments_start), text.size());
  return text;
}

// Adds the word that the kernel would add to each processor's "Features" line.
std::string processors_with_sve() {
  std::string text = read_all("/proc/cpuinfo");
  constexpr std::string_view label = "\nFeatures";
  for (std::size_t at = text.find(label); at != std::string::npos; at = text.find(label, at + 1)) {
    const std::size_t end = std::min(text.find('\n', at + 1), text.size());
    const std::string line = text.substr(at, end - at) + " ";
    if (line.find(" sve ") == std::string::npos) text.insert(end, " sve");
  }
  return text;
}

std::string content_of(own_file file) {
  switch (file) {
    case own_file::command_line: return command_line();
    case own_file::auxiliary_vector: return initial.auxiliary_vector;
    case own_file::mappings: return mappings_within(read_all("/proc/self/maps"), all_memory());
    case own_file::mapping_details:
      return mappings_within(read_all("/proc/self/smaps"), all_memory());
    case own_file::processors: return processors_with_sve();
    case own_file::none:
    case own_file::executable: break;
  }
  return {};
}

// Returns a read-only descriptor for memory with the content, or a negative number on failure.
int file_with(const std::string& content) {
  const int writable = memfd_create("own file", MFD_CLOEXEC);
  if (writable < 0) return -1;
  const ssize_t written = write(writable, content.data(), content.size());
  const std::string path = "/proc/self/fd/" + std::to_string(writable);
  const bool complete = written == static_cast<ssize_t>(content.size());
  const int file = complete ? open(path.c_str(), O_RDONLY | O_CLOEXEC) : -1;
  close(writable);
  return file;
}

// The kernel's own file is opened first, for the errors and for the descriptor's number.
std::int64_t open_generated(own_file file, const std::uint64_t* x) {
  const std::int64_t opened = kernel_call(SYS_openat, x[0], x[1], x[2], x[3]);
  const auto flags = static_cast<int>(x[2]);
  if (opened < 0 || (flags & (O_ACCMODE | O_PATH)) != O_RDONLY) return opened;
  const int generated = file_with(content_of(file));
  if (generated < 0) {
    close(static_cast<int>(opened));
    return -ENOMEM;
  }
  dup3(generated, static_cast<int>(opened), flags & O_CLOEXEC);
  close(generated);
  return opened;
}

}  // namespace

std::optional<std::string> read_path(std::uint64_t address) {
  std::string text;
  for (char c = 0; text.size() < PATH_MAX; text.push_back(c)) {
    if (!read_from_application(address + text.size(), c)) return std::nullopt;
    if (c == '\0') return text;
  }
  return std::nullopt;
}

void note_initial_stack(std::uint64_t stack_pointer) {
  const auto* const words = pointer_to<const std::uint64_t>(stack_pointer);
  const std::uint64_t count = words[0];
  const std::uint64_t* const arguments = words + 1;
  if (count != 0) {
    const auto* const last = pointer_to<const char>(arguments[count - 1]);
    initial.arguments_start = arguments[0];
    initial.arguments_end = address_of(last) + std::strlen(last) + 1;
  }
  const std::uint64_t* at = arguments + count + 1;
  while (*at != 0) ++at;
  const auto* const vector = reinterpret_cast<const Elf64_auxv_t*>(at + 1);
  const Elf64_auxv_t* end = vector;
  while (end->a_type != AT_NULL) ++end;
  initial.auxiliary_vector = {reinterpret_cast<const char*>(vector),
                              reinterpret_cast<const char*>(end + 1)};
}

bool names_own_executable(std::uint64_t directory, std::uint64_t path) {
  return own_file_at(directory, path) == own_file::executable;
}

std::optional<std::int64_t> open_own_file(const std::uint64_t* x) {
  const own_file file = own_file_at(x[0], x[1]);
  if (file == own_file::none) return std::nullopt;
  if (file != own_file::executable) return open_generated(file, x);
  const bool follows = (x[2] & O_NOFOLLOW) == 0;
  return kernel_call(SYS_openat, x[0], follows ? followed_path(x[0], x[1]) : x[1], x[2], x[3]);
}

std::optional<std::int64_t> read_own_link(const std::uint64_t* x) {
  const auto module = main_module();
  if (!module || x[3] == 0 || !names_own_executable(x[0], x[1])) return std::nullopt;
  const std::size_t length = std::min<std::size_t>(module->full_path.size(), x[3]);
  const bool copied = guarded_copy(pointer_to(x[2]), module->full_path.data(), length) == 0;
  return copied ? static_cast<std::int64_t>(length) : -EFAULT;
}

std::uint64_t followed_path(std::uint64_t directory, std::uint64_t path) {
  static const std::string own = main_module().value_or(module_info{}).full_path;
  return names_own_executable(directory, path) ? address_of(own.c_str()) : path;
}

}  // namespace host
