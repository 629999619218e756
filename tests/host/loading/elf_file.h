// A well-formed program in memory, for tests to vary and to damage.
#pragma once

#include <cstddef>
#include <cstring>
#include <elf.h>
#include <string_view>
#include <vector>

namespace host {

struct elf_file {
  Elf64_Ehdr header = {};
  std::vector<Elf64_Phdr> program_headers;
  std::vector<std::byte> content = std::vector<std::byte>(0x1800);

  Elf64_Phdr& interpreter() { return program_headers[0]; }
  Elf64_Phdr& text() { return program_headers[1]; }
  Elf64_Phdr& data() { return program_headers[2]; }
  Elf64_Phdr& stack() { return program_headers[3]; }

  [[nodiscard]] std::vector<std::byte> bytes() const {
    std::vector<std::byte> result = content;
    std::memcpy(result.data(), &header, sizeof header);
    std::memcpy(result.data() + sizeof header, program_headers.data(),
                program_headers.size() * sizeof(Elf64_Phdr));
    return result;
  }
};

// A dynamic program at 0x400000: headers, path and code in one page, data and zeros behind it.
inline elf_file well_formed() {
  constexpr std::string_view interpreter_path{"/lib/ld.so\0", 11};
  elf_file file;
  std::memcpy(file.header.e_ident, ELFMAG, SELFMAG);
  file.header.e_ident[EI_CLASS] = ELFCLASS64;
  file.header.e_ident[EI_DATA] = ELFDATA2LSB;
  file.header.e_ident[EI_VERSION] = EV_CURRENT;
  file.header.e_type = ET_EXEC;
  file.header.e_machine = EM_AARCH64;
  file.header.e_entry = 0x400800;
  file.header.e_phoff = sizeof(Elf64_Ehdr);
  file.header.e_phentsize = sizeof(Elf64_Phdr);
  file.header.e_phnum = 4;
  // type, flags, offset, vaddr, paddr, filesz, memsz, align
  file.program_headers = {
      {PT_INTERP, PF_R, 0x400, 0x400400, 0, interpreter_path.size(), interpreter_path.size(), 1},
      {PT_LOAD, PF_R | PF_X, 0, 0x400000, 0, 0x1000, 0x1000, 0x10000},
      {PT_LOAD, PF_R | PF_W, 0x1000, 0x411000, 0, 0x800, 0x2340, 0x10000},
      {PT_GNU_STACK, PF_R | PF_W, 0, 0, 0, 0, 0, 16},
  };
  std::memcpy(file.content.data() + 0x400, interpreter_path.data(), interpreter_path.size());
  return file;
}

}  // namespace host
