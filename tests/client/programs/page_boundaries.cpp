// Eight threads read up to an unreadable page with first-fault and non-fault loads, each in memory
// of its own and from every distance that matters, while a ninth maps, touches and unmaps pages all
// the time. Each load must read as far as the architecture demands and tell so in the first-fault
// register, and each loop must arrive at the unreadable page. Prints the totals; ends with status 1
// at the first load that is wrong. With an argument the ninth thread stores to an unreadable page
// instead, which must end the process whatever the others are at.
#include <algorithm>
#include <arm_sve.h>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <sys/mman.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using address = const std::uint8_t*;

constexpr std::size_t worker_count = 8;

template <int bits>
svbool_t all_lanes() {
  if constexpr (bits == 8) return svptrue_b8();
  if constexpr (bits == 16) return svptrue_b16();
  if constexpr (bits == 32) return svptrue_b32();
  if constexpr (bits == 64) return svptrue_b64();
}

struct outcome {
  std::uint64_t loaded;  // elements before the first one that the first-fault register misses
  std::uint64_t missed;  // elements that it misses
  std::uint64_t sum;     // of those loaded
};

struct load_form {
  const char* name;
  std::uint64_t size;   // of an element in memory, in bytes
  std::uint64_t lanes;  // of the vector
  bool may_fault;       // on the first element
  bool exact;           // reads all that it can of the last page, in every implementation here
  outcome (*run)(address);
};

// Predicates of one bit for an element at the most are counted as if elements were bytes.
template <class Memory, int bits, class Load>
outcome run(address from) {
  const svbool_t all = all_lanes<bits>();
  svsetffr();
  const auto vector = Load{}(all, reinterpret_cast<const Memory*>(from));
  const svbool_t missed = svnot_z(all, svrdffr_z(all));
  const svbool_t loaded = svbrkb_z(all, missed);
  return {svcntp_b8(all, loaded), svcntp_b8(all, missed), svaddv(loaded, vector)};
}

template <class Memory, int bits, class Load>
load_form first_fault(const char* name, Load) {
  const bool widens = sizeof(Memory) * 8 < bits;
  return {name, sizeof(Memory), svcntb() * 8 / bits, true, !widens, run<Memory, bits, Load>};
}

template <class Memory, int bits, class Load>
load_form non_fault(const char* name, Load) {
  return {name, sizeof(Memory), svcntb() * 8 / bits, false, true, run<Memory, bits, Load>};
}

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;

const std::array forms = {
    first_fault<u8, 8>("ldff1b b", [](auto pg, auto at) { return svldff1_u8(pg, at); }),
    first_fault<u8, 16>("ldff1b h", [](auto pg, auto at) { return svldff1ub_u16(pg, at); }),
    first_fault<u8, 32>("ldff1b s", [](auto pg, auto at) { return svldff1ub_u32(pg, at); }),
    first_fault<u8, 64>("ldff1b d", [](auto pg, auto at) { return svldff1ub_u64(pg, at); }),
    first_fault<u32, 32>("ldff1w s", [](auto pg, auto at) { return svldff1_u32(pg, at); }),
    first_fault<u32, 64>("ldff1w d", [](auto pg, auto at) { return svldff1uw_u64(pg, at); }),
    first_fault<u64, 64>("ldff1d d", [](auto pg, auto at) { return svldff1_u64(pg, at); }),
    non_fault<u8, 8>("ldnf1b b", [](auto pg, auto at) { return svldnf1_u8(pg, at); }),
    non_fault<u8, 16>("ldnf1b h", [](auto pg, auto at) { return svldnf1ub_u16(pg, at); }),
    non_fault<u8, 32>("ldnf1b s", [](auto pg, auto at) { return svldnf1ub_u32(pg, at); }),
    non_fault<u8, 64>("ldnf1b d", [](auto pg, auto at) { return svldnf1ub_u64(pg, at); }),
    non_fault<u16, 16>("ldnf1h h", [](auto pg, auto at) { return svldnf1_u16(pg, at); }),
    non_fault<u16, 32>("ldnf1h s", [](auto pg, auto at) { return svldnf1uh_u32(pg, at); }),
    non_fault<u16, 64>("ldnf1h d", [](auto pg, auto at) { return svldnf1uh_u64(pg, at); }),
    non_fault<u32, 32>("ldnf1w s", [](auto pg, auto at) { return svldnf1_u32(pg, at); }),
    non_fault<u32, 64>("ldnf1w d", [](auto pg, auto at) { return svldnf1uw_u64(pg, at); }),
    non_fault<u64, 64>("ldnf1d d", [](auto pg, auto at) { return svldnf1_u64(pg, at); }),
};

const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));

u8* map(std::size_t pages) {
  void* const mapped =
      mmap(nullptr, pages * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped == MAP_FAILED) {
    std::perror("mmap");
    std::_Exit(1);
  }
  return static_cast<u8*>(mapped);
}

// Two pages of numbers and an unreadable one behind them, at whose beginning the result points.
address map_numbers(unsigned seed) {
  u8* const pages = map(3);
  for (std::size_t i = 0; i < 2 * page; ++i) {
    pages[i] = static_cast<u8>((i + seed) * 0x9e3779b1 >> 13);
  }
  mprotect(pages + 2 * page, page, PROT_NONE);
  return pages + 2 * page;
}

void expect(bool holds, const load_form& form, std::size_t left, const outcome& now) {
  if (holds) return;
  std::fprintf(stderr,
               "%s: %zu bytes before the unreadable page, %lu loaded and %lu missed of %lu\n",
               form.name, left, now.loaded, now.missed, form.lanes);
  std::_Exit(1);
}

struct total {
  std::atomic<std::uint64_t> elements, sum;
};

// From `left` bytes before `end` to `end`.
void read_to_end(const load_form& form, address end, std::size_t left, total& total) {
  // With an element on both pages, QEMU's non-fault loads give up before the first, or even fault.
  if (!form.may_fault && left % form.size != 0) return;
  for (;;) {
    const std::uint64_t fitting = std::min<std::uint64_t>(form.lanes, left / form.size);
    if (fitting == 0 && form.may_fault) return;
    const outcome now = form.run(end - left);
    expect(now.loaded + now.missed == form.lanes, form, left, now);
    expect(now.loaded <= fitting && (now.loaded != 0 || fitting == 0), form, left, now);
    // That an element beyond a readable page's end is read is not demanded.
    if (form.exact && left <= page) expect(now.loaded == fitting, form, left, now);
    if (fitting == 0) return;
    left -= now.loaded * form.size;
    total.elements += now.loaded;
    total.sum += now.sum;
  }
}

using total_of_each = std::array<total, forms.size()>;

void read_from_everywhere(unsigned seed, total_of_each& totals) {
  const std::size_t beyond_a_vector = svcntb() + 32;
  const address end = map_numbers(seed);
  for (std::size_t k = 0; k < forms.size(); ++k) {
    for (std::size_t left = 1; left < beyond_a_vector; ++left) {
      read_to_end(forms[k], end, left, totals[k]);
    }
    read_to_end(forms[k], end, page + 8, totals[k]);  // past a boundary of readable pages
  }
}

void map_and_unmap(const std::atomic<bool>& done) {
  for (std::size_t pages = 1; !done; pages = pages % 8 + 1) {
    u8* const mapped = map(pages);
    for (std::size_t i = 0; i < pages; ++i) mapped[i * page] = 1;
    munmap(mapped, pages * page);
  }
}

void fault(const std::atomic<bool>& /*done*/) {
  usleep(100'000);
  *const_cast<volatile u8*>(map_numbers(0)) = 1;
}

}  // namespace

int main(int argc, char* /*argv*/[]) {
  total_of_each totals = {};
  std::atomic<bool> done = false;
  std::thread mapper(argc > 1 ? fault : map_and_unmap, std::cref(done));
  std::vector<std::thread> workers;
  for (unsigned seed = 0; seed < worker_count; ++seed) {
    workers.emplace_back(read_from_everywhere, seed, std::ref(totals));
  }
  for (std::thread& worker : workers) worker.join();
  done = true;
  mapper.join();
  for (std::size_t k = 0; k < forms.size(); ++k) {
    std::printf("%s: %lu elements, sum %016lx\n", forms[k].name, totals[k].elements.load(),
                totals[k].sum.load());
  }
}
