// A block of application code in the test's own memory, and the client's rewriting of it.
#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "host/translation/assembler.h"
#include "tests/sve/client/scripted_host.h"

class application_block {
 public:
  explicit application_block(std::vector<std::uint32_t> code) : code_(std::move(code)) {
    for (std::uint32_t& w : code_) {
      auto* pc = reinterpret_cast<byte*>(&w);
      instrlist_append(list_, instr_create_app(nullptr, pc, pc));
    }
  }
  ~application_block() { instrlist_clear_and_destroy(nullptr, list_); }
  application_block(const application_block&) = delete;
  application_block& operator=(const application_block&) = delete;

  // Calls the block event as if the block were at `address`, on a thread with a given state.
  void rewrite(std::uintptr_t address) {
    scripted_thread thread;
    thread.field = pointer_to(0x0000aaaa'1234'5670);
    void* tag = pointer_to(address);
    const int records = host_script.module_records;
    EXPECT_EQ(host_script.block_event(&thread, tag, list_, false, false), DR_EMIT_DEFAULT);
    EXPECT_EQ(host_script.module_records, records) << "looked-up modules are not freed";
  }

  host::words encoded() const {
    host::words code;
    for (instr_t* i = first(); i != nullptr; i = instr_get_next(i)) code.push_back(0);
    instrlist_encode(nullptr, list_, reinterpret_cast<byte*>(code.data()), false);
    return code;
  }

  instr_t* first() const { return instrlist_first(list_); }
  app_pc pc() { return reinterpret_cast<app_pc>(code_.data()); }

 private:
  std::vector<std::uint32_t> code_;
  instrlist_t* list_ = instrlist_create(nullptr);
};
