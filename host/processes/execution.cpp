#include "host/processes/execution.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/kernel/address.h"
#include "host/kernel/application_call.h"
#include "host/kernel/fatal.h"
#include "host/kernel/guarded_copy.h"
#include "host/kernel/kernel_call.h"
#include "host/loading/elf_reader.h"
#include "host/loading/launch_error.h"
#include "host/loading/option_names.h"
#include "host/loading/program_search.h"
#include "host/memory/memory_map.h"
#include "host/memory/own_files.h"
#include "host/signals/signal_actions.h"
#include "host/signals/signal_delivery.h"
#include "host/signals/signals.h"
#include "host/signals/thread_signals.h"
#include "host/threads/thread.h"

namespace host {
namespace {

launch_settings settings;

// Makes the call fail with this error. No user sees the text.
[[noreturn]] void fail(int error_number) {
  throw launch_error(exit_status::cannot_run, std::strerror(error_number), error_number);
}

struct execution_request {
  explicit execution_request(const std::uint64_t* x)
      : calls_execveat(x[8] == SYS_execveat),
        directory(calls_execveat ? static_cast<int>(x[0]) : AT_FDCWD),
        path(x[calls_execveat ? 1 : 0]),
        arguments(x[calls_execveat ? 2 : 1]),
        environment(x[calls_execveat ? 3 : 2]),
        flags(calls_execveat ? x[4] : 0) {}

  bool calls_execveat;
  int directory;
  std::uint64_t path;
  std::uint64_t arguments;
  std::uint64_t environment;
  std::uint64_t flags;
};

// The path by which the host opens the file, and the name that the kernel gives it.
executable_file find_executable(const execution_request& request, const std::string& path) {
  const auto directory = static_cast<std::uint64_t>(request.directory);
  if (names_own_executable(directory, request.path)) {
    return {main_module().value_or(module_info{}).full_path, path};
  }
  if (request.directory == AT_FDCWD || path.starts_with("/")) return {path, path};
  const std::string below = path.empty() ? "" : "/" + path;
  const std::string number = std::to_string(request.directory);
  return {"/proc/self/fd/" + number + below, "/dev/fd/" + number + below};
}

bool is_aarch64_program(std::span<const std::byte> file) {
  Elf64_Ehdr header;
  if (file.size() < sizeof header) return false;
  std::memcpy(&header, file.data(), sizeof header);
  return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
         header.e_ident[EI_CLASS] == ELFCLASS64 && header.e_ident[EI_DATA] == ELFDATA2LSB &&
         header.e_machine == EM_AARCH64 && (header.e_type == ET_EXEC || header.e_type == ET_DYN);
}

// Throws launch_error if the launcher could not load it.
void check_program(const input_file& file) {
  const auto page_size = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
  const elf_image image = read_elf(file.path(), file.bytes(), page_size);
  if (image.interpreter.empty()) return;
  const input_file interpreter(image.interpreter);
  if (!is_aarch64_program(interpreter.bytes())) {
    fail(ELIBBAD);
  }
  read_elf(interpreter.path(), interpreter.bytes(), page_size);
}

enum class verdict { launch, leave_to_kernel };

// If the program executes the launcher itself, that does not need a second launcher around it.
// Throws launch_error.
verdict judge(const executable_file& executable) {
  const program_to_run program = follow_scripts(executable, {""});
  if (!is_aarch64_program(program.file.bytes())) return verdict::leave_to_kernel;
  if (program.file.real_path() == settings.launcher) return verdict::leave_to_kernel;
  check_program(program.file);
  return verdict::launch;
}

// A path through the process's own descriptors may lead elsewhere after exec.
bool depends_on_descriptors(const std::string& path) {
  return path.starts_with("/proc/") || path.starts_with("/dev/");
}

// The interpreter opens a script again by its name. If that name goes through a descriptor that
// exec closes, the interpreter cannot find it.
bool is_lost_script(const execution_request& request, const executable_file& executable) {
  if (executable.path == executable.name || request.directory == AT_FDCWD) return false;
  if ((fcntl(request.directory, F_GETFD) & FD_CLOEXEC) == 0) return false;
  const input_file file(executable.path);
  return file.bytes().size() > 2 && std::memcmp(file.bytes().data(), "#!", 2) == 0;
}

// Everything that the call itself needs. It is kept and used again by the thread's next call. A
// vforked child that executes a program leaves its allocations behind in its parent's memory. It
// leaves the number of its descriptor there too, but the descriptor itself is not the parent's.
struct prepared_launch {
  std::vector<std::string> words;        // of the new launcher's command line, up to "--"
  std::vector<std::uint64_t> arguments;  // all of it: addresses of the words and of the program's
  int descriptor = -1;                   // that the launcher closes
};
thread_local prepared_launch prepared;

void add_words(const thread_state& thread, const executable_file& executable,
               const std::string& path) {
  std::vector<std::string>& words = prepared.words;
  words = {"tessaly", option_name::executable, path, option_name::executable_name, executable.name};
  const auto add_if = [&words](bool chosen, const char* option) {
    if (chosen) words.emplace_back(option);
  };
  add_if(settings.advertise_sve, option_name::advertise_sve);
  add_if(settings.architectural, option_name::architectural);
  add_if(settings.warn_v_writes, option_name::warn_v_writes);
  add_if(thread.process.inherits_vector_length, option_name::inherits_vector_length);
  if (prepared.descriptor >= 0) {
    words.emplace_back(option_name::executable_descriptor);
    words.push_back(std::to_string(prepared.descriptor));
  }
  words.emplace_back(option_name::client);
  words.insert(words.end(), settings.client.begin(), settings.client.end());
  words.emplace_back("--");
}

// Returns false if the application's array cannot be read, or is longer than any kernel accepts. As
// in the kernel, a program without arguments gets one empty argument.
bool add_arguments(std::uint64_t array) {
  constexpr std::size_t limit = std::size_t{1} << 23;
  std::vector<std::uint64_t>& arguments = prepared.arguments;
  arguments.clear();
  for (const std::string& word : prepared.words) arguments.push_back(address_of(word.c_str()));
  const std::size_t words = arguments.size();
  for (std::uint64_t at = array; array != 0 && arguments.size() < limit; at += sizeof at) {
    std::uint64_t argument = 0;
    if (!read_from_application(at, argument)) return false;
    if (argument == 0) break;
    arguments.push_back(argument);
  }
  if (arguments.size() == words) arguments.push_back(address_of(""));
  arguments.push_back(0);
  return arguments.size() < limit;
}

// The errors that are not the launcher's fault.
bool is_programs_own_error(std::int64_t error) {
  switch (error) {
    case call_not_started:
    case -E2BIG:
    case -ENOMEM:
    case -EAGAIN:
    case -EFAULT:
    case -EINTR: return true;
    default: return false;
  }
}

// The new program inherits the signals that the application ignores and blocks, the host's own
// signals included, so the kernel is told of them first. A signal that arrives now keeps the call
// from starting.
std::int64_t call_execve(thread_state& thread, std::uint64_t environment) {
  const std::uint64_t mask = block_signals(thread);
  std::int64_t result = call_not_started;
  if (thread.signals->pending.other.signal == 0) {
    thread.signals->actions->tell_kernel_of_ignored();
    kernel_call(SYS_rt_sigprocmask, SIG_SETMASK, address_of(&mask), 0, sizeof mask);
    const std::array<std::uint64_t, 9> x = {address_of(settings.launcher.c_str()),
                                            address_of(prepared.arguments.data()),
                                            environment,
                                            0,
                                            0,
                                            0,
                                            0,
                                            0,
                                            SYS_execve};
    result = application_call(x.data(), &thread.context.attention);
    block_signals(thread);
    install_signal_handlers();
  }
  set_application_mask(thread, mask);
  return result;
}

std::int64_t launch(thread_state& thread, std::uint64_t environment) {
  const std::int64_t result = call_execve(thread, environment);
  if (prepared.descriptor >= 0) close(prepared.descriptor);
  if (!is_programs_own_error(result)) {
    fatal("execve: the launcher %s cannot be executed from here (%s)", settings.launcher.c_str(),
          std::strerror(static_cast<int>(-result)));
  }
  return result;
}

// Throws launch_error.
void prepare(const thread_state& thread, const execution_request& request,
             const executable_file& executable) {
  std::string path = executable.path;
  prepared.descriptor = -1;
  if (depends_on_descriptors(path)) {
    prepared.descriptor = open(path.c_str(), O_PATH);
    if (prepared.descriptor < 0) fail(errno);
    path = "/proc/self/fd/" + std::to_string(prepared.descriptor);
  }
  add_words(thread, executable, path);
  if (add_arguments(request.arguments)) return;
  if (prepared.descriptor >= 0) close(prepared.descriptor);
  fail(EFAULT);
}

// If something is wrong with the path, or if a flag decides the result, the kernel makes the call
// and returns the error.
bool is_for_kernel(const execution_request& request, const std::optional<std::string>& path) {
  constexpr std::uint64_t known_flags = AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW;
  if (!path || (request.flags & ~known_flags) != 0) return true;
  const auto directory = static_cast<std::uint64_t>(request.directory);
  if (path->empty()) {
    return (request.flags & AT_EMPTY_PATH) == 0 || request.directory == AT_FDCWD ||
           fcntl(request.directory, F_GETFD) < 0;
  }
  if ((request.flags & AT_SYMLINK_NOFOLLOW) != 0) {
    char target = 0;
    if (kernel_call(SYS_readlinkat, directory, request.path, address_of(&target), 1) > 0)
      return true;
  }
  return kernel_call(SYS_faccessat, directory, request.path, F_OK) < 0;
}

// Returns false if the kernel is to make the call as it is.
bool prepare_if_ours(const thread_state& thread, const execution_request& request) {
  const auto path = read_path(request.path);
  if (is_for_kernel(request, path)) return false;
  const executable_file executable = find_executable(request, *path);
  if (is_lost_script(request, executable)) fail(ENOENT);
  if (judge(executable) == verdict::leave_to_kernel) return false;
  prepare(thread, request, executable);
  return true;
}

}  // namespace

void set_launch_settings(const launch_settings& chosen) { settings = chosen; }

std::int64_t execute_program(thread_state& thread) {
  const std::uint64_t* const x = thread.context.x;
  const execution_request request(x);
  try {
    if (prepare_if_ours(thread, request)) return launch(thread, request.environment);
  } catch (const launch_error& error) {
    return -error.error_number();
  }
  return application_call(x, &thread.context.attention);
}

}  // namespace host
