// The operands that the lines of the table pass to a fast path: register records in the order num,
// size, dst_size, src_size, and immediates as decoded. The table is expanded a second time here,
// into functions that print the operands of a word, so that each case below tests the actual line.
#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <sstream>
#include <string_view>

#include "sve/decode/operand_fields.h"
#include "sve/decode/sve_utils.h"

namespace {

using namespace sve;

template <class Register>
requires requires(Register r) { r.dst_size; }
void print(std::ostream& out, Register r) {
  out << "{" << r.num << " " << r.size << " " << r.dst_size << " " << r.src_size << "} ";
}
void print(std::ostream& out, aarch64_i_rsp_reg r) { out << "{" << r.num << " " << r.size << "} "; }
void print(std::ostream& out, simd_register r) { out << "v" << r.num << " "; }
void print(std::ostream& out, unsigned immediate) { out << immediate << " "; }
void print(std::ostream& out, int immediate) { out << immediate << " "; }
void print(std::ostream& out, std::uint64_t immediate) {
  out << "0x" << std::hex << immediate << std::dec << " ";
}
void print(std::ostream& out, aarch64_sve_logical64_imm imm) { print(out, imm.mask); }
void print(std::ostream& out, aarch64_sve_fp_arith_imm imm) { out << "#" << imm.select << " "; }
void print(std::ostream& out, aarch64_sve_fp_dup_imm imm) {
  print(out, std::uint64_t{imm.half});
  print(out, std::uint64_t{imm.single});
  print(out, imm.dbl);
}

// This is instantiated for each row. Code outside of it is compiled only once.
template <word_pattern Pattern, class... Operands>
void print_operands([[maybe_unused]] std::ostream& out, [[maybe_unused]] unsigned word) {
  (print(out, Operands::template take<Pattern>(word)), ...);
}

struct printer {
  std::string_view row;
  void (*print)(std::ostream& out, unsigned word);
};

constexpr printer printers[] = {
#define FAST(pattern, mnemonic, name, function, ...) \
  {#name, print_operands<pattern, ##__VA_ARGS__>},
#define FAST_FP FAST
#define BRIDGE(pattern, mnemonic, name, result, ...) \
  {#name, print_operands<pattern, ##__VA_ARGS__>},
#define NO_OP(...)
#include "sve/decode/instructions.inc"
};

// The operands that the row of that name takes from a word, with a space after each.
std::string operands_of(std::string_view row, unsigned word) {
  std::ostringstream out;
  std::ranges::find(printers, row, &printer::row)->print(out, word);
  return out.str();
}

struct operand_case {
  std::uint32_t word;
  const char* row;
  const char* operands;
};

TEST(Operands, ReachTheFastPathOrTheReferenceFunction) {
  constexpr operand_case cases[] = {
      // Size codes by role.
      {0x048a1523, "VecS32MinVVM", "{3 5 2 2} {5 4 7 7} {9 2 5 5}"},  // smin z3.s, p5/m, z3.s, z9.s
      {0x04230041, "VecU8AddVVX", "{1 0 5 5} {2 0 5 5} {3 0 5 5}"},   // add z1.b, z2.b, z3.b
      {0x0403c881, "VecS8MADDVVVM",
       "{1 5 0 0} {2 4 7 7} {3 0 5 5} {4 0 5 5}"},  // mad z1.b, p2/m, z3.b, z4.b
      {0x0522f020, "VecU8SelVV",
       "{0 0 5 5} {12 6 7 7} {1 0 5 5} {2 0 5 5}"},                     // sel z0.b, p12, z1.b, z2.b
      {0x0528a8e3, "VecU8DupSM", "{3 0 5 5} {2 4 7 7} {7 0}"},          // mov z3.b, p2/m, w7
      {0x05a088e3, "VecF32DupSM", "{3 2 5 5} {2 4 7 7} v7"},            // mov z3.s, p2/m, s7
      {0x0561a883, "VecU16LastBV", "{3 1 4 4} {2 6 7 7} {4 1 5 5}"},    // lastb w3, p2, z4.h
      {0x0571a883, "VecU16CondXBSV", "{3 4 2 2} {2 6 7 7} {4 1 5 5}"},  // clastb w3, p2, w3, z4.h
      {0x2559c483, "VecP16GenNextP", "{3 7 1 1} {4 6 7 7}"},            // pnext p3.h, p4, p3.h
      {0x257f0443, "VecS16While4LTSS", "{3 1 7 7} {2 2 4 4} {31 2 4 4}"},  // whilelt p3.h, w2, wzr
      // Memory: base SP or X, index X or zero, container size.
      {0xe5674be3, "VecU64CStore4LSSZ",
       "{3 3 5 5} {2 6 7 7} {31 3} {7 3 4 4}"},  // st1w {z3.d}, p2, [sp, x7, lsl #2]
      {0xa408a883, "VecU8CLoad1SIZ",
       "{3 0 5 5} {2 5 7 7} {4 3} -8"},  // ld1b {z3.b}, p2/z, [x4, #-8, mul vl]
      {0xe407fc61, "VecU8CStore1SIZ",
       "{1 0 5 5} {7 6 7 7} {3 3} 7"},  // st1b {z1.b}, p7, [x3, #7, mul vl]
      {0x85ffe883, "VecU64LoadDup8SIZ",
       "{3 3 5 5} {2 5 7 7} {4 3} 63"},                       // ld1rd {z3.d}, p2/z, [x4, #504]
      {0x85a043e3, "VecU64FillSI", "{3 3 5 5} {31 3} -256"},  // ldr z3, [sp, #-256, mul vl]
      {0x859f1c83, "VecPFillSI", "{3 0 7 7} {4 3} 255"},      // ldr p3, [x4, #255, mul vl]
      {0xe527abe3, "VecU64Store4SVZ",
       "{3 3 5 5} {2 6 7 7} {31 3} {7 3 5 5}"},  // st1w {z3.d}, p2, [sp, z7.d, lsl #2]
      {0xe4e5c883, "VecU32Store2XSVZ",
       "{3 2 5 5} {2 6 7 7} {4 3} {5 2 5 5}"},  // st1h {z3.s}, p2, [x4, z5.s, sxtw #1]
      {0xc445c883, "VecU64Load1VSZ",
       "{3 3 5 5} {2 5 7 7} {5 3 5 5} {4 3}"},  // ld1b {z3.d}, p2/z, [x4, z5.d]
      {0xc5238883, "VecS64Load4VIZ",
       "{3 3 5 5} {2 5 7 7} {4 3 5 5} 3"},  // ld1sw {z3.d}, p2/z, [z4.d, #12]
      {0xa5676be3, "VecU64CLoadFF4LSSZ",
       "{3 3 5 5} {2 5 7 7} {31 3} {7 3 4 4}"},  // ldff1w {z3.d}, p2/z, [sp, x7, lsl #2]
      {0xa538a883, "VecS32CLoadNF2SIZ",
       "{3 2 5 5} {2 5 7 7} {4 3} -8"},  // ldnf1sh {z3.s}, p2/z, [x4, #-8, mul vl]
      // Immediates.
      {0x2560ffe4, "VecU16AddVIX", "{4 5 1 1} 65280"},          // add z4.h, z4.h, #255, lsl #8
      {0x2520ffe7, "VecU8AddVIX", "{7 5 0 0} 65280"},           // add z7.b, z7.b, #255, lsl #8
      {0x2564f903, "VecS16QAddVIX", "{3 5 1 1} 51200"},         // sqadd z3.h, z3.h, #200, lsl #8
      {0x2578f003, "VecS16DupI", "{3 1 5 5} -32768"},           // mov z3.h, #-128, lsl #8
      {0x25f8dfe3, "VecS64DupI", "{3 3 5 5} -1"},               // mov z3.d, #-1
      {0x25b0d002, "VecS32MulVIX", "{2 5 2 2} -128"},           // mul z2.s, z2.s, #-128
      {0x04af4201, "VecS32IndexII", "{1 2 5 5} -16 15"},        // index z1.s, #-16, #15
      {0x04ff4461, "VecS64IndexSI", "{1 3 5 5} {3 3 4 4} -1"},  // index z1.d, x3, #-1
      {0x24bfc873, "VecU32CmpFlgGTVIZ",
       "{3 2 7 7} {2 5 7 7} {3 2 5 5} 127"},  // cmphi p3.s, p2/z, z3.s, #127
      {0x25d00873, "VecS64CmpFlgGTVIZ",
       "{3 3 7 7} {2 5 7 7} {3 3 5 5} -16"},  // cmpgt p3.d, p2/z, z3.d, #-16
      {0x0583ffa3, "VecU64AndVIX",
       "{3 5 3 3} 0x7ffffffffffffffe"},  // and z3.d, z3.d, #0x7ffffffffffffffe
      {0x05c004e3, "VecS64DupMaskI", "{3 3 5 5} 0xff00ff00ff00ff"},  // mov z3.h, #0xff
      {0x05f020c5, "VecU128ExtDupVI", "{5 4 5 5} {6 4 5 5} 3"},      // mov z5.q, z6.q[3]
      {0x05ff20c5, "VecU8ExtDupVI", "{5 0 5 5} {6 0 5 5} 63"},       // mov z5.b, z6.b[63]
      {0x05b820c5, "VecU64ExtDupVI", "{5 3 5 5} {6 3 5 5} 5"},       // mov z5.d, z6.d[5]
      {0x053f1c41, "VecU8SlideVI", "{1 5 0 0} {2 0 5 5} 255"},       // ext z1.b, z1.b, z2.b, #255
      // Floating point: rotations, indices, the two kinds of immediate, scalars.
      {0x64418861, "VecF16FCADDVVM",
       "{1 5 1 1} {2 4 7 7} {3 1 5 5} 1"},  // fcadd z1.h, p2/m, z1.h, z3.h, #270
      {0x64c44861, "VecD64FCMLAVVVM",
       "{1 5 3 3} {2 4 7 7} {3 3 5 5} {4 3 5 5} 2"},  // fcmla z1.d, p2/m, z3.d, z4.d, #180
      {0x64bc1c61, "VecF16FCMLAVVVIX",
       "{3 1 5 5} {4 1 5 5} {1 5 1 1} 3 3"},  // fcmla z1.h, z3.h, z4.h[3], #270
      {0x64740061, "VecF16FMAVVVIX",
       "{3 1 5 5} {4 1 5 5} {1 5 1 1} 6"},  // fmla z1.h, z3.h, z4.h[6]
      {0x65a48861, "VecF32FMADDVVVM",
       "{1 5 2 2} {2 4 7 7} {3 2 5 5} {4 2 5 5}"},                 // fmad z1.s, p2/m, z3.s, z4.s
      {0x655a8801, "VecF16MulVIM", "{1 5 1 1} {2 4 7 7} #0"},      // fmul z1.h, p2/m, z1.h, #0.5
      {0x65988821, "VecF32AddVIM", "{1 5 2 2} {2 4 7 7} #1"},      // fadd z1.s, p2/m, z1.s, #1.0
      {0x055cd801, "VecF16DupIM", "{1 5 1 1} {12 4 7 7} 0xb000"},  // fmov z1.h, p12/m, #-0.125
      {0x05d2c7e1, "VecD64DupIM",
       "{1 5 3 3} {2 4 7 7} 0x403f000000000000"},  // fmov z1.d, p2/m, #31.0
      {0x25b9ce05, "VecF32DupI",
       "{5 2 5 5} 0x3c00 0x3f800000 0x3ff0000000000000"},           // fmov z5.s, #1.0
      {0x65982861, "VecF32AddReduceAV", "{2 6 7 7} v1 {3 2 5 5}"},  // fadda s1, p2, s1, z3.s
      // Shift amounts, at both ends of each piece of the split field.
      {0x04008501, "VecS8ShrVIM", "{1 5 0 0} {1 4 7 7} 8"},    // asr z1.b, p1/m, z1.b, #8
      {0x04808401, "VecS64ShrVIM", "{1 5 3 3} {1 4 7 7} 64"},  // asr z1.d, p1/m, z1.d, #64
      {0x04c087e1, "VecS64ShrVIM", "{1 5 3 3} {1 4 7 7} 1"},   // asr z1.d, p1/m, z1.d, #1
      {0x04c387e1, "VecU64ShlVIM", "{1 5 3 3} {1 4 7 7} 63"},  // lsl z1.d, p1/m, z1.d, #63
      {0x04438401, "VecU32ShlVIM", "{1 5 2 2} {1 4 7 7} 0"},   // lsl z1.s, p1/m, z1.s, #0
      {0x04309041, "VecS16ShrVIX", "{1 1 5 5} {2 1 5 5} 16"},  // asr z1.h, z2.h, #16
      {0x043f9c41, "VecU16ShlVIX", "{1 1 5 5} {2 1 5 5} 15"},  // lsl z1.h, z2.h, #15
      {0x046f9041, "VecS32ShrVIX", "{1 2 5 5} {2 2 5 5} 17"},  // asr z1.s, z2.s, #17
      // Counting: the pattern, then the multiplier: 1 to 16 for a fast path, encoded for a bridge.
      {0x043fe0e3, "VecU8IncrVLSI", "{3 4 3 3} 7 16"},    // incb x3, vl7, mul #16
      {0x0420ffa3, "VecU8QDecrVL4SI", "{3 4 2 2} 29 1"},  // uqdecb w3, mul4
      {0x042fe005, "VecU8CountVLSI", "0 15"},             // cntb x5, pow2, mul #16
      {0x0420f823, "VecS8QDecrVL4SI", "{3 4 2 2} 1 0"},   // sqdecb x3, w3, vl1
      {0x0423541f, "VecS64AddVLX", "{31 3} {3 3} -32"},   // addvl sp, x3, #-32
      {0x04bf53e3, "VecS64VLX", "{3 3 4 4} 31"},          // rdvl x3, #31
  };
  for (const operand_case& c : cases) {
    const instruction_row* row = find_row(c.word);
    ASSERT_NE(row, nullptr) << std::hex << c.word;
    EXPECT_EQ(row->name, c.row);
    EXPECT_EQ(operands_of(c.row, c.word), std::string(c.operands) + " ") << c.row;
  }
}

}  // namespace
