// Which parts of /proc/self/maps the application sees.
#include "host/memory/application_memory.h"

#include <gtest/gtest.h>

namespace host {
namespace {

std::string shown(const std::vector<memory_range>& ranges) {
  return mappings_within(
      "10000-14000 r-xp 00000000 fe:00 77                                       /bin/program\n"
      "14000-1c000 rw-p 00000000 00:00 0 \n"
      "20000-40000 r--p 00005000 fe:00 78                                       /lib/a b.so\n"
      "50000-60000 rw-p 00000000 00:00 0                                        [heap]\n"
      "ffff0000-ffff1000 r-xp 00000000 00:00 0                                  [vdso]\n",
      ranges);
}

constexpr const char* vdso =
    "ffff0000-ffff1000 r-xp 00000000 00:00 0                                  [vdso]\n";

TEST(mappings, are_cut_to_the_ranges) {
  EXPECT_EQ(shown({}), vdso);
  EXPECT_EQ(shown({{0x12000, 0x16000, ""}, {0x17000, 0x18000, "[stack]"}, {0x3f000, 0x48000, ""}}),
            "00012000-00014000 r-xp 00002000 fe:00 77"
            "                                 /bin/program\n"
            "00014000-00016000 rw-p 00000000 00:00 0 \n"
            "00017000-00018000 rw-p 00000000 00:00 0"
            "                                  [stack]\n"
            "0003f000-00040000 r--p 00024000 fe:00 78"
            "                                 /lib/a b.so\n" +
                std::string(vdso));
}

TEST(mappings, of_the_launchers_heap_lose_its_name) {
  EXPECT_EQ(shown({{0x50000, 0x51000, ""}}),
            "00050000-00051000 rw-p 00000000 00:00 0 \n" + std::string(vdso));
}

// smaps has more lines about each mapping.
TEST(mappings, keep_what_is_told_of_them) {
  const char* const text =
      "1000-2000 r--p 00000000 00:00 0 \nSize: 4 kB\nVmFlags: rd mr\n"
      "2000-3000 rw-p 00000000 00:00 0 \nSize: 4 kB\nVmFlags: rd wr\n";
  EXPECT_EQ(mappings_within(text, {{0x2000, 0x3000, ""}}),
            "00002000-00003000 rw-p 00000000 00:00 0 \nSize: 4 kB\nVmFlags: rd wr\n");
}

std::string known() {
  std::string text;
  for (const memory_range& range : application_memory()) {
    if (range.start == range.end) continue;  // the stack: nothing was loaded
    text += std::to_string(range.start) + "-" + std::to_string(range.end) + " ";
  }
  return text;
}

TEST(application_memory, follows_what_is_mapped_and_unmapped) {
  note_mapped(10, 20);
  note_mapped(30, 40);
  EXPECT_EQ(known(), "10-20 30-40 ");
  note_mapped(20, 30);
  EXPECT_EQ(known(), "10-40 ");
  note_unmapped(15, 20);
  note_unmapped(35, 50);
  EXPECT_EQ(known(), "10-15 20-35 ");
  note_mapped(12, 25);
  EXPECT_EQ(known(), "10-35 ");
  note_unmapped(0, 100);
  EXPECT_EQ(known(), "");
  note_mapped(7, 7);
  EXPECT_EQ(known(), "");
}

}  // namespace
}  // namespace host
