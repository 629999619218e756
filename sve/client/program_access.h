// An emulated access to the program's memory, whose fault is the program's.
//
// A load writes its destination element by element, and faults in the middle. The program's handler
// must see the registers as they were before the instruction, and may have it run again. So what a
// load may change is kept, and put back after a fault. A store changes memory only, and running it
// again completes it.
//
// Nothing is locked or allocated while the program's memory is touched, because a fault abandons
// the handler of the row wherever it is.
#pragma once

#include <csetjmp>
#include <cstdint>

#include "sve/decode/sve_utils.h"
#include "sve/state/cpu_state.h"

namespace sve {

// What a load may change: at most four vector registers, which follow one another and wrap from Z31
// to Z0, and at most one predicate.
struct destinations {
  unsigned first_vector = 0;
  unsigned vectors = 0;
  int predicate = -1;

  // As one word, to pass it as an immediate of inserted code.
  [[nodiscard]] std::uint64_t packed() const;
  static destinations unpacked(std::uint64_t word);
};

// A thread's access.
struct program_access {
  void* drcontext = nullptr;
  cpu_state* state = nullptr;
  decode_handler handler = nullptr;  // that touches memory
  destinations changed;
  std::jmp_buf* retry = nullptr;       // where to go on after a fault, if it is not the program's
  volatile bool is_under_way = false;  // the signal handler reads it
  vector_register z[4];                // the destinations as they were
  predicate_register p;

  void keep();
  void put_back();

  // Runs the handler. A fault puts the destinations back, and does not return here.
  aarch64_decode_rc run(unsigned word);
};

// The calling thread's record, from the thread's init event to its exit event.
program_access& current_access();
void begin_program_accesses(void* drcontext, cpu_state* state);
void end_program_accesses(void* drcontext);

// Installs the handler of SIGSEGV and SIGBUS. Call it once, when the client starts.
void deliver_faults_to_program();

}  // namespace sve
