// A client that changes nothing. It checks that its events come in order and on the right thread,
// and prints what it saw when the program exits.
#include <atomic>
#include <cstdio>
#include <cstring>

#include "host/include/drmgr.h"
#include "host/include/drreg.h"

namespace {

std::atomic<int> begun = 0;
std::atomic<int> ended = 0;
std::atomic<int> misplaced = 0;  // events on the wrong thread or out of order
std::atomic<long> main_blocks = 0;
std::atomic<long> library_blocks = 0;
std::atomic<long> loose_blocks = 0;  // outside of any module
std::atomic<long> disordered_blocks = 0;
int field = -1;
byte* main_start = nullptr;
thread_local int own = 0;

void on_thread_begin(void* drcontext) {
  begun++;
  if (dr_get_current_drcontext() != drcontext) misplaced++;
  if (drmgr_get_tls_field(drcontext, field) != nullptr) misplaced++;
  drmgr_set_tls_field(drcontext, field, &own);
}

void on_thread_end(void* drcontext) {
  ended++;
  if (drmgr_get_tls_field(drcontext, field) != &own) misplaced++;
}

void count_by_module(void* tag) {
  module_data_t* const module = dr_lookup_module(dr_fragment_app_pc(tag));
  if (module == nullptr) {
    loose_blocks++;
  } else {
    (module->start == main_start ? main_blocks : library_blocks)++;
  }
  dr_free_module_data(module);
}

// The addresses must follow one another, beginning with the tag.
bool is_in_order(void* tag, instrlist_t* block) {
  byte* expected = dr_fragment_app_pc(tag);
  for (instr_t* i = instrlist_first_app(block); i != nullptr; i = instr_get_next_app(i)) {
    if (instr_get_app_pc(i) != expected || instr_get_raw_bits(i) == nullptr) return false;
    expected += 4;
  }
  return expected != tag;
}

dr_emit_flags_t on_block(void* drcontext, void* tag, instrlist_t* block, bool, bool) {
  count_by_module(tag);
  if (!is_in_order(tag, block)) disordered_blocks++;
  if (drmgr_get_tls_field(drcontext, field) != &own) misplaced++;
  return DR_EMIT_DEFAULT;
}

void on_exit() {
  std::fprintf(stderr, "threads %d ended %d misplaced %d\n", begun.load(), ended.load(),
               misplaced.load());
  const auto seen = [](long count) { return count > 0 ? "yes" : "no"; };
  std::fprintf(stderr, "blocks of the program %s, of libraries %s, of neither %s, disordered %ld\n",
               seen(main_blocks), seen(library_blocks), seen(loose_blocks),
               disordered_blocks.load());
}

}  // namespace

DR_EXPORT int _USES_DR_VERSION_;
int _USES_DR_VERSION_ = 602;

DR_EXPORT void dr_client_main(client_id_t, int, const char**) {
  drmgr_init();
  module_data_t* const module = dr_get_main_module();
  main_start = module->start;
  std::fprintf(stderr, "main module %s\n", std::strrchr(module->full_path, '/') + 1);
  dr_free_module_data(module);
  drmgr_register_thread_init_event(on_thread_begin);
  drmgr_register_thread_exit_event(on_thread_end);
  dr_register_exit_event(on_exit);
  drmgr_register_bb_app2app_event(on_block, nullptr);
  field = drmgr_register_tls_field();
}
