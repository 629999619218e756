// The encoder behind the instruction constructors of the client interface. It knows only the forms
// that dr_api.h lists.
#include <array>
#include <bit>

#include "host/client/instruction_list.h"
#include "host/kernel/fatal.h"

namespace {

using host::fatal;

const char* name_of(int opcode) {
  switch (opcode) {
    case OP_add: return "OP_add";
    case OP_orr: return "OP_orr";
    case OP_ldr: return "OP_ldr";
    case OP_str: return "OP_str";
    case OP_ldp: return "OP_ldp";
    case OP_stp: return "OP_stp";
    case OP_mrs: return "OP_mrs";
    case OP_msr: return "OP_msr";
    default: return "opcode";
  }
}

[[noreturn]] void refuse(int opcode, const char* constructor, const char* reason) {
  fatal("cannot encode %s (%d) by %s: %s", name_of(opcode), opcode, constructor, reason);
}

// What an error message needs to name the form.
struct form {
  int opcode;
  const char* constructor;

  void require(bool condition, const char* reason) const {
    if (!condition) refuse(opcode, constructor, reason);
  }
};

bool is_between(const opnd_t& opnd, reg_id_t first, reg_id_t last) {
  return opnd.kind == opnd_kind::reg && opnd.reg >= first && opnd.reg <= last;
}

// An X register, or the zero register as number 31.
unsigned x_or_zero(const form& f, const opnd_t& opnd) {
  f.require(is_between(opnd, DR_REG_X0, DR_REG_XZR) && opnd.reg != DR_REG_XSP,
            "an X register is expected");
  return opnd.reg == DR_REG_XZR ? 31u : static_cast<unsigned>(opnd.reg - DR_REG_X0);
}

// An X register, or the stack pointer as number 31.
unsigned x_or_sp(const form& f, reg_id_t reg) {
  f.require(reg >= DR_REG_X0 && reg <= DR_REG_XSP, "an X register or SP is expected");
  return static_cast<unsigned>(reg - DR_REG_X0);
}

// LDR and STR with an unsigned, scaled displacement.
struct transfer {
  std::uint32_t store;
  std::uint32_t load;
  int size;
  unsigned number;
};

transfer transfer_of(const form& f, const opnd_t& reg) {
  switch (opnd_get_size(reg)) {
    case OPSZ_4:
      f.require(reg.reg != DR_REG_WSP, "WSP cannot be transferred");
      return {0xb9000000, 0xb9400000, 4,
              reg.reg == DR_REG_WZR ? 31u : static_cast<unsigned>(reg.reg - DR_REG_W0)};
    case OPSZ_8: return {0xf9000000, 0xf9400000, 8, x_or_zero(f, reg)};
    case OPSZ_16: return {0x3d800000, 0x3dc00000, 16, static_cast<unsigned>(reg.reg - DR_REG_Q0)};
    default: refuse(f.opcode, f.constructor, "a W, X or Q register is expected");
  }
}

std::uint32_t encode_transfer(const form& f, const opnd_t& memory, const opnd_t& reg) {
  const transfer t = transfer_of(f, reg);
  f.require(memory.kind == opnd_kind::base_disp && memory.size == opnd_get_size(reg),
            "a memory operand of the register's size is expected");
  f.require(memory.disp >= 0 && memory.disp % t.size == 0 && memory.disp / t.size < 4096,
            "the displacement must be a multiple of the size from 0 to 4095 times the size");
  const auto scaled = static_cast<std::uint32_t>(memory.disp / t.size);
  return (f.opcode == OP_str ? t.store : t.load) | scaled << 10 | x_or_sp(f, memory.reg) << 5 |
         t.number;
}

std::uint32_t encode_pair(const form& f, const opnd_t& memory, const opnd_t& reg1,
                          const opnd_t& reg2) {
  f.require(memory.kind == opnd_kind::base_disp && memory.size == OPSZ_16,
            "a memory operand of 16 bytes is expected");
  f.require(memory.disp % 8 == 0 && memory.disp >= -512 && memory.disp <= 504,
            "the displacement must be a multiple of 8 from -512 to 504");
  const unsigned base = x_or_sp(f, memory.reg);
  const unsigned first = x_or_zero(f, reg1);
  const unsigned second = x_or_zero(f, reg2);
  return f.opcode == OP_stp ? host::a64::stp(first, second, base, memory.disp)
                            : host::a64::ldp(first, second, base, memory.disp);
}

// MRS of the system register, with Xt still open. MSR is the same without bit 21.
std::uint32_t read_of_system_register(const form& f, const opnd_t& opnd) {
  f.require(opnd.kind == opnd_kind::reg, "a system register is expected");
  switch (opnd.reg) {
    case DR_REG_NZCV: return 0xd53b4200;
    case DR_REG_FPCR: return 0xd53b4400;
    case DR_REG_FPSR: return 0xd53b4420;
    default: refuse(f.opcode, f.constructor, "NZCV, FPCR or FPSR is expected");
  }
}

std::uint32_t encode_add(const form& f, const opnd_t& dst, const std::array<opnd_t, 4>& src) {
  f.require(dst.kind == opnd_kind::reg && src[0].kind == opnd_kind::reg, "registers are expected");
  f.require(src[1].kind == opnd_kind::immed_int && src[1].value >= 0 && src[1].value < 4096,
            "the third operand must be an immediate from 0 to 4095");
  f.require(src[2].kind == opnd_kind::immed_int && src[2].value == DR_SHIFT_LSL &&
                (src[2].flags & DR_OPND_IS_SHIFT) != 0,
            "the fourth operand must be DR_SHIFT_LSL with DR_OPND_IS_SHIFT");
  f.require(src[3].kind == opnd_kind::immed_int && (src[3].value == 0 || src[3].value == 12),
            "the shift amount must be 0 or 12");
  const std::uint32_t shift = src[3].value == 12 ? 1u << 22 : 0;
  return shift | host::a64::add(x_or_sp(f, dst.reg), x_or_sp(f, src[0].reg),
                                static_cast<unsigned>(src[1].value));
}

// ORR (immediate): the ones of the immediate stand in one row, and not at both ends of it.
std::uint32_t encode_orr_immediate(const form& f, const opnd_t& dst, const opnd_t& src,
                                   const opnd_t& immediate) {
  f.require(dst.kind == opnd_kind::reg && src.kind == opnd_kind::reg, "registers are expected");
  const auto value = static_cast<std::uint64_t>(immediate.value);
  const int position = std::countr_zero(value);
  const int width = std::popcount(value);
  f.require(immediate.kind == opnd_kind::immed_int && width > 0 && width < 64 &&
                value >> position == ~std::uint64_t{0} >> (64 - width),
            "the immediate must have its ones in one row");
  return host::a64::orr_row(x_or_zero(f, dst), x_or_zero(f, src), static_cast<unsigned>(position),
                            static_cast<unsigned>(width));
}

std::uint32_t encode_orr(const form& f, const opnd_t& dst, const std::array<opnd_t, 4>& src) {
  f.require(src[2].kind == opnd_kind::immed_int && src[2].value == DR_SHIFT_LSL &&
                src[3].kind == opnd_kind::immed_int && src[3].value == 0,
            "the shift must be LSL by 0");
  return host::a64::orr(x_or_zero(f, dst), x_or_zero(f, src[0]), x_or_zero(f, src[1]));
}

instr_t* make(int opcode, std::uint32_t word) {
  return new instr_t{.opcode = opcode, .word = word};
}

}  // namespace

instr_t* instr_create_1dst_1src(void* /*drcontext*/, int opcode, opnd_t dst, opnd_t src) {
  const form f = {opcode, "instr_create_1dst_1src"};
  switch (opcode) {
    case OP_str: return make(opcode, encode_transfer(f, dst, src));
    case OP_ldr: return make(opcode, encode_transfer(f, src, dst));
    case OP_mrs: return make(opcode, read_of_system_register(f, src) | x_or_zero(f, dst));
    case OP_msr:
      return make(opcode, (read_of_system_register(f, dst) & ~(1u << 21)) | x_or_zero(f, src));
    default: refuse(opcode, f.constructor, "there is no such form");
  }
}

instr_t* instr_create_1dst_2src(void* /*drcontext*/, int opcode, opnd_t dst, opnd_t src1,
                                opnd_t src2) {
  const form f = {opcode, "instr_create_1dst_2src"};
  if (opcode == OP_orr) return make(opcode, encode_orr_immediate(f, dst, src1, src2));
  f.require(opcode == OP_stp, "there is no such form");
  return make(opcode, encode_pair(f, dst, src1, src2));
}

instr_t* instr_create_2dst_1src(void* /*drcontext*/, int opcode, opnd_t dst1, opnd_t dst2,
                                opnd_t src) {
  const form f = {opcode, "instr_create_2dst_1src"};
  f.require(opcode == OP_ldp, "there is no such form");
  return make(opcode, encode_pair(f, src, dst1, dst2));
}

instr_t* instr_create_1dst_4src(void* /*drcontext*/, int opcode, opnd_t dst, opnd_t src1,
                                opnd_t src2, opnd_t src3, opnd_t src4) {
  const form f = {opcode, "instr_create_1dst_4src"};
  if (opcode == OP_orr) return make(opcode, encode_orr(f, dst, {src1, src2, src3, src4}));
  f.require(opcode == OP_add, "there is no such form");
  return make(opcode, encode_add(f, dst, {src1, src2, src3, src4}));
}

void instrlist_insert_mov_immed_ptrsz(void* /*drcontext*/, ptr_int_t value, opnd_t dst,
                                      instrlist_t* ilist, instr_t* where, instr_t** first,
                                      instr_t** last) {
  const form f = {OP_movz, "instrlist_insert_mov_immed_ptrsz"};
  const auto code = host::a64::mov_constant(x_or_zero(f, dst), static_cast<std::uint64_t>(value));
  instr_t* const before = where != nullptr ? where->prev : ilist->last;
  for (const std::uint32_t word : code) {
    const unsigned opc = host::field(word, 30, 29);
    host::insert_word(*ilist, where,
                      opc == 3   ? OP_movk
                      : opc == 2 ? OP_movz
                                 : OP_movn,
                      word, false);
  }
  if (first != nullptr) *first = before != nullptr ? before->next : ilist->first;
  if (last != nullptr) *last = where != nullptr ? where->prev : ilist->last;
}
