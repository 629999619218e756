// The instructions that end a block: branches and SVC, and also IC IVAU and ISB, which must reach
// the translator.
#pragma once

#include <cstdint>

namespace host {

enum class flow : std::uint8_t {
  none,
  direct,           // B, BL
  conditional,      // B.cond, BC.cond, CBZ, CBNZ, TBZ, TBNZ
  indirect,         // BR, BLR, RET and their authenticated forms
  supervisor_call,  // SVC
  invalidate,       // IC IVAU
  synchronize,      // ISB
  unknown,          // a branch of an architecture later than this translator knows
};

struct control_flow {
  flow kind = flow::none;
  bool links = false;              // BL, BLR: X30 = the next instruction's address
  std::uint64_t target = 0;        // of direct and conditional branches
  unsigned reg = 0;                // read by an indirect branch, IC IVAU, a compare or a test
  bool tests_register = false;     // CBZ, CBNZ, TBZ, TBNZ
  std::uint32_t authenticate = 0;  // AUTIA, AUTIB, AUTIZA or AUTIZB X0 for the target, or 0
  bool has_modifier = false;       // the AUT instruction takes a modifier register
  unsigned modifier = 0;           // 31: SP
};

control_flow decode_control_flow(std::uint32_t word, std::uint64_t pc);

}  // namespace host
