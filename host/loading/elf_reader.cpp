// The rules are those of the kernel's ELF loader, and a few more. If segments overlap, the file is
// truncated, or the entry point is not code, the kernel would start the program and let it crash.
// Here each of these is refused with a line that says so.
#include "host/loading/elf_reader.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstring>
#include <elf.h>
#include <optional>
#include <string_view>
#include <sys/mman.h>

#include "host/loading/launch_error.h"

namespace host {
namespace {

static_assert(std::endian::native == std::endian::little,
              "header fields are read in place, and only little-endian files are taken");

// The kernel refuses a program header table larger than this.
constexpr std::size_t program_headers_size_limit = 65536;

struct machine_name {
  unsigned machine;
  std::string_view name;
};
constexpr machine_name machine_names[] = {
    {EM_386, "32-bit x86"}, {EM_X86_64, "x86-64"},       {EM_ARM, "32-bit Arm"},
    {EM_RISCV, "RISC-V"},   {EM_PPC64, "64-bit POWER"},  {EM_S390, "IBM Z"},
    {EM_MIPS, "MIPS"},      {EM_LOONGARCH, "LoongArch"},
};

std::string describe_machine(unsigned machine) {
  for (const machine_name& known : machine_names) {
    if (known.machine == machine) return std::string(known.name);
  }
  return "ELF machine " + std::to_string(machine);
}

std::uint64_t round_down(std::uint64_t value, std::uint64_t page_size) {
  return value & ~(page_size - 1);
}

// `value` lies below address_limit, so the sum cannot wrap.
std::uint64_t round_up(std::uint64_t value, std::uint64_t page_size) {
  return round_down(value + page_size - 1, page_size);
}

class reader {
 public:
  reader(const std::string& name, std::span<const std::byte> file, std::uint64_t page_size)
      : name_(name), file_(file), page_size_(page_size) {}

  elf_image read();

 private:
  [[noreturn]] void fail(const std::string& what) const {
    throw launch_error(exit_status::cannot_run, name_ + ": " + what);
  }
  [[noreturn]] void damaged(const std::string& what) const {
    fail("damaged ELF file: " + what + "; build or copy it again");
  }

  // Reads from the file; nothing if the value is not wholly inside.
  template <typename T>
  std::optional<T> at(std::uint64_t offset) const {
    if (offset > file_.size() || file_.size() - offset < sizeof(T)) return std::nullopt;
    T value;
    std::memcpy(&value, file_.data() + offset, sizeof(T));
    return value;
  }

  [[nodiscard]] bool inside_file(std::uint64_t offset, std::uint64_t size) const {
    return offset <= file_.size() && size <= file_.size() - offset;
  }

  void check_identification() const;
  void check_type(const Elf64_Ehdr& header) const;
  void check_program_headers(const Elf64_Ehdr& header) const;
  void take(const Elf64_Phdr& header);
  void take_load(const Elf64_Phdr& header);
  void check_load(const Elf64_Phdr& header, const std::string& which) const;
  void take_interpreter(const Elf64_Phdr& header);
  void finish(const Elf64_Ehdr& header);
  void check_entry() const;
  [[nodiscard]] std::uint64_t program_headers_address(std::uint64_t file_offset) const;

  const std::string& name_;
  std::span<const std::byte> file_;
  std::uint64_t page_size_;
  elf_image image_;
  bool has_interpreter_ = false;
  int load_count_ = 0;
};

void reader::check_identification() const {
  const auto magic = at<std::uint32_t>(0);
  if (!magic || std::memcmp(&*magic, ELFMAG, SELFMAG) != 0) {
    fail("neither an ELF program nor a script that starts with #!; give a program for AArch64");
  }
  // The machine field is at the same place in both ELF classes. A file for another machine should
  // be called by that machine's name even if it ends right after this field.
  const auto machine_bytes = at<std::uint16_t>(offsetof(Elf64_Ehdr, e_machine));
  if (!machine_bytes) damaged("it ends within the ELF header");
  const int file_class = std::to_integer<int>(file_[EI_CLASS]);
  const int encoding = std::to_integer<int>(file_[EI_DATA]);
  const bool big_endian = encoding == ELFDATA2MSB;
  const unsigned machine =
      big_endian ? __builtin_bswap16(*machine_bytes) : unsigned{*machine_bytes};
  if (machine != EM_AARCH64) {
    fail("built for " + describe_machine(machine) +
         ", not for AArch64; give a program for AArch64");
  }
  if (big_endian) fail("built for big-endian AArch64; only little-endian programs can run");
  if (file_class == ELFCLASS32) fail("built for 32-bit addresses (ILP32); rebuild it as LP64");
  if (file_class != ELFCLASS64) damaged("ELF class " + std::to_string(file_class));
  if (encoding != ELFDATA2LSB) damaged("data encoding " + std::to_string(encoding));
}

void reader::check_type(const Elf64_Ehdr& header) const {
  switch (header.e_type) {
    case ET_EXEC:
    case ET_DYN: return;
    case ET_REL: fail("an object file, not a program; link it first");
    case ET_CORE: fail("a core dump, not a program; give the program that dumped it");
    default: damaged("file type " + std::to_string(header.e_type));
  }
}

void reader::check_program_headers(const Elf64_Ehdr& header) const {
  if (header.e_phentsize != sizeof(Elf64_Phdr)) {
    damaged("program headers of " + std::to_string(header.e_phentsize) + " bytes, not " +
            std::to_string(sizeof(Elf64_Phdr)));
  }
  const std::size_t size = std::size_t{header.e_phnum} * sizeof(Elf64_Phdr);
  if (size == 0) damaged("no program headers");
  if (size > program_headers_size_limit) {
    damaged(std::to_string(header.e_phnum) + " program headers, more than the kernel takes");
  }
  if (!inside_file(header.e_phoff, size)) damaged("the program headers lie outside the file");
}

void reader::check_load(const Elf64_Phdr& header, const std::string& which) const {
  std::uint64_t end = 0;
  if (header.p_filesz > header.p_memsz) damaged(which + " is larger in the file than in memory");
  if (!inside_file(header.p_offset, header.p_filesz)) {
    damaged(which + " lies outside the file, which may be truncated");
  }
  if (__builtin_add_overflow(header.p_vaddr, header.p_memsz, &end) ||
      end > address_limit - page_size_) {
    damaged(which + " lies above all addresses that a program can have");
  }
  if (header.p_filesz != 0 && (header.p_vaddr - header.p_offset) % page_size_ != 0) {
    damaged(which + " cannot be mapped with pages of " + std::to_string(page_size_) +
            " bytes: its address and file offset do not agree");
  }
  if (header.p_align > address_limit) damaged(which + " asks for an absurd alignment");
}

void reader::take_load(const Elf64_Phdr& header) {
  const std::string which = "load segment " + std::to_string(load_count_++);
  check_load(header, which);
  if (header.p_memsz == 0) return;
  if (!image_.segments.empty()) {
    const elf_segment& previous = image_.segments.back();
    if (header.p_vaddr < previous.address + previous.memory_size) {
      damaged(which + " overlaps the one before it or lies below it");
    }
  }
  const int protection = ((header.p_flags & PF_R) != 0 ? PROT_READ : 0) |
                         ((header.p_flags & PF_W) != 0 ? PROT_WRITE : 0) |
                         ((header.p_flags & PF_X) != 0 ? PROT_EXEC : 0);
  image_.segments.push_back(
      {header.p_vaddr, header.p_memsz, header.p_offset, header.p_filesz, protection});
  // Like the kernel, ignore an alignment that is not a power of two.
  if (std::has_single_bit(header.p_align)) {
    image_.alignment = std::max<std::uint64_t>(image_.alignment, header.p_align);
  }
}

void reader::take_interpreter(const Elf64_Phdr& header) {
  if (has_interpreter_) return;  // the kernel takes the first, too
  has_interpreter_ = true;
  if (header.p_filesz < 2 || header.p_filesz > PATH_MAX) {
    damaged("the interpreter's path has " + std::to_string(header.p_filesz) + " bytes");
  }
  if (!inside_file(header.p_offset, header.p_filesz)) {
    damaged("the interpreter's path lies outside the file");
  }
  const auto* path = reinterpret_cast<const char*>(file_.data() + header.p_offset);
  if (path[header.p_filesz - 1] != '\0') damaged("the interpreter's path has no end");
  image_.interpreter = path;
  if (image_.interpreter.empty()) damaged("the interpreter's path is empty");
}

void reader::take(const Elf64_Phdr& header) {
  switch (header.p_type) {
    case PT_LOAD: take_load(header); break;
    case PT_INTERP: take_interpreter(header); break;
    case PT_GNU_STACK: image_.executable_stack = (header.p_flags & PF_X) != 0; break;
    default: break;
  }
}

void reader::check_entry() const {
  const bool is_code = std::any_of(
      image_.segments.begin(), image_.segments.end(), [this](const elf_segment& segment) {
        return (segment.protection & PROT_EXEC) != 0 && image_.entry >= segment.address &&
               image_.entry - segment.address < segment.file_size;
      });
  if (!is_code || image_.entry % 4 != 0) damaged("the entry point is not in executable code");
}

std::uint64_t reader::program_headers_address(std::uint64_t file_offset) const {
  for (const elf_segment& segment : image_.segments) {
    if (file_offset >= segment.file_offset &&
        file_offset - segment.file_offset < segment.file_size) {
      return segment.address + (file_offset - segment.file_offset);
    }
  }
  return 0;
}

void reader::finish(const Elf64_Ehdr& header) {
  if (image_.segments.empty()) damaged("no segment to load");
  image_.position_independent = header.e_type == ET_DYN;
  image_.program_header_count = header.e_phnum;
  image_.program_headers_address = program_headers_address(header.e_phoff);
  image_.entry = header.e_entry;
  check_entry();
  const elf_segment& last = image_.segments.back();
  image_.low = round_down(image_.segments.front().address, page_size_);
  image_.high = round_up(last.address + last.memory_size, page_size_);
  if (!image_.position_independent && image_.low == 0) {
    damaged("it claims page zero, which no program can have");
  }
}

elf_image reader::read() {
  check_identification();
  const auto header = at<Elf64_Ehdr>(0);
  if (!header) damaged("it ends within the ELF header");
  check_type(*header);
  check_program_headers(*header);
  image_.alignment = page_size_;
  for (unsigned i = 0; i < header->e_phnum; ++i) {
    const auto program_header = at<Elf64_Phdr>(header->e_phoff + i * sizeof(Elf64_Phdr));
    if (!program_header) damaged("the program headers lie outside the file");
    take(*program_header);
  }
  finish(*header);
  return std::move(image_);
}

}  // namespace

elf_image read_elf(const std::string& name, std::span<const std::byte> file,
                   std::uint64_t page_size) {
  return reader(name, file, page_size).read();
}

}  // namespace host
