// The client library. It is loaded into the launcher's own link-map namespace, and there it binds
// to the host interface that the launcher exports.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host {

// The launcher's own file, absolute.
std::string launcher_path();

// libsve_client.so in the launcher's ../lib.
std::string default_client_path();

class client_library {
 public:
  // Loads the library, which runs its static initialisers. Throws launch_error. The library is
  // never unloaded, because translated code calls it until the process ends.
  explicit client_library(const std::string& path);

  // Checks the interface version that the client was built for and calls its dr_client_main.
  // `arguments` starts with the client's path. Throws launch_error.
  void start(const std::vector<std::string>& arguments) const;

  // The vector length of the processor that the client emulates, in bytes. Throws launch_error if
  // the client does not export it.
  [[nodiscard]] unsigned vector_bytes() const;

  // Prints the instruction forms that the client knows. Throws launch_error for a client other than
  // ours.
  void list_instructions() const;

  // Prints a line on what each word means to our own client. Throws launch_error for another one.
  void disassemble(std::span<const std::uint32_t> words) const;

 private:
  [[nodiscard]] void* symbol(const char* name) const;
  void check_version() const;

  std::string path_;
  void* handle_;
};

}  // namespace host
