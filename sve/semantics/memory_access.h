// How the reference semantics access guest memory, and what happens on a fault.
//
// A guest address is a host pointer, without translation or check. First-fault and non-fault loads
// have to learn of a fault instead of dying of it. They pass the address of a flag, and the read is
// guarded. All other accesses are plain. A fault on those, or on any access of the process outside
// a guarded read, ends the process by the signal's default action after SVESigHandler's message.
#pragma once

#include <csetjmp>
#include <csignal>
#include <cstdint>

#include "sve/semantics/semantics.h"

// The fault slot. It is per thread, because the kernel delivers SIGSEGV and SIGBUS to the thread
// that faulted: a fault of another thread is never mistaken for that of the guarded element. It is
// initial-exec, so that the signal handler reaches it without a call that could allocate.
[[gnu::tls_model("initial-exec")]] extern thread_local constinit volatile std::int32_t
    SVEFaultRegion;  // 1 while a guarded read touches the element
[[gnu::tls_model("initial-exec")]] extern thread_local constinit sigjmp_buf sveFaultJB;

// The library's default context. No emulated instruction uses it: its vector length is 128 bits.
extern CpuContext cpu_ctxt;
extern CpuContext* ctxt;

// Installs SVESigHandler for SIGSEGV and SIGBUS for the life of the process, on the first call
// only. Returns true.
bool SVEInitialize();

// If a SIGSEGV comes from the probe's load, it lets the probe go on. If the thread's region is
// open, it closes the region and jumps to sveFaultJB, whatever the signal and the address.
// Otherwise it prints its message, restores the default actions and returns, so that the
// instruction faults again.
void SVESigHandler(int signal_number, siginfo_t* info, void* context);

// The element at `address`, zero-extended, read in one access of 1, 2, 4 or 8 bytes. If `fault` is
// not null, the read is guarded: if the element's first or last byte cannot be read, *fault becomes
// true and the result is 0. Otherwise *fault stays as it is. `hint` and `ctx` are not used: a fault
// on the first active element is reported like any other.
std::uint64_t ReadMemLib1(std::uint64_t address, int hint, bool* fault, CpuContext* ctx);
std::uint64_t ReadMemLib2(std::uint64_t address, int hint, bool* fault, CpuContext* ctx);
std::uint64_t ReadMemLib4(std::uint64_t address, int hint, bool* fault, CpuContext* ctx);
std::uint64_t ReadMemLib8(std::uint64_t address, int hint, bool* fault, CpuContext* ctx);

// Stores in one access of 1, 2, 4 or 8 bytes. There is no guarded form.
void WriteMemLib1(std::uint8_t value, std::uint64_t address, CpuContext* ctx);
void WriteMemLib2(std::uint16_t value, std::uint64_t address, CpuContext* ctx);
void WriteMemLib4(std::uint32_t value, std::uint64_t address, CpuContext* ctx);
void WriteMemLib8(std::uint64_t value, std::uint64_t address, CpuContext* ctx);

// Whether a one-byte load from `address` raises no SIGSEGV. The value of the byte is ignored. A bus
// error in the load ends the process. SVESigHandler must be installed. The function changes no
// signal action, and any number of threads may call it at once. It is defined for char.
template <class T>
bool addr_is_readable(volatile T* address);
template <>
bool addr_is_readable<char>(volatile char* address);

// Accesses to a memory that does not exist: they report no fault, read 0 and write nothing.
std::uint64_t ReadMem(std::uint64_t address, int size, int hint, bool* fault, CpuContext* ctx);
std::uint64_t ReadMemSim(std::uint64_t address, int size, int hint, bool* fault, bool unread,
                         CpuContext* ctx);
void WriteMem(std::uint64_t value, std::uint64_t address, int size, CpuContext* ctx);
void WriteMemSim(std::uint64_t value, std::uint64_t address, int size, bool unread,
                 CpuContext* ctx);
