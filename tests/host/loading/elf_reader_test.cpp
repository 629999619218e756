// Which files the reader takes. A well-formed program is built in memory, then changed in one
// place. Files are given to the reader in heap blocks of their exact size, so that the sanitizers
// see a read beyond the end. What the reader makes of a file, loader_test.cpp sees in memory.
#include "host/loading/elf_reader.h"

#include <cstring>
#include <elf.h>
#include <functional>
#include <gtest/gtest.h>

#include "host/loading/launch_error.h"
#include "tests/host/loading/elf_file.h"

namespace host {
namespace {

constexpr std::uint64_t page_size = 4096;

// The message that refuses `bytes`, or "" if they are accepted.
std::string refusal(std::span<const std::byte> bytes) {
  try {
    read_elf("program", bytes, page_size);
    return "";
  } catch (const launch_error& error) {
    EXPECT_EQ(error.status(), exit_status::cannot_run);
    return error.what();
  }
}

using F = elf_file&;

// One change of a well-formed program.
struct change {
  const char* text;  // its name, or what the message says of it
  std::function<void(F)> make;
};

// The kernel accepts these, too.
TEST(elf_reader, takes_unusual_programs) {
  const change changes[] = {
      {"alignment that is no power of two", [](F f) { f.text().p_align = 0x30000; }},
      {"alignment below a page", [](F f) { f.data().p_align = 0; }},
      {"empty segment anywhere", [](F f) { f.stack() = {PT_LOAD, PF_R, 0, 0, 0, 0, 0, 0}; }},
      {"zeros only, with an odd offset",
       [](F f) {
         f.data().p_filesz = 0;
         f.data().p_offset = 0x123;
       }},
      {"segments on one page",
       [](F f) {
         f.data().p_vaddr = 0x400f00 + 0x1000;
         f.data().p_offset = 0xf00;
         f.text().p_memsz = 0x1e00;
       }},
      {"second interpreter, ignored",
       [](F f) { f.stack() = {PT_INTERP, PF_R, ~0UL, 0, 0, ~0UL, 0, 1}; }},
      {"unknown header type with absurd values",
       [](F f) { f.stack() = {0x6fffffff, ~0U, ~0UL, ~0UL, ~0UL, ~0UL, ~0UL, ~0UL}; }},
      {"position-independent from zero",
       [](F f) {
         f.header.e_type = ET_DYN;
         f.header.e_entry -= 0x400000;
         f.text().p_vaddr = 0;
         f.data().p_vaddr = 0x11000;
       }},
  };
  for (const change& change : changes) {
    elf_file file = well_formed();
    change.make(file);
    EXPECT_EQ(refusal(file.bytes()), "") << change.text;
  }
}

const change refused[] = {
    // Files for other systems.
    {"neither an ELF program nor a script", [](F f) { f.header.e_ident[1] = 'e'; }},
    {"built for x86-64", [](F f) { f.header.e_machine = EM_X86_64; }},
    {"built for ELF machine 4711", [](F f) { f.header.e_machine = 4711; }},
    {"built for 32-bit Arm",
     [](F f) {
       f.header.e_machine = EM_ARM;
       f.header.e_ident[EI_CLASS] = ELFCLASS32;
     }},
    {"big-endian AArch64",
     [](F f) {
       f.header.e_machine = __builtin_bswap16(EM_AARCH64);
       f.header.e_ident[EI_DATA] = ELFDATA2MSB;
     }},
    {"32-bit addresses", [](F f) { f.header.e_ident[EI_CLASS] = ELFCLASS32; }},
    {"ELF class 0", [](F f) { f.header.e_ident[EI_CLASS] = ELFCLASSNONE; }},
    {"data encoding 3", [](F f) { f.header.e_ident[EI_DATA] = 3; }},
    {"object file", [](F f) { f.header.e_type = ET_REL; }},
    {"core dump", [](F f) { f.header.e_type = ET_CORE; }},
    {"file type 65280", [](F f) { f.header.e_type = ET_LOPROC; }},

    // Tables of headers.
    {"program headers of 55 bytes", [](F f) { f.header.e_phentsize = 55; }},
    {"program headers of 0 bytes", [](F f) { f.header.e_phentsize = 0; }},
    {"no program headers", [](F f) { f.header.e_phnum = 0; }},
    {"1171 program headers", [](F f) { f.header.e_phnum = 1171; }},
    {"65535 program headers", [](F f) { f.header.e_phnum = PN_XNUM; }},
    {"headers lie outside the file", [](F f) { f.header.e_phnum = 1170; }},
    {"headers lie outside the file", [](F f) { f.header.e_phoff = 0x1800 - 223; }},
    {"headers lie outside the file", [](F f) { f.header.e_phoff = ~0UL; }},
    {"headers lie outside the file", [](F f) { f.header.e_phoff = ~0UL - 223; }},
    {"no segment to load", [](F f) { f.text().p_type = f.data().p_type = PT_NOTE; }},
    {"no segment to load",
     [](F f) {
       f.text().p_filesz = f.text().p_memsz = 0;
       f.data().p_filesz = f.data().p_memsz = 0;
     }},

    // Segments.
    {"load segment 1 lies outside the file", [](F f) { f.data().p_filesz = 0x801; }},
    {"load segment 1 lies outside the file", [](F f) { f.data().p_offset = 0x2000; }},
    {"load segment 1 lies outside the file", [](F f) { f.data().p_offset = ~0xfffUL; }},
    {"load segment 1 lies outside the file",
     [](F f) { f.data().p_filesz = f.data().p_memsz = ~0xfffUL; }},
    {"segment 1 is larger in the file", [](F f) { f.data().p_memsz = 0x7ff; }},
    {"segment 1 lies above all addresses", [](F f) { f.data().p_vaddr = ~0xfffUL; }},
    {"segment 1 lies above all addresses", [](F f) { f.data().p_memsz = ~0UL; }},
    {"segment 1 lies above all addresses",
     [](F f) { f.data().p_memsz = address_limit - 0x411000; }},
    {"segment 1 cannot be mapped", [](F f) { f.data().p_vaddr += 8; }},
    {"segment 1 cannot be mapped", [](F f) { f.data().p_offset -= 8; }},
    {"segment 1 asks for an absurd", [](F f) { f.data().p_align = 1UL << 63; }},
    {"segment 1 overlaps", [](F f) { f.text().p_memsz = 0x11001; }},
    {"segment 1 overlaps", [](F f) { f.data() = f.text(); }},
    {"page zero", [](F f) { f.text().p_vaddr = 0, f.header.e_entry = 0x800; }},

    // Entry points and interpreters.
    {"entry point", [](F f) { f.header.e_entry = 0; }},
    {"entry point", [](F f) { f.header.e_entry = 0x411000; }},
    {"entry point", [](F f) { f.header.e_entry = 0x401000; }},
    {"entry point", [](F f) { f.header.e_entry = 0x3ffffc; }},
    {"path has no end", [](F f) { f.interpreter().p_filesz -= 1; }},
    {"path has 1 bytes", [](F f) { f.interpreter().p_filesz = 1; }},
    {"path has 0 bytes", [](F f) { f.interpreter().p_filesz = 0; }},
    {"path has 4097 bytes", [](F f) { f.interpreter().p_filesz = 4097; }},
    {"path lies outside", [](F f) { f.interpreter().p_offset = 0x1800 - 10; }},
    {"path lies outside", [](F f) { f.interpreter().p_offset = ~0UL; }},
    {"path is empty", [](F f) { f.content[0x400] = std::byte{0}; }},
};

TEST(elf_reader, refuses_foreign_and_hostile_files) {
  for (const change& row : refused) {
    elf_file file = well_formed();
    row.make(file);
    const std::string message = refusal(file.bytes());
    EXPECT_NE(message.find(row.text), std::string::npos)
        << "row \"" << row.text << "\" gives \"" << message << '"';
    EXPECT_TRUE(message.starts_with("program: ")) << message;
    EXPECT_EQ(message.find('\n'), std::string::npos) << message;
  }
}

}  // namespace
}  // namespace host
