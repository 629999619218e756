// A client that replaces UDF #0x5e00 to #0x5e0f by a call of `act`, with the whole state of the
// machine saved around it. What `act` does depends on the last digit; programs/replaced.S tells.
#include <atomic>
#include <cerrno>
#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "host/include/drmgr.h"

namespace {

struct machine {
  reg_t x[31];
  reg_t sp;
  reg_t nzcv;
  alignas(16) byte q[32][16];
};

volatile int* volatile unmapped = nullptr;
thread_local machine state;
thread_local sigjmp_buf recovery;
thread_local volatile sig_atomic_t recovering = 0;

opnd_t reg(unsigned number) { return opnd_create_reg(static_cast<reg_id_t>(number)); }

opnd_t field(std::size_t offset, opnd_size_t size) {
  return opnd_create_base_disp(DR_REG_X27, DR_REG_NULL, 0, static_cast<int>(offset), size);
}

// Inserts before one instruction.
struct inserter {
  void* drcontext;
  instrlist_t* list;
  instr_t* where;
  app_pc pc;

  void add(instr_t* instr) const {
    instrlist_preinsert(list, where, instr_set_translation(instr, pc));
  }
  void store(unsigned number, std::size_t offset, opnd_size_t size) const {
    add(instr_create_1dst_1src(drcontext, OP_str, field(offset, size), reg(number)));
  }
  void load(unsigned number, std::size_t offset, opnd_size_t size) const {
    add(instr_create_1dst_1src(drcontext, OP_ldr, reg(number), field(offset, size)));
  }
  void move(unsigned to, unsigned from) const {
    const opnd_t lsl =
        opnd_add_flags(opnd_create_immed_int(DR_SHIFT_LSL, OPSZ_1), DR_OPND_IS_SHIFT);
    const opnd_t zero = opnd_create_immed_int(0, OPSZ_12b);
    add(instr_create_1dst_4src(drcontext, OP_add, reg(to), reg(from), zero, lsl, zero));
  }
  void point_at_state() const {
    instrlist_insert_mov_immed_ptrsz(drcontext, reinterpret_cast<ptr_int_t>(&state),
                                     reg(DR_REG_X27), list, where, nullptr, nullptr);
  }
};

constexpr auto slot1 = static_cast<dr_spill_slot_t>(1);
constexpr auto slot2 = static_cast<dr_spill_slot_t>(2);
constexpr auto slot3 = static_cast<dr_spill_slot_t>(3);

void save(const inserter& in) {
  dr_save_reg(in.drcontext, in.list, in.where, DR_REG_X26, slot1);
  dr_save_reg(in.drcontext, in.list, in.where, DR_REG_X27, slot2);
  dr_insert_get_stolen_reg_value(in.drcontext, in.list, in.where, DR_REG_X27);
  dr_save_reg(in.drcontext, in.list, in.where, DR_REG_X27, slot3);
  in.point_at_state();
  in.move(DR_REG_X26, DR_REG_SP);
  in.store(DR_REG_X26, offsetof(machine, sp), OPSZ_8);
  for (unsigned i = 0; i < 31; i++) {
    if (i < 26 || i > 28) in.store(DR_REG_X0 + i, offsetof(machine, x) + 8UL * i, OPSZ_8);
  }
  for (unsigned i = 0; i < 32; i++) {
    in.store(DR_REG_Q0 + i, offsetof(machine, q) + 16UL * i, OPSZ_16);
  }
  in.add(instr_create_1dst_1src(in.drcontext, OP_mrs, reg(DR_REG_X26), reg(DR_REG_NZCV)));
  in.store(DR_REG_X26, offsetof(machine, nzcv), OPSZ_8);
}

void restore(const inserter& in) {
  in.point_at_state();
  in.load(DR_REG_X26, offsetof(machine, nzcv), OPSZ_8);
  in.add(instr_create_1dst_1src(in.drcontext, OP_msr, reg(DR_REG_NZCV), reg(DR_REG_X26)));
  for (unsigned i = 0; i < 32; i++) {
    in.load(DR_REG_Q0 + i, offsetof(machine, q) + 16UL * i, OPSZ_16);
  }
  for (unsigned i = 0; i < 31; i++) {
    if (i < 26 || i > 28) in.load(DR_REG_X0 + i, offsetof(machine, x) + 8UL * i, OPSZ_8);
  }
  in.load(DR_REG_X26, offsetof(machine, sp), OPSZ_8);
  in.move(DR_REG_SP, DR_REG_X26);
  dr_restore_reg(in.drcontext, in.list, in.where, DR_REG_X27, slot3);
  dr_insert_set_stolen_reg_value(in.drcontext, in.list, in.where, DR_REG_X27);
  dr_restore_reg(in.drcontext, in.list, in.where, DR_REG_X27, slot2);
  dr_restore_reg(in.drcontext, in.list, in.where, DR_REG_X26, slot1);
}

reg_t fpcr_and_fpsr() {
  reg_t fpcr = 0;
  reg_t fpsr = 0;
  asm volatile("mrs %0, fpcr\n\tmrs %1, fpsr" : "=r"(fpcr), "=r"(fpsr));
  return fpcr << 32 | fpsr;
}

void recover_from_fault() {
  recovering = 1;
  if (sigsetjmp(recovery, 1) == 0) *unmapped = 1;
  recovering = 0;
}

void act(uint word, app_pc pc, void* tag) {
  const reg_t modes = fpcr_and_fpsr();
  void* const drcontext = dr_get_current_drcontext();
  for (int i = 1; i <= 3; i++) {
    const auto slot = static_cast<dr_spill_slot_t>(i);
    dr_write_saved_reg(drcontext, slot, dr_read_saved_reg(drcontext, slot) + word % 16);
  }
  errno = 5;  // the host's own, not the application's
  state.x[0] = modes;
  state.x[1] = reinterpret_cast<reg_t>(pc);
  state.x[2] = reinterpret_cast<reg_t>(tag);
  if (word % 16 == 2) recover_from_fault();
  if (word % 16 == 3) *unmapped = 1;
}

bool is_marker(uint word) { return (word & 0xfffffff0) == 0x5e00; }

void replace(void* drcontext, instrlist_t* block, instr_t* instr, uint word) {
  const inserter in = {drcontext, block, instr, instr_get_app_pc(instr)};
  save(in);
  dr_insert_call_velox(drcontext, block, instr, in.pc, reinterpret_cast<void*>(&act), 3,
                       opnd_create_immed_int(word, OPSZ_4),
                       opnd_create_immed_int(reinterpret_cast<ptr_int_t>(in.pc), OPSZ_8),
                       opnd_create_immed_int(0x1234567890, OPSZ_8));
  restore(in);
  instrlist_remove(block, instr);
  instr_destroy(drcontext, instr);
}

dr_emit_flags_t on_block(void* drcontext, void*, instrlist_t* block, bool, bool) {
  instr_t* next = nullptr;
  for (instr_t* i = instrlist_first_app(block); i != nullptr; i = next) {
    next = instr_get_next_app(i);
    uint word = 0;
    std::memcpy(&word, instr_get_raw_bits(i), sizeof word);
    if (is_marker(word)) replace(drcontext, block, i, word);
  }
  return DR_EMIT_DEFAULT;
}

void on_fault(int signal, siginfo_t*, void*) {
  if (recovering != 0) siglongjmp(recovery, 1);
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  sigaction(signal, &action, nullptr);
  std::fprintf(stderr, "the client saw signal %d\n", signal);
}

}  // namespace

DR_EXPORT int _USES_DR_VERSION_;
int _USES_DR_VERSION_ = 602;

DR_EXPORT void dr_client_main(client_id_t, int, const char**) {
  struct sigaction action = {};
  action.sa_sigaction = on_fault;
  action.sa_flags = SA_SIGINFO | SA_RESTART | SA_NODEFER;
  sigaction(SIGSEGV, &action, nullptr);
  sigaction(SIGBUS, &action, nullptr);
  drmgr_register_bb_app2app_event(on_block, nullptr);
}
