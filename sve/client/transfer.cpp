// One sequence serves all instructions: only the word and the handler differ. It transfers the
// whole state, so it does not have to know which registers an instruction reads or writes. X26
// carries values and X27 the address of the state, because no other register is free before the
// transfer. Their application values are in save slots 1 and 2. Slot 3 has the application value of
// X28, which the host keeps for itself. emulate_instruction reads and writes these three slots.
// When an emulated instruction writes one of the three registers, the value arrives through its
// slot after the call.
#include "sve/client/transfer.h"

#include <cstddef>

#include "sve/client/emulate.h"

namespace {

constexpr std::size_t x_offset(unsigned n) {
  return offsetof(cpu_state, x) + n * sizeof(std::uint64_t);
}
constexpr std::size_t z_offset(unsigned n) {
  return offsetof(cpu_state, z) + n * sizeof(vector_register);
}

static_assert(x_offset(29) <= 504, "must be <= 504 for stp and ldp of x29, x30 to work");
static_assert(x_offset(0) % 8 == 0, "must be a multiple of 8 for stp and ldp to work");
static_assert(z_offset(0) % 16 == 0 && sizeof(vector_register) % 16 == 0,
              "must be multiples of 16 for str and ldr of a q register to work");
static_assert(z_offset(31) <= 65520, "must be <= 65520 for str and ldr of q31 to work");
static_assert(offsetof(cpu_state, sp) % 8 == 0 && offsetof(cpu_state, sp) <= 32760 &&
                  offsetof(cpu_state, nzcv) % 8 == 0 && offsetof(cpu_state, nzcv) <= 32760,
              "must be multiples of 8 and <= 32760 for str and ldr of an x register to work");
static_assert(offsetof(cpu_state, fpsr) % 4 == 0 && offsetof(cpu_state, fpsr) <= 16380 &&
                  offsetof(cpu_state, fpcr) % 4 == 0 && offsetof(cpu_state, fpcr) <= 16380,
              "must be multiples of 4 and <= 16380 for str and ldr of a w register to work");

opnd_t field(std::size_t offset, opnd_size_t size) {
  return opnd_create_base_disp(DR_REG_X27, DR_REG_NULL, 0, static_cast<int>(offset), size);
}

reg_id_t x_register(unsigned n) { return static_cast<reg_id_t>(DR_REG_X0 + n); }
reg_id_t q_register(unsigned n) { return static_cast<reg_id_t>(DR_REG_Q0 + n); }

// Inserts instructions in order ahead of `where`, and gives each the application address `pc`.
struct inserter {
  void* drcontext;
  instrlist_t* block;
  instr_t* where;
  app_pc pc;

  void put(instr_t* instr) const {
    instrlist_preinsert(block, where, instr_set_translation(instr, pc));
  }

  // Copies to or from SP. The MOV for this is an alias of ADD with 0.
  void move(reg_id_t to, reg_id_t from) const {
    const opnd_t no_shift =
        opnd_add_flags(opnd_create_immed_int(DR_SHIFT_LSL, OPSZ_0), DR_OPND_IS_SHIFT);
    put(instr_create_1dst_4src(drcontext, OP_add, opnd_create_reg(to), opnd_create_reg(from),
                               opnd_create_immed_int(0, OPSZ_12b), no_shift,
                               opnd_create_immed_int(0, OPSZ_6b)));
  }

  void store(reg_id_t reg, std::size_t offset) const {
    const opnd_t from = opnd_create_reg(reg);
    put(instr_create_1dst_1src(drcontext, OP_str, field(offset, opnd_get_size(from)), from));
  }
  void load(reg_id_t reg, std::size_t offset) const {
    const opnd_t to = opnd_create_reg(reg);
    put(instr_create_1dst_1src(drcontext, OP_ldr, to, field(offset, opnd_get_size(to))));
  }

  // Xn and Xn+1.
  void store_pair(unsigned n) const {
    put(instr_create_1dst_2src(drcontext, OP_stp, field(x_offset(n), OPSZ_16),
                               opnd_create_reg(x_register(n)), opnd_create_reg(x_register(n + 1))));
  }
  void load_pair(unsigned n) const {
    put(instr_create_2dst_1src(drcontext, OP_ldp, opnd_create_reg(x_register(n)),
                               opnd_create_reg(x_register(n + 1)), field(x_offset(n), OPSZ_16)));
  }

  void read_system(reg_id_t to, reg_id_t from) const {
    put(instr_create_1dst_1src(drcontext, OP_mrs, opnd_create_reg(to), opnd_create_reg(from)));
  }
  void write_system(reg_id_t to, reg_id_t from) const {
    put(instr_create_1dst_1src(drcontext, OP_msr, opnd_create_reg(to), opnd_create_reg(from)));
  }

  void save(reg_id_t reg, dr_spill_slot_t slot) const {
    dr_save_reg(drcontext, block, where, reg, slot);
  }
  void restore(reg_id_t reg, dr_spill_slot_t slot) const {
    dr_restore_reg(drcontext, block, where, reg, slot);
  }

  void load_address(reg_id_t reg, const cpu_state* state) const {
    instrlist_insert_mov_immed_ptrsz(drcontext, reinterpret_cast<ptr_int_t>(state),
                                     opnd_create_reg(reg), block, where, nullptr, nullptr);
  }
};

void insert_transfer_in(const inserter& code, const cpu_state* state) {
  code.save(DR_REG_X26, SPILL_SLOT_1);
  code.save(DR_REG_X27, SPILL_SLOT_2);
  dr_insert_get_stolen_reg_value(code.drcontext, code.block, code.where, DR_REG_X27);
  code.save(DR_REG_X27, SPILL_SLOT_3);
  code.load_address(DR_REG_X27, state);

  code.move(DR_REG_X26, DR_REG_SP);
  code.store(DR_REG_X26, offsetof(cpu_state, sp));
  for (unsigned n = 0; n <= 24; n += 2) code.store_pair(n);
  code.store_pair(29);
  for (unsigned n = 0; n <= 31; ++n) code.store(q_register(n), z_offset(n));

  code.read_system(DR_REG_X26, DR_REG_NZCV);
  code.store(DR_REG_X26, offsetof(cpu_state, nzcv));
  code.read_system(DR_REG_X26, DR_REG_FPSR);
  code.store(DR_REG_W26, offsetof(cpu_state, fpsr));
  code.read_system(DR_REG_X26, DR_REG_FPCR);
  code.store(DR_REG_W26, offsetof(cpu_state, fpcr));
}

void insert_call(const inserter& code, decode_handler handler) {
  const std::uint32_t word = *reinterpret_cast<const std::uint32_t*>(code.pc);
  dr_insert_call_velox(code.drcontext, code.block, code.where, code.pc,
                       reinterpret_cast<void*>(emulate_instruction), 3,
                       opnd_create_immed_int(word, OPSZ_4),
                       opnd_create_immed_int(reinterpret_cast<ptr_int_t>(code.pc), OPSZ_8),
                       opnd_create_immed_int(reinterpret_cast<ptr_int_t>(handler), OPSZ_8));
}

void insert_call(const inserter& code, const sve::extended_call& call) {
  const auto immediate = [](std::uint64_t value) {
    return opnd_create_immed_int(static_cast<ptr_int_t>(value), OPSZ_8);
  };
  const std::uint32_t word = *reinterpret_cast<const std::uint32_t*>(code.pc);
  dr_insert_call_velox(code.drcontext, code.block, code.where, code.pc,
                       reinterpret_cast<void*>(call.callee), 5, opnd_create_immed_int(word, OPSZ_4),
                       opnd_create_immed_int(reinterpret_cast<ptr_int_t>(code.pc), OPSZ_8),
                       opnd_create_immed_int(reinterpret_cast<ptr_int_t>(call.handler), OPSZ_8),
                       immediate(call.fourth), immediate(call.fifth));
}

void insert_transfer_out(const inserter& code, const cpu_state* state) {
  code.load_address(DR_REG_X27, state);

  code.load(DR_REG_W26, offsetof(cpu_state, fpcr));
  code.write_system(DR_REG_FPCR, DR_REG_X26);
  code.load(DR_REG_W26, offsetof(cpu_state, fpsr));
  code.write_system(DR_REG_FPSR, DR_REG_X26);
  code.load(DR_REG_X26, offsetof(cpu_state, nzcv));
  code.write_system(DR_REG_NZCV, DR_REG_X26);

  for (unsigned n = 0; n <= 31; ++n) code.load(q_register(n), z_offset(n));
  for (unsigned n = 0; n <= 24; n += 2) code.load_pair(n);
  code.load_pair(29);
  code.load(DR_REG_X26, offsetof(cpu_state, sp));
  code.move(DR_REG_SP, DR_REG_X26);

  code.restore(DR_REG_X27, SPILL_SLOT_3);
  dr_insert_set_stolen_reg_value(code.drcontext, code.block, code.where, DR_REG_X27);
  code.restore(DR_REG_X27, SPILL_SLOT_2);
  code.restore(DR_REG_X26, SPILL_SLOT_1);
}

template <class Call>
void insert_sequence(void* drcontext, instrlist_t* block, instr_t* instr, const cpu_state* state,
                     const Call& call) {
  const inserter code{drcontext, block, instr, instr_get_app_pc(instr)};
  insert_transfer_in(code, state);
  insert_call(code, call);
  insert_transfer_out(code, state);
}

}  // namespace

void sve::insert_emulation(void* drcontext, instrlist_t* block, instr_t* instr, cpu_state* state,
                           decode_handler handler) {
  insert_sequence(drcontext, block, instr, state, handler);
}

void sve::insert_emulation(void* drcontext, instrlist_t* block, instr_t* instr, cpu_state* state,
                           const extended_call& call) {
  insert_sequence(drcontext, block, instr, state, call);
}
