// Typed register and immediate operands. A decode handler builds them for a fast path.
//
// They make the signature of a fast path read like the assembler form of the instruction:
// sve_smin_zpz(state, zdn, pg, zm). If the instruction only reads or only writes a register, the
// size code is in `size`. If it both reads and writes it (Zdn, Pdn, Rdn), `size` is the none-code
// and the size code is in `dst_size` and `src_size`. All records are passed by value.
#pragma once

#include <cstdint>

// Size codes of vector elements. Their names are too short for the global scope.
enum element_size : unsigned {};

namespace sve {

// Q is a 128-bit quadword. z_none marks an unused field.
inline constexpr element_size B{0}, H{1}, S{2}, D{3}, Q{4}, z_none{5};

// Codes of aarch64_p_reg in addition to B to D: the qualifier of a governing predicate.
enum predicate_qualifier : unsigned {
  merging = 4,      // Pg/M
  zeroing = 5,      // Pg/Z
  unqualified = 6,  // Pg
  p_none = 7,
};

// Codes of aarch64_i_reg in addition to B to D. S is a W register and D an X register.
enum general_register_code : unsigned { i_none = 4 };

}  // namespace sve

struct aarch64_z_reg {
  unsigned num, size, dst_size, src_size;

  static const char* const zname[32];
  static const char* const zname_b[32];
  static const char* const zname_h[32];
  static const char* const zname_s[32];
  static const char* const zname_d[32];
};

struct aarch64_p_reg {
  unsigned num, size, dst_size, src_size;

  static const char* const pname[16];
  static const char* const pname_m[16];
  static const char* const pname_z[16];
  static const char* const pname_b[16];
  static const char* const pname_h[16];
  static const char* const pname_s[16];
  static const char* const pname_d[16];
};

// A general register in which number 31 is the zero register: it reads as 0, and writes to it are
// dropped.
struct aarch64_i_reg {
  unsigned num, size, dst_size, src_size;

  static const char* const wname[32];
  static const char* const xname[32];
};

// A general register in which number 31 is the stack pointer.
struct aarch64_i_rsp_reg {
  unsigned num, size;

  static const char* const wname[32];
  static const char* const xname[32];
};

// One floating-point constant in the three formats (VFPExpandImm).
struct aarch64_sve_fp_dup_imm {
  std::uint16_t half;
  std::uint32_t single;
  std::uint64_t dbl;
};

// The one-bit immediate of FADD, FSUB, FMUL and similar instructions.
struct aarch64_sve_fp_arith_imm {
  unsigned select;
};

// A logical immediate, expanded and replicated to 64 bits (DecodeBitMasks).
struct aarch64_sve_logical64_imm {
  std::uint64_t mask;
};
