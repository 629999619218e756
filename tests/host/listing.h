// Listings of translations, as tests write them: an instruction at the margin and, indented, the
// words that take its place, each with its disassembly.
#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "host/assembler.h"

namespace host {

struct listed_translation {
  std::string line;
  std::uint32_t before;
  words after;
  std::vector<std::string> notes;  // what stands behind each word after
};

inline std::vector<listed_translation> read_listing(const char* listing) {
  std::vector<listed_translation> translations;
  std::istringstream lines(listing);
  for (std::string line; std::getline(lines, line);) {
    if (line.empty()) continue;
    const auto word = static_cast<std::uint32_t>(std::stoul(line, nullptr, 16));
    if (line[0] != ' ') {
      translations.push_back({line, word, {}, {}});
    } else {
      translations.back().after.push_back(word);
      translations.back().notes.push_back(line.substr(line.find("//") + 3));
    }
  }
  return translations;
}

}  // namespace host
