// Process, output and memory of the client interface.
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include "host/include/dr_api.h"
#include "host/kernel/address.h"
#include "host/kernel/fatal.h"
#include "host/kernel/kernel_action.h"
#include "host/memory/memory_map.h"
#include "host/threads/thread.h"

file_t our_stderr = STDERR_FILENO;

namespace {

module_data_t* to_record(const host::module_info& module) {
  char* const path = strdup(module.full_path.c_str());
  if (path == nullptr) host::fatal("out of memory");
  return new module_data_t{.start = host::pointer_to<byte>(module.start),
                           .end = host::pointer_to<byte>(module.end),
                           .entry_point = host::pointer_to<byte>(module.entry_point),
                           .full_path = path};
}

}  // namespace

void dr_set_client_name(const char* /*name*/, const char* /*report_url*/) {}

void* dr_get_current_drcontext() { return host::current_thread(); }

void* dr_thread_alloc(void* /*drcontext*/, std::size_t size) {
  constexpr std::size_t alignment = 16;
  void* const memory = std::aligned_alloc(alignment, (size + alignment - 1) & ~(alignment - 1));
  if (memory == nullptr) host::fatal("out of memory for a client");
  return memory;
}

void dr_thread_free(void* /*drcontext*/, void* mem, std::size_t /*size*/) { std::free(mem); }

std::ptrdiff_t dr_fprintf(file_t file, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int written = vdprintf(file, format, arguments);
  va_end(arguments);
  return written;
}

// This host keeps no log.
void dr_log(void* /*drcontext*/, uint /*mask*/, uint /*level*/, const char* /*format*/, ...) {}

void dr_abort() { host::die_by_signal(SIGABRT); }

module_data_t* dr_get_main_module() {
  const auto module = host::main_module();
  return module ? to_record(*module) : nullptr;
}

module_data_t* dr_lookup_module(byte* pc) {
  const auto module = host::module_at(reinterpret_cast<std::uintptr_t>(pc));
  return module ? to_record(*module) : nullptr;
}

void dr_free_module_data(module_data_t* data) {
  if (data == nullptr) return;
  std::free(data->full_path);
  delete data;
}

app_pc dr_fragment_app_pc(void* tag) { return static_cast<app_pc>(tag); }
