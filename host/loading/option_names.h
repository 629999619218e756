// Options by which the launcher starts itself again where the program calls execve: its command
// line reads them, and execute_program writes them.
#pragma once

namespace host::option_name {

inline constexpr const char* client = "-c";
inline constexpr const char* advertise_sve = "--advertise-sve";
inline constexpr const char* architectural = "--architectural";
inline constexpr const char* warn_v_writes = "--warn-v-writes";
inline constexpr const char* inherits_vector_length = "--inherits-vector-length";
inline constexpr const char* executable = "--executable";
inline constexpr const char* executable_name = "--executable-name";
inline constexpr const char* executable_descriptor = "--executable-descriptor";

}  // namespace host::option_name
