// Reads the stack back as a C library's start code does.
#include "host/loading/initial_stack.h"

#include <array>
#include <cstring>
#include <gtest/gtest.h>
#include <map>

namespace host {
namespace {

constexpr std::uint64_t top = 0x7fff'ffff'0000;

class stack_view {
 public:
  explicit stack_view(std::vector<std::byte> bytes) : bytes_(std::move(bytes)) {}

  [[nodiscard]] std::uint64_t pointer() const { return top - bytes_.size(); }
  std::uint64_t next_word() {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes_.data() + position_, sizeof word);
    position_ += sizeof word;
    return word;
  }
  std::vector<std::uint64_t> words_until_null() {
    std::vector<std::uint64_t> words;
    while (const std::uint64_t word = next_word()) words.push_back(word);
    return words;
  }
  const char* at(std::uint64_t address) {
    EXPECT_TRUE(address >= pointer() + position_ && address < top);
    return reinterpret_cast<const char*>(bytes_.data() + (address - pointer()));
  }

 private:
  std::vector<std::byte> bytes_;
  std::size_t position_ = 0;
};

std::map<std::uint64_t, std::uint64_t> read_auxiliary_vector(stack_view& stack) {
  std::map<std::uint64_t, std::uint64_t> entries;
  while (const std::uint64_t type = stack.next_word()) entries[type] = stack.next_word();
  return entries;
}

// The strings at `addresses` are `texts`, and the next begins where one ends.
std::uint64_t expect_strings(stack_view& stack, const std::vector<std::uint64_t>& addresses,
                             const std::vector<std::string>& texts) {
  EXPECT_EQ(addresses.size(), texts.size());
  std::uint64_t end = 0;
  for (std::size_t i = 0; i < addresses.size(); ++i) {
    EXPECT_EQ(stack.at(addresses[i]), texts[i]);
    EXPECT_TRUE(end == 0 || addresses[i] == end) << "string " << i;
    end = addresses[i] + texts[i].size() + 1;
  }
  return end;
}

TEST(initial_stack, reads_back_for_any_number_of_strings) {
  std::array<std::byte, 16> random;
  for (std::size_t i = 0; i < random.size(); ++i) random[i] = std::byte(i * 7 + 1);
  const Elf64_auxv_t own[] = {{AT_HWCAP, {0x119ffb}},
                              {AT_IGNORE, {5}},
                              {AT_PHDR, {1}},
                              {AT_RANDOM, {2}},
                              {AT_PLATFORM, {reinterpret_cast<std::uint64_t>("aarch64")}},
                              {999, {888}},
                              {AT_NULL, {0}}};
  for (std::size_t count = 0; count < 9; ++count) {
    process_start start;
    start.arguments.assign(count % 3, "argument " + std::string(count, 'x'));
    start.environment.assign(count / 3, "NAME=" + std::string(count, 'y'));
    start.executable_name = "./program";
    start.auxiliary_vector = application_auxiliary_vector(own, {0x400040, 9, 0x400800, 0x55000});
    stack_view stack(build_initial_stack(start, top, random));

    EXPECT_EQ(stack.pointer() % 16, 0U);
    EXPECT_EQ(stack.next_word(), start.arguments.size());
    const auto arguments = stack.words_until_null();
    const auto environment = stack.words_until_null();
    auto entries = read_auxiliary_vector(stack);
    EXPECT_EQ(stack.next_word(), 0U) << "value of AT_NULL";
    const std::uint64_t end = expect_strings(stack, arguments, start.arguments);
    expect_strings(stack, environment, start.environment);
    EXPECT_TRUE(end == 0 || environment.empty() || environment.front() == end);

    EXPECT_EQ(std::memcmp(stack.at(entries.at(AT_RANDOM)), random.data(), random.size()), 0);
    EXPECT_STREQ(stack.at(entries.at(AT_EXECFN)), "./program");
    EXPECT_STREQ(stack.at(entries.at(AT_PLATFORM)), "aarch64");
    for (const std::uint64_t pointer : {AT_RANDOM, AT_EXECFN, AT_PLATFORM}) entries.erase(pointer);
    const std::map<std::uint64_t, std::uint64_t> expected = {{AT_HWCAP, 0x119ffb},
                                                             {AT_PHDR, 0x400040},
                                                             {AT_PHENT, sizeof(Elf64_Phdr)},
                                                             {AT_PHNUM, 9},
                                                             {AT_BASE, 0x55000},
                                                             {AT_ENTRY, 0x400800},
                                                             {999, 888}};
    EXPECT_EQ(entries, expected);
  }
}

}  // namespace
}  // namespace host
