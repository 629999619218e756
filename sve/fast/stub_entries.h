// Entries for the operations that have no fast path, under the names that fast paths would have.
//
// No handler calls one: bridges run these instructions in the reference semantics. If somebody does
// call one, it prints on stderr which instruction it was, from `pc` and `instr` of the state, and
// returns aarch64_decode_unimplemented. It does nothing else.
#pragma once

#include "sve/fast/forms.h"

namespace sve::stub {

using form::P;
using form::R;
using form::R_or_SP;
using form::rc;
using form::Z;
using dup_imm = aarch64_sve_fp_dup_imm;
using arith_imm = aarch64_sve_fp_arith_imm;

// The type of each entry, under the entry's name.
namespace entry {
#define STUB(name, ...) using name = rc(cpu_state*, __VA_ARGS__);
#include "sve/fast/stub_entries.inc"
#undef STUB
}  // namespace entry

}  // namespace sve::stub

#define STUB(name, ...) sve::stub::entry::name name;
#include "sve/fast/stub_entries.inc"
#undef STUB
