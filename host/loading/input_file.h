// A file that is about to be executed: opened under the rules of execve, its bytes in view.
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace host {

// What execve would say to this file: 0, or an error number (EISDIR for a directory, EINVAL for
// another thing that is no regular file).
int execution_error(const std::string& path);

class input_file {
 public:
  // Opens `path`, which must be a regular file that may be executed. Throws launch_error: not_found
  // if there is no such file, cannot_run for a directory, a missing permission and the like.
  // `role` stands before the path in such a message ("", or "interpreter " and the like).
  explicit input_file(const std::string& path, const std::string& role = "");
  ~input_file();
  input_file(const input_file&) = delete;
  input_file& operator=(const input_file&) = delete;
  input_file(input_file&& other) noexcept;
  input_file& operator=(input_file&& other) noexcept;

  [[nodiscard]] std::span<const std::byte> bytes() const { return bytes_; }
  [[nodiscard]] int descriptor() const { return descriptor_; }
  [[nodiscard]] const std::string& path() const { return path_; }

  // The path without symbolic links, as /proc/self/exe tells it.
  [[nodiscard]] std::string real_path() const;

 private:
  input_file() = default;

  std::string path_;
  int descriptor_ = -1;
  std::span<const std::byte> bytes_;
};

}  // namespace host
