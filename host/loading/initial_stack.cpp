#include "host/loading/initial_stack.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/resource.h>
#include <unistd.h>

#include "host/kernel/address.h"
#include "host/loading/launch_error.h"

namespace host {
namespace {

// Memory is only used once it is touched, so the whole stack can be mapped from the start. An
// "unlimited" stack still needs a limit.
constexpr std::size_t smallest_stack = std::size_t{1} << 17;  // the kernel's for exec
constexpr std::size_t largest_stack = std::size_t{1} << 30;
constexpr std::size_t guard_size = std::size_t{1} << 20;  // the kernel's stack_guard_gap, 256 pages

constexpr std::size_t alignment = 16;  // of the stack pointer, by the procedure call standard

// The upper part of the stack, which the words in the lower part point to. Argument and environment
// strings follow each other without gaps: programs that rewrite their own title expect that.
class pointed_to {
 public:
  std::size_t add(std::span<const std::byte> data) {
    const std::size_t offset = bytes_.size();
    bytes_.insert(bytes_.end(), data.begin(), data.end());
    return offset;
  }
  std::size_t add(const std::string& text) {
    return add(std::as_bytes(std::span(text.c_str(), text.size() + 1)));
  }
  std::vector<std::size_t> add_all(const std::vector<std::string>& texts) {
    std::vector<std::size_t> offsets(texts.size());
    std::transform(texts.begin(), texts.end(), offsets.begin(),
                   [this](const std::string& text) { return add(text); });
    return offsets;
  }
  // At least one word of zeros is at the very top.
  std::vector<std::byte> take() {
    bytes_.resize((bytes_.size() + sizeof(std::uint64_t) + alignment - 1) / alignment * alignment);
    return std::move(bytes_);
  }

 private:
  std::vector<std::byte> bytes_;
};

// Adds the strings that the auxiliary vector points to, and turns each entry that points to one
// into an offset.
void add_auxiliary_strings(pointed_to& upper, const std::string& executable_name,
                           std::size_t random, std::vector<Elf64_auxv_t>& auxiliary_vector) {
  for (Elf64_auxv_t& entry : auxiliary_vector) {
    switch (entry.a_type) {
      case AT_RANDOM: entry.a_un.a_val = random; break;
      case AT_EXECFN: entry.a_un.a_val = upper.add(executable_name); break;
      case AT_PLATFORM:
      case AT_BASE_PLATFORM:
        entry.a_un.a_val = upper.add(pointer_to<const char>(entry.a_un.a_val));
        break;
      default: break;
    }
  }
}

bool is_pointer(std::uint64_t type) {
  return type == AT_RANDOM || type == AT_EXECFN || type == AT_PLATFORM || type == AT_BASE_PLATFORM;
}

void set_entry(std::vector<Elf64_auxv_t>& vector, std::uint64_t type, std::uint64_t value) {
  const auto entry = std::find_if(vector.begin(), vector.end(), [type](const Elf64_auxv_t& known) {
    return known.a_type == type;
  });
  if (entry != vector.end()) {
    entry->a_un.a_val = value;
  } else {
    vector.push_back({type, {value}});
  }
}

std::size_t stack_size(std::size_t filled) {
  struct rlimit limit = {};
  if (getrlimit(RLIMIT_STACK, &limit) != 0) limit.rlim_cur = RLIM_INFINITY;
  const std::size_t size = std::clamp<std::size_t>(limit.rlim_cur, smallest_stack, largest_stack);
  const auto page_size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  return (size + filled + page_size - 1) / page_size * page_size;
}

// Returns the address after the stack's last byte.
std::uintptr_t map_stack(std::size_t size, bool executable) {
  const int protection = PROT_READ | PROT_WRITE | (executable ? PROT_EXEC : 0);
  constexpr int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK;
  void* const start = mmap(nullptr, guard_size + size, PROT_NONE, flags, -1, 0);
  if (start == MAP_FAILED ||
      mprotect(static_cast<std::byte*>(start) + guard_size, size, protection) != 0) {
    throw launch_error(exit_status::launcher_failed,
                       "no memory for a stack of " + std::to_string(size) + " bytes (" +
                           std::strerror(errno) + "); lower ulimit -s or free some memory");
  }
  return reinterpret_cast<std::uintptr_t>(start) + guard_size + size;
}

std::array<std::byte, 16> fresh_random_bytes() {
  std::array<std::byte, 16> random;
  if (getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) {
    throw launch_error(exit_status::launcher_failed,
                       std::string("getrandom: ") + std::strerror(errno));
  }
  return random;
}

}  // namespace

std::vector<Elf64_auxv_t> application_auxiliary_vector(const Elf64_auxv_t* own,
                                                       const program_addresses& program) {
  std::vector<Elf64_auxv_t> result;
  for (; own->a_type != AT_NULL; ++own) {
    if (own->a_type != AT_IGNORE) result.push_back(*own);
  }
  set_entry(result, AT_PHDR, program.program_headers);
  set_entry(result, AT_PHENT, sizeof(Elf64_Phdr));
  set_entry(result, AT_PHNUM, program.program_header_count);
  set_entry(result, AT_BASE, program.interpreter_base);
  set_entry(result, AT_ENTRY, program.entry);
  set_entry(result, AT_RANDOM, 0);
  set_entry(result, AT_EXECFN, 0);
  return result;
}

void add_sve_capability(std::vector<Elf64_auxv_t>& auxiliary_vector) {
  constexpr std::uint64_t hwcap_sve = 1u << 22;
  for (Elf64_auxv_t& entry : auxiliary_vector) {
    if (entry.a_type == AT_HWCAP) entry.a_un.a_val |= hwcap_sve;
  }
}

void add_signal_stack_size(std::vector<Elf64_auxv_t>& auxiliary_vector) {
  const bool is_there = std::ranges::any_of(
      auxiliary_vector, [](const Elf64_auxv_t& entry) { return entry.a_type == AT_MINSIGSTKSZ; });
  if (!is_there) auxiliary_vector.push_back({AT_MINSIGSTKSZ, {0}});
}

void set_auxiliary_value(std::uintptr_t stack_pointer, std::uint64_t type, std::uint64_t value) {
  auto* words = pointer_to<std::uint64_t>(stack_pointer);
  words += 1 + *words + 1;  // argc, argv, null
  while (*words != 0) words++;
  for (auto* entry = reinterpret_cast<Elf64_auxv_t*>(words + 1); entry->a_type != AT_NULL;
       entry++) {
    if (entry->a_type == type) entry->a_un.a_val = value;
  }
}

std::vector<std::byte> build_initial_stack(const process_start& start, std::uint64_t top,
                                           std::span<const std::byte, 16> random) {
  pointed_to upper;
  std::vector<Elf64_auxv_t> auxiliary_vector = start.auxiliary_vector;
  const std::size_t random_offset = upper.add(random);
  const auto arguments = upper.add_all(start.arguments);
  const auto environment = upper.add_all(start.environment);
  add_auxiliary_strings(upper, start.executable_name, random_offset, auxiliary_vector);
  const std::vector<std::byte> upper_bytes = upper.take();
  const std::uint64_t upper_address = top - upper_bytes.size();

  std::vector<std::uint64_t> words{arguments.size()};
  for (const std::size_t offset : arguments) words.push_back(upper_address + offset);
  words.push_back(0);
  for (const std::size_t offset : environment) words.push_back(upper_address + offset);
  words.push_back(0);
  for (const Elf64_auxv_t& entry : auxiliary_vector) {
    words.push_back(entry.a_type);
    words.push_back(entry.a_un.a_val + (is_pointer(entry.a_type) ? upper_address : 0));
  }
  words.insert(words.end(), {AT_NULL, 0});
  if (words.size() % 2 != 0) words.push_back(0);

  std::vector<std::byte> stack(words.size() * sizeof(std::uint64_t));
  std::memcpy(stack.data(), words.data(), stack.size());
  stack.insert(stack.end(), upper_bytes.begin(), upper_bytes.end());
  return stack;
}

mapped_stack map_initial_stack(const process_start& start) {
  const auto random = fresh_random_bytes();
  const std::size_t filled = build_initial_stack(start, 0, random).size();
  const std::size_t size = stack_size(filled);
  const std::uintptr_t top = map_stack(size, start.executable_stack);
  const std::vector<std::byte> content = build_initial_stack(start, top, random);
  std::memcpy(pointer_to(top - content.size()), content.data(), content.size());
  return {top - size, top, top - content.size()};
}

}  // namespace host
