// Gathering and contiguous first-fault loads with real unreadable pages, at every vector length.
#include <functional>
#include <random>
#include <vector>

#include "context.h"
#include "guarded_memory.h"
#include "sve/semantics/memory.h"
#include "sve/semantics/memory_access.h"

namespace {

using Addresses = std::vector<U64>;

// A load of register elements from memory elements at given addresses, which `load` converts to the
// operands of the form.
struct Form {
  const char* name;
  unsigned element, memory;
  bool sign, byte_offsets;
  std::function<VecV(const PredV&, const Addresses&, CpuContext*)> load;
};

// A vector of the distances of the addresses from a base, in units, with garbage in `unused` bits.
template <class T>
VecV vector_of(const Addresses& addresses, U64 base, unsigned unit, U64 unused) {
  VecV v;
  for (unsigned e = 0; e < addresses.size(); ++e) {
    v.set<T>(e, static_cast<T>((addresses[e] - base) / unit | unused));
  }
  return v;
}

template <class T, class M, class Load>
Form form(const char* name, bool byte_offsets, Load load) {
  return {name, sizeof(T), sizeof(M), std::is_signed_v<M>, byte_offsets, load};
}

template <class T, class M>
Form bases(const char* name, VecV (*load)(PredV, VecV, unsigned, CpuContext*)) {
  return form<T, M>(name, true, [=](const PredV& g, const Addresses& at, CpuContext* ctx) {
    return load(g, vector_of<T>(at, 3 * sizeof(M), 1, 0), 3, ctx);
  });
}

template <class T, class M>
Form offsets(const char* name, VecV (*load)(PredV, VecV, U64, CpuContext*), U64 base,
             U64 unused = 0) {
  return form<T, M>(name, true, [=](const PredV& g, const Addresses& at, CpuContext* ctx) {
    return load(g, vector_of<T>(at, base, 1, unused), base, ctx);
  });
}

template <class T, class M>
Form scaled(const char* name, VecV (*load)(PredV, U64, VecV, CpuContext*), U64 base,
            U64 unused = 0) {
  return form<T, M>(name, false, [=](const PredV& g, const Addresses& at, CpuContext* ctx) {
    return load(g, base, vector_of<T>(at, base, sizeof(M), unused), ctx);
  });
}

class Gather : public testing::TestWithParam<unsigned> {
 protected:
  Gather() {
    SVEInitialize();
    for (std::size_t i = 0; i < memory.size(); ++i) {
      memory.data()[i] = static_cast<unsigned char>(random());
    }
  }

  U64 loaded(const Form& form, U64 address) const {
    U64 value = 0;
    std::memcpy(&value, memory.data() + (address - memory.begin()), form.memory);
    const unsigned shift = 64 - 8 * form.memory;
    return form.sign ? static_cast<U64>(static_cast<S64>(value << shift) >> shift) : value;
  }

  // Chooses multiples of the memory element from the memory's beginning. Inactive elements get one
  // far address.
  Addresses choose_addresses(const Form& form, const PredV& g, unsigned n) {
    Addresses result;
    for (unsigned e = 0; e < n; ++e) {
      const U64 offset = random() % (memory.size() / form.memory) * form.memory;
      result.push_back(g.lane(e * form.element) ? memory.begin() + offset
                                                : memory.begin() + 0x7000UL * form.memory);
    }
    return result;
  }

  PredV any_predicate() {
    PredV p;
    for (auto& word : p.words) word = random() & (random() % 3 == 0 ? random() : ~0UL);
    return p;
  }

  // Expects that the elements before `stop` are loaded, and that all others are 0 and cleared in
  // the FFR.
  void expect(const Form& form, const PredV& g, const Addresses& at, unsigned stop) {
    CpuContext ctx = context(GetParam());
    const PredV ffr = ctx.ffr = any_predicate();
    const VecV result = form.load(g, at, &ctx);
    for (unsigned e = 0; e < at.size(); ++e) {
      const unsigned first = e * form.element;
      const bool reads = e < stop && g.lane(first);
      const U64 value = reads ? loaded(form, at[e]) : 0;
      EXPECT_EQ(std::memcmp(&result.bytes[first], &value, form.element), 0)
          << form.name << " element " << e << ", stopping at " << stop;
      for (unsigned lane = first; lane < first + form.element; ++lane) {
        EXPECT_EQ(ctx.ffr.lane(lane), e < stop && ffr.lane(lane)) << form.name << " lane " << lane;
      }
    }
  }

  std::mt19937_64 random{GetParam()};
  GuardedMemory memory;
  const U64 base = memory.begin();
  const U64 high = 0xabcd000000000000;
  const Form first_fault[11] = {
      bases<U64, U16>("64 2 VIZ", VecU64LoadFF2VIZ),
      bases<U64, S8>("64 1 VIZ", VecS64LoadFF1VIZ),
      offsets<U64, U16>("64 2 VSZ", VecU64LoadFF2VSZ, base + 77),
      offsets<U64, U64>("64 8 XVSZ", VecU64LoadFF8XVSZ, base + 77, high),
      offsets<U64, S32>("64 4 YVSZ", VecS64LoadFF4YVSZ, base - 77, high),
      offsets<U32, S8>("32 1 VSZ", VecS32LoadFF1VSZ, base - 77),
      offsets<U32, U32>("32 4 XVSZ", VecU32LoadFF4XVSZ, base + 77),
      scaled<U64, S16>("64 2 SVZ", VecS64LoadFF2SVZ, base + 154),
      scaled<U64, U64>("64 8 XSVZ", VecU64LoadFF8XSVZ, base, high),
      scaled<U64, U32>("64 4 YSVZ", VecU64LoadFF4YSVZ, base, high),
      scaled<U32, U16>("32 2 SVZ", VecU32LoadFF2SVZ, base),
  };
};

INSTANTIATE_TEST_SUITE_P(AtLength, Gather, testing::ValuesIn(lengths));

// At every second stop, the element begins in the readable page and runs over into the unreadable
// one.
TEST_P(Gather, FirstFaultLoadsStopAtTheElementThatFaults) {
  for (const Form& form : first_fault) {
    const unsigned n = GetParam() * 8 / form.element;
    for (unsigned fault = 0; fault <= n; ++fault) {
      const PredV g = any_predicate();
      Addresses at = choose_addresses(form, g, n);
      unsigned stop = fault;
      while (stop < n && !g.lane(stop * form.element)) ++stop;
      const bool overlaps = form.byte_offsets && fault % 2 != 0;
      if (stop < n) at[stop] = memory.end() - (overlaps ? form.memory / 2 : 0);
      expect(form, g, at, stop);
    }
  }
}

TEST_P(Gather, ContiguousFirstFaultLoadsStopThere) {
  const struct : Form {
    VecV (*function)(PredV, U64, U64, CpuContext*);
  } forms[] = {{{"16 1", 2, 1, true, true, {}}, VecS16CLoadFF1LSSZ},
               {{"16 2", 2, 2, false, true, {}}, VecU16CLoadFF2LSSZ},
               {{"64 4", 8, 4, true, true, {}}, VecS64CLoadFF4LSSZ}};
  for (auto form : forms) {
    form.load = [&](const PredV& g, const Addresses& at, CpuContext* ctx) {
      return form.function(g, at[0] - U64{5} * form.memory, 5, ctx);
    };
    const unsigned n = GetParam() * 8 / form.element;
    for (unsigned room = 0; room <= n * form.memory; ++room) {
      const PredV g = any_predicate();
      Addresses at;
      for (unsigned e = 0; e < n; ++e) at.push_back(memory.end() - room + U64{e} * form.memory);
      unsigned stop = room / form.memory;
      while (stop < n && !g.lane(stop * form.element)) ++stop;
      expect(form, g, at, stop);
    }
  }
}

}  // namespace
