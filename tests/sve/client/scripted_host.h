// A host that a test scripts. It records the client's calls in order, fails when the test says so,
// and calls the client's events when the test asks for it. Its instruction lists are those of the
// real host, but have marker words in place of the code that the real host would insert.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "drmgr.h"
#include "drreg.h"

DR_EXPORT void dr_client_main(client_id_t id, int argc, const char* argv[]);

// The exit status of the scripted dr_abort. It does not raise a signal, because an emulator would
// then add to the messages.
constexpr int aborted_status = 99;

// A pointer that nobody dereferences.
inline void* pointer_to(std::uintptr_t address) {
  return reinterpret_cast<void*>(address);  // NOLINT(performance-no-int-to-ptr): made up
}

// The context of a thread: drcontext points to it.
struct scripted_thread {
  void* field = nullptr;
  reg_t slots[SPILL_SLOT_MAX + 1] = {};
};

struct scripted_module {
  std::uintptr_t start;
  std::uintptr_t end;
  const char* path;
};

// The arguments of dr_insert_call_velox.
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
  bool architectural = false;
  bool warn_v_writes = false;
  scripted_thread* current = nullptr;

  // The record.
  std::vector<std::string> calls;  // only those of the client's life cycle
  std::vector<scripted_call> inserted_calls;
  int module_records = 0;  // handed out and not freed
  int thread_records = 0;
  void (*exit_event)() = nullptr;
  void (*thread_init_event)(void*) = nullptr;
  void (*thread_exit_event)(void*) = nullptr;
  drmgr_xform_cb_t block_event = nullptr;
  std::uint64_t raw_slots[2] = {};  // the client gets the second

  bool record(const std::string& call);  // false if `call` is the failing one
};

extern scripted_host host_script;

// Marker words are permanently undefined encodings: the register is in bits 7 to 0, the slot in 11
// to 8.
namespace marker {
constexpr std::uint32_t save = 0x1000;
constexpr std::uint32_t restore = 0x2000;
constexpr std::uint32_t get_stolen = 0x3000;
constexpr std::uint32_t set_stolen = 0x4000;
constexpr std::uint32_t call = 0x5000;
constexpr std::uint32_t read_raw = 0x6000;
constexpr std::uint32_t write_raw = 0x7000;
}  // namespace marker
