// An outside caller. It includes no header of the library, but declares in plain C++ the names,
// types and record layouts that the library exports. If it links, the names and the argument types
// are right. One result of each kind shows that both sides lay out the records alike.
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

// The machine.

enum aarch64_decode_rc : int {};
enum element_size : unsigned {};

struct cpu_state {
  unsigned long x[31], sp;
  unsigned int* pc;
  unsigned long nzcv;
  unsigned int fpsr, fpcr, fpcr_extra;
  alignas(16) unsigned char z[32][VECTOR_BYTES];
  unsigned char p[16][VECTOR_BYTES], ffr[VECTOR_BYTES];
  unsigned long instr;
};

struct aarch64_z_reg {
  unsigned num, size, dst_size, src_size;
  static const char* const zname_b[32];
};
struct aarch64_p_reg {
  unsigned num, size, dst_size, src_size;
};
struct aarch64_i_reg {
  unsigned num, size, dst_size, src_size;
};
struct aarch64_i_rsp_reg {
  unsigned num, size;
};

// Fast paths, their helpers, and an entry without a fast path.
aarch64_decode_rc sve_add_zzz(cpu_state*, aarch64_z_reg, aarch64_z_reg, aarch64_z_reg);
aarch64_decode_rc sve_brkn(cpu_state*, aarch64_p_reg, aarch64_p_reg, aarch64_p_reg, bool);
aarch64_decode_rc sve_ld1w_scaled_zprr(cpu_state*, aarch64_z_reg, aarch64_p_reg, aarch64_i_rsp_reg,
                                       aarch64_i_reg);
template <class T>
void sve_ptest(cpu_state*, const char* governing, const char* result);
void sve_zip1(char* out, char* a, char* b, element_size);
aarch64_decode_rc sve_abs_zpz(cpu_state*, aarch64_z_reg, aarch64_p_reg, aarch64_z_reg);

// Decoding and counting.
using decode_handler = aarch64_decode_rc (*)(cpu_state*, unsigned int);
decode_handler is_sve(unsigned int word);
aarch64_decode_rc execute_sve_instruction(cpu_state*);
void update_sve_stats(unsigned int* pc, unsigned int word);
void dump_sve_stats();
extern "C" void list_sve_instructions(std::FILE*);
extern "C" void print_sve_disassembly(std::FILE*, unsigned int word);
extern "C" unsigned int sve_vector_bytes();

// Reference functions.

struct VecV {
  alignas(16) unsigned char bytes[256];
};
struct PredV {
  unsigned long words[4];
};
struct CpuContext {
  unsigned int nzcv, fpsr, fpcr, vl;
  PredV ffr;
};

VecV VecS32AbdVVM(VecV, PredV, VecV, CpuContext*);
VecV VecB8DupSM(VecV, PredV, unsigned long, CpuContext*);
VecV VecF32AddVVX(VecV, VecV, CpuContext*);
PredV VecPAndFlgPPZ(PredV, PredV, PredV, CpuContext*);
PredV VecS8CmpFlgEQVIZ(PredV, VecV, signed char, CpuContext*);
unsigned long VecU8LastAV(PredV, VecV, CpuContext*);
void VecU64CTermEQ(unsigned long, unsigned long, CpuContext*);
void PredSetNZCV(PredV, PredV, int w, CpuContext*);
int FindLastActive(PredV, int w, CpuContext*);
int VecTrueILength(unsigned long pattern, int n);

// Integers. A saturating function returns its value and its flag in two words.

struct BigInt {
  unsigned long words[4];
};

__int128 Int(unsigned long, int w, int u);
__int128 UInt(unsigned long, int w);
__int128 SInt(unsigned long, int w);
unsigned long bits(__int128);
unsigned long ones(int w);
__int128 AbsInt(__int128);
__int128 NegInt(__int128);
__int128 AddInt(__int128, __int128);
__int128 SubInt(__int128, __int128);
__int128 ShiftRightInt(__int128, __int128);
unsigned __int128 SatQ(__int128, int w, int u);
unsigned long Max(unsigned long, unsigned long, int w, int u);
unsigned __int128 PolynomialMult(unsigned long, unsigned long);
BigInt toBigInt(__int128);
BigInt AddBigInt(BigInt, BigInt);
BigInt ShiftRightBigInt(BigInt, int s);
unsigned __int128 SatQBigInt(BigInt, int w, int u);
double recip_sqrt_estimate(double);

// Floating point.

struct FPSCR {
  unsigned int word;
};
enum FPRounding { FPRounding_TIEEVEN, FPRounding_POSINF, FPRounding_NEGINF, FPRounding_ZERO };

int fp_mode_word(FPSCR&);
unsigned short fp16_round_(int sgn, int exp, unsigned short mnt, int rm, int mode, int* flags);
unsigned __int128 fp_mul_62x62(unsigned long, unsigned long);
template <class T>
T FPAdd(T, T, FPSCR&);
template <class T>
T FPNeg(T);
template <class T>
int FPCompare(T, T, bool signal_nans, FPSCR&);
template <class F, class T>
T FPConvert(F, FPRounding, FPSCR&);
template <class F, class T>
T fplibFPToFixed(F, int fbits, bool u, FPRounding, FPSCR&);
unsigned long FPToFixed_64(int sgn, int exp, unsigned long mnt, bool u, FPRounding, int* flags);
unsigned long fp64_muladd(unsigned long, unsigned long, unsigned long, int scale, int mode,
                          int* flags);
unsigned long FPScale64(unsigned long, long scale, FPSCR&);
template <class T>
T FPTRIMADD(unsigned long x, T, T, FPSCR&);

// Memory.

extern CpuContext cpu_ctxt;
extern CpuContext* ctxt;
bool SVEInitialize();
unsigned long ReadMemLib4(unsigned long address, int hint, bool* fault, CpuContext*);
void WriteMemLib2(unsigned short value, unsigned long address, CpuContext*);
unsigned long ReadMem(unsigned long address, int size, int hint, bool* fault, CpuContext*);
template <class T>
bool addr_is_readable(volatile T*);

namespace {

constexpr unsigned int add_s = 0x04a20020;  // add z0.s, z1.s, z2.s
constexpr aarch64_decode_rc ok{0};

aarch64_z_reg z(unsigned num) { return {num, 2, 5, 5}; }
aarch64_p_reg p(unsigned num) { return {num, 0, 7, 7}; }

unsigned int word_of(const unsigned char* vector, unsigned e) {
  unsigned int value = 0;
  std::memcpy(&value, vector + e * sizeof value, sizeof value);
  return value;
}

unsigned long address_of(const void* p) { return reinterpret_cast<unsigned long>(p); }

class OutsideCaller : public testing::Test {
 protected:
  OutsideCaller() {
    std::memset(&state, 0, sizeof state);
    std::memset(state.z[1], 3, VECTOR_BYTES);
    std::memset(state.z[2], 4, VECTOR_BYTES);
    std::memset(state.p[1], 1, VECTOR_BYTES);
  }

  cpu_state state;
  CpuContext context{0, 0, 0, 2, {}};  // 128 bits
};

TEST_F(OutsideCaller, FastPaths) {
  EXPECT_EQ(sve_add_zzz(&state, z(31), z(1), z(2)), ok);
  EXPECT_EQ(word_of(state.z[31], VECTOR_BYTES / 4 - 1), 0x07070707U);
  EXPECT_EQ(word_of(state.p[0], 0), 0U);

  state.sp = address_of(state.z[31]) - 8;
  state.x[4] = 2;
  EXPECT_EQ(sve_ld1w_scaled_zprr(&state, z(3), p(1), {31, 3}, {4, 3, 4, 4}), ok);
  EXPECT_EQ(word_of(state.z[3], 1), 0x07070707U);
}

TEST_F(OutsideCaller, DecodingAndCounting) {
  EXPECT_NE(is_sve(add_s), nullptr);
  EXPECT_EQ(is_sve(0xd503201f), nullptr) << "nop";
  unsigned int code[] = {add_s, 0xd503201f};
  state.pc = code;
  EXPECT_EQ(execute_sve_instruction(&state), ok);
  EXPECT_EQ(state.pc, code + 1);
  EXPECT_EQ(state.instr, add_s);
  EXPECT_EQ(word_of(state.z[0], 0), 0x07070707U);
  EXPECT_EQ(execute_sve_instruction(&state), aarch64_decode_rc{2}) << "unimplemented";
  EXPECT_EQ(state.pc, code + 1);
  update_sve_stats(code, add_s);
  testing::internal::CaptureStderr();
  dump_sve_stats();
  EXPECT_NE(testing::internal::GetCapturedStderr().find(": 0x04a20020 2\n"), std::string::npos);
}

TEST_F(OutsideCaller, WhatTheLauncherLooksUp) {
  EXPECT_EQ(sve_vector_bytes(), unsigned{VECTOR_BYTES});
  testing::internal::CaptureStdout();
  list_sve_instructions(stdout);
  print_sve_disassembly(stdout, 0x04a20020);
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_EQ(printed.find("00100100000mmmmm000gggnnnnn0dddd  F  VecU8CmpFlgGEVVZ "), 0U);
  EXPECT_NE(printed.find("\n04a20020  add z0.s, z1.s, z2.s "), std::string::npos);
}

TEST_F(OutsideCaller, NamesOfRegisters) { EXPECT_STREQ(aarch64_z_reg::zname_b[31], "z31.b"); }

TEST_F(OutsideCaller, ReferenceFunctions) {
  VecV a{}, b{};
  a.bytes[4] = 10;
  b.bytes[4] = 13;
  const PredV second{{0x10, 0, 0, 0}}, every{{0xffff, 0, 0, 0}};
  EXPECT_EQ(word_of(VecS32AbdVVM(a, second, b, &context).bytes, 1), 3U);
  EXPECT_EQ(word_of(VecB8DupSM(a, second, 0x155, &context).bytes, 1), 0x55U);
  EXPECT_EQ(VecU8LastAV(PredV{{8, 0, 0, 0}}, a, &context), 10U);
  EXPECT_EQ(VecS8CmpFlgEQVIZ(every, a, 10, &context).words[0], 0x10U);
  EXPECT_EQ(context.nzcv, 0x20000000U) << "C";
  context.nzcv = 0;
  VecU64CTermEQ(1, 2, &context);
  EXPECT_EQ(context.nzcv, 0x10000000U) << "V";
  EXPECT_EQ(FindLastActive(every, 32, &context), 3);
}

TEST_F(OutsideCaller, Integers) {
  EXPECT_TRUE(Int(0xff, 8, 0) == -1);
  EXPECT_TRUE(SatQ(256, 8, 1) == ((unsigned __int128){1} << 64 | 255)) << "255 with the flag";
  EXPECT_TRUE(PolynomialMult(3UL << 63, 3) == ((unsigned __int128){1} << 64 | 1UL << 63));
  EXPECT_EQ(ShiftRightBigInt(toBigInt(-256), 4).words[0], -16UL);
  EXPECT_EQ(recip_sqrt_estimate(0.25), 511.0 / 256);
}

TEST_F(OutsideCaller, FloatingPoint) {
  FPSCR fpscr{1U << 24};
  EXPECT_EQ(fp_mode_word(fpscr), 4) << "FZ";
  EXPECT_EQ(FPAdd(0x3f800000U, 0x40000000U, fpscr), 0x40400000U);
  EXPECT_EQ((FPConvert<unsigned int, unsigned short>(0x3f800000, FPRounding_ZERO, fpscr)), 0x3c00);
  int flags = 0;
  EXPECT_EQ(fp16_round_(1, 15, 1, FPRounding_NEGINF, 0, &flags), 0xbc01);
  EXPECT_EQ(flags, 0x10) << "IXC";
}

TEST_F(OutsideCaller, Memory) {
  EXPECT_TRUE(SVEInitialize());
  EXPECT_EQ(ctxt, &cpu_ctxt);
  unsigned int word = 0x12345678;
  bool fault = false;
  WriteMemLib2(0x9abc, address_of(&word), &context);
  EXPECT_EQ(ReadMemLib4(address_of(&word), 0, &fault, &context), 0x12349abcU);
  EXPECT_EQ(ReadMemLib4(0, 1, &fault, &context), 0U);
  EXPECT_TRUE(fault);
  char byte = 0;
  EXPECT_TRUE(addr_is_readable<char>(&byte));
}

// These only have to link: the library's own tests check their results.
[[gnu::used]] const auto linked = std::make_tuple(
    sve_brkn, sve_ptest<signed char>, sve_zip1, sve_abs_zpz, VecF32AddVVX, VecPAndFlgPPZ,
    PredSetNZCV, VecTrueILength, UInt, SInt, bits, ones, AbsInt, NegInt, AddInt, SubInt,
    ShiftRightInt, Max, AddBigInt, SatQBigInt, FPAdd<unsigned short>, FPNeg<unsigned long>,
    FPCompare<unsigned int>, fplibFPToFixed<unsigned short, unsigned long>, FPScale64,
    FPTRIMADD<unsigned int>, fp_mul_62x62, FPToFixed_64, fp64_muladd, ReadMem);

}  // namespace
