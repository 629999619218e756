// Guarded reads at the end of mapped memory, and faults outside of guarded reads. After such a
// fault, a child process must print the message and then die of the signal itself.
#include "sve/semantics/memory_access.h"

#include <atomic>
#include <cstdio>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <thread>

#include "guarded_memory.h"
#include "sve/fast/contiguous_memory.h"
#include "sve/fast/gather_scatter.h"
#include "sve/semantics/memory.h"
#include "sve/state/guest_memory.h"

namespace {

using ReadMemLib = std::uint64_t(std::uint64_t, int, bool*, CpuContext*);

constexpr struct {
  ReadMemLib* read;
  unsigned bytes;
} reads[] = {{ReadMemLib1, 1}, {ReadMemLib2, 2}, {ReadMemLib4, 4}, {ReadMemLib8, 8}};

class MemoryAccess : public testing::Test {
 protected:
  MemoryAccess() {
    SVEInitialize();
    for (std::size_t i = 0; i < memory.size(); ++i) {
      memory.data()[i] = static_cast<unsigned char>(i * 7 + 0x81);
    }
  }

  std::uint64_t expected(std::uint64_t address, unsigned bytes) const {
    std::uint64_t value = 0;
    std::memcpy(&value, memory.data() + (address - memory.begin()), bytes);
    return value;
  }

  // A page beyond the end of a file. It is mapped, but an access is a bus error.
  static std::uint64_t page_without_memory() {
    void* page = mmap(nullptr, GuardedMemory::page_size(), PROT_READ | PROT_WRITE, MAP_SHARED,
                      fileno(std::tmpfile()), 0);
    return reinterpret_cast<std::uint64_t>(page);
  }

  GuardedMemory memory;
  CpuContext ctx{};
};

TEST_F(MemoryAccess, GuardedReadsAtTheEdgesOfAPage) {
  for (const auto& [read, bytes] : reads) {
    for (unsigned overhang = 0; overhang <= bytes; ++overhang) {
      for (const bool at_end : {true, false}) {
        const std::uint64_t address =
            at_end ? memory.end() - bytes + overhang : memory.begin() - overhang;
        for (const bool before : {false, true}) {
          bool fault = before;
          const std::uint64_t value = read(address, static_cast<int>(overhang % 2), &fault, &ctx);
          EXPECT_EQ(fault, before || overhang != 0) << bytes << " bytes, " << overhang << " over";
          EXPECT_EQ(value, overhang == 0 ? expected(address, bytes) : 0);
          EXPECT_EQ(SVEFaultRegion, 0);
        }
      }
    }
    EXPECT_EQ(read(memory.begin() + 3, 0, nullptr, nullptr), expected(memory.begin() + 3, bytes))
        << "unguarded and unaligned";
  }
}

TEST_F(MemoryAccess, GuardedReadsOfWildAddressesAndBusErrors) {
  constexpr std::uint64_t last = ~std::uint64_t{0};
  const std::uint64_t addresses[] = {
      0, last, last - 6, 0x8000000000000000, 0x0123456789abcdef, page_without_memory()};
  for (const std::uint64_t address : addresses) {
    bool fault = false;
    EXPECT_EQ(ReadMemLib8(address, 0, &fault, &ctx), 0U) << address;
    EXPECT_TRUE(fault) << address;
  }
}

// The jump out of the handler restores the mask. A thousand faults leave nothing behind.
TEST_F(MemoryAccess, GuardedFaultsLeaveTheSignalMaskAlone) {
  sigset_t mask, after;
  sigemptyset(&mask);
  sigaddset(&mask, SIGUSR1);
  sigprocmask(SIG_SETMASK, &mask, nullptr);
  for (int i = 0; i < 1000; ++i) {
    bool fault = false;
    ReadMemLib4(memory.end(), 1, &fault, &ctx);
    ASSERT_TRUE(fault);
  }
  sigprocmask(SIG_SETMASK, nullptr, &after);
  EXPECT_EQ(sigismember(&after, SIGUSR1), 1);
  EXPECT_EQ(sigismember(&after, SIGSEGV), 0);
  sigemptyset(&mask);
  sigprocmask(SIG_SETMASK, &mask, nullptr);
}

TEST_F(MemoryAccess, WritesTouchExactlyTheirBytes) {
  const std::function<void(std::uint64_t)> writes[] = {
      [this](std::uint64_t a) { WriteMemLib1(0xf1, a, &ctx); },
      [this](std::uint64_t a) { WriteMemLib2(0xf1f2, a, &ctx); },
      [this](std::uint64_t a) { WriteMemLib4(0xf1f2f3f4, a, &ctx); },
      [this](std::uint64_t a) { WriteMemLib8(0xf1f2f3f4f5f6f7f8, a, &ctx); }};
  for (unsigned bytes = 1; const auto& write : writes) {
    memory.fill(0);
    write(memory.end() - bytes);
    write(memory.begin() + 1);
    EXPECT_EQ(expected(memory.end() - bytes, bytes), 0xf1f2f3f4f5f6f7f8 >> (64 - 8 * bytes));
    EXPECT_EQ(expected(memory.end() - bytes - 8, 8), 0U);
    EXPECT_EQ(expected(memory.begin(), 1), 0U);
    EXPECT_EQ(expected(memory.begin() + 1 + bytes, 8), 0U);
    bytes *= 2;
  }
}

bool probe(std::uint64_t address) {
  return addr_is_readable<char>(sve::guest_pointer<volatile char>(address));
}

// Many threads fault at once, in guarded reads and in probes. A thread that reads only mapped
// memory never sees the fault of another thread.
TEST_F(MemoryAccess, ThreadsFaultAtOnce) {
  std::atomic<int> wrong = 0;
  const auto reader = [&](std::uint64_t address, bool mapped) {
    CpuContext own{};
    for (int i = 0; i < 3000; ++i) {
      bool fault = false;
      const std::uint64_t value = ReadMemLib8(address, 0, &fault, &own);
      if (fault == mapped || value != (mapped ? expected(address, 8) : 0)) ++wrong;
      if (probe(address + 7) != mapped) ++wrong;
    }
  };
  std::thread threads[] = {
      std::thread(reader, memory.end(), false), std::thread(reader, memory.end() - 4, false),
      std::thread(reader, memory.end() - 8, true), std::thread(reader, memory.begin() + 1, true)};
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
}

TEST_F(MemoryAccess, ProbesTellWhatCanBeRead) {
  const auto actions = [] {
    struct sigaction action;
    sigaction(SIGSEGV, nullptr, &action);
    return action.sa_sigaction;
  };
  const auto installed = actions();
  for (const std::uint64_t readable : {memory.begin(), memory.end() - 1}) {
    for (const std::uint64_t not_readable :
         {memory.end(), memory.begin() - 1, std::uint64_t{0}, ~std::uint64_t{0}}) {
      EXPECT_TRUE(probe(readable));
      EXPECT_FALSE(probe(not_readable)) << not_readable;
    }
  }
  EXPECT_EQ(actions(), installed);
}

TEST_F(MemoryAccess, AccessesOfNoMemory) {
  bool fault = true;
  EXPECT_EQ(ReadMem(memory.begin(), 8, 0, &fault, &ctx), 0U);
  EXPECT_FALSE(fault);
  fault = true;
  EXPECT_EQ(ReadMemSim(memory.end(), 8, 0, &fault, true, &ctx), 0U);
  EXPECT_FALSE(fault);
  WriteMem(1, memory.end(), 8, &ctx);
  WriteMemSim(1, memory.end(), 8, true, &ctx);
}

TEST_F(MemoryAccess, InitialisesOnce) {
  EXPECT_EQ(ctxt, &cpu_ctxt);
  EXPECT_EQ(cpu_ctxt.vl, 2U);
  struct sigaction installed;
  for (const int signal : {SIGSEGV, SIGBUS}) {
    sigaction(signal, nullptr, &installed);
    EXPECT_EQ(installed.sa_sigaction, SVESigHandler);
    EXPECT_EQ(installed.sa_flags & 0x50000004, 0x50000004);
    EXPECT_EQ(sigismember(&installed.sa_mask, SIGTERM), 0);
  }
  struct sigaction other = {}, restored = installed;
  other.sa_handler = SIG_IGN;
  sigaction(SIGBUS, &other, nullptr);
  EXPECT_TRUE(SVEInitialize());
  sigaction(SIGBUS, nullptr, &installed);
  EXPECT_EQ(installed.sa_handler, SIG_IGN) << "a second call installs nothing";
  sigaction(SIGBUS, &restored, nullptr);
}

// Each of these faults kills the process after the message, so each has a child process of its own.
class UnguardedFaultDeathTest : public MemoryAccess {};

TEST_F(UnguardedFaultDeathTest, EndsTheProcess) {
  const rlimit no_core_file{0, 0};
  setrlimit(RLIMIT_CORE, &no_core_file);
  const aarch64_z_reg z{0, 0, 0, 0}, z1{1, 0, 0, 0};
  const aarch64_p_reg p{0, 0, 0, 0};
  const aarch64_i_rsp_reg x{0, 0};
  const auto state = std::make_unique<cpu_state>();
  cpu_state* s = state.get();
  std::memset(s->p, 1, sizeof s->p);
  s->x[0] = memory.end() - 5;
  s->z[1][1] = 1;  // offset element 0 is 256
  const std::uint64_t bus = page_without_memory();
  ctx.vl = 2;
  const PredV all{{~std::uint64_t{0}}};
  VecV last_bytes;
  for (unsigned e = 0; e < 2; ++e) last_bytes.set<std::uint64_t>(e, memory.end() - 1);
  const struct {
    const char* what;
    int signal;
    std::function<void()> access;
  } faults[] = {
      {"load", SIGSEGV, [&] { sve_ld1w_zpri(s, z, p, x, 0); }},
      {"store", SIGSEGV, [&] { sve_st1b_zpri(s, z, p, x, 0); }},
      {"spill", SIGSEGV, [&] { sve_str_zri(s, z, x, 1); }},
      {"reference load", SIGSEGV, [&] { ReadMemLib8(memory.end() - 7, 0, nullptr, &ctx); }},
      {"reference store", SIGSEGV, [&] { WriteMemLib2(0, memory.end() - 1, &ctx); }},
      {"load from a page without memory", SIGBUS, [&] { ReadMemLib4(bus, 0, nullptr, &ctx); }},
      {"store to a page without memory", SIGBUS, [&] { WriteMemLib4(0, bus, &ctx); }},
      {"another thread while this one is in a guarded read", SIGSEGV,
       [&] {
         SVEFaultRegion = 1;
         if (sigsetjmp(sveFaultJB, 1) != 0) std::_Exit(0);
         std::thread([&] { WriteMemLib1(0, memory.end(), &ctx); }).join();
       }},
      {"another thread while this one probes", SIGSEGV,
       [&] {
         std::thread([&] { usleep(10000), WriteMemLib1(0, memory.end(), &ctx); }).detach();
         while (!probe(memory.end())) {
         }
       }},
      {"probe of a page without memory", SIGBUS, [&] { probe(bus); }},
      {"gather", SIGSEGV, [&] { sve_ld1sb_d_sxtw_zpzr(s, z, p, z1, x); }},
      {"scatter", SIGSEGV, [&] { sve_st1d_scaled_zprz(s, z, p, x, z1); }},
      {"reference gather", SIGSEGV, [&] { VecU64Load2VIZ(all, last_bytes, 0, &ctx); }},
      {"reference scatter", SIGSEGV, [&] { VecU64Store8YVSZ(all, {}, s->x[0], {}, &ctx); }},
      {"after a guarded fault", SIGSEGV,
       [&] {
         bool fault = false;
         ReadMemLib1(memory.end(), 0, &fault, &ctx);
         if (fault) ReadMemLib1(memory.end(), 0, nullptr, &ctx);
       }},
  };
  for (const auto& [what, signal, access] : faults) {
    const std::string name = signal == SIGSEGV ? "SIGSEGV" : "SIGBUS";
    EXPECT_EXIT(access(), testing::KilledBySignal(signal),
                "velox's SVESigHandler caught signal " + name +
                    " from the process being emulated, passing it to the default signal handler"
                    "\\.\n")
        << what;
  }
}

}  // namespace
