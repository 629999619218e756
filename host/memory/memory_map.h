// What is mapped where: the modules, for the client, and which memory may be executed.
//
// The application's own calls that map or protect memory are recorded. For everything else
// /proc/self/maps is the source. It is read when an address is neither recorded nor known to be
// executable from an earlier reading, and when a module is asked for after executable memory or a
// module has changed.
#pragma once

#include <cstdint>
#include <optional>

#include "host/loading/program.h"

namespace host {

// Sets the modules that the loader mapped. The main module stays the same from then on.
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
// from there, all threads drop those translations.
void note_changed(std::uintptr_t start, std::uintptr_t end, mapping_change change);

// Code in a range was rewritten. Other threads see the new code after their next ISB at the latest.
void note_rewritten(std::uintptr_t start, std::uintptr_t end);

}  // namespace host
