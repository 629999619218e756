#include "host/client/events.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "host/include/drmgr.h"
#include "host/include/drreg.h"
#include "host/kernel/address.h"
#include "host/kernel/fork_lock.h"
#include "host/threads/thread.h"

namespace host {
namespace {

// The callbacks of one event. They run outside the lock, so that they can register and unregister.
template <typename Function>
class event {
 public:
  bool add(Function function) {
    const std::lock_guard lock(mutex_);
    functions_.push_back(function);
    return true;
  }

  bool remove(Function function) {
    const std::lock_guard lock(mutex_);
    return std::erase(functions_, function) != 0;
  }

  template <typename... Arguments>
  void run(Arguments... arguments) const {
    for (const Function function : copy()) function(arguments...);
  }

 private:
  std::vector<Function> copy() const {
    const std::lock_guard lock(mutex_);
    return functions_;
  }

  mutable fork_safe_mutex mutex_;
  std::vector<Function> functions_;
};

event<void (*)(void*)> thread_init;
event<void (*)(void*)> thread_exit;
event<void (*)()> process_exit;
event<drmgr_xform_cb_t> block;
event<void (*)(void*, const dr_kernel_xfer_info_t*)> kernel_transfer;
event<bool (*)(void*, bool, dr_restore_state_info_t*)> restore_state;

fork_safe_mutex tls_mutex;
bool tls_field_taken[tls_field_count];

bool is_tls_index(int index) { return index >= 0 && index < tls_field_count; }

}  // namespace

void run_thread_init_events(thread_state& thread) { thread_init.run(&thread); }
void run_thread_exit_events(thread_state& thread) { thread_exit.run(&thread); }
void run_exit_events() { process_exit.run(); }

void run_signal_delivery_events(thread_state& thread, int signal) {
  const dr_kernel_xfer_info_t info = {.type = DR_XFER_SIGNAL_DELIVERY,
                                      .source_mcontext = nullptr,
                                      .target_pc = pointer_to<byte>(thread.context.pc),
                                      .target_xsp = thread.context.sp,
                                      .sig = signal};
  kernel_transfer.run(&thread, &info);
}

void run_signal_return_events(thread_state& thread, std::uint64_t frame) {
  dr_mcontext_t source = {
      .size = sizeof source, .flags = DR_MC_CONTROL, .xsp = frame, .pc = nullptr};
  const dr_kernel_xfer_info_t info = {.type = DR_XFER_SIGNAL_RETURN,
                                      .source_mcontext = &source,
                                      .target_pc = pointer_to<byte>(thread.context.pc),
                                      .target_xsp = thread.context.sp,
                                      .sig = 0};
  kernel_transfer.run(&thread, &info);
}

void run_restore_state_events(thread_state& thread, std::uint64_t block) {
  dr_mcontext_t faulted = {.size = sizeof faulted,
                           .flags = DR_MC_CONTROL,
                           .xsp = thread.context.sp,
                           .pc = pointer_to<byte>(thread.context.pc)};
  dr_restore_state_info_t info = {.mcontext = &faulted,
                                  .fragment_info = {.tag = pointer_to(block)}};
  restore_state.run(&thread, true, &info);
}

void run_block_events(thread_state& thread, std::uint64_t pc, _instr_list_t& list) {
  block.run(&thread, pointer_to(pc), &list, false, false);
}

}  // namespace host

using namespace host;

bool drmgr_init() { return true; }
void drmgr_exit() {}

bool drmgr_register_thread_init_event(void (*func)(void*)) { return thread_init.add(func); }
bool drmgr_register_thread_exit_event(void (*func)(void*)) { return thread_exit.add(func); }

bool drmgr_register_bb_app2app_event(drmgr_xform_cb_t func, drmgr_priority_t* /*priority*/) {
  return block.add(func);
}

bool drmgr_unregister_bb_app2app_event(drmgr_xform_cb_t func) { return block.remove(func); }

bool drmgr_register_kernel_xfer_event(void (*func)(void*, const dr_kernel_xfer_info_t*)) {
  return kernel_transfer.add(func);
}
bool drmgr_unregister_kernel_xfer_event(void (*func)(void*, const dr_kernel_xfer_info_t*)) {
  return kernel_transfer.remove(func);
}

bool drmgr_register_restore_state_ex_event(bool (*func)(void*, bool, dr_restore_state_info_t*)) {
  return restore_state.add(func);
}
bool drmgr_unregister_restore_state_ex_event(bool (*func)(void*, bool, dr_restore_state_info_t*)) {
  return restore_state.remove(func);
}

void dr_register_exit_event(void (*func)()) { process_exit.add(func); }
bool dr_unregister_exit_event(void (*func)()) { return process_exit.remove(func); }

int drmgr_register_tls_field() {
  const std::lock_guard lock(tls_mutex);
  bool* const field = std::ranges::find(tls_field_taken, false);
  if (field == std::end(tls_field_taken)) return -1;
  *field = true;
  return static_cast<int>(field - tls_field_taken);
}

bool drmgr_unregister_tls_field(int index) {
  const std::lock_guard lock(tls_mutex);
  if (!is_tls_index(index) || !tls_field_taken[index]) return false;
  tls_field_taken[index] = false;
  return true;
}

void* drmgr_get_tls_field(void* drcontext, int index) {
  if (!is_tls_index(index)) return nullptr;
  return static_cast<thread_state*>(drcontext)->tls_fields[static_cast<std::size_t>(index)];
}

bool drmgr_set_tls_field(void* drcontext, int index, void* value) {
  if (!is_tls_index(index)) return false;
  static_cast<thread_state*>(drcontext)->tls_fields[static_cast<std::size_t>(index)] = value;
  return true;
}

drreg_status_t drreg_init(drreg_options_t* options) {
  const bool known = options != nullptr && options->struct_size == sizeof(drreg_options_t);
  return known ? DRREG_SUCCESS : DRREG_ERROR_INVALID_PARAMETER;
}

drreg_status_t drreg_exit() { return DRREG_SUCCESS; }
