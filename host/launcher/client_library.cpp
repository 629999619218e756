#include "host/launcher/client_library.h"

#include <array>
#include <climits>
#include <cstdio>
#include <dlfcn.h>
#include <unistd.h>

#include "host/loading/launch_error.h"

namespace host {
namespace {

constexpr int interface_version = 602;
constexpr unsigned client_id = 0;  // there is never more than one client

[[noreturn]] void fail(const std::string& what) {
  throw launch_error(exit_status::launcher_failed, what);
}

// dlopen searches the system's directories for a name without a slash. The user means a file.
std::string with_slash(const std::string& path) {
  return path.find('/') == std::string::npos ? "./" + path : path;
}

}  // namespace

std::string launcher_path() {
  std::array<char, PATH_MAX> buffer;
  const ssize_t length = readlink("/proc/self/exe", buffer.data(), buffer.size());
  if (length <= 0) fail("cannot read /proc/self/exe to find the launcher's own file");
  return {buffer.data(), static_cast<std::size_t>(length)};
}

std::string default_client_path() {
  const std::string executable = launcher_path();
  const std::string directory = executable.substr(0, executable.rfind('/'));
  return directory + "/../lib/libsve_client.so";
}

client_library::client_library(const std::string& path)
    : path_(path), handle_(dlopen(with_slash(path).c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) fail(std::string("cannot load the client library: ") + dlerror());
}

void* client_library::symbol(const char* name) const {
  void* const address = dlsym(handle_, name);
  if (address == nullptr) fail(path_ + ": exports no " + name + "; is it a client library?");
  return address;
}

void client_library::check_version() const {
  const int version = *static_cast<const int*>(symbol("_USES_DR_VERSION_"));
  if (version == interface_version) return;
  fail(path_ + ": built for version " + std::to_string(version) +
       " of the host interface; this host has version " + std::to_string(interface_version));
}

void client_library::start(const std::vector<std::string>& arguments) const {
  check_version();
  std::vector<const char*> argv;
  argv.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  argv.push_back(nullptr);
  using client_main = void(unsigned id, int argc, const char** argv);
  const auto entry = reinterpret_cast<client_main*>(symbol("dr_client_main"));
  entry(client_id, static_cast<int>(arguments.size()), argv.data());
}

unsigned client_library::vector_bytes() const {
  const auto tell = reinterpret_cast<unsigned (*)()>(symbol("sve_vector_bytes"));
  return tell();
}

void client_library::list_instructions() const {
  const auto list = reinterpret_cast<void (*)(std::FILE*)>(symbol("list_sve_instructions"));
  list(stdout);
}

void client_library::disassemble(std::span<const std::uint32_t> words) const {
  const auto print =
      reinterpret_cast<void (*)(std::FILE*, unsigned)>(symbol("print_sve_disassembly"));
  for (const std::uint32_t word : words) print(stdout, word);
}

}  // namespace host
