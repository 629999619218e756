// What the conformance test prints.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "tests/conformance/cases.h"

namespace conformance {

// Prints a failed case: the word and its fields, what differs, and the command that repeats it.
void report_failure(const test_case& tested, const std::vector<difference>& found);

// Prints how many rows pass and fail, by family and kind, and in total.
void print_summary(std::FILE* out, const std::vector<row_result>& results);

// Writes the heading, the summary, and a line for each row. Returns false, with errno set, if the
// file cannot be written.
bool write_results(const std::string& path, const std::string& heading,
                   const std::vector<row_result>& results);

}  // namespace conformance
