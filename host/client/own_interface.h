// The host's side of host/include/tessaly_host.h, except for faults: what the launcher sets, and
// what the signals need of the client.
#pragma once

#include "host/include/tessaly_host.h"

namespace host {

struct client_modes {
  bool architectural = false;
  bool warn_v_writes = false;
};

// Call it before the client is loaded.
void set_client_modes(const client_modes& chosen);

// The functions that the client has set, or null.
const tessaly_vector_state_t* client_vector_state();

}  // namespace host
