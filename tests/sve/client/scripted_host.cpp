#include "tests/sve/client/scripted_host.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/client/instruction_list.h"
#include "host/kernel/fatal.h"
#include "tessaly_host.h"

scripted_host host_script;

file_t our_stderr = 2;

namespace {

scripted_thread* thread_of(void* drcontext) { return static_cast<scripted_thread*>(drcontext); }

void insert_marker(instrlist_t* list, instr_t* where, std::uint32_t word, int reg = DR_REG_X0,
                   int slot = 0) {
  word |= static_cast<std::uint32_t>(slot << 8 | (reg - DR_REG_X0));
  host::insert_word(*list, where, OP_UNDECODED, word, true);
}

module_data_t* hand_out(const scripted_module& module) {
  ++host_script.module_records;
  return new module_data_t{static_cast<app_pc>(pointer_to(module.start)),
                           static_cast<app_pc>(pointer_to(module.end)), nullptr,
                           strdup(module.path)};
}

}  // namespace

bool scripted_host::record(const std::string& call) {
  calls.push_back(call);
  return call.substr(0, call.find(' ')) != failing;
}

void host::fatal(const char* format, ...) {
  std::fprintf(stderr, "the host refuses: %s\n", format);
  std::abort();
}

void dr_abort() { std::_Exit(aborted_status); }
void dr_set_client_name(const char* name, const char* /*report_url*/) {
  host_script.record("dr_set_client_name " + std::string(name));
}
void dr_register_exit_event(void (*func)()) {
  host_script.record("dr_register_exit_event");
  host_script.exit_event = func;
}

std::ptrdiff_t dr_fprintf(file_t file, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int written = vdprintf(file, format, arguments);
  va_end(arguments);
  return written;
}

void dr_log(void* drcontext, uint mask, uint level, const char* format, ...) {
  const bool as_told = drcontext == nullptr && mask == 0xffffff && level == 1;
  host_script.record((as_told ? "dr_log " : "dr_log with other arguments ") + std::string(format));
}

module_data_t* dr_get_main_module() {
  host_script.record("dr_get_main_module");
  return host_script.has_main_module ? hand_out(host_script.modules[0]) : nullptr;
}

module_data_t* dr_lookup_module(byte* pc) {
  const auto address = reinterpret_cast<std::uintptr_t>(pc);
  for (const scripted_module& module : host_script.modules) {
    if (address >= module.start && address < module.end) return hand_out(module);
  }
  return nullptr;
}

void dr_free_module_data(module_data_t* data) {
  --host_script.module_records;
  std::free(data->full_path);
  delete data;
}

app_pc dr_fragment_app_pc(void* tag) { return static_cast<app_pc>(tag); }

void* dr_get_current_drcontext() { return host_script.current; }

void* dr_thread_alloc(void* /*drcontext*/, std::size_t size) {
  ++host_script.thread_records;
  void* memory = std::aligned_alloc(16, size);
  std::memset(memory, 0xa5, size);  // like memory that has been in use
  return memory;
}

void dr_thread_free(void* /*drcontext*/, void* mem, std::size_t /*size*/) {
  --host_script.thread_records;
  std::free(mem);
}

reg_t dr_read_saved_reg(void* drcontext, dr_spill_slot_t slot) {
  return thread_of(drcontext)->slots[slot];
}
void dr_write_saved_reg(void* drcontext, dr_spill_slot_t slot, reg_t value) {
  thread_of(drcontext)->slots[slot] = value;
}

bool drmgr_init() { return host_script.record("drmgr_init"); }
void drmgr_exit() { host_script.record("drmgr_exit"); }

bool drmgr_register_thread_init_event(void (*func)(void*)) {
  host_script.thread_init_event = func;
  return host_script.record("drmgr_register_thread_init_event");
}
bool drmgr_register_thread_exit_event(void (*func)(void*)) {
  host_script.thread_exit_event = func;
  return host_script.record("drmgr_register_thread_exit_event");
}
bool drmgr_register_bb_app2app_event(drmgr_xform_cb_t func, drmgr_priority_t* priority) {
  host_script.block_event = func;
  return host_script.record(std::string("drmgr_register_bb_app2app_event") +
                            (priority == nullptr ? "" : " with a priority"));
}
bool drmgr_unregister_bb_app2app_event(drmgr_xform_cb_t func) {
  return host_script.record("drmgr_unregister_bb_app2app_event") && func == host_script.block_event;
}

constexpr int field_index = 5;
bool drmgr_register_kernel_xfer_event(void (*)(void*, const dr_kernel_xfer_info_t*)) {
  return host_script.record("drmgr_register_kernel_xfer_event");
}

int drmgr_register_tls_field() {
  host_script.record("drmgr_register_tls_field");
  return field_index;
}
void* drmgr_get_tls_field(void* drcontext, int index) {
  return index == field_index ? thread_of(drcontext)->field : nullptr;
}
bool drmgr_set_tls_field(void* drcontext, int index, void* value) {
  if (index == field_index) thread_of(drcontext)->field = value;
  return index == field_index;
}

drreg_status_t drreg_init(drreg_options_t* options) {
  const bool as_told = options->struct_size == 32 && options->num_spill_slots == 0 &&
                       !options->conservative && options->error_callback == nullptr &&
                       !options->do_not_sum_slots;
  return host_script.record(as_told ? "drreg_init" : "drreg_init with other options")
             ? DRREG_SUCCESS
             : DRREG_ERROR;
}
drreg_status_t drreg_exit() {
  return host_script.record("drreg_exit") ? DRREG_SUCCESS : DRREG_ERROR;
}

bool tessaly_is_architectural() { return host_script.architectural; }
bool tessaly_warns_of_v_writes() { return host_script.warn_v_writes; }
void tessaly_set_vector_state(const tessaly_vector_state_t* /*functions*/) {}
void tessaly_raise_fault(void* /*drcontext*/, const tessaly_registers_t* /*before*/) {
  std::abort();
}

bool drmgr_register_restore_state_ex_event(bool (*)(void*, bool, dr_restore_state_info_t*)) {
  return true;
}

constexpr uint raw_slot_offset = 8;
bool dr_raw_tls_calloc(reg_id_t* tls_register, uint* offset, uint num_slots, uint /*alignment*/) {
  *tls_register = host_script.stolen_register;
  *offset = raw_slot_offset;
  return num_slots == 1;
}
void* dr_get_dr_segment_base(reg_id_t /*tls_register*/) { return host_script.raw_slots; }
void dr_insert_read_raw_tls(void* /*drcontext*/, instrlist_t* ilist, instr_t* where,
                            reg_id_t /*tls_register*/, uint /*tls_offs*/, reg_id_t reg) {
  insert_marker(ilist, where, marker::read_raw, reg);
}
void dr_insert_write_raw_tls(void* /*drcontext*/, instrlist_t* ilist, instr_t* where,
                             reg_id_t /*tls_register*/, uint /*tls_offs*/, reg_id_t reg) {
  insert_marker(ilist, where, marker::write_raw, reg);
}

reg_id_t dr_get_stolen_reg() { return host_script.stolen_register; }

void dr_save_reg(void* /*drcontext*/, instrlist_t* ilist, instr_t* where, reg_id_t reg,
                 dr_spill_slot_t slot) {
  insert_marker(ilist, where, marker::save, reg, slot);
}
void dr_restore_reg(void* /*drcontext*/, instrlist_t* ilist, instr_t* where, reg_id_t reg,
                    dr_spill_slot_t slot) {
  insert_marker(ilist, where, marker::restore, reg, slot);
}
bool dr_insert_get_stolen_reg_value(void* /*drcontext*/, instrlist_t* ilist, instr_t* where,
                                    reg_id_t reg) {
  insert_marker(ilist, where, marker::get_stolen, reg);
  return true;
}
bool dr_insert_set_stolen_reg_value(void* /*drcontext*/, instrlist_t* ilist, instr_t* where,
                                    reg_id_t reg) {
  insert_marker(ilist, where, marker::set_stolen, reg);
  return true;
}

void dr_insert_call_velox(void* /*drcontext*/, instrlist_t* ilist, instr_t* where, app_pc pc,
                          void* callee, uint num_args, ...) {
  scripted_call& call = host_script.inserted_calls.emplace_back(scripted_call{pc, callee, {}});
  va_list arguments;
  va_start(arguments, num_args);
  for (uint i = 0; i < num_args; ++i) {
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it misses AArch64's va_start
    call.arguments.push_back(va_arg(arguments, opnd_t));
  }
  va_end(arguments);
  insert_marker(ilist, where, marker::call);
}
