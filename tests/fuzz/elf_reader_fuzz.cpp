// Any file. The reader of program files must either return an image that keeps its promises or
// refuse the file with one line. A well-formed program is damaged in a few places and read from a
// heap block of its exact size, so that the sanitizers notice every byte read beyond the end.
#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <elf.h>
#include <optional>
#include <sys/mman.h>

#include "host/loading/elf_reader.h"
#include "host/loading/launch_error.h"
#include "tests/fuzz/target.h"
#include "tests/host/loading/elf_file.h"

namespace {

using namespace host;
using conformance::random_source;

constexpr std::array<std::uint64_t, 3> page_sizes = {4096, 16384, 65536};

void demand(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "%s\n", what);
  std::abort();
}

// A number at which a bound may be wrong: near a power of two or near the old number.
std::uint64_t near_a_bound(std::uint64_t old, random_source& random) {
  const std::uint64_t base = random.chance(50) ? old : std::uint64_t{1} << random.below(64);
  switch (random.below(5)) {
    case 0: return base - 1;
    case 1: return base + 1;
    case 2: return 0 - base;
    case 3: return base + page_sizes[random.below(3)];
    default: return base;
  }
}

template <typename T>
void change(T& number, random_source& random) {
  number = static_cast<T>(random.chance(20) ? random() : near_a_bound(number, random));
}

void change_header(Elf64_Ehdr& header, random_source& random) {
  switch (random.below(9)) {
    case 0: return change(header.e_ident[random.below(EI_NIDENT)], random);
    case 1: return change(header.e_type, random);
    case 2: return change(header.e_machine, random);
    case 3: return change(header.e_phoff, random);
    case 4: return change(header.e_phentsize, random);
    case 5: return change(header.e_phnum, random);
    case 6: header.e_type = ET_DYN; return;
    default: return change(header.e_entry, random);
  }
}

void change_segment(Elf64_Phdr& segment, random_source& random) {
  switch (random.below(9)) {
    case 0: return change(segment.p_flags, random);
    case 1: return change(segment.p_offset, random);
    case 2: return change(segment.p_filesz, random);
    case 3: return change(segment.p_memsz, random);
    case 4: return change(segment.p_align, random);
    case 5: segment.p_type = PT_LOAD; return;
    case 6: segment.p_type = PT_INTERP; return;
    case 7: return change(segment.p_type, random);
    default: return change(segment.p_vaddr, random);
  }
}

std::vector<std::byte> damaged_file(random_source& random) {
  elf_file file = well_formed();
  while (random.chance(20)) file.program_headers.push_back(file.program_headers[random.below(4)]);
  file.header.e_phnum = static_cast<Elf64_Half>(file.program_headers.size());
  for (std::uint64_t changes = random.below(4); changes > 0; --changes) {
    if (random.chance(30))
      change_header(file.header, random);
    else
      change_segment(file.program_headers[random.below(file.program_headers.size())], random);
  }
  std::vector<std::byte> bytes = file.bytes();
  if (random.chance(10)) bytes[random.below(bytes.size())] = static_cast<std::byte>(random());
  if (random.chance(10)) bytes.resize(random.below(random.chance(50) ? 512 : bytes.size()));
  bytes.shrink_to_fit();
  return bytes;
}

struct attempt {
  std::optional<elf_image> image;
  std::string refusal;
};

attempt read(std::span<const std::byte> bytes, std::uint64_t page_size) {
  try {
    return {read_elf("program", bytes, page_size), ""};
  } catch (const launch_error& error) {
    demand(error.status() == exit_status::cannot_run, "wrong exit status");
    return {std::nullopt, error.what()};
  }
}

void check_refusal(const std::string& text) {
  demand(text.starts_with("program: ") && text.size() < 200, "not one line with the file's name");
  demand(std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; }),
         "the line has characters that cannot be printed");
}

void check_segment(const elf_segment& segment, std::size_t size, std::uint64_t page_size) {
  demand(segment.memory_size != 0 && segment.file_size <= segment.memory_size, "wrong sizes");
  demand(segment.file_offset <= size && segment.file_size <= size - segment.file_offset,
         "a segment is not in the file");
  demand(
      segment.memory_size < address_limit && segment.address < address_limit - segment.memory_size,
      "a segment is above the limit");
  demand(segment.file_size == 0 || (segment.address - segment.file_offset) % page_size == 0,
         "a segment cannot be mapped");
  demand((segment.protection & ~(PROT_READ | PROT_WRITE | PROT_EXEC)) == 0, "wrong protection");
}

bool holds_code_at(const elf_segment& segment, std::uint64_t address) {
  return (segment.protection & PROT_EXEC) != 0 && address >= segment.address &&
         address - segment.address < segment.file_size;
}

// Whether the bytes at an address of the image come from this place of the file.
bool maps(const elf_segment& segment, std::uint64_t address, std::uint64_t file_offset) {
  return address >= segment.address && address - segment.address < segment.file_size &&
         address - segment.address + segment.file_offset == file_offset;
}

void check_range(const elf_image& image, std::uint64_t page_size) {
  demand(image.low % page_size == 0 && image.high % page_size == 0,
         "the range does not consist of whole pages");
  demand(image.low < image.high && image.high <= address_limit, "the range is above the limit");
  demand(image.position_independent || image.low != 0, "page zero is taken");
  std::uint64_t end = image.low;
  for (const elf_segment& segment : image.segments) {
    demand(segment.address >= end, "segments overlap, or are not in order");
    end = segment.address + segment.memory_size;
  }
  demand(end <= image.high && image.high - end < page_size, "the range is too large or too small");
  demand(image.segments.front().address - image.low < page_size, "the range begins too low");
}

void check_image(const elf_image& image, std::span<const std::byte> bytes,
                 std::uint64_t page_size) {
  demand(!image.segments.empty(), "no segment");
  for (const elf_segment& segment : image.segments) check_segment(segment, bytes.size(), page_size);
  check_range(image, page_size);
  demand(std::has_single_bit(image.alignment) && image.alignment >= page_size &&
             image.alignment <= address_limit,
         "wrong alignment");
  demand(image.entry % 4 == 0, "the entry point is not aligned");
  demand(std::ranges::any_of(image.segments,
                             [&](const auto& s) { return holds_code_at(s, image.entry); }),
         "the entry point is not in code");
  Elf64_Ehdr header;
  std::memcpy(&header, bytes.data(), sizeof header);
  demand(image.program_header_count == header.e_phnum, "wrong number of program headers");
  const std::uint64_t table = image.program_headers_address;
  demand(table == 0 ||
             std::ranges::any_of(image.segments,
                                 [&](const auto& s) { return maps(s, table, header.e_phoff); }),
         "wrong address of program headers");
  demand(image.interpreter.find('\0') == std::string::npos,
         "the interpreter's path has a zero byte");
}

}  // namespace

void run_input(random_source& random) {
  const std::uint64_t page_size = random.pick(page_sizes);
  const std::vector<std::byte> bytes = damaged_file(random);
  const attempt result = read(bytes, page_size);
  result.image ? check_image(*result.image, bytes, page_size) : check_refusal(result.refusal);
  demand(result.image || bytes != well_formed().bytes(), "a well-formed program is refused");
}
