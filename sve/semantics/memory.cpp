// A form gives the address of element e. There are four loops: load, store, first-fault load, and
// load of a 16-byte group.
#include "sve/semantics/memory.h"

#include "sve/semantics/elements.h"
#include "sve/semantics/memory_access.h"

using namespace sve::semantics;

namespace {

using V = VecV;
using P = PredV;
using Ctx = CpuContext*;

template <class M>
M read(U64 address, int hint, bool* fault, Ctx ctx) {
  if constexpr (sizeof(M) == 1) return static_cast<M>(ReadMemLib1(address, hint, fault, ctx));
  if constexpr (sizeof(M) == 2) return static_cast<M>(ReadMemLib2(address, hint, fault, ctx));
  if constexpr (sizeof(M) == 4) return static_cast<M>(ReadMemLib4(address, hint, fault, ctx));
  if constexpr (sizeof(M) == 8) return static_cast<M>(ReadMemLib8(address, hint, fault, ctx));
}

void write(U8 value, U64 address, Ctx ctx) { WriteMemLib1(value, address, ctx); }
void write(U16 value, U64 address, Ctx ctx) { WriteMemLib2(value, address, ctx); }
void write(U32 value, U64 address, Ctx ctx) { WriteMemLib4(value, address, ctx); }
void write(U64 value, U64 address, Ctx ctx) { WriteMemLib8(value, address, ctx); }

// The part of an offset that counts. An element narrower than 64 bits is unsigned.
constexpr auto whole = [](U64 offset) { return offset; };
constexpr auto sxtw = [](U64 offset) { return static_cast<U64>(static_cast<S32>(offset)); };
constexpr auto uxtw = [](U64 offset) { return U64{static_cast<U32>(offset)}; };

template <class T>
U64 offset(const V& v, unsigned e) {
  return v.get<std::make_unsigned_t<T>>(e);
}

// The address of element e, from the operands of the form: VIZ, VSZ, SVZ and LSSZ.
template <class T, class M>
auto address(const V& v, unsigned i) {
  return [&v, i](unsigned e) { return offset<T>(v, e) + U64{i} * sizeof(M); };
}
template <class T, class M, class Extend = decltype(whole)>
auto address(const V& v, U64 s, Extend extend = {}) {
  return [&v, s, extend](unsigned e) { return s + extend(offset<T>(v, e)); };
}
template <class T, class M, class Extend = decltype(whole)>
auto address(U64 s, const V& v, Extend extend = {}) {
  return [&v, s, extend](unsigned e) { return s + extend(offset<T>(v, e)) * sizeof(M); };
}
template <class T, class M>
auto address(U64 s, U64 i) {
  return [s, i](unsigned e) { return s + (i + e) * sizeof(M); };
}

template <class T, class M, class... Form>
[[gnu::noinline]] VecV load(const P& g, Ctx ctx, const Form&... form) {
  const auto at = address<T, M>(form...);
  return zeroing<T>(g, ctx, [&](unsigned e) { return read<M>(at(e), 0, nullptr, ctx); });
}

template <class T, class M, class... Form>
[[gnu::noinline]] void store(const P& g, const V& data, Ctx ctx, const Form&... form) {
  const auto at = address<T, M>(form...);
  const unsigned n = ctx->elements<T>();
  for (unsigned e = 0; e < n; ++e) {
    if (g.active<T>(e)) write(static_cast<M>(data.get<T>(e)), at(e), ctx);
  }
}

template <class T>
void clear_ffr(Ctx ctx, unsigned e) {
  ctx->ffr.set_active<T>(e, false);
}

template <class T, class M, class... Form>
[[gnu::noinline]] VecV first_fault(const P& g, Ctx ctx, const Form&... form) {
  const auto at = address<T, M>(form...);
  bool fault = false;
  int later = 0;
  return unpredicated<T>(ctx, [&](unsigned e) {
    T value = 0;
    if (g.active<T>(e) && !fault) {
      value = T{read<M>(at(e), later, &fault, ctx)};
      later = 1;
    }
    if (fault) clear_ffr<T>(ctx, e);
    return value;
  });
}

template <class T>
VecV replicate_quadword(const P& g, U64 base, Ctx ctx) {
  constexpr unsigned group = 16 / sizeof(T);
  T values[group];
  for (unsigned k = 0; k < group; ++k) {
    values[k] = g.active<T>(k) ? read<T>(base + k * sizeof(T), 0, nullptr, ctx) : T{0};
  }
  return unpredicated<T>(ctx, [&](unsigned e) { return values[e % group]; });
}

}  // namespace

VecV VecU32Load1VIZ(P g, V v, unsigned i, Ctx c) { return load<U32, U8>(g, c, v, i); }
VecV VecS32Load1VIZ(P g, V v, unsigned i, Ctx c) { return load<S32, S8>(g, c, v, i); }
VecV VecU64Load1VIZ(P g, V v, unsigned i, Ctx c) { return load<U64, U8>(g, c, v, i); }
VecV VecS64Load1VIZ(P g, V v, unsigned i, Ctx c) { return load<S64, S8>(g, c, v, i); }
VecV VecU32Load2VIZ(P g, V v, unsigned i, Ctx c) { return load<U32, U16>(g, c, v, i); }
VecV VecS32Load2VIZ(P g, V v, unsigned i, Ctx c) { return load<S32, S16>(g, c, v, i); }
VecV VecU64Load2VIZ(P g, V v, unsigned i, Ctx c) { return load<U64, U16>(g, c, v, i); }
VecV VecS64Load2VIZ(P g, V v, unsigned i, Ctx c) { return load<S64, S16>(g, c, v, i); }
VecV VecU32Load4VIZ(P g, V v, unsigned i, Ctx c) { return load<U32, U32>(g, c, v, i); }
VecV VecU64Load4VIZ(P g, V v, unsigned i, Ctx c) { return load<U64, U32>(g, c, v, i); }
VecV VecS64Load4VIZ(P g, V v, unsigned i, Ctx c) { return load<S64, S32>(g, c, v, i); }
VecV VecU64Load8VIZ(P g, V v, unsigned i, Ctx c) { return load<U64, U64>(g, c, v, i); }

VecV VecU32Load1VSZ(P g, V v, U64 s, Ctx c) { return load<U32, U8>(g, c, v, s); }
VecV VecS32Load1VSZ(P g, V v, U64 s, Ctx c) { return load<S32, S8>(g, c, v, s); }
VecV VecU64Load1VSZ(P g, V v, U64 s, Ctx c) { return load<U64, U8>(g, c, v, s); }
VecV VecS64Load1VSZ(P g, V v, U64 s, Ctx c) { return load<S64, S8>(g, c, v, s); }
VecV VecU32Load2VSZ(P g, V v, U64 s, Ctx c) { return load<U32, U16>(g, c, v, s); }
VecV VecS32Load2VSZ(P g, V v, U64 s, Ctx c) { return load<S32, S16>(g, c, v, s); }
VecV VecU64Load2VSZ(P g, V v, U64 s, Ctx c) { return load<U64, U16>(g, c, v, s); }
VecV VecS64Load2VSZ(P g, V v, U64 s, Ctx c) { return load<S64, S16>(g, c, v, s); }
VecV VecU32Load4VSZ(P g, V v, U64 s, Ctx c) { return load<U32, U32>(g, c, v, s); }
VecV VecU64Load4VSZ(P g, V v, U64 s, Ctx c) { return load<U64, U32>(g, c, v, s); }
VecV VecS64Load4VSZ(P g, V v, U64 s, Ctx c) { return load<S64, S32>(g, c, v, s); }
VecV VecU64Load8VSZ(P g, V v, U64 s, Ctx c) { return load<U64, U64>(g, c, v, s); }

VecV VecU32Load1XVSZ(P g, V v, U64 s, Ctx c) { return load<U32, U8>(g, c, v, s, sxtw); }
VecV VecS32Load1XVSZ(P g, V v, U64 s, Ctx c) { return load<S32, S8>(g, c, v, s, sxtw); }
VecV VecU64Load1XVSZ(P g, V v, U64 s, Ctx c) { return load<U64, U8>(g, c, v, s, sxtw); }
VecV VecS64Load1XVSZ(P g, V v, U64 s, Ctx c) { return load<S64, S8>(g, c, v, s, sxtw); }
VecV VecU32Load2XVSZ(P g, V v, U64 s, Ctx c) { return load<U32, U16>(g, c, v, s, sxtw); }
VecV VecS32Load2XVSZ(P g, V v, U64 s, Ctx c) { return load<S32, S16>(g, c, v, s, sxtw); }
VecV VecU64Load2XVSZ(P g, V v, U64 s, Ctx c) { return load<U64, U16>(g, c, v, s, sxtw); }
VecV VecS64Load2XVSZ(P g, V v, U64 s, Ctx c) { return load<S64, S16>(g, c, v, s, sxtw); }
VecV VecU32Load4XVSZ(P g, V v, U64 s, Ctx c) { return load<U32, U32>(g, c, v, s, sxtw); }
VecV VecU64Load4XVSZ(P g, V v, U64 s, Ctx c) { return load<U64, U32>(g, c, v, s, sxtw); }
VecV VecS64Load4XVSZ(P g, V v, U64 s, Ctx c) { return load<S64, S32>(g, c, v, s, sxtw); }
VecV VecU64Load8XVSZ(P g, V v, U64 s, Ctx c) { return load<U64, U64>(g, c, v, s, sxtw); }

VecV VecU64Load1YVSZ(P g, V v, U64 s, Ctx c) { return load<U64, U8>(g, c, v, s, uxtw); }
VecV VecS64Load1YVSZ(P g, V v, U64 s, Ctx c) { return load<S64, S8>(g, c, v, s, uxtw); }
VecV VecU64Load2YVSZ(P g, V v, U64 s, Ctx c) { return load<U64, U16>(g, c, v, s, uxtw); }
VecV VecS64Load2YVSZ(P g, V v, U64 s, Ctx c) { return load<S64, S16>(g, c, v, s, uxtw); }
VecV VecU64Load4YVSZ(P g, V v, U64 s, Ctx c) { return load<U64, U32>(g, c, v, s, uxtw); }
VecV VecS64Load4YVSZ(P g, V v, U64 s, Ctx c) { return load<S64, S32>(g, c, v, s, uxtw); }
VecV VecU64Load8YVSZ(P g, V v, U64 s, Ctx c) { return load<U64, U64>(g, c, v, s, uxtw); }

VecV VecU32Load2SVZ(P g, U64 s, V v, Ctx c) { return load<U32, U16>(g, c, s, v); }
VecV VecS32Load2SVZ(P g, U64 s, V v, Ctx c) { return load<S32, S16>(g, c, s, v); }
VecV VecU64Load2SVZ(P g, U64 s, V v, Ctx c) { return load<U64, U16>(g, c, s, v); }
VecV VecS64Load2SVZ(P g, U64 s, V v, Ctx c) { return load<S64, S16>(g, c, s, v); }
VecV VecU32Load4SVZ(P g, U64 s, V v, Ctx c) { return load<U32, U32>(g, c, s, v); }
VecV VecU64Load4SVZ(P g, U64 s, V v, Ctx c) { return load<U64, U32>(g, c, s, v); }
VecV VecS64Load4SVZ(P g, U64 s, V v, Ctx c) { return load<S64, S32>(g, c, s, v); }
VecV VecU64Load8SVZ(P g, U64 s, V v, Ctx c) { return load<U64, U64>(g, c, s, v); }

VecV VecU32Load2XSVZ(P g, U64 s, V v, Ctx c) { return load<U32, U16>(g, c, s, v, sxtw); }
VecV VecS32Load2XSVZ(P g, U64 s, V v, Ctx c) { return load<S32, S16>(g, c, s, v, sxtw); }
VecV VecU64Load2XSVZ(P g, U64 s, V v, Ctx c) { return load<U64, U16>(g, c, s, v, sxtw); }
VecV VecS64Load2XSVZ(P g, U64 s, V v, Ctx c) { return load<S64, S16>(g, c, s, v, sxtw); }
VecV VecU32Load4XSVZ(P g, U64 s, V v, Ctx c) { return load<U32, U32>(g, c, s, v, sxtw); }
VecV VecU64Load4XSVZ(P g, U64 s, V v, Ctx c) { return load<U64, U32>(g, c, s, v, sxtw); }
VecV VecS64Load4XSVZ(P g, U64 s, V v, Ctx c) { return load<S64, S32>(g, c, s, v, sxtw); }
VecV VecU64Load8XSVZ(P g, U64 s, V v, Ctx c) { return load<U64, U64>(g, c, s, v, sxtw); }

VecV VecU64Load2YSVZ(P g, U64 s, V v, Ctx c) { return load<U64, U16>(g, c, s, v, uxtw); }
VecV VecS64Load2YSVZ(P g, U64 s, V v, Ctx c) { return load<S64, S16>(g, c, s, v, uxtw); }
VecV VecU64Load4YSVZ(P g, U64 s, V v, Ctx c) { return load<U64, U32>(g, c, s, v, uxtw); }
VecV VecS64Load4YSVZ(P g, U64 s, V v, Ctx c) { return load<S64, S32>(g, c, s, v, uxtw); }
VecV VecU64Load8YSVZ(P g, U64 s, V v, Ctx c) { return load<U64, U64>(g, c, s, v, uxtw); }

VecV VecU32LoadFF1VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<U32, U8>(g, c, v, i); }
VecV VecS32LoadFF1VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<S32, S8>(g, c, v, i); }
VecV VecU64LoadFF1VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<U64, U8>(g, c, v, i); }
VecV VecS64LoadFF1VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<S64, S8>(g, c, v, i); }
VecV VecU32LoadFF2VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<U32, U16>(g, c, v, i); }
VecV VecS32LoadFF2VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<S32, S16>(g, c, v, i); }
VecV VecU64LoadFF2VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<U64, U16>(g, c, v, i); }
VecV VecS64LoadFF2VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<S64, S16>(g, c, v, i); }
VecV VecU32LoadFF4VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<U32, U32>(g, c, v, i); }
VecV VecU64LoadFF4VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<U64, U32>(g, c, v, i); }
VecV VecS64LoadFF4VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<S64, S32>(g, c, v, i); }
VecV VecU64LoadFF8VIZ(P g, V v, unsigned i, Ctx c) { return first_fault<U64, U64>(g, c, v, i); }

VecV VecU32LoadFF1VSZ(P g, V v, U64 s, Ctx c) { return first_fault<U32, U8>(g, c, v, s); }
VecV VecS32LoadFF1VSZ(P g, V v, U64 s, Ctx c) { return first_fault<S32, S8>(g, c, v, s); }
VecV VecU64LoadFF1VSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U8>(g, c, v, s); }
VecV VecS64LoadFF1VSZ(P g, V v, U64 s, Ctx c) { return first_fault<S64, S8>(g, c, v, s); }
VecV VecU32LoadFF2VSZ(P g, V v, U64 s, Ctx c) { return first_fault<U32, U16>(g, c, v, s); }
VecV VecS32LoadFF2VSZ(P g, V v, U64 s, Ctx c) { return first_fault<S32, S16>(g, c, v, s); }
VecV VecU64LoadFF2VSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U16>(g, c, v, s); }
VecV VecS64LoadFF2VSZ(P g, V v, U64 s, Ctx c) { return first_fault<S64, S16>(g, c, v, s); }
VecV VecU32LoadFF4VSZ(P g, V v, U64 s, Ctx c) { return first_fault<U32, U32>(g, c, v, s); }
VecV VecU64LoadFF4VSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U32>(g, c, v, s); }
VecV VecS64LoadFF4VSZ(P g, V v, U64 s, Ctx c) { return first_fault<S64, S32>(g, c, v, s); }
VecV VecU64LoadFF8VSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U64>(g, c, v, s); }

VecV VecU32LoadFF1XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U32, U8>(g, c, v, s, sxtw); }
VecV VecS32LoadFF1XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<S32, S8>(g, c, v, s, sxtw); }
VecV VecU64LoadFF1XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U8>(g, c, v, s, sxtw); }
VecV VecS64LoadFF1XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<S64, S8>(g, c, v, s, sxtw); }
VecV VecU32LoadFF2XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U32, U16>(g, c, v, s, sxtw); }
VecV VecS32LoadFF2XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<S32, S16>(g, c, v, s, sxtw); }
VecV VecU64LoadFF2XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U16>(g, c, v, s, sxtw); }
VecV VecS64LoadFF2XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<S64, S16>(g, c, v, s, sxtw); }
VecV VecU32LoadFF4XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U32, U32>(g, c, v, s, sxtw); }
VecV VecU64LoadFF4XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U32>(g, c, v, s, sxtw); }
VecV VecS64LoadFF4XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<S64, S32>(g, c, v, s, sxtw); }
VecV VecU64LoadFF8XVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U64>(g, c, v, s, sxtw); }

VecV VecU64LoadFF1YVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U8>(g, c, v, s, uxtw); }
VecV VecS64LoadFF1YVSZ(P g, V v, U64 s, Ctx c) { return first_fault<S64, S8>(g, c, v, s, uxtw); }
VecV VecU64LoadFF2YVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U16>(g, c, v, s, uxtw); }
VecV VecS64LoadFF2YVSZ(P g, V v, U64 s, Ctx c) { return first_fault<S64, S16>(g, c, v, s, uxtw); }
VecV VecU64LoadFF4YVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U32>(g, c, v, s, uxtw); }
VecV VecS64LoadFF4YVSZ(P g, V v, U64 s, Ctx c) { return first_fault<S64, S32>(g, c, v, s, uxtw); }
VecV VecU64LoadFF8YVSZ(P g, V v, U64 s, Ctx c) { return first_fault<U64, U64>(g, c, v, s, uxtw); }

VecV VecU32LoadFF2SVZ(P g, U64 s, V v, Ctx c) { return first_fault<U32, U16>(g, c, s, v); }
VecV VecS32LoadFF2SVZ(P g, U64 s, V v, Ctx c) { return first_fault<S32, S16>(g, c, s, v); }
VecV VecU64LoadFF2SVZ(P g, U64 s, V v, Ctx c) { return first_fault<U64, U16>(g, c, s, v); }
VecV VecS64LoadFF2SVZ(P g, U64 s, V v, Ctx c) { return first_fault<S64, S16>(g, c, s, v); }
VecV VecU32LoadFF4SVZ(P g, U64 s, V v, Ctx c) { return first_fault<U32, U32>(g, c, s, v); }
VecV VecU64LoadFF4SVZ(P g, U64 s, V v, Ctx c) { return first_fault<U64, U32>(g, c, s, v); }
VecV VecS64LoadFF4SVZ(P g, U64 s, V v, Ctx c) { return first_fault<S64, S32>(g, c, s, v); }
VecV VecU64LoadFF8SVZ(P g, U64 s, V v, Ctx c) { return first_fault<U64, U64>(g, c, s, v); }

VecV VecU32LoadFF2XSVZ(P g, U64 s, V v, Ctx c) { return first_fault<U32, U16>(g, c, s, v, sxtw); }
VecV VecS32LoadFF2XSVZ(P g, U64 s, V v, Ctx c) { return first_fault<S32, S16>(g, c, s, v, sxtw); }
VecV VecU64LoadFF2XSVZ(P g, U64 s, V v, Ctx c) { return first_fault<U64, U16>(g, c, s, v, sxtw); }
VecV VecS64LoadFF2XSVZ(P g, U64 s, V v, Ctx c) { return first_fault<S64, S16>(g, c, s, v, sxtw); }
VecV VecU32LoadFF4XSVZ(P g, U64 s, V v, Ctx c) { return first_fault<U32, U32>(g, c, s, v, sxtw); }
VecV VecU64LoadFF4XSVZ(P g, U64 s, V v, Ctx c) { return first_fault<U64, U32>(g, c, s, v, sxtw); }
VecV VecS64LoadFF4XSVZ(P g, U64 s, V v, Ctx c) { return first_fault<S64, S32>(g, c, s, v, sxtw); }
VecV VecU64LoadFF8XSVZ(P g, U64 s, V v, Ctx c) { return first_fault<U64, U64>(g, c, s, v, sxtw); }

VecV VecU64LoadFF2YSVZ(P g, U64 s, V v, Ctx c) { return first_fault<U64, U16>(g, c, s, v, uxtw); }
VecV VecS64LoadFF2YSVZ(P g, U64 s, V v, Ctx c) { return first_fault<S64, S16>(g, c, s, v, uxtw); }
VecV VecU64LoadFF4YSVZ(P g, U64 s, V v, Ctx c) { return first_fault<U64, U32>(g, c, s, v, uxtw); }
VecV VecS64LoadFF4YSVZ(P g, U64 s, V v, Ctx c) { return first_fault<S64, S32>(g, c, s, v, uxtw); }
VecV VecU64LoadFF8YSVZ(P g, U64 s, V v, Ctx c) { return first_fault<U64, U64>(g, c, s, v, uxtw); }

void VecU32Store1VIZ(P g, V v, unsigned i, V d, Ctx c) { store<U32, U8>(g, d, c, v, i); }
void VecU64Store1VIZ(P g, V v, unsigned i, V d, Ctx c) { store<U64, U8>(g, d, c, v, i); }
void VecU32Store2VIZ(P g, V v, unsigned i, V d, Ctx c) { store<U32, U16>(g, d, c, v, i); }
void VecU64Store2VIZ(P g, V v, unsigned i, V d, Ctx c) { store<U64, U16>(g, d, c, v, i); }
void VecU32Store4VIZ(P g, V v, unsigned i, V d, Ctx c) { store<U32, U32>(g, d, c, v, i); }
void VecU64Store4VIZ(P g, V v, unsigned i, V d, Ctx c) { store<U64, U32>(g, d, c, v, i); }
void VecU64Store8VIZ(P g, V v, unsigned i, V d, Ctx c) { store<U64, U64>(g, d, c, v, i); }

void VecU32Store1VSZ(P g, V v, U64 s, V d, Ctx c) { store<U32, U8>(g, d, c, v, s); }
void VecU64Store1VSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U8>(g, d, c, v, s); }
void VecU32Store2VSZ(P g, V v, U64 s, V d, Ctx c) { store<U32, U16>(g, d, c, v, s); }
void VecU64Store2VSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U16>(g, d, c, v, s); }
void VecU32Store4VSZ(P g, V v, U64 s, V d, Ctx c) { store<U32, U32>(g, d, c, v, s); }
void VecU64Store4VSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U32>(g, d, c, v, s); }
void VecU64Store8VSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U64>(g, d, c, v, s); }

void VecU32Store1XVSZ(P g, V v, U64 s, V d, Ctx c) { store<U32, U8>(g, d, c, v, s, sxtw); }
void VecU64Store1XVSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U8>(g, d, c, v, s, sxtw); }
void VecU32Store2XVSZ(P g, V v, U64 s, V d, Ctx c) { store<U32, U16>(g, d, c, v, s, sxtw); }
void VecU64Store2XVSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U16>(g, d, c, v, s, sxtw); }
void VecU32Store4XVSZ(P g, V v, U64 s, V d, Ctx c) { store<U32, U32>(g, d, c, v, s, sxtw); }
void VecU64Store4XVSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U32>(g, d, c, v, s, sxtw); }
void VecU64Store8XVSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U64>(g, d, c, v, s, sxtw); }

void VecU64Store1YVSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U8>(g, d, c, v, s, uxtw); }
void VecU64Store2YVSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U16>(g, d, c, v, s, uxtw); }
void VecU64Store4YVSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U32>(g, d, c, v, s, uxtw); }
void VecU64Store8YVSZ(P g, V v, U64 s, V d, Ctx c) { store<U64, U64>(g, d, c, v, s, uxtw); }

void VecU32Store2SVZ(P g, U64 s, V v, V d, Ctx c) { store<U32, U16>(g, d, c, s, v); }
void VecU64Store2SVZ(P g, U64 s, V v, V d, Ctx c) { store<U64, U16>(g, d, c, s, v); }
void VecU32Store4SVZ(P g, U64 s, V v, V d, Ctx c) { store<U32, U32>(g, d, c, s, v); }
void VecU64Store4SVZ(P g, U64 s, V v, V d, Ctx c) { store<U64, U32>(g, d, c, s, v); }
void VecU64Store8SVZ(P g, U64 s, V v, V d, Ctx c) { store<U64, U64>(g, d, c, s, v); }

void VecU32Store2XSVZ(P g, U64 s, V v, V d, Ctx c) { store<U32, U16>(g, d, c, s, v, sxtw); }
void VecU64Store2XSVZ(P g, U64 s, V v, V d, Ctx c) { store<U64, U16>(g, d, c, s, v, sxtw); }
void VecU32Store4XSVZ(P g, U64 s, V v, V d, Ctx c) { store<U32, U32>(g, d, c, s, v, sxtw); }
void VecU64Store4XSVZ(P g, U64 s, V v, V d, Ctx c) { store<U64, U32>(g, d, c, s, v, sxtw); }
void VecU64Store8XSVZ(P g, U64 s, V v, V d, Ctx c) { store<U64, U64>(g, d, c, s, v, sxtw); }

void VecU64Store2YSVZ(P g, U64 s, V v, V d, Ctx c) { store<U64, U16>(g, d, c, s, v, uxtw); }
void VecU64Store4YSVZ(P g, U64 s, V v, V d, Ctx c) { store<U64, U32>(g, d, c, s, v, uxtw); }
void VecU64Store8YSVZ(P g, U64 s, V v, V d, Ctx c) { store<U64, U64>(g, d, c, s, v, uxtw); }

VecV VecU8CLoadFF1LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U8, U8>(g, c, s, i); }
VecV VecU16CLoadFF1LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U16, U8>(g, c, s, i); }
VecV VecS16CLoadFF1LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<S16, S8>(g, c, s, i); }
VecV VecU32CLoadFF1LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U32, U8>(g, c, s, i); }
VecV VecS32CLoadFF1LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<S32, S8>(g, c, s, i); }
VecV VecU64CLoadFF1LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U64, U8>(g, c, s, i); }
VecV VecS64CLoadFF1LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<S64, S8>(g, c, s, i); }
VecV VecU16CLoadFF2LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U16, U16>(g, c, s, i); }
VecV VecU32CLoadFF2LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U32, U16>(g, c, s, i); }
VecV VecS32CLoadFF2LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<S32, S16>(g, c, s, i); }
VecV VecU64CLoadFF2LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U64, U16>(g, c, s, i); }
VecV VecS64CLoadFF2LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<S64, S16>(g, c, s, i); }
VecV VecU32CLoadFF4LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U32, U32>(g, c, s, i); }
VecV VecU64CLoadFF4LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U64, U32>(g, c, s, i); }
VecV VecS64CLoadFF4LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<S64, S32>(g, c, s, i); }
VecV VecU64CLoadFF8LSSZ(P g, U64 s, U64 i, Ctx c) { return first_fault<U64, U64>(g, c, s, i); }

VecV VecU8LoadDup1QSIZ(P g, U64 s, int i, Ctx c) {
  return replicate_quadword<U8>(g, s + 16 * static_cast<U64>(i), c);
}
VecV VecU16LoadDup2QSIZ(P g, U64 s, int i, Ctx c) {
  return replicate_quadword<U16>(g, s + 16 * static_cast<U64>(i), c);
}
VecV VecU32LoadDup4QSIZ(P g, U64 s, int i, Ctx c) {
  return replicate_quadword<U32>(g, s + 16 * static_cast<U64>(i), c);
}
VecV VecU64LoadDup8QSIZ(P g, U64 s, int i, Ctx c) {
  return replicate_quadword<U64>(g, s + 16 * static_cast<U64>(i), c);
}

VecV VecU8LoadDup1QSSZ(P g, U64 s, U64 i, Ctx c) {
  return replicate_quadword<U8>(g, s + i * sizeof(U8), c);
}
VecV VecU16LoadDup2QSSZ(P g, U64 s, U64 i, Ctx c) {
  return replicate_quadword<U16>(g, s + i * sizeof(U16), c);
}
VecV VecU32LoadDup4QSSZ(P g, U64 s, U64 i, Ctx c) {
  return replicate_quadword<U32>(g, s + i * sizeof(U32), c);
}
VecV VecU64LoadDup8QSSZ(P g, U64 s, U64 i, Ctx c) {
  return replicate_quadword<U64>(g, s + i * sizeof(U64), c);
}
