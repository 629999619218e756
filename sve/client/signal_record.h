// The vector state in the program's signal frames, as the kernel of a processor with SVE has it
// there.
#pragma once

namespace sve {

// Gives the host the functions that write and read it. Call it once, when the client starts.
void put_vectors_into_signal_frames();

}  // namespace sve
