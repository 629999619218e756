#include "sve/client/runs.h"

#include <cstring>

#include "sve/client/pending_writes.h"
#include "sve/client/vector_writes.h"
#include "sve/state/vector_length.h"

namespace sve {
namespace {

// With vectors of 128 bits, a V register is all of its Z register.
std::uint32_t registers_written(std::uint32_t word) {
  return vector_bytes == group_bytes ? 0 : v_registers_written(word);
}

// The code goes ahead of the last instruction, which may branch, unless that one writes a V
// register itself and so does not branch.
instr_t* place_of_last_run(instr_t* last) {
  const bool is_of_run = last == nullptr || registers_written(word_of(last)) != 0;
  return is_of_run ? nullptr : last;
}

}  // namespace

std::uint32_t word_of(instr_t* instr) {
  std::uint32_t word = 0;
  std::memcpy(&word, instr_get_raw_bits(instr), sizeof word);
  return word;
}

unsigned rewrite_runs(void* drcontext, instrlist_t* block, const insert_emulation_of_row& insert) {
  unsigned others = 0;
  std::uint32_t run = 0;
  instr_t* last = nullptr;
  instr_t* next = nullptr;
  for (instr_t* instr = instrlist_first_app(block); instr != nullptr; instr = next) {
    next = instr_get_next_app(instr);  // before `instr` goes
    const std::uint32_t word = word_of(instr);
    const instruction_row* const row = find_row(word);
    last = row != nullptr ? nullptr : instr;
    if (row == nullptr) {
      ++others;
      run |= registers_written(word);
      continue;
    }
    insert(instr, word, *row, run);
    run = 0;
    instrlist_remove(block, instr);
    instr_destroy(drcontext, instr);
  }
  insert_pending_writes(drcontext, block, place_of_last_run(last), run);
  return others;
}

std::uint32_t written_before(const std::uint32_t* begin, const std::uint32_t* end) {
  std::uint32_t run = 0;
  for (const std::uint32_t* word = begin; word < end; ++word) {
    run = find_row(*word) != nullptr ? 0 : run | registers_written(*word);
  }
  return run;
}

}  // namespace sve
