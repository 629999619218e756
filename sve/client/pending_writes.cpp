#include "sve/client/pending_writes.h"

#include <bit>
#include <cstring>
#include <vector>

namespace sve {
namespace {

reg_id_t tls_register = DR_REG_NULL;
uint tls_offset = 0;

[[gnu::tls_model("initial-exec")]] thread_local constinit std::uint64_t* slot = nullptr;

void clear_rest(vector_register& z) { std::memset(z + group_bytes, 0, sizeof z - group_bytes); }

// The rows of ones of a mask, the lowest first. ORR takes each of them as an immediate.
std::vector<std::uint64_t> rows_of_ones(std::uint64_t mask) {
  std::vector<std::uint64_t> rows;
  while (mask != 0) {
    const std::uint64_t lowest = mask & -mask;
    const std::uint64_t row = mask & ~(mask + lowest);
    rows.push_back(row);
    mask ^= row;
  }
  return rows;
}

// Inserts ahead of `where`. X0 carries the mask, and X1 a constant; save slots keep their values.
struct mask_code {
  void* drcontext;
  instrlist_t* block;
  instr_t* where;

  void put(instr_t* instr) const { instrlist_meta_preinsert(block, where, instr); }

  void save(reg_id_t reg, dr_spill_slot_t at) const {
    dr_save_reg(drcontext, block, where, reg, at);
  }
  void restore(reg_id_t reg, dr_spill_slot_t at) const {
    dr_restore_reg(drcontext, block, where, reg, at);
  }
  void read() const {
    dr_insert_read_raw_tls(drcontext, block, where, tls_register, tls_offset, DR_REG_X0);
  }
  void write() const {
    dr_insert_write_raw_tls(drcontext, block, where, tls_register, tls_offset, DR_REG_X0);
  }

  void add_row(reg_id_t from, std::uint64_t row) const {
    put(instr_create_1dst_2src(drcontext, OP_orr, opnd_create_reg(DR_REG_X0), opnd_create_reg(from),
                               opnd_create_immed_int(static_cast<ptr_int_t>(row), OPSZ_8)));
  }

  void add_constant(std::uint64_t mask) const {
    save(DR_REG_X1, SPILL_SLOT_2);
    instr_t* instr = nullptr;
    instr_t* last = nullptr;
    instrlist_insert_mov_immed_ptrsz(drcontext, static_cast<ptr_int_t>(mask),
                                     opnd_create_reg(DR_REG_X1), block, where, &instr, &last);
    for (; instr != instr_get_next(last); instr = instr_get_next(instr)) instr_set_meta(instr);
    const opnd_t no_shift =
        opnd_add_flags(opnd_create_immed_int(DR_SHIFT_LSL, OPSZ_0), DR_OPND_IS_SHIFT);
    put(instr_create_1dst_4src(drcontext, OP_orr, opnd_create_reg(DR_REG_X0),
                               opnd_create_reg(DR_REG_X0), opnd_create_reg(DR_REG_X1), no_shift,
                               opnd_create_immed_int(0, OPSZ_6b)));
    restore(DR_REG_X1, SPILL_SLOT_2);
  }
};

// Beyond this, a constant in a second register takes fewer instructions.
constexpr std::size_t most_rows = 4;

}  // namespace

bool reserve_pending_writes() { return dr_raw_tls_calloc(&tls_register, &tls_offset, 1, 0); }

void begin_pending_writes(std::uint64_t mask) {
  auto* const base = static_cast<byte*>(dr_get_dr_segment_base(tls_register));
  slot = reinterpret_cast<std::uint64_t*>(base + tls_offset);
  *slot = mask;
}

std::uint64_t& pending_writes() { return *slot; }

void pay_off_pending_writes(cpu_state& state, std::uint64_t run) {
  std::uint64_t pending = *slot | run;
  if (pending == 0) return;
  *slot = 0;
  if ((pending & no_live_state) != 0) {
    std::memset(state.p, 0, sizeof state.p);
    std::memset(state.ffr, 0, sizeof state.ffr);
  }
  for (pending &= all_registers; pending != 0; pending &= pending - 1) {
    clear_rest(state.z[std::countr_zero(pending)]);
  }
}

void insert_pending_writes(void* drcontext, instrlist_t* block, instr_t* where, std::uint32_t run) {
  if (run == 0) return;
  const mask_code code{drcontext, block, where};
  const std::vector<std::uint64_t> rows = rows_of_ones(run);
  code.save(DR_REG_X0, SPILL_SLOT_1);
  code.read();
  if (rows.size() <= most_rows) {
    for (const std::uint64_t row : rows) code.add_row(DR_REG_X0, row);
  } else {
    code.add_constant(run);
  }
  code.write();
  code.restore(DR_REG_X0, SPILL_SLOT_1);
}

void insert_end_of_live_state(void* drcontext, instrlist_t* block, instr_t* where) {
  const mask_code code{drcontext, block, where};
  code.save(DR_REG_X0, SPILL_SLOT_1);
  code.add_row(DR_REG_XZR, no_live_state | all_registers);
  code.write();
  code.restore(DR_REG_X0, SPILL_SLOT_1);
}

}  // namespace sve
