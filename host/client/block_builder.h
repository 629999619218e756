// From an application address to a translated block: reads the instructions up to the first that
// branches, shows them to the client, and turns what the client left of them into cache code.
#pragma once

#include <cstdint>
#include <optional>

#include "host/translation/block_code.h"

namespace host {

struct thread_state;

// Nothing, if there is no executable memory at `pc`.
std::optional<block_code> build_block(thread_state& thread, std::uint64_t pc);

}  // namespace host
