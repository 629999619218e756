// What is mapped where: modules for the client, and which memory may be executed.
//
// The kernel knows it best, so /proc/self/maps is the source. It is read when an address is asked
// for that no earlier reading showed as executable, and the readings are dropped when a system
// call of the application changes executable memory.
#pragma once

#include <cstdint>
#include <optional>

#include "host/loading/program.h"

namespace host {

// The modules that the loader mapped; the main module stays what it is from then on.
void set_loaded_modules(const loaded_program& program);

std::optional<module_info> main_module();

// The module that contains an address: one that the loader mapped, an ELF image that the program
// mapped from a file, or the vdso.
std::optional<module_info> module_at(std::uintptr_t address);

bool is_executable(std::uintptr_t address);

// Code at [start, end) is being translated.
void note_translated(std::uintptr_t start, std::uintptr_t end);

enum class mapping_change : std::uint8_t { removed, not_executable, executable };

// A range of whole pages was mapped, unmapped, or given other permissions. If code was translated
// from there, has all threads drop their translations.
void note_changed(std::uintptr_t start, std::uintptr_t end, mapping_change change);

// Code in a range was written anew. Other threads see it after their next ISB at the latest.
void note_rewritten(std::uintptr_t start, std::uintptr_t end);

}  // namespace host
