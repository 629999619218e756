// The program shares this process's address space with the launcher, the client and their C
// library. Its mappings must not replace any of theirs. So every range is first reserved without
// MAP_FIXED, and only a reserved range is then mapped with MAP_FIXED.
//
// A position-independent program is placed well below the launcher, where neither the kernel nor
// QEMU puts anything by itself.
#include "host/loading/loader.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

#include "host/kernel/address.h"
#include "host/loading/elf_reader.h"
#include "host/loading/initial_stack.h"
#include "host/loading/launch_error.h"

namespace host {
namespace {

// Fits below the launcher on systems with 39-bit addresses, too.
constexpr std::uintptr_t distance_below_launcher = std::uintptr_t{1} << 36;

const std::uintptr_t page_size = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));

std::uintptr_t page_start(std::uintptr_t address) { return address & ~(page_size - 1); }
std::uintptr_t page_end(std::uintptr_t address) { return page_start(address + page_size - 1); }

std::string hexadecimal(std::uintptr_t value) {
  char text[2 + 2 * sizeof value + 1];
  std::snprintf(text, sizeof text, "0x%lx", static_cast<unsigned long>(value));
  return text;
}

class image_mapper {
 public:
  image_mapper(const input_file& file, const elf_image& image) : file_(file), image_(image) {}

  // Maps all segments and returns the load bias. `hint` is where a position-independent image
  // should go, or 0 for anywhere.
  std::uintptr_t map(std::uintptr_t hint);

 private:
  [[noreturn]] void fail(const std::string& what, int error) const;
  void reserve_fixed_ranges() const;
  [[nodiscard]] std::uintptr_t reserve_anywhere(std::uintptr_t hint) const;
  void map_segment(const elf_segment& segment, std::uintptr_t bias) const;
  void map_zeros(std::uintptr_t start, std::uintptr_t end, int protection) const;

  const input_file& file_;
  const elf_image& image_;
};

void image_mapper::fail(const std::string& what, int error) const {
  throw launch_error(exit_status::cannot_run,
                     file_.path() + ": " + what + " (" + std::strerror(error) + ")");
}

constexpr int reservation = MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE;

// Older kernels and QEMU take MAP_FIXED_NOREPLACE only as a hint, so the result is compared, too.
bool reserve_exactly(std::uintptr_t start, std::uintptr_t end) {
  void* const got =
      mmap(pointer_to(start), end - start, PROT_NONE, reservation | MAP_FIXED_NOREPLACE, -1, 0);
  if (got == pointer_to(start)) return true;
  if (got != MAP_FAILED) {
    munmap(got, end - start);
    errno = EEXIST;
  }
  return false;
}

// Neighbouring segments may share a page. It is reserved only once.
void image_mapper::reserve_fixed_ranges() const {
  std::uintptr_t reserved_to = 0;
  for (const elf_segment& segment : image_.segments) {
    const std::uintptr_t start = std::max(page_start(segment.address), reserved_to);
    const std::uintptr_t end = page_end(segment.address + segment.memory_size);
    if (start < end && !reserve_exactly(start, end)) {
      fail("it must be at " + hexadecimal(start) + "-" + hexadecimal(end) +
               ", and that range is not available here; link it with -pie",
           errno);
    }
    reserved_to = end;
  }
}

// Reserves a range of the image's size and alignment, and returns its address.
std::uintptr_t image_mapper::reserve_anywhere(std::uintptr_t hint) const {
  const std::uintptr_t size = image_.high - image_.low;
  const std::uintptr_t slack = image_.alignment - page_size;
  void* const got = mmap(pointer_to(hint), size + slack, PROT_NONE, reservation, -1, 0);
  if (got == MAP_FAILED) {
    fail("no address space for its " + hexadecimal(size) + " bytes at a multiple of " +
             hexadecimal(image_.alignment),
         errno);
  }
  const auto begin = reinterpret_cast<std::uintptr_t>(got);
  const std::uintptr_t start = (begin + slack) & ~(image_.alignment - 1);
  if (start != begin) munmap(got, start - begin);
  if (start != begin + slack) munmap(pointer_to(start + size), begin + slack - start);
  return start;
}

void image_mapper::map_zeros(std::uintptr_t start, std::uintptr_t end, int protection) const {
  if (start >= end) return;
  constexpr int flags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED;
  if (mmap(pointer_to(start), end - start, protection, flags, -1, 0) == MAP_FAILED) {
    fail("no memory for its " + std::to_string(end - start) + " bytes of zeroed data", errno);
  }
}

// Zeroed data starts in the last page of the file part. As in the kernel, that page keeps the
// file's bytes if it is not writable, and the pages after it are always writable.
void image_mapper::map_segment(const elf_segment& segment, std::uintptr_t bias) const {
  const std::uintptr_t start = page_start(bias + segment.address);
  const std::uintptr_t file_end = bias + segment.address + segment.file_size;
  const std::uintptr_t memory_end = bias + segment.address + segment.memory_size;
  std::uintptr_t zeros = start;
  if (segment.file_size != 0) {
    const auto offset = static_cast<off_t>(page_start(segment.file_offset));
    if (mmap(pointer_to(start), file_end - start, segment.protection, MAP_PRIVATE | MAP_FIXED,
             file_.descriptor(), offset) == MAP_FAILED) {
      fail("cannot map the segment at " + hexadecimal(segment.address), errno);
    }
    zeros = page_end(file_end);
    const bool has_zeros = segment.memory_size > segment.file_size;
    if (has_zeros && (segment.protection & PROT_WRITE) != 0) {
      std::memset(pointer_to(file_end), 0, zeros - file_end);
    }
  }
  map_zeros(zeros, page_end(memory_end), PROT_READ | PROT_WRITE | (segment.protection & PROT_EXEC));
}

std::uintptr_t image_mapper::map(std::uintptr_t hint) {
  std::uintptr_t bias = 0;
  if (image_.position_independent) {
    bias = reserve_anywhere(hint) - image_.low;
  } else {
    reserve_fixed_ranges();
  }
  for (const elf_segment& segment : image_.segments) map_segment(segment, bias);
  return bias;
}

// One file in memory.
struct mapped_image {
  elf_image image;
  std::uintptr_t bias = 0;

  [[nodiscard]] std::uintptr_t entry() const { return bias + image.entry; }
  [[nodiscard]] std::uintptr_t end() const { return bias + image.high; }
};

mapped_image map_file(const input_file& file, std::uintptr_t hint) {
  mapped_image mapped{read_elf(file.path(), file.bytes(), page_size)};
  mapped.bias = image_mapper(file, mapped.image).map(hint);
  return mapped;
}

module_info describe(const mapped_image& mapped, const input_file& file) {
  return {mapped.bias + mapped.image.low, mapped.end(), mapped.entry(), file.real_path()};
}

std::uintptr_t hint_below_launcher() {
  const auto launcher = reinterpret_cast<std::uintptr_t>(&hint_below_launcher);
  if (launcher < 2 * distance_below_launcher) return 0;
  return page_start(launcher - distance_below_launcher);
}

program_addresses addresses_of(const mapped_image& program) {
  program_addresses addresses;
  addresses.program_headers = program.bias + program.image.program_headers_address;
  addresses.program_header_count = program.image.program_header_count;
  addresses.entry = program.entry();
  return addresses;
}

}  // namespace

loaded_program load_program(const program_to_run& program,
                            const std::vector<std::string>& environment,
                            const Elf64_auxv_t* own_auxiliary_vector, shown_facts shown) {
  const mapped_image main = map_file(program.file, hint_below_launcher());
  program_addresses addresses = addresses_of(main);
  loaded_program loaded;
  loaded.main_module = describe(main, program.file);
  loaded.start_pc = main.entry();
  if (!main.image.interpreter.empty()) {
    const input_file file(main.image.interpreter, program.file.path() + ": interpreter ");
    const mapped_image interpreter = map_file(file, 0);
    loaded.other_modules.push_back(describe(interpreter, file));
    loaded.start_pc = interpreter.entry();
    addresses.interpreter_base = interpreter.bias;
  }
  process_start start{program.arguments, environment, program.executable_name,
                      application_auxiliary_vector(own_auxiliary_vector, addresses),
                      main.image.executable_stack};
  if (shown.sve) add_sve_capability(start.auxiliary_vector);
  if (shown.signal_stack_size) add_signal_stack_size(start.auxiliary_vector);
  const mapped_stack stack = map_initial_stack(start);
  loaded.stack_start = stack.start;
  loaded.stack_end = stack.end;
  loaded.stack_pointer = stack.pointer;
  return loaded;
}

}  // namespace host
