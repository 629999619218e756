// What the user has asked the host for beyond the default. A host other than ours cannot be asked,
// and then the answer is no.
#pragma once

#include "tessaly_host.h"

#pragma weak tessaly_is_architectural
#pragma weak tessaly_warns_of_v_writes

namespace sve {

// The program is to see everything that a processor with SVE shows.
inline bool is_architectural() {
  return tessaly_is_architectural != nullptr && tessaly_is_architectural();
}

// The user wants to know if a write of a V register may have changed the program's results.
inline bool warns_of_v_writes() {
  return tessaly_warns_of_v_writes != nullptr && tessaly_warns_of_v_writes();
}

}  // namespace sve
