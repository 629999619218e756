// Builds the translated block for an application address: reads the instructions up to the first
// that branches, shows them to the client, and turns what the client made of them into cache code.
#pragma once

#include <cstdint>
#include <optional>

#include "host/translation/block_code.h"

namespace host {

struct thread_state;

// Returns nothing if there is no executable memory at `pc`.
std::optional<block_code> build_block(thread_state& thread, std::uint64_t pc);

}  // namespace host
