// The application's system calls. Most go to the kernel as they are; those that concern what the
// host shares with the application (threads, the break, signals, executable memory) are carried
// out here, and those that would take the program out of the translator end it with a message.
#pragma once

#include <cstdint>

namespace host {

struct thread_state;

enum class after_call : std::uint8_t { go_on, end_thread };

// Carries out the call that the thread's registers describe, and leaves its result in X0.
after_call handle_system_call(thread_state& thread);

// Passes a call to the kernel: its result, or a negative error number.
std::int64_t kernel_call(std::int64_t number, std::uint64_t a0 = 0, std::uint64_t a1 = 0,
                         std::uint64_t a2 = 0, std::uint64_t a3 = 0, std::uint64_t a4 = 0,
                         std::uint64_t a5 = 0);

}  // namespace host
