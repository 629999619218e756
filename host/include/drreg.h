// The host's interface to a client, third part: register reservation. A client that transfers the
// whole machine state reserves nothing, so this host has only the initialisation and the exit.
#pragma once

#include "host/include/dr_api.h"

enum drreg_status_t {
  DRREG_SUCCESS = 0,
  DRREG_ERROR,
  DRREG_ERROR_INVALID_PARAMETER,
};

struct drreg_options_t {
  std::size_t struct_size;
  uint num_spill_slots;
  bool conservative;
  bool (*error_callback)(drreg_status_t status);
  bool do_not_sum_slots;
};
static_assert(sizeof(drreg_options_t) == 32, "clients pass this size in struct_size");

DR_EXPORT drreg_status_t drreg_init(drreg_options_t* options);
DR_EXPORT drreg_status_t drreg_exit();
