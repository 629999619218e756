// Instruction lists, behind the opaque types of the client interface.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "host/include/dr_api.h"
#include "host/translation/assembler.h"

struct _instr_t {
  _instr_t* prev = nullptr;
  _instr_t* next = nullptr;
  byte* raw_bits = nullptr;  // of an application instruction
  app_pc pc = nullptr;       // its address; for a created one, as set by instr_set_translation
  int opcode = OP_UNDECODED;
  std::uint32_t word = 0;
  bool meta = false;

  // Each block allocates and frees dozens of these, so a thread keeps the freed ones for its next
  // block.
  static void* operator new(std::size_t size);
  static void operator delete(void* instr);
};

struct _instr_list_t {
  instr_t* first = nullptr;
  instr_t* last = nullptr;

  _instr_list_t() = default;
  ~_instr_list_t();
  _instr_list_t(const _instr_list_t&) = delete;
  _instr_list_t& operator=(const _instr_list_t&) = delete;
};

namespace host {

// Adds one word before `where`, or at the end if that is null.
instr_t* insert_word(instrlist_t& list, instr_t* where, int opcode, std::uint32_t word, bool meta);
void insert_words(instrlist_t& list, instr_t* where, int opcode, const words& code, bool meta);

}  // namespace host
