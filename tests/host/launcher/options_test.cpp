#include "host/launcher/options.h"

#include <gtest/gtest.h>

#include "host/loading/launch_error.h"

namespace host {
namespace {

using words = std::vector<std::string>;

TEST(options, separates_client_and_program) {
  const struct {
    words arguments, client, program;
  } table[] = {
      {{"prog"}, {}, {"prog"}},
      {{"prog", "-c", "--", "--help"}, {}, {"prog", "-c", "--", "--help"}},
      {{"--", "prog", "x"}, {}, {"prog", "x"}},
      {{"--", "-prog"}, {}, {"-prog"}},
      {{"--", "--"}, {}, {"--"}},
      {{"-c", "c.so", "--", "prog"}, {"c.so"}, {"prog"}},
      {{"-c", "c.so", "-x", "y", "--", "prog", "--", "z"},
       {"c.so", "-x", "y"},
       {"prog", "--", "z"}},
      {{"", "x"}, {}, {"", "x"}},
  };
  for (const auto& row : table) {
    const options chosen = parse_options(row.arguments);
    EXPECT_EQ(chosen.action, requested_action::run);
    EXPECT_EQ(chosen.client, row.client) << testing::PrintToString(row.arguments);
    EXPECT_EQ(chosen.program, row.program) << testing::PrintToString(row.arguments);
  }
}

TEST(options, stand_before_the_program) {
  const options chosen =
      parse_options(words{"--executable", "file", "--advertise-sve", "--executable-name", "name",
                          "--executable-descriptor", "7", "-c", "c.so", "x", "--", "", "-y"});
  EXPECT_EQ(chosen.vector_length, std::nullopt);
  EXPECT_TRUE(chosen.advertise_sve);
  EXPECT_EQ(chosen.executable, "file");
  EXPECT_EQ(chosen.executable_name, "name");
  EXPECT_EQ(chosen.executable_descriptor, 7);
  EXPECT_EQ(chosen.client, (words{"c.so", "x"}));
  EXPECT_EQ(chosen.program, (words{"", "-y"}));
  EXPECT_EQ(parse_options(words{"--vl", "512", "prog"}).vector_length, "512");
  const options plain = parse_options(words{"prog", "--advertise-sve", "--vl", "512"});
  EXPECT_EQ(plain.vector_length, std::nullopt);
  EXPECT_FALSE(plain.advertise_sve);
  EXPECT_EQ(plain.executable_descriptor, -1);
}

TEST(options, knows_requests_for_information) {
  EXPECT_EQ(parse_options(words{"--help"}).action, requested_action::show_help);
  EXPECT_EQ(parse_options(words{"--version"}).action, requested_action::show_version);
  EXPECT_EQ(parse_options(words{"--list-instructions"}).action,
            requested_action::list_instructions);
  const options chosen = parse_options(words{"--disassemble", "04a20020", "0xd503201F", "0"});
  EXPECT_EQ(chosen.action, requested_action::disassemble);
  EXPECT_EQ(chosen.words, (std::vector<std::uint32_t>{0x04a20020, 0xd503201f, 0}));
}

TEST(options, refuses_what_makes_no_sense) {
  const struct {
    words arguments;
    const char* fragment;
  } table[] = {
      {{}, "no program given"},
      {{"--"}, "no program given"},
      {{"-c"}, "-c needs"},
      {{"-c", "--", "prog"}, "-c needs the path"},
      {{"-c", "c.so"}, "-c needs --"},
      {{"-c", "c.so", "prog"}, "-c needs --"},
      {{"-c", "c.so", "--"}, "no program given"},
      {{"-x", "prog"}, "unknown option -x"},
      {{"--helpful"}, "unknown option --helpful"},
      {{"-"}, "unknown option -"},
      {{"--vl"}, "--vl needs a value"},
      {{"--vl", "512"}, "no program given"},
      {{"--vl", "512", "-c", "c.so", "--", "prog"}, "use only one of them"},
      {{"--version", "prog"}, "--version takes no"},
      {{"--advertise-sve"}, "no program given"},
      {{"--disassemble"}, "--disassemble needs an instruction word"},
      {{"--disassemble", "04a20020", "nop"}, "not \"nop\""},
      {{"--disassemble", "104a20020"}, "not \"104a20020\""},
      {{"--disassemble", "0x"}, "not \"0x\""},
      {{"--disassemble", "-1"}, "not \"-1\""},
      {{"--disassemble", ""}, "not \"\""},
      {{"--executable"}, "--executable needs a value"},
      {{"--executable-descriptor", "1x", "prog"}, "needs a number, not 1x"},
      {{"--executable-descriptor", "-1", "prog"}, "needs a number, not -1"},
  };
  for (const auto& row : table) {
    try {
      parse_options(row.arguments);
      ADD_FAILURE() << "accepted " << testing::PrintToString(row.arguments);
    } catch (const launch_error& error) {
      EXPECT_EQ(error.status(), exit_status::usage);
      EXPECT_NE(std::string(error.what()).find(row.fragment), std::string::npos) << error.what();
    }
  }
}

}  // namespace
}  // namespace host
