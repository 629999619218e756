// Reads an ELF file's bytes and says how to map it, without mapping anything.
//
// A program file is input like any other: nothing in it is trusted before it is checked. The loader
// can safely use the addresses and sizes of an `elf_image` because of the promises made here. The
// module knows nothing about this machine but the page size that it is given, so it can be built
// and fuzzed anywhere.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host {

// One PT_LOAD segment that occupies memory. Promises: file_size <= memory_size; the file part lies
// in the file; address + memory_size lies below `address_limit`; if file_size is not 0, address and
// file_offset are equal modulo the page size.
struct elf_segment {
  std::uint64_t address = 0;
  std::uint64_t memory_size = 0;
  std::uint64_t file_offset = 0;
  std::uint64_t file_size = 0;
  int protection = 0;  // PROT_READ | PROT_WRITE | PROT_EXEC
};

// Addresses are as in the file. If it is position-independent, the loader adds the load bias.
struct elf_image {
  bool position_independent = false;
  std::uint64_t entry = 0;                    // inside the file part of an executable segment
  std::uint64_t program_headers_address = 0;  // 0 if no segment holds the table
  std::uint16_t program_header_count = 0;
  std::uint64_t alignment = 0;    // largest that a segment asks for; a power of two >= page size
  bool executable_stack = false;  // PT_GNU_STACK asks for it
  std::string interpreter;        // PT_INTERP; empty if there is none
  std::vector<elf_segment> segments;  // at least one; ascending; they share no byte

  // Page-rounded range that all segments span.
  std::uint64_t low = 0;
  std::uint64_t high = 0;
};

// No user address of AArch64 Linux lies above this, unless a program asks mmap for one.
inline constexpr std::uint64_t address_limit = std::uint64_t{1} << 48;

// Throws launch_error (status cannot_run), with `name` in its text, for a file that is not an
// AArch64 program or is malformed. `page_size` is a power of two.
elf_image read_elf(const std::string& name, std::span<const std::byte> file,
                   std::uint64_t page_size);

}  // namespace host
