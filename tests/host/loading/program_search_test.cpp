#include "host/loading/program_search.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "host/loading/launch_error.h"

namespace host {
namespace {

namespace fs = std::filesystem;
using words = std::vector<std::string>;

constexpr int size_limit = 256;  // the kernel reads no more of a script's first line

TEST(script_line, follows_the_kernel) {
  const std::string long_path = "/" + std::string(size_limit - 4, 'p');  // fills bytes 2 to 254
  const std::string long_argument(size_limit, 'a');
  const struct {
    std::string start;
    std::string interpreter;
    std::optional<std::string> argument;
  } table[] = {
      {"#!/bin/sh\necho", "/bin/sh", std::nullopt},
      {"#! \t /bin/sh \t \n", "/bin/sh", std::nullopt},
      {"#!/usr/bin/env  python3  -u \n", "/usr/bin/env", "python3  -u"},
      {"#!/bin/sh", "/bin/sh", std::nullopt},
      {"#!/bin/sh -e", "/bin/sh", "-e"},
      {"#!/bin/sh\r\n", "/bin/sh\r", std::nullopt},
      {{"#!/bin/sh\0 -e\n", 14}, "/bin/sh", std::nullopt},
      {"#!" + long_path + "\n", long_path, std::nullopt},
      {"#!" + long_path + " x", long_path, std::nullopt},
      {"#!/bin/sh " + long_argument, "/bin/sh", std::string(size_limit - 11, 'a')},
  };
  for (const auto& row : table) {
    const auto line = read_script_line("script", row.start);
    ASSERT_TRUE(line) << row.start;
    EXPECT_EQ(line->interpreter, row.interpreter) << row.start;
    EXPECT_EQ(line->argument, row.argument) << row.start;
  }
  EXPECT_FALSE(read_script_line("script", "\177ELF"));
  EXPECT_FALSE(read_script_line("script", "#"));
}

TEST(script_line, refuses_what_names_no_interpreter) {
  const std::string refused[] = {"#!", "#!\n", "#! \t\n", "#!" + std::string(size_limit, ' '),
                                 "#!/" + std::string(size_limit, 'p')};
  for (const std::string& start : refused) {
    EXPECT_THROW(read_script_line("script", start), launch_error) << start;
  }
}

// A directory of files with chosen permissions.
class program_search : public testing::Test {
 protected:
  program_search() {
    std::string name = testing::TempDir() + "program_search.XXXXXX";
    root_ = mkdtemp(name.data());
  }
  ~program_search() override { fs::remove_all(root_); }

  std::string put(const std::string& name, const std::string& content, mode_t mode = 0755) {
    const fs::path path = root_ / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << content;
    chmod(path.c_str(), mode);
    return path;
  }
  [[nodiscard]] std::string at(const std::string& name) const { return root_ / name; }

  static exit_status status_of(const words& arguments, const std::string& search_path) {
    try {
      find_program(arguments, search_path);
      return exit_status{0};
    } catch (const launch_error& error) {
      return error.status();
    }
  }

  fs::path root_;
};

TEST_F(program_search, takes_the_first_executable_in_path) {
  put("a/prog", "x", 0644);
  put("b/prog", "x");
  put("c/prog", "x");
  fs::create_directories(root_ / "d/prog");
  const auto path = [this](const std::string& names) {
    std::string result;
    for (const char name : names) result.append(at({name})).append(":");
    result.pop_back();
    return result;
  };
  EXPECT_EQ(find_in_path("prog", path("dabc")), at("b/prog"));
  EXPECT_EQ(find_in_path("prog", path("zc")), at("c/prog"));
  EXPECT_EQ(find_in_path("./prog", path("b")), "./prog");
  EXPECT_EQ(status_of({"prog"}, path("a")), exit_status::cannot_run);
  EXPECT_EQ(status_of({"prog"}, path("d")), exit_status::cannot_run);
  EXPECT_EQ(status_of({"prog"}, path("z")), exit_status::not_found);
  EXPECT_EQ(status_of({"prog"}, at("b/prog")), exit_status::not_found);
  EXPECT_EQ(status_of({"prog"}, ""), exit_status::not_found);
  EXPECT_EQ(status_of({""}, path("b")), exit_status::not_found);
}

TEST_F(program_search, follows_scripts_to_a_limit) {
  std::string previous = put("elf", "\177ELF...");
  for (int depth = 1; depth <= 5; ++depth) {
    previous = put("s" + std::to_string(depth), std::string("#!").append(previous));
  }
  EXPECT_EQ(status_of({previous}, ""), exit_status{0});
  EXPECT_EQ(status_of({put("s6", "#!" + previous)}, ""), exit_status::cannot_run);
  EXPECT_EQ(status_of({put("self", "#!" + at("self"))}, ""), exit_status::cannot_run);
}

TEST_F(program_search, tells_the_path_of_a_file_from_its_name) {
  const std::string elf = put("elf", "\177ELF...");
  const std::string script = put("script", "#!" + elf);
  const program_to_run program = follow_scripts({script, "/dev/fd/3"}, {"lost", "x"});
  EXPECT_EQ(program.file.path(), elf);
  EXPECT_EQ(program.executable_name, "/dev/fd/3");
  EXPECT_EQ(program.arguments, (words{elf, "/dev/fd/3", "x"}));
}

}  // namespace
}  // namespace host
