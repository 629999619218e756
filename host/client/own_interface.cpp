#include "host/client/own_interface.h"

namespace host {
namespace {

client_modes modes;
tessaly_vector_state_t vector_state;
bool has_vector_state = false;

}  // namespace

void set_client_modes(const client_modes& chosen) { modes = chosen; }

const tessaly_vector_state_t* client_vector_state() {
  return has_vector_state ? &vector_state : nullptr;
}

}  // namespace host

bool tessaly_is_architectural() { return host::modes.architectural; }
bool tessaly_warns_of_v_writes() { return host::modes.warn_v_writes; }

void tessaly_set_vector_state(const tessaly_vector_state_t* functions) {
  host::vector_state = *functions;
  host::has_vector_state = true;
}
