// What the emulation of an instruction returns.
#pragma once

// Result of a decode handler and of a fast path. There are no other values.
enum aarch64_decode_rc : int {
  aarch64_decode_ok = 0,             // the instruction was carried out
  aarch64_decode_unimplemented = 2,  // nothing was carried out
};
