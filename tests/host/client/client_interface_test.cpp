// Operands, instruction lists and inserted code of the client interface, read back as words.
#include <array>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "host/include/drmgr.h"
#include "host/threads/thread.h"

namespace {

class list_test : public testing::Test {
 protected:
  list_test() : list(instrlist_create(nullptr)) {}
  ~list_test() override { instrlist_clear_and_destroy(nullptr, list); }

  std::vector<std::uint32_t> encoded() const {
    std::array<std::uint32_t, 64> buffer{};
    auto* const begin = reinterpret_cast<byte*>(buffer.data());
    const std::ptrdiff_t bytes = instrlist_encode(nullptr, list, begin, false) - begin;
    return {buffer.data(), buffer.data() + bytes / 4};
  }

  instrlist_t* list;
};

using words = std::vector<std::uint32_t>;
using encodes = list_test;
using inserts = list_test;
using encodes_death = list_test;

opnd_t reg(int number) { return opnd_create_reg(static_cast<reg_id_t>(number)); }
opnd_t memory(reg_id_t base, int disp, opnd_size_t size) {
  return opnd_create_base_disp(base, DR_REG_NULL, 0, disp, size);
}
opnd_t immediate(ptr_int_t value) { return opnd_create_immed_int(value, OPSZ_12b); }
opnd_t lsl() {
  return opnd_add_flags(opnd_create_immed_int(DR_SHIFT_LSL, OPSZ_1), DR_OPND_IS_SHIFT);
}

instr_t* add(int d, int n, ptr_int_t value, ptr_int_t shift) {
  return instr_create_1dst_4src(nullptr, OP_add, reg(d), reg(n), immediate(value), lsl(),
                                immediate(shift));
}

instr_t* orr(int d, int n, std::uint64_t value) {
  return instr_create_1dst_2src(nullptr, OP_orr, reg(d), reg(n),
                                immediate(static_cast<ptr_int_t>(value)));
}

instr_t* str(int from, const opnd_t& to) {
  return instr_create_1dst_1src(nullptr, OP_str, to, reg(from));
}
instr_t* ldr(int to, const opnd_t& from) {
  return instr_create_1dst_1src(nullptr, OP_ldr, reg(to), from);
}
instr_t* stp(int first, int second, const opnd_t& to) {
  return instr_create_1dst_2src(nullptr, OP_stp, to, reg(first), reg(second));
}
instr_t* move(int opcode, int to, int from) {
  return instr_create_1dst_1src(nullptr, opcode, reg(to), reg(from));
}

// tests/sve/client/block_test.cpp has the forms as the client uses them.
TEST_F(encodes, the_limits_of_every_form) {
  const std::pair<instr_t*, std::uint32_t> forms[] = {
      {add(DR_REG_X1, DR_REG_X2, 4095, 12), 0x917ffc41},      // add  x1, x2, #0xfff, lsl #12
      {orr(DR_REG_X0, DR_REG_X1, 1), 0xb2400020},             // orr  x0, x1, #1
      {orr(DR_REG_X0, DR_REG_XZR, 0x1ffffffff), 0xb24083e0},  // mov  x0, #0x1ffffffff
      {orr(DR_REG_X2, DR_REG_X2, std::uint64_t{3} << 62), 0xb2420442},  // orr  x2, x2, #3 << 62
      {instr_create_1dst_4src(nullptr, OP_orr, reg(DR_REG_X0), reg(DR_REG_X0), reg(DR_REG_X1),
                              lsl(), immediate(0)),
       0xaa010000},                                                       // orr  x0, x0, x1
      {ldr(DR_REG_W26, memory(DR_REG_X27, 16380, OPSZ_4)), 0xb97fff7a},   // ldr  w26, [x27, #16380]
      {ldr(DR_REG_XZR, memory(DR_REG_SP, 0, OPSZ_8)), 0xf94003ff},        // ldr  xzr, [sp]
      {str(DR_REG_Q31, memory(DR_REG_X27, 65520, OPSZ_16)), 0x3dbfff7f},  // str  q31, [x27, #65520]
      {stp(DR_REG_X24, DR_REG_X25, memory(DR_REG_X27, 504, OPSZ_16)), 0xa91fe778},
      {instr_create_2dst_1src(nullptr, OP_ldp, reg(DR_REG_X29), reg(DR_REG_X30),
                              memory(DR_REG_X27, -512, OPSZ_16)),
       0xa9607b7d},  // ldp  x29, x30, [x27, #-512]
      {move(OP_mrs, DR_REG_X26, DR_REG_FPSR), 0xd53b443a},
      {move(OP_msr, DR_REG_FPCR, DR_REG_X26), 0xd51b441a},
  };
  words expected;
  for (const auto& [instr, word] : forms) {
    EXPECT_TRUE(instr_is_app(instr));
    instrlist_append(list, instr);
    expected.push_back(word);
  }
  EXPECT_EQ(encoded(), expected);
}

const auto refused = testing::ExitedWithCode(125);

TEST_F(encodes_death, refuses_all_other_forms_by_name) {
  EXPECT_EXIT(str(DR_REG_X0, memory(DR_REG_X1, 4, OPSZ_8)), refused,
              "tessaly: cannot encode OP_str .* by instr_create_1dst_1src: the displacement");
  EXPECT_EXIT(str(DR_REG_X0, memory(DR_REG_X1, 32768, OPSZ_8)), refused, "displacement");
  EXPECT_EXIT(ldr(DR_REG_X0, memory(DR_REG_X1, 0, OPSZ_4)), refused,
              "memory operand of the register's size");
  EXPECT_EXIT(ldr(DR_REG_SP, memory(DR_REG_X1, 0, OPSZ_8)), refused, "an X register");
  EXPECT_EXIT(ldr(DR_REG_X0, opnd_create_base_disp(DR_REG_X1, DR_REG_X2, 0, 0, OPSZ_8)), refused,
              "an X register or SP");
  EXPECT_EXIT(stp(DR_REG_X0, DR_REG_X1, memory(DR_REG_X1, 512, OPSZ_16)), refused,
              "from -512 to 504");
  EXPECT_EXIT(stp(DR_REG_X0, DR_REG_X1, memory(DR_REG_X1, 0, OPSZ_8)), refused, "16 bytes");
  EXPECT_EXIT(move(OP_mrs, DR_REG_X0, DR_REG_X1), refused, "NZCV, FPCR or FPSR");
  EXPECT_EXIT(move(OP_add, DR_REG_X0, DR_REG_X1), refused, "no such form");
  EXPECT_EXIT(orr(DR_REG_X0, DR_REG_X1, 0b101), refused, "ones in one row");
  EXPECT_EXIT(orr(DR_REG_X0, DR_REG_X1, 0), refused, "ones in one row");
  EXPECT_EXIT(add(DR_REG_X0, DR_REG_X1, 4096, 0), refused, "from 0 to 4095");
  EXPECT_EXIT(add(DR_REG_X0, DR_REG_X1, 1, 4), refused, "0 or 12");
}

TEST_F(encodes_death, refuses_what_it_cannot_insert) {
  EXPECT_EXIT(dr_save_reg(nullptr, list, nullptr, DR_REG_X28, SPILL_SLOT_1), refused,
              "dr_save_reg");
  EXPECT_EXIT(dr_restore_reg(nullptr, list, nullptr, DR_REG_X0, static_cast<dr_spill_slot_t>(9)),
              refused, "no slot 9");
  EXPECT_EXIT(dr_insert_read_raw_tls(nullptr, list, nullptr, DR_REG_X28, 0, DR_REG_X0), refused,
              "dr_insert_read_raw_tls: there is no slot at 0");
  EXPECT_EXIT(dr_insert_call_velox(nullptr, list, nullptr, nullptr, nullptr, 1, reg(DR_REG_X0)),
              refused, "argument 0 is not an immediate");
}

TEST_F(inserts, accesses_to_raw_slots) {
  reg_id_t base = DR_REG_NULL;
  uint first = 0;
  uint second = 0;
  ASSERT_TRUE(dr_raw_tls_calloc(&base, &first, 1, 0));
  ASSERT_TRUE(dr_raw_tls_calloc(&base, &second, 7, 0));
  uint none = 0;
  EXPECT_FALSE(dr_raw_tls_calloc(&base, &none, 1, 0));
  EXPECT_EQ(base, DR_REG_X28);
  dr_insert_read_raw_tls(nullptr, list, nullptr, base, first, DR_REG_X0);
  dr_insert_write_raw_tls(nullptr, list, nullptr, base, second, DR_REG_X1);
  EXPECT_EQ(encoded(), (words{
                           0xf941e380,  // ldr  x0, [x28, #960]
                           0xf901e781,  // str  x1, [x28, #968]
                       }));
  EXPECT_FALSE(instr_is_app(instrlist_first(list)));
  EXPECT_TRUE(dr_raw_tls_cfree(second, 7));
  EXPECT_TRUE(dr_raw_tls_cfree(first, 1));
  EXPECT_FALSE(dr_raw_tls_cfree(first + 64, 1));
}

TEST_F(inserts, a_call_with_its_arguments) {
  auto* const callee = reinterpret_cast<void*>(0x123456);
  dr_insert_call_velox(nullptr, list, nullptr, nullptr, callee, 3,
                       opnd_create_immed_int(static_cast<int>(0x84a20020), OPSZ_4),
                       opnd_create_immed_int(0x5500000040, OPSZ_8),
                       opnd_create_immed_int(0, OPSZ_8));
  EXPECT_EQ(encoded(), (words{
                           0xd2800400,  // mov  x0, #0x20
                           0xf2b09440,  // movk x0, #0x84a2, lsl #16
                           0xd2800801,  // mov  x1, #0x40
                           0xf2c00aa1,  // movk x1, #0x55, lsl #32
                           0xd2800002,  // mov  x2, #0
                           0xd2868ac9,  // mov  x9, #0x3456
                           0xf2a00249,  // movk x9, #0x12, lsl #16
                           0xf940ab8a,  // ldr  x10, [x28, #336]
                           0xd63f0140,  // blr  x10
                       }));
}

TEST_F(inserts, in_order_around_application_instructions) {
  std::uint32_t bits[] = {0xd503201f, 0xd65f03c0};  // nop; ret
  auto* const pc = reinterpret_cast<byte*>(bits);
  instr_t* const nop = instr_create_app(nullptr, pc, pc);
  instr_t* const ret = instr_create_app(nullptr, pc + 4, pc + 4);
  instrlist_append(list, nop);
  instrlist_append(list, ret);
  instr_t* first = nullptr;
  instrlist_insert_mov_immed_ptrsz(nullptr, 0x10002, reg(DR_REG_X27), list, ret, &first, nullptr);
  for (instr_t* const where : {nop, ret}) {
    dr_save_reg(nullptr, list, where, DR_REG_X26, SPILL_SLOT_1);
  }
  EXPECT_EQ(encoded(), (words{
                           0xf900b79a,  // str  x26, [x28, #360]
                           0xd503201f,  // nop
                           0xd280005b,  // mov  x27, #2
                           0xf2a0003b,  // movk x27, #1, lsl #16
                           0xf900b79a,  // str  x26, [x28, #360]
                           0xd65f03c0,  // ret
                       }));
  EXPECT_EQ(instr_get_next_app(nop), first);
  EXPECT_EQ(instr_get_raw_bits(first), nullptr);
  EXPECT_EQ(instr_get_app_pc(instr_set_translation(first, pc)), pc);
}

TEST(fields_of_threads, are_given_out_once_and_kept_apart) {
  host::thread_state one;
  host::thread_state other;
  std::vector<int> indices;
  for (int index = drmgr_register_tls_field(); index >= 0; index = drmgr_register_tls_field()) {
    indices.push_back(index);
  }
  EXPECT_EQ(indices.size(), static_cast<std::size_t>(host::tls_field_count));
  int value = 0;
  EXPECT_TRUE(drmgr_set_tls_field(&one, indices[3], &value));
  EXPECT_EQ(drmgr_get_tls_field(&one, indices[3]), &value);
  EXPECT_EQ(drmgr_get_tls_field(&one, indices[2]), nullptr);
  EXPECT_EQ(drmgr_get_tls_field(&other, indices[3]), nullptr);
  EXPECT_FALSE(drmgr_set_tls_field(&one, -1, &value));
  EXPECT_EQ(drmgr_get_tls_field(&one, host::tls_field_count), nullptr);
  for (const int index : indices) EXPECT_TRUE(drmgr_unregister_tls_field(index));
  EXPECT_FALSE(drmgr_unregister_tls_field(indices[0]));
}

}  // namespace
