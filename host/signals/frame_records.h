// The records behind the general registers in a signal frame: the V registers, the fault's syndrome
// and, if the client has set its vector state, the kernel's sve_context.
//
// Their order and their places are the kernel's: each follows the one before it in the 4096 bytes
// that the frame reserves, and the rest lies behind an extra_context.
#pragma once

#include <asm/sigcontext.h>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <ucontext.h>
#include <vector>

namespace host {

struct pending_signal;
struct thread_state;

// The fixed part of a signal frame, at the stack pointer of a handler.
struct signal_frame {
  siginfo_t info;
  ucontext_t context;
};
static_assert(sizeof(siginfo_t) == 128 && offsetof(ucontext_t, uc_sigmask) == 40 &&
                  offsetof(ucontext_t, uc_mcontext) == 176,
              "the C library's types match the kernel's, except for the space after the mask");

// Displacements from the frame's start, 0 for a record that is not there.
struct frame_layout {
  std::size_t fpsimd = 0;
  std::size_t esr = 0;
  std::size_t sve = 0;
  std::size_t extra = 0;
  std::size_t end = 0;   // of the record that ends the list
  std::size_t size = 0;  // of the frame, a multiple of 16
};

// `has_syndrome`: the frame tells of a fault. `vector_bytes`: the length of the vectors in
// sve_context, 0 for its header alone, nothing for a frame without sve_context.
frame_layout lay_out_frame(bool has_syndrome, std::optional<std::size_t> vector_bytes);

// The layout of the frame that a signal of the thread needs. If the frame is to have the vectors,
// sets the syndrome to what the kernel would tell.
frame_layout frame_layout_for(thread_state& thread, pending_signal& arrived);

// The smallest stack on which a handler can run: AT_MINSIGSTKSZ of a kernel with SVE and vectors of
// this length.
std::size_t smallest_signal_stack(std::size_t vector_bytes);

// Writes the records to `frame`, which has the layout's size and will lie at `address`.
void write_frame_records(thread_state& thread, const pending_signal& arrived,
                         const frame_layout& layout, std::uint64_t address,
                         std::span<unsigned char> frame);

// Restores the vectors from the frame at `address`, whose fixed part is `fixed`. Returns false for
// a frame that the kernel would refuse.
bool read_frame_records(thread_state& thread, std::uint64_t address, const signal_frame& fixed);

}  // namespace host
