// A QEMU plugin that counts the instructions that a guest program executes: all of them, and those
// in marked sections.
//
//   qemu-aarch64 -plugin file=libcount_instructions.so,out=FILE PROGRAM
//
// A section is what a thread executes between the instructions HINT #120 and HINT #121. The
// architecture leaves these unallocated, so they do nothing. Neither counts as part of the section.
// Each thread has its own sections. At the end the plugin appends to FILE, or prints to the
// standard error stream, one line "section N" for each section in the order in which they ended,
// and one line "total N" for the process.
//
// The counts are exact, and the same in every run of a program that does the same. Each instruction
// has its own callback. A count by blocks would include the instructions after a fault, and the
// interface's inline additions lose counts when two threads collide.
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string_view>
#include <vector>

#include "qemu_plugin_interface.h"

int qemu_plugin_version = 1;

namespace {

constexpr std::uint32_t hint(unsigned number) { return 0xd503201fU | number << 5; }
constexpr std::uint32_t section_begin = hint(120);
constexpr std::uint32_t section_end = hint(121);

// One for each virtual processor. Each guest thread has one. If there are more threads than
// counters, some threads share a counter. The total stays right.
struct alignas(64) counter {
  std::atomic<std::uint64_t> executed;
  std::uint64_t at_section_begin;
};
std::array<counter, 256> counters;

std::mutex sections_lock;
std::vector<std::uint64_t> sections;
std::FILE* out = stderr;

counter& counter_of(unsigned vcpu) { return counters[vcpu % counters.size()]; }

void count(unsigned vcpu, void*) {
  counter_of(vcpu).executed.fetch_add(1, std::memory_order_relaxed);
}

void begin_section(unsigned vcpu, void*) {
  counter_of(vcpu).at_section_begin = counter_of(vcpu).executed;
}

void end_section(unsigned vcpu, void*) {
  const std::lock_guard lock(sections_lock);
  sections.push_back(counter_of(vcpu).executed - counter_of(vcpu).at_section_begin);
}

void on_execution(qemu_plugin_insn* instruction, qemu_plugin_vcpu_udata_cb_t callback) {
  qemu_plugin_register_vcpu_insn_exec_cb(instruction, callback, QEMU_PLUGIN_CB_NO_REGS, nullptr);
}

// A section begins after its marker has been counted, and ends before its marker is counted.
void instrument(qemu_plugin_insn* instruction) {
  std::uint32_t word = 0;
  if (qemu_plugin_insn_size(instruction) == sizeof word) {
    std::memcpy(&word, qemu_plugin_insn_data(instruction), sizeof word);
  }
  if (word == section_end) on_execution(instruction, end_section);
  on_execution(instruction, count);
  if (word == section_begin) on_execution(instruction, begin_section);
}

void instrument_block(qemu_plugin_id_t, qemu_plugin_tb* block) {
  const std::size_t instructions = qemu_plugin_tb_n_insns(block);
  for (std::size_t i = 0; i < instructions; ++i) instrument(qemu_plugin_tb_get_insn(block, i));
}

void report(qemu_plugin_id_t, void*) {
  const std::lock_guard lock(sections_lock);
  std::uint64_t total = 0;
  for (const counter& one : counters) total += one.executed;
  for (const std::uint64_t section : sections) std::fprintf(out, "section %ju\n", section);
  std::fprintf(out, "total %ju\n", total);
  std::fflush(out);
}

bool open_out(const char* path) {
  out = std::fopen(path, "a");
  if (out == nullptr) std::fprintf(stderr, "count_instructions: cannot open \"%s\"\n", path);
  return out != nullptr;
}

}  // namespace

int qemu_plugin_install(qemu_plugin_id_t id, const qemu_info_t*, int count, char** arguments) {
  constexpr std::string_view name = "out=";
  for (int i = 0; i < count; ++i) {
    if (!std::string_view(arguments[i]).starts_with(name)) {
      std::fprintf(stderr, "count_instructions: there is no argument \"%s\"; give out=FILE\n",
                   arguments[i]);
      return 1;
    }
    if (!open_out(arguments[i] + name.size())) return 1;
  }
  qemu_plugin_register_vcpu_tb_trans_cb(id, instrument_block);
  qemu_plugin_register_atexit_cb(id, report, nullptr);
  return 0;
}
