// What the user has asked the host for beyond the default. A host other than ours cannot be asked,
// and then the answer is no.
#pragma once

namespace sve {

// The program is to see everything that a processor with SVE shows.
bool is_architectural();

// The user wants to know if a write of a V register may have changed the program's results.
bool warns_of_v_writes();

}  // namespace sve
