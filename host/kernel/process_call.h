// The routine of process_call.S.
#pragma once

#include <cstdint>

// clone with CLONE_VFORK: a child that shares this stack calls run(argument), which must not
// return. Returns in the parent alone, when the child has ended or executed a program: the child's
// number, or a negative error number.
extern "C" std::int64_t start_suspended(std::uint64_t flags, std::uint64_t parent_tid,
                                        std::uint64_t child_tid, void (*run)(void*),
                                        void* argument);
