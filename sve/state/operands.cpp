// The assembler names of the registers, for listings and debuggers. The emulation does not read
// them.
#include "sve/state/operands.h"

#define NAMES_16(p, s)                                                                      \
  p "0" s, p "1" s, p "2" s, p "3" s, p "4" s, p "5" s, p "6" s, p "7" s, p "8" s, p "9" s, \
      p "10" s, p "11" s, p "12" s, p "13" s, p "14" s, p "15" s
#define NAMES_31(p, s)                                                                            \
  NAMES_16(p, s), p "16" s, p "17" s, p "18" s, p "19" s, p "20" s, p "21" s, p "22" s, p "23" s, \
      p "24" s, p "25" s, p "26" s, p "27" s, p "28" s, p "29" s, p "30" s

const char* const aarch64_i_reg::wname[32] = {NAMES_31("w", ""), "wzr"};
const char* const aarch64_i_reg::xname[32] = {NAMES_31("x", ""), "xzr"};
const char* const aarch64_i_rsp_reg::wname[32] = {NAMES_31("w", ""), "illegal"};
const char* const aarch64_i_rsp_reg::xname[32] = {NAMES_31("x", ""), "sp"};

const char* const aarch64_p_reg::pname[16] = {NAMES_16("p", "")};
const char* const aarch64_p_reg::pname_m[16] = {NAMES_16("p", "/m")};
const char* const aarch64_p_reg::pname_z[16] = {NAMES_16("p", "/z")};
const char* const aarch64_p_reg::pname_b[16] = {NAMES_16("p", ".b")};
const char* const aarch64_p_reg::pname_h[16] = {NAMES_16("p", ".h")};
const char* const aarch64_p_reg::pname_s[16] = {NAMES_16("p", ".s")};
const char* const aarch64_p_reg::pname_d[16] = {NAMES_16("p", ".d")};

const char* const aarch64_z_reg::zname[32] = {NAMES_31("z", ""), "z31"};
const char* const aarch64_z_reg::zname_b[32] = {NAMES_31("z", ".b"), "z31.b"};
const char* const aarch64_z_reg::zname_h[32] = {NAMES_31("z", ".h"), "z31.h"};
const char* const aarch64_z_reg::zname_s[32] = {NAMES_31("z", ".s"), "z31.s"};
const char* const aarch64_z_reg::zname_d[32] = {NAMES_31("z", ".d"), "z31.d"};
