// Gathers, scatters, first-fault loads and replicating loads of quadwords.
//
// In a name, the tag is the register element e of n, and the digit m is its size in memory in
// bytes. Values are extended as the tag says. Inactive elements of a load are 0, and their memory
// is not accessed. Elements are accessed in ascending order, all through memory_access.h. A fault
// ends the process, except in first-fault loads: there the faulting element and all later ones are
// 0 and their FFR lanes are cleared, active or not. Nothing more is read. This also holds for the
// first active element, although the architecture takes its fault.
//
// The other contiguous loads and stores have only fast paths.
#pragma once

#include <cstdint>

#include "sve/semantics/semantics.h"

namespace sve::semantics::memory {

using load_from_bases = VecV(PredV g, VecV v, unsigned i, CpuContext* ctx);
using load_from_offsets = VecV(PredV g, VecV v, std::uint64_t s, CpuContext* ctx);
using load_from_scaled_offsets = VecV(PredV g, std::uint64_t s, VecV v, CpuContext* ctx);
using store_to_bases = void(PredV g, VecV v, unsigned i, VecV data, CpuContext* ctx);
using store_to_offsets = void(PredV g, VecV v, std::uint64_t s, VecV data, CpuContext* ctx);
using store_to_scaled_offsets = void(PredV g, std::uint64_t s, VecV v, VecV data, CpuContext* ctx);
using load_indexed = VecV(PredV g, std::uint64_t s, std::uint64_t i, CpuContext* ctx);
using load_immediate = VecV(PredV g, std::uint64_t s, int i, CpuContext* ctx);

}  // namespace sve::semantics::memory

// Gathers: v[e] + i x m.
sve::semantics::memory::load_from_bases VecU32Load1VIZ, VecS32Load1VIZ, VecU64Load1VIZ,
    VecS64Load1VIZ, VecU32Load2VIZ, VecS32Load2VIZ, VecU64Load2VIZ, VecS64Load2VIZ, VecU32Load4VIZ,
    VecU64Load4VIZ, VecS64Load4VIZ, VecU64Load8VIZ;

// Gathers: s + v[e]. X forms sign-extend and Y forms zero-extend the low 32 bits of v[e].
sve::semantics::memory::load_from_offsets VecU32Load1VSZ, VecS32Load1VSZ, VecU64Load1VSZ,
    VecS64Load1VSZ, VecU32Load2VSZ, VecS32Load2VSZ, VecU64Load2VSZ, VecS64Load2VSZ, VecU32Load4VSZ,
    VecU64Load4VSZ, VecS64Load4VSZ, VecU64Load8VSZ, VecU32Load1XVSZ, VecS32Load1XVSZ,
    VecU64Load1XVSZ, VecS64Load1XVSZ, VecU32Load2XVSZ, VecS32Load2XVSZ, VecU64Load2XVSZ,
    VecS64Load2XVSZ, VecU32Load4XVSZ, VecU64Load4XVSZ, VecS64Load4XVSZ, VecU64Load8XVSZ,
    VecU64Load1YVSZ, VecS64Load1YVSZ, VecU64Load2YVSZ, VecS64Load2YVSZ, VecU64Load4YVSZ,
    VecS64Load4YVSZ, VecU64Load8YVSZ;

// Gathers: s + v[e] x m, likewise.
sve::semantics::memory::load_from_scaled_offsets VecU32Load2SVZ, VecS32Load2SVZ, VecU64Load2SVZ,
    VecS64Load2SVZ, VecU32Load4SVZ, VecU64Load4SVZ, VecS64Load4SVZ, VecU64Load8SVZ, VecU32Load2XSVZ,
    VecS32Load2XSVZ, VecU64Load2XSVZ, VecS64Load2XSVZ, VecU32Load4XSVZ, VecU64Load4XSVZ,
    VecS64Load4XSVZ, VecU64Load8XSVZ, VecU64Load2YSVZ, VecS64Load2YSVZ, VecU64Load4YSVZ,
    VecS64Load4YSVZ, VecU64Load8YSVZ;

// First-fault gathers: v[e] + i x m.
sve::semantics::memory::load_from_bases VecU32LoadFF1VIZ, VecS32LoadFF1VIZ, VecU64LoadFF1VIZ,
    VecS64LoadFF1VIZ, VecU32LoadFF2VIZ, VecS32LoadFF2VIZ, VecU64LoadFF2VIZ, VecS64LoadFF2VIZ,
    VecU32LoadFF4VIZ, VecU64LoadFF4VIZ, VecS64LoadFF4VIZ, VecU64LoadFF8VIZ;

// First-fault gathers: s + v[e]. X forms sign-extend and Y forms zero-extend the low 32 bits of
// v[e].
sve::semantics::memory::load_from_offsets VecU32LoadFF1VSZ, VecS32LoadFF1VSZ, VecU64LoadFF1VSZ,
    VecS64LoadFF1VSZ, VecU32LoadFF2VSZ, VecS32LoadFF2VSZ, VecU64LoadFF2VSZ, VecS64LoadFF2VSZ,
    VecU32LoadFF4VSZ, VecU64LoadFF4VSZ, VecS64LoadFF4VSZ, VecU64LoadFF8VSZ, VecU32LoadFF1XVSZ,
    VecS32LoadFF1XVSZ, VecU64LoadFF1XVSZ, VecS64LoadFF1XVSZ, VecU32LoadFF2XVSZ, VecS32LoadFF2XVSZ,
    VecU64LoadFF2XVSZ, VecS64LoadFF2XVSZ, VecU32LoadFF4XVSZ, VecU64LoadFF4XVSZ, VecS64LoadFF4XVSZ,
    VecU64LoadFF8XVSZ, VecU64LoadFF1YVSZ, VecS64LoadFF1YVSZ, VecU64LoadFF2YVSZ, VecS64LoadFF2YVSZ,
    VecU64LoadFF4YVSZ, VecS64LoadFF4YVSZ, VecU64LoadFF8YVSZ;

// First-fault gathers: s + v[e] x m, likewise.
sve::semantics::memory::load_from_scaled_offsets VecU32LoadFF2SVZ, VecS32LoadFF2SVZ,
    VecU64LoadFF2SVZ, VecS64LoadFF2SVZ, VecU32LoadFF4SVZ, VecU64LoadFF4SVZ, VecS64LoadFF4SVZ,
    VecU64LoadFF8SVZ, VecU32LoadFF2XSVZ, VecS32LoadFF2XSVZ, VecU64LoadFF2XSVZ, VecS64LoadFF2XSVZ,
    VecU32LoadFF4XSVZ, VecU64LoadFF4XSVZ, VecS64LoadFF4XSVZ, VecU64LoadFF8XSVZ, VecU64LoadFF2YSVZ,
    VecS64LoadFF2YSVZ, VecU64LoadFF4YSVZ, VecS64LoadFF4YSVZ, VecU64LoadFF8YSVZ;

// Scatters: v[e] + i x m.
sve::semantics::memory::store_to_bases VecU32Store1VIZ, VecU64Store1VIZ, VecU32Store2VIZ,
    VecU64Store2VIZ, VecU32Store4VIZ, VecU64Store4VIZ, VecU64Store8VIZ;

// Scatters: s + v[e]. X forms sign-extend and Y forms zero-extend the low 32 bits of v[e].
sve::semantics::memory::store_to_offsets VecU32Store1VSZ, VecU64Store1VSZ, VecU32Store2VSZ,
    VecU64Store2VSZ, VecU32Store4VSZ, VecU64Store4VSZ, VecU64Store8VSZ, VecU32Store1XVSZ,
    VecU64Store1XVSZ, VecU32Store2XVSZ, VecU64Store2XVSZ, VecU32Store4XVSZ, VecU64Store4XVSZ,
    VecU64Store8XVSZ, VecU64Store1YVSZ, VecU64Store2YVSZ, VecU64Store4YVSZ, VecU64Store8YVSZ;

// Scatters: s + v[e] x m, likewise.
sve::semantics::memory::store_to_scaled_offsets VecU32Store2SVZ, VecU64Store2SVZ, VecU32Store4SVZ,
    VecU64Store4SVZ, VecU64Store8SVZ, VecU32Store2XSVZ, VecU64Store2XSVZ, VecU32Store4XSVZ,
    VecU64Store4XSVZ, VecU64Store8XSVZ, VecU64Store2YSVZ, VecU64Store4YSVZ, VecU64Store8YSVZ;

// Contiguous first-fault loads: s + (i + e) x m.
sve::semantics::memory::load_indexed VecU8CLoadFF1LSSZ, VecU16CLoadFF1LSSZ, VecS16CLoadFF1LSSZ,
    VecU32CLoadFF1LSSZ, VecS32CLoadFF1LSSZ, VecU64CLoadFF1LSSZ, VecS64CLoadFF1LSSZ,
    VecU16CLoadFF2LSSZ, VecU32CLoadFF2LSSZ, VecS32CLoadFF2LSSZ, VecU64CLoadFF2LSSZ,
    VecS64CLoadFF2LSSZ, VecU32CLoadFF4LSSZ, VecU64CLoadFF4LSSZ, VecS64CLoadFF4LSSZ,
    VecU64CLoadFF8LSSZ;

// LD1RQ: the 16 bytes at s + i x 16, or at s + i x m, in every quadword. Elements of the group that
// are inactive in the first 16 lanes of g are 0 and not read.
sve::semantics::memory::load_immediate VecU8LoadDup1QSIZ, VecU16LoadDup2QSIZ, VecU32LoadDup4QSIZ,
    VecU64LoadDup8QSIZ;
sve::semantics::memory::load_indexed VecU8LoadDup1QSSZ, VecU16LoadDup2QSSZ, VecU32LoadDup4QSSZ,
    VecU64LoadDup8QSSZ;
