// The counts of emulated instructions: in total, and by address.
//
// Every emulated instruction updates the table, under one lock. Nothing prints it unless somebody
// asks. Both objects are inline variables. In every source that includes this header, they are
// therefore constructed before that source's own static objects and destroyed after them. The
// load-time initialiser of the decode maps does not have to call anything to set them up.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

// Instructions that were emulated successfully, over all threads.
inline std::atomic<std::uint64_t> sve_instr_count{0};

// Guards `icounts`.
inline std::mutex icounts_mutex;

// The key is an application address. The value is the instruction word first counted there, and how
// many times an instruction was emulated there successfully.
inline std::map<unsigned int*, std::pair<unsigned int, std::atomic<unsigned long>>> icounts;

// Counts one successful emulation of `word` at `pc`. An address keeps the word it was first counted
// with.
void update_sve_stats(unsigned int* pc, unsigned int word);

// Prints "address: word count" to stderr, one line per address, in ascending order. It takes no
// lock: call it only while no other thread emulates.
void dump_sve_stats();
