// The emulated register file of one application thread, and the result codes of the emulation.
//
// The state is of two kinds. X0 to X30, SP, NZCV, FPSR, FPCR and the low 128 bits of each Z
// register mirror the processor: the code that replaces an SVE instruction copies them in just
// before the emulated instruction and back just after it. The rest of the Z registers, the
// predicates and the FFR exist nowhere else and stay here between emulated instructions. Predicates
// are unpacked, one byte for each vector byte. That way a fast path applies the governing predicate
// with one AND for each 16 bytes, and extracts no bits.
//
// Names. What the library exports to callers is at global scope and has C++ linkage, so that a
// plain declaration finds it: this record and the operands, the fast paths, the decoder, the
// reference functions, their integers, and the floating-point library. Everything else that the
// sources share is internal and in namespace sve.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sve/state/condition_flags.h"
#include "sve/state/decode_result.h"
#include "sve/state/vector_length.h"

// A vector register and an unpacked predicate, as bytes in ascending order.
using vector_register = unsigned char[sve::vector_bytes];
using predicate_register = unsigned char[sve::vector_bytes];

struct cpu_state {
  std::uint64_t x[31];
  std::uint64_t sp;
  std::uint32_t* pc;   // application address of the instruction being emulated
  std::uint64_t nzcv;  // the NZCV system register: N bit 31, Z 30, C 29, V 28
  std::uint32_t fpsr;
  std::uint32_t fpcr;
  std::uint32_t fpcr_extra;  // ORed into the control word of the reference semantics; always 0
  alignas(16) vector_register z[32];
  predicate_register p[16];  // bit 0 of byte k is the predicate bit of vector byte k
  predicate_register ffr;
  std::uint64_t instr;  // the instruction word, zero-extended
};

static_assert(offsetof(cpu_state, sp) == offsetof(cpu_state, x) + 31 * sizeof(std::uint64_t),
              "a base register numbered 31 reaches SP as x[31]");
static_assert(offsetof(cpu_state, ffr) == offsetof(cpu_state, p) + 16 * sizeof(predicate_register),
              "the FFR is in effect predicate number 16");
