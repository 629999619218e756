// A host that a test scripts: it records what the client asks of it, in order, fails where it is
// told to, and calls the client's events when the test wants it. Instruction lists are those of the
// real host; what the real host would insert stands in them as marker words.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "drmgr.h"
#include "drreg.h"

DR_EXPORT void dr_client_main(client_id_t id, int argc, const char* argv[]);

// With which dr_abort ends the process: an emulator adds nothing to the messages of an exit.
constexpr int aborted_status = 99;

// A pointer that nobody follows.
inline void* pointer_to(std::uintptr_t address) {
  return reinterpret_cast<void*>(address);  // NOLINT(performance-no-int-to-ptr): made up
}

// A thread's context: what a drcontext points at.
struct scripted_thread {
  void* field = nullptr;
  reg_t slots[SPILL_SLOT_MAX + 1] = {};
};

struct scripted_module {
  std::uintptr_t start;
  std::uintptr_t end;
  const char* path;
};

// What dr_insert_call_velox was given.
struct scripted_call {
  app_pc pc;
  void* callee;
  std::vector<opnd_t> arguments;
};

struct scripted_host {
  // The script. The first module is the main module.
  std::vector<scripted_module> modules = {{0x10000, 0x20000, "/opt/program/bin/prog"},
                                          {0x70000, 0x80000, "/lib/libother.so"}};
  bool has_main_module = true;
  std::string failing;  // name of the function that reports failure
  reg_id_t stolen_register = DR_REG_X28;
  scripted_thread* current = nullptr;

  // The record.
  std::vector<std::string> calls;  // those of the client's life cycle
  std::vector<scripted_call> inserted_calls;
  int module_records = 0;  // handed out and not freed
  int thread_records = 0;
  void (*exit_event)() = nullptr;
  void (*thread_init_event)(void*) = nullptr;
  void (*thread_exit_event)(void*) = nullptr;
  drmgr_xform_cb_t block_event = nullptr;

  bool record(const std::string& call);  // false if `call` is the failing one
};

extern scripted_host host_script;

// Marker words, of the permanently undefined encodings: register in bits 7 to 0, slot in 11 to 8.
namespace marker {
constexpr std::uint32_t save = 0x1000;
constexpr std::uint32_t restore = 0x2000;
constexpr std::uint32_t get_stolen = 0x3000;
constexpr std::uint32_t set_stolen = 0x4000;
constexpr std::uint32_t call = 0x5000;
}  // namespace marker
