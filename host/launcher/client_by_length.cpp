#include "host/launcher/client_by_length.h"

#include <charconv>
#include <filesystem>
#include <set>

#include "host/loading/launch_error.h"

namespace host {
namespace {

const std::string file_prefix = "libsve_client_";
const std::string file_extension = ".so";

// Returns 0 if no processor has such vectors.
unsigned length_in_bits(const std::string& text) {
  unsigned bits = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), bits);
  const bool whole = parsed.ec == std::errc() && std::to_string(bits) == text;
  return whole && bits % 128 == 0 && bits <= 2048 ? bits : 0;
}

std::filesystem::path file_of_length(const std::string& bits) {
  const std::filesystem::path folder = std::filesystem::path(default_client_path()).parent_path();
  return folder / (file_prefix + bits + file_extension);
}

// Returns 0 for other files, and for a link to a file that is not there.
unsigned length_of_file(const std::filesystem::directory_entry& file) {
  const std::string name = file.path().filename().string();
  std::error_code ignored;
  if (!name.starts_with(file_prefix) || !name.ends_with(file_extension)) return 0;
  if (!file.is_regular_file(ignored)) return 0;
  const std::size_t length = name.size() - file_prefix.size() - file_extension.size();
  return length_in_bits(name.substr(file_prefix.size(), length));
}

std::set<unsigned> lengths_present() {
  std::set<unsigned> result;
  std::error_code ignored;
  for (const auto& file :
       std::filesystem::directory_iterator(file_of_length("").parent_path(), ignored)) {
    if (const unsigned bits = length_of_file(file); bits != 0) result.insert(bits);
  }
  return result;
}

std::string tell_lengths_present() {
  std::string text;
  const std::set<unsigned> lengths = lengths_present();
  for (const unsigned bits : lengths) {
    if (!text.empty()) text += bits == *lengths.rbegin() ? " and " : ", ";
    text += std::to_string(bits);
  }
  return text.empty() ? "there are no clients of other lengths"
                      : "there are clients for " + text + " bits";
}

[[noreturn]] void refuse(exit_status status, const std::string& what) {
  throw launch_error(status, what);
}

}  // namespace

std::string client_for_length(const std::string& bits) {
  if (length_in_bits(bits) == 0) {
    refuse(exit_status::usage, "--vl needs a multiple of 128 from 128 to 2048, not \"" + bits +
                                   "\"; " + tell_lengths_present() +
                                   "; make others by ./run --vl BITS PROGRAM");
  }
  const std::filesystem::path path = file_of_length(bits);
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored)) return path.string();
  refuse(exit_status::launcher_failed, "there is no client for " + bits + " bits; " +
                                           tell_lengths_present() + "; make one by ./run --vl " +
                                           bits + " PROGRAM");
}

void check_length(const client_library& client, const std::string& bits) {
  const std::string found = std::to_string(client.vector_bytes() * 8);
  if (found == bits) return;
  refuse(exit_status::launcher_failed,
         file_of_length(bits).string() + " emulates vectors of " + found + " bits instead of " +
             bits + "; delete it, and make it again by ./run --vl " + bits + " PROGRAM");
}

}  // namespace host
