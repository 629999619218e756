#include <cstdio>
#include <cstdlib>
#include <elf.h>
#include <filesystem>
#include <string>
#include <sys/prctl.h>
#include <unistd.h>
#include <vector>

#include "host/client/own_interface.h"
#include "host/launcher/client_by_length.h"
#include "host/launcher/client_library.h"
#include "host/launcher/options.h"
#include "host/launcher/runtime.h"
#include "host/loading/initial_stack.h"
#include "host/loading/launch_error.h"
#include "host/loading/loader.h"
#include "host/loading/program_search.h"
#include "host/memory/advertised_sve.h"
#include "host/processes/execution.h"
#include "host/signals/frame_records.h"
#include "host/threads/thread.h"

namespace {

using namespace host;

// The kernel puts the auxiliary vector after the environment. This holds as long as nothing has
// moved the environment.
const Elf64_auxv_t* auxiliary_vector(char** environment) {
  while (*environment != nullptr) ++environment;
  return reinterpret_cast<const Elf64_auxv_t*>(environment + 1);
}

std::vector<std::string> collect(char** texts) {
  std::vector<std::string> result;
  for (; *texts != nullptr; ++texts) result.emplace_back(*texts);
  return result;
}

// If PATH is not set, a shell searches these directories.
std::string search_path() {
  const char* const path = std::getenv("PATH");
  return path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin";
}

// A user's name without a slash is searched in PATH. A name from execve is not.
program_to_run find(const options& chosen) {
  if (chosen.executable.empty()) return find_program(chosen.program, search_path());
  const std::string& name =
      chosen.executable_name.empty() ? chosen.executable : chosen.executable_name;
  program_to_run found = follow_scripts({chosen.executable, name}, chosen.program);
  if (chosen.executable_descriptor >= 0) close(chosen.executable_descriptor);
  return found;
}

loaded_program load(const options& chosen, char** environment) {
  const program_to_run program = find(chosen);
  if (program.file.real_path() == launcher_path()) {
    throw launch_error(exit_status::cannot_run, program.executable_name +
                                                    ": this is tessaly itself, and it cannot run "
                                                    "under tessaly; give the program alone");
  }
  loaded_program loaded = load_program(program, collect(environment), auxiliary_vector(environment),
                                       {chosen.advertise_sve, chosen.architectural});
  // The process gets the program's name, as after exec.
  const std::string& name = program.executable_name;
  prctl(PR_SET_NAME, name.c_str() + name.rfind('/') + 1);
  return loaded;
}

// The program may have changed its directory when it executes another one.
std::string absolute(const std::string& path) {
  return std::filesystem::absolute(path).lexically_normal();
}

// What the program can see of SVE before it runs an instruction of it.
void show_sve(const options& chosen, unsigned vector_bytes, const loaded_program& program) {
  advertise_sve(vector_bytes);
  current_thread()->process.inherits_vector_length = chosen.inherits_vector_length;
  if (!chosen.architectural) return;
  set_auxiliary_value(program.stack_pointer, AT_MINSIGSTKSZ, smallest_signal_stack(vector_bytes));
}

[[noreturn]] void run_program(options chosen, char** environment) {
  if (chosen.vector_length) chosen.client.push_back(client_for_length(*chosen.vector_length));
  const loaded_program program = load(chosen, environment);
  if (chosen.client.empty()) chosen.client.push_back(default_client_path());
  launch_settings settings{launcher_path(), chosen.client, chosen.advertise_sve,
                           chosen.architectural, chosen.warn_v_writes};
  settings.client.front() = absolute(settings.client.front());
  set_launch_settings(settings);
  initialize(program);
  set_client_modes({chosen.architectural, chosen.warn_v_writes && !chosen.architectural});
  const client_library client(chosen.client.front());
  if (chosen.vector_length) check_length(client, *chosen.vector_length);
  if (chosen.advertise_sve) show_sve(chosen, client.vector_bytes(), program);
  client.start(chosen.client);
  run(program);
}

int launch(const options& chosen, char** environment) {
  switch (chosen.action) {
    case requested_action::show_help: std::fputs(help_text, stdout); return 0;
    case requested_action::show_version: std::puts("tessaly " TESSALY_VERSION); return 0;
    case requested_action::list_instructions:
      client_library(default_client_path()).list_instructions();
      return 0;
    case requested_action::disassemble:
      client_library(default_client_path()).disassemble(chosen.words);
      return 0;
    case requested_action::run: break;
  }
  run_program(chosen, environment);
}

}  // namespace

int main(int argc, char** argv, char** environment) {
  try {
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    return launch(parse_options(arguments), environment);
  } catch (const launch_error& error) {
    std::fprintf(stderr, "tessaly: %s\n", error.what());
    return static_cast<int>(error.status());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tessaly: internal error: %s\n", error.what());
    return static_cast<int>(exit_status::launcher_failed);
  }
}
