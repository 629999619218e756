#include "sve/client/modes.h"

#include "tessaly_host.h"

#pragma weak tessaly_is_architectural
#pragma weak tessaly_warns_of_v_writes

namespace sve {

bool is_architectural() {
  return tessaly_is_architectural != nullptr && tessaly_is_architectural();
}

bool warns_of_v_writes() {
  return tessaly_warns_of_v_writes != nullptr && tessaly_warns_of_v_writes();
}

}  // namespace sve
