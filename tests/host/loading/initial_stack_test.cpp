// What the program learns about itself and the machine. launcher_test.sh compares the layout of the
// stack with the kernel's.
#include "host/loading/initial_stack.h"

#include <gtest/gtest.h>
#include <map>

namespace host {
namespace {

TEST(auxiliary_vector, tells_of_the_program_and_not_of_the_launcher) {
  const Elf64_auxv_t own[] = {{AT_HWCAP, {0x119ffb}}, {AT_IGNORE, {5}}, {AT_PHDR, {1}},
                              {AT_RANDOM, {2}},       {999, {888}},     {AT_NULL, {0}}};
  std::map<std::uint64_t, std::uint64_t> entries;
  for (const auto& entry : application_auxiliary_vector(own, {0x400040, 9, 0x400800, 0x55000})) {
    EXPECT_TRUE(entries.emplace(entry.a_type, entry.a_un.a_val).second) << entry.a_type;
  }
  const std::map<std::uint64_t, std::uint64_t> expected = {
      {AT_HWCAP, 0x119ffb}, {AT_PHDR, 0x400040}, {AT_PHENT, sizeof(Elf64_Phdr)},
      {AT_PHNUM, 9},        {AT_BASE, 0x55000},  {AT_ENTRY, 0x400800},
      {AT_RANDOM, 0},       {AT_EXECFN, 0},      {999, 888}};
  EXPECT_EQ(entries, expected);
}

}  // namespace
}  // namespace host
