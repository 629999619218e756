// The bytes are those of the kernel's sve_context: Z0 to Z31, P0 to P15 and the FFR. A predicate
// has one bit for each byte of a vector.
#include "sve/client/signal_record.h"

#include <cstring>

#include "sve/client/pending_writes.h"
#include "sve/client/thread_state.h"
#include "sve/state/access.h"
#include "sve/state/packed_predicate.h"
#include "tessaly_host.h"

#pragma weak tessaly_set_vector_state

namespace sve {
namespace {

byte* save_predicate(const predicate_register& from, byte* to) {
  for (unsigned i = 0; i < predicate_bytes; ++i)
    *to++ = pack_lanes(element<std::uint64_t>(from, i));
  return to;
}

const byte* restore_predicate(predicate_register& to, const byte* from) {
  for (unsigned i = 0; i < predicate_bytes; ++i) set_element(to, i, unpack_lanes(*from++));
  return from;
}

bool is_live(void* /*drcontext*/) { return (pending_writes() & no_live_state) == 0; }

void save(void* drcontext, byte* to) {
  cpu_state& state = *thread_state(drcontext);
  pay_off_pending_writes(state, 0);
  std::memcpy(to, state.z, sizeof state.z);
  to += sizeof state.z;
  for (const predicate_register& p : state.p) to = save_predicate(p, to);
  save_predicate(state.ffr, to);
}

void restore(void* drcontext, const byte* from) {
  pending_writes() = from != nullptr ? 0 : no_live_state | all_registers;
  if (from == nullptr) return;
  cpu_state& state = *thread_state(drcontext);
  std::memcpy(state.z, from, sizeof state.z);
  from += sizeof state.z;
  for (predicate_register& p : state.p) from = restore_predicate(p, from);
  restore_predicate(state.ffr, from);
}

constexpr tessaly_vector_state_t functions = {
    .vector_bytes = vector_bytes, .is_live = is_live, .save = save, .restore = restore};

}  // namespace

void put_vectors_into_signal_frames() { tessaly_set_vector_state(&functions); }

}  // namespace sve
