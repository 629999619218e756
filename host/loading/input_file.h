// A file that is about to be executed: opened by the rules of execve, with its bytes mapped.
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace host {

// Whether execve would run this file: 0, or an error number. EISDIR means a directory, and EINVAL
// any other file that is not regular; execve itself returns EACCES for both.
int execution_error(const std::string& path);

class input_file {
 public:
  // Opens `path`, which must be a regular file that may be executed. Throws launch_error: not_found
  // if there is no such file, cannot_run for a directory, a missing permission and the like. `role`
  // goes before the path in the message: "", or for example "interpreter ".
  explicit input_file(const std::string& path, const std::string& role = "");
  ~input_file();
  input_file(const input_file&) = delete;
  input_file& operator=(const input_file&) = delete;
  input_file(input_file&& other) noexcept;
  input_file& operator=(input_file&& other) noexcept;

  [[nodiscard]] std::span<const std::byte> bytes() const { return bytes_; }
  [[nodiscard]] int descriptor() const { return descriptor_; }
  [[nodiscard]] const std::string& path() const { return path_; }

  // The path without symbolic links, as /proc/self/exe shows it.
  [[nodiscard]] std::string real_path() const;

 private:
  input_file() = default;

  std::string path_;
  int descriptor_ = -1;
  std::span<const std::byte> bytes_;
};

}  // namespace host
