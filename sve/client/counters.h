// The counts of emulated instructions: in total, and by address.
//
// The table is gathered on every emulated instruction, under one lock, and stays unprinted unless
// somebody asks for it. Both objects are inline variables, so that in every source that includes
// this header they are constructed before, and destroyed after, that source's own static objects:
// the load-time initialiser of the decode maps needs no call to bring them up first.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

// Instructions emulated with success, in all threads together.
inline std::atomic<std::uint64_t> sve_instr_count{0};

// Guards `icounts`.
inline std::mutex icounts_mutex;

// By application address: the instruction word that was first met there, and how many times an
// instruction was emulated there with success.
inline std::map<unsigned int*, std::pair<unsigned int, std::atomic<unsigned long>>> icounts;

// Counts one success of `word` at `pc`. An address keeps the word that it was first counted with.
void update_sve_stats(unsigned int* pc, unsigned int word);

// Prints "address: word count" to stderr, a line for each address, in ascending order. Takes no
// lock: to be called while no other thread emulates.
void dump_sve_stats();
