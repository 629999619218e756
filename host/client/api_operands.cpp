// Operands of the client interface.
#include "host/include/dr_api.h"

opnd_t opnd_create_null() { return {}; }

opnd_t opnd_create_reg(reg_id_t reg) {
  opnd_t opnd{};
  opnd.kind = opnd_kind::reg;
  opnd.reg = reg;
  return opnd;
}

opnd_t opnd_create_immed_int(ptr_int_t value, opnd_size_t size) {
  opnd_t opnd{};
  opnd.kind = opnd_kind::immed_int;
  opnd.size = size;
  opnd.value = value;
  return opnd;
}

opnd_t opnd_create_base_disp(reg_id_t base, reg_id_t index, int scale, int disp, opnd_size_t size) {
  // No form here takes an index or a scale. Such an operand gets no base, so the encoder refuses
  // it.
  const bool plain = index == DR_REG_NULL && scale == 0;
  opnd_t opnd{};
  opnd.kind = opnd_kind::base_disp;
  opnd.size = size;
  opnd.reg = plain ? base : static_cast<reg_id_t>(DR_REG_NULL);
  opnd.disp = disp;
  return opnd;
}

opnd_t opnd_add_flags(opnd_t opnd, dr_opnd_flags_t flags) {
  opnd.flags |= flags;
  return opnd;
}

reg_id_t opnd_get_reg(opnd_t opnd) { return opnd.reg; }

opnd_size_t opnd_get_size(opnd_t opnd) {
  if (opnd.kind != opnd_kind::reg) return opnd.size;
  if (opnd.reg >= DR_REG_X0 && opnd.reg <= DR_REG_XZR) return OPSZ_8;
  if (opnd.reg >= DR_REG_W0 && opnd.reg <= DR_REG_WZR) return OPSZ_4;
  if (opnd.reg >= DR_REG_Q0 && opnd.reg <= DR_REG_Q31) return OPSZ_16;
  return opnd.reg == DR_REG_NULL ? OPSZ_NA : OPSZ_8;  // the system registers, as MRS reads them
}
