// Maps small programs into the test's own process and checks what is there.
#include "host/loading/loader.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "host/loading/launch_error.h"
#include "tests/host/loading/elf_file.h"

namespace host {
namespace {

const Elf64_auxv_t no_auxiliary_vector = {AT_NULL, {0}};

// Position-independent, without interpreter, and with recognisable content.
elf_file loadable() {
  elf_file file = well_formed();
  file.interpreter().p_type = PT_NOTE;
  file.header.e_type = ET_DYN;
  std::fill(file.content.begin() + 0x500, file.content.end(), std::byte{0xaa});
  return file;
}

class loader : public testing::Test {
 protected:
  elf_file file = loadable();
};

loaded_program load(const elf_file& file) {
  std::string path = testing::TempDir() + "loader_test.XXXXXX";
  const int descriptor = mkstemp(path.data());
  const std::vector<std::byte> bytes = file.bytes();
  EXPECT_EQ(write(descriptor, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  fchmod(descriptor, 0700);
  close(descriptor);
  const program_to_run program{input_file(path), path, {path}};
  unlink(path.c_str());
  return load_program(program, {}, &no_auxiliary_vector);
}

std::byte* at(std::uintptr_t address) {
  return reinterpret_cast<std::byte*>(address);  // NOLINT(performance-no-int-to-ptr): mapped here
}

// The permissions that /proc/self/maps shows for an address, such as "r-xp"; "" if nothing is
// there.
std::string permissions(std::uintptr_t address) {
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t start = 0;
    std::uintptr_t end = 0;
    char dash = 0;
    std::string text;
    std::istringstream(line) >> std::hex >> start >> dash >> end >> text;
    if (address >= start && address < end) return text;
  }
  return "";
}

bool all(std::uintptr_t start, std::uintptr_t end, std::byte value) {
  return std::all_of(at(start), at(end), [value](std::byte byte) { return byte == value; });
}

// As with the kernel, the rest of the last file page stays, and the pages behind it are zeros.
TEST_F(loader, leaves_the_end_of_a_page_that_may_not_be_written) {
  file.data().p_flags = PF_R | PF_X;
  file.data().p_filesz = 0x345;
  const loaded_program program = load(file);
  const std::uintptr_t data = program.main_module.start + 0x11000;
  EXPECT_EQ(permissions(data), "r-xp");
  EXPECT_EQ(permissions(data + 0x1000), "rwxp");
  EXPECT_TRUE(all(data, data + 0x800, std::byte{0xaa}));
  EXPECT_TRUE(all(data + 0x1000, data + 0x3000, std::byte{0}));
}

TEST_F(loader, honours_a_large_alignment) {
  file.text().p_vaddr = 0;
  file.data().p_vaddr = 0x11000;
  file.header.e_entry = 0x800;
  file.text().p_align = 1UL << 30;
  const loaded_program program = load(file);
  EXPECT_EQ(program.main_module.start % (1UL << 30), 0U);
  EXPECT_EQ(permissions(program.main_module.end), "") << "the rest of the reservation is released";
}

TEST_F(loader, takes_fixed_addresses_only_if_they_are_free) {
  constexpr std::size_t size = 0x100000;
  void* const block =
      mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(block, MAP_FAILED);
  const auto start = reinterpret_cast<std::uintptr_t>(block);
  std::fill_n(static_cast<std::byte*>(block), size, std::byte{0x55});
  file.header.e_type = ET_EXEC;
  file.text().p_vaddr = start;
  file.data().p_vaddr = start + 0x11000;
  file.header.e_entry = start + 0x800;
  EXPECT_THROW(load(file), launch_error);
  EXPECT_TRUE(all(start, start + size, std::byte{0x55}));

  munmap(block, size);
  const loaded_program program = load(file);
  EXPECT_EQ(program.main_module.start, start);
  EXPECT_EQ(program.main_module.end, start + 0x14000);
  EXPECT_EQ(permissions(start + 0x5000), "") << "nothing is mapped between the segments";
}

TEST_F(loader, gives_up_on_what_no_memory_can_hold) {
  file.data().p_memsz = 0x7ff000000000;
  EXPECT_THROW(load(file), launch_error);
}

TEST_F(loader, gives_a_guarded_stack) {
  EXPECT_EQ(permissions(load(file).stack_pointer), "rw-p");
  file.stack().p_flags |= PF_X;
  const std::uintptr_t stack = load(file).stack_pointer;
  EXPECT_EQ(permissions(stack), "rwxp");
  EXPECT_EQ(permissions(stack - 0x10000), "rwxp");
  std::uintptr_t below = stack;
  while (permissions(below) == "rwxp") below -= 1UL << 20;
  EXPECT_EQ(permissions(below), "---p");
}

}  // namespace
}  // namespace host
