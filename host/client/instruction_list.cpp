#include "host/client/instruction_list.h"

#include <cstring>

_instr_list_t::~_instr_list_t() {
  while (first != nullptr) {
    instr_t* const next = first->next;
    delete first;
    first = next;
  }
}

namespace {

constinit thread_local void* free_instructions = nullptr;  // each holds the next one's address

}  // namespace

void* _instr_t::operator new(std::size_t size) {
  void* const first = free_instructions;
  if (first == nullptr) return ::operator new(size);
  std::memcpy(&free_instructions, first, sizeof free_instructions);
  return first;
}

void _instr_t::operator delete(void* instr) {
  std::memcpy(instr, &free_instructions, sizeof free_instructions);
  free_instructions = instr;
}

namespace host {

instr_t* insert_word(instrlist_t& list, instr_t* where, int opcode, std::uint32_t word, bool meta) {
  auto* const instr = new instr_t{.opcode = opcode, .word = word, .meta = meta};
  instrlist_preinsert(&list, where, instr);
  instr->meta = meta;
  return instr;
}

void insert_words(instrlist_t& list, instr_t* where, int opcode, const words& code, bool meta) {
  for (const std::uint32_t word : code) insert_word(list, where, opcode, word, meta);
}

}  // namespace host

instrlist_t* instrlist_create(void* /*drcontext*/) { return new instrlist_t; }
void instrlist_clear_and_destroy(void* /*drcontext*/, instrlist_t* ilist) { delete ilist; }

instr_t* instrlist_first(instrlist_t* ilist) { return ilist->first; }
instr_t* instrlist_last(instrlist_t* ilist) { return ilist->last; }

instr_t* instrlist_first_app(instrlist_t* ilist) {
  instr_t* const first = ilist->first;
  return first == nullptr || instr_is_app(first) ? first : instr_get_next_app(first);
}

instr_t* instr_get_next(instr_t* instr) { return instr->next; }
instr_t* instr_get_prev(instr_t* instr) { return instr->prev; }

instr_t* instr_get_next_app(instr_t* instr) {
  do {
    instr = instr->next;
  } while (instr != nullptr && !instr_is_app(instr));
  return instr;
}

void instrlist_preinsert(instrlist_t* ilist, instr_t* where, instr_t* instr) {
  instr->next = where;
  instr->prev = where != nullptr ? where->prev : ilist->last;
  (instr->prev != nullptr ? instr->prev->next : ilist->first) = instr;
  (where != nullptr ? where->prev : ilist->last) = instr;
}

void instrlist_meta_preinsert(instrlist_t* ilist, instr_t* where, instr_t* instr) {
  instr->meta = true;
  instrlist_preinsert(ilist, where, instr);
}

void instrlist_append(instrlist_t* ilist, instr_t* instr) {
  instrlist_preinsert(ilist, nullptr, instr);
}

void instrlist_remove(instrlist_t* ilist, instr_t* instr) {
  (instr->prev != nullptr ? instr->prev->next : ilist->first) = instr->next;
  (instr->next != nullptr ? instr->next->prev : ilist->last) = instr->prev;
  instr->prev = nullptr;
  instr->next = nullptr;
}

byte* instrlist_encode(void* /*drcontext*/, instrlist_t* ilist, byte* pc,
                       bool /*has_instr_jmp_targets*/) {
  for (const instr_t* instr = ilist->first; instr != nullptr; instr = instr->next) {
    std::memcpy(pc, &instr->word, sizeof instr->word);
    pc += sizeof instr->word;
  }
  return pc;
}

instr_t* instr_create_app(void* /*drcontext*/, byte* bits, app_pc pc) {
  auto* const instr = new instr_t{.raw_bits = bits, .pc = pc};
  std::memcpy(&instr->word, bits, sizeof instr->word);
  return instr;
}

void instr_destroy(void* /*drcontext*/, instr_t* instr) { delete instr; }

instr_t* instr_set_translation(instr_t* instr, app_pc pc) {
  instr->pc = pc;
  return instr;
}

app_pc instr_get_app_pc(instr_t* instr) { return instr->pc; }
byte* instr_get_raw_bits(instr_t* instr) { return instr->raw_bits; }
int instr_get_opcode(instr_t* instr) { return instr->opcode; }
instr_t* instr_set_meta(instr_t* instr) {
  instr->meta = true;
  return instr;
}
bool instr_is_app(instr_t* instr) { return !instr->meta; }
