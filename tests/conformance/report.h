// What the conformance test prints.
#pragma once

#include <string>
#include <vector>

#include "tests/conformance/cases.h"

namespace conformance {

// A case that failed: the word and its fields, what differs, and the command that repeats it.
void report_failure(const test_case& tested, const std::vector<difference>& found);

// One line for a row that failed.
void report_row(const row_result& result);

// Rows passing, failing and not written, by family and kind, and in all.
void print_summary(const std::vector<row_result>& results);

// The rows by themselves, with what is not written yet.
void print_list(const std::vector<const sve::instruction_row*>& rows);

// A line for each row. False, with errno set, if the file cannot be written.
bool write_results(const std::string& path, const std::vector<row_result>& results);

}  // namespace conformance
