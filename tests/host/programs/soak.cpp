// Threads, signals, faults that handlers repair, generated code, remapped code and SVE
// instructions, all at once. The first argument is the time in seconds, the second the seed. Each
// worker does one thing after another, in an order that follows from the seed, and checks what it
// did. Timers and the other workers interrupt it meanwhile. The handlers use the whole vector
// state themselves.
#include <algorithm>
#include <arm_sve.h>
#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <csetjmp>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <deque>
#include <random>
#include <span>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <thread>
#include <unistd.h>
#include <utility>

// Z, P and FFR, in the order of vectors.S.
struct alignas(16) vector_image {
  std::array<unsigned char, 256 * 32 + 32 * 17> bytes;
};
using general_registers = std::array<std::uint64_t, 9>;  // X0 to X7 and NZCV

extern "C" void run_code(const void* code, const vector_image* in, vector_image* out,
                         general_registers* registers);

// Waits while the word at X0 is not 0.
asm(".pushsection .text\n"
    ".globl wait_while_set\n"
    "wait_while_set: ldr w1, [x0]\n"
    "cbnz w1, wait_while_set\n"
    "ret\n"
    ".popsection");
extern "C" const char wait_while_set[];

namespace {

constexpr unsigned worker_count = 4;
constexpr std::size_t page_bytes = 4096;
constexpr std::size_t alternate_stack_bytes = std::size_t{256} * 1024;
const int queued_signal = SIGRTMIN;
const int timer_signal = SIGRTMIN + 1;

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "soak: %s\n", what);
  std::_Exit(1);
}

void demand(bool holds, const char* what) {
  if (!holds) fail(what);
}

enum class repair : std::uint8_t { none, give_memory, jump };

struct worker {
  explicit worker(std::uint64_t seed) : random(seed) {}

  std::mt19937_64 random;
  pid_t tid = 0;
  std::uint64_t increments = 0;  // of the shared count
  volatile int waiting = 0;      // until a signal comes
  unsigned char* code = nullptr;
  unsigned char* guarded = nullptr;  // a page that cannot be accessed
  std::array<int, 2> pipe{};
  volatile repair on_fault = repair::none;
  sigjmp_buf before_fault{};
  std::atomic<std::uint64_t> sent_here = 0, sum_sent_here = 0;  // queued signals
  std::atomic<std::uint64_t> received = 0, sum_received = 0;
};

struct {
  std::atomic<std::uint64_t> vectors, loads, functions, mappings, faults, queued, ticks, threads;
} counts;

std::deque<worker> workers;
std::atomic<bool> stopping = false;
std::uint64_t shared_count = 0;
thread_local worker* self = nullptr;
thread_local std::uint64_t own_number = 0;

// --- Vector state --------------------------------------------------------------------------------

std::span<unsigned char> used_bytes(vector_image& image) {
  return std::span(image.bytes).first(32 * svcntb() + 17 * (svcntb() / 8));
}

// The FFR is ones followed by zeros, as first-fault loads leave it.
void fill(vector_image& image, std::uint64_t seed) {
  const std::span<unsigned char> bytes = used_bytes(image);
  for (unsigned char& byte : bytes) {
    seed = seed * 6364136223846793005 + 1442695040888963407;
    byte = static_cast<unsigned char>(seed >> 56);
  }
  const std::span<unsigned char> ffr = bytes.last(svcntb() / 8);
  std::ranges::fill(ffr, 0);
  std::ranges::fill(ffr.first(seed % ffr.size()), 0xff);
}

void check_vectors(std::uint64_t seed, const volatile int* go_on) {
  vector_image in;
  vector_image out;
  fill(in, seed);
  general_registers registers = {reinterpret_cast<std::uint64_t>(go_on)};
  run_code(wait_while_set, &in, &out, &registers);
  demand(std::ranges::equal(used_bytes(in), used_bytes(out)), "the vector state has changed");
  counts.vectors++;
}

constexpr volatile int at_once = 0;

// --- Handlers ------------------------------------------------------------------------------------

void on_queued(int /*signal*/, siginfo_t* info, void* /*context*/) {
  demand(self != nullptr && info->si_code == SI_QUEUE, "a queued signal went astray");
  const auto value = reinterpret_cast<std::uint64_t>(info->si_value.sival_ptr);
  self->sum_received += value;
  check_vectors(value, &at_once);
  self->received++;
  self->waiting = 0;
  counts.queued++;
}

// Threads that are not workers get this signal, too.
void on_tick(int signal, siginfo_t* info, void* /*context*/) {
  check_vectors(reinterpret_cast<std::uint64_t>(info), &at_once);
  if (signal == timer_signal) self->waiting = 0;
  counts.ticks++;
}

[[noreturn]] void fail_at_fault(const siginfo_t& info, const mcontext_t& machine) {
  std::fprintf(stderr, "at %#llx, address %p, code %d, LR %#llx\n", machine.pc, info.si_addr,
               info.si_code, machine.regs[30]);
  fail("a fault that nothing asked for");
}

void on_fault(int /*signal*/, siginfo_t* info, void* context) {
  const auto* const address = static_cast<unsigned char*>(info->si_addr);
  const bool expected = self != nullptr && self->on_fault != repair::none &&
                        address >= self->guarded && address < self->guarded + page_bytes;
  if (!expected) fail_at_fault(*info, static_cast<ucontext_t*>(context)->uc_mcontext);
  check_vectors(own_number, &at_once);
  counts.faults++;
  if (self->on_fault == repair::jump) siglongjmp(self->before_fault, 1);
  mprotect(self->guarded, page_bytes, PROT_READ | PROT_WRITE);
}

void handle(int signal, void (*handler)(int, siginfo_t*, void*), int flags) {
  struct sigaction action {};
  action.sa_sigaction = handler;
  action.sa_flags = SA_SIGINFO | SA_RESTART | flags;
  sigaction(signal, &action, nullptr);
}

// --- What workers do -----------------------------------------------------------------------------

void hold_until_signal(worker& me) {
  me.waiting = 1;
  check_vectors(me.random(), &me.waiting);
}

// Writes and calls a function that returns `value`, plus the bytes of a vector if `with_sve`.
std::uint64_t call_generated(unsigned char* at, std::uint64_t value, bool with_sve) {
  std::array<std::uint32_t, 6> code{};
  for (unsigned half = 0; half < 4; half++) {
    const auto part = static_cast<std::uint32_t>(value >> (16 * half) & 0xffff);
    code[half] = (half == 0 ? 0xd2800000 : 0xf2800000) | half << 21 | part << 5;
  }
  code[4] = with_sve ? 0x04205020 : 0xd503201f;  // addvl x0, x0, #1; nop
  code[5] = 0xd65f03c0;                          // ret
  std::memcpy(at, code.data(), sizeof code);
  __builtin___clear_cache(reinterpret_cast<char*>(at), reinterpret_cast<char*>(at) + sizeof code);
  counts.functions++;
  return reinterpret_cast<std::uint64_t (*)()>(at)();
}

// First-fault loads up to the end of the code page. The page behind it cannot be read.
void load_to_the_end(worker& me) {
  for (int i = 0; i < 16; i++) {
    const std::uint64_t left = 1 + me.random() % svcntb();
    svsetffr();
    const svuint8_t loaded = svldff1(svptrue_b8(), me.code + page_bytes - left);
    const svbool_t valid = svrdffr();
    demand(svcntp_b8(svptrue_b8(), valid) == left, "a first-fault load stopped elsewhere");
    demand(svaddv(valid, loaded) == 0, "a first-fault load read something else");
  }
  counts.loads += 16;
}

void generate(worker& me) {
  for (int i = 0; i < 4; i++) {
    const std::uint64_t value = me.random();
    const bool with_sve = value % 2 != 0;
    const std::size_t place = 32 * (value / 2 % 4);
    demand(call_generated(me.code + place, value, with_sve) == value + with_sve * svcntb(),
           "generated code returned something else");
  }
}

// Maps other memory at the same address, and changes its protection.
void remap(worker& me) {
  void* const page = mmap(me.code, page_bytes, PROT_READ | PROT_WRITE | PROT_EXEC,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
  demand(page == me.code, "the code page cannot be mapped again");
  generate(me);
  demand(mprotect(page, page_bytes, PROT_READ | PROT_WRITE) == 0, "mprotect");
  demand(mprotect(page, page_bytes, PROT_READ | PROT_WRITE | PROT_EXEC) == 0, "mprotect");
  generate(me);
  counts.mappings++;
}

void fault_and_get_memory(worker& me) {
  me.on_fault = repair::give_memory;
  auto* const place = reinterpret_cast<volatile std::uint64_t*>(me.guarded);
  *place = own_number;
  demand(*place == own_number, "a store was lost");
}

void fault_and_jump(worker& me) {
  me.on_fault = repair::jump;
  if (sigsetjmp(me.before_fault, 1) == 0) {
    *reinterpret_cast<volatile std::uint64_t*>(me.guarded) = 1;
    fail("a store to a guarded page went on");
  }
}

void fault(worker& me) {
  me.random() % 2 == 0 ? fault_and_get_memory(me) : fault_and_jump(me);
  me.on_fault = repair::none;
  demand(mprotect(me.guarded, page_bytes, PROT_NONE) == 0, "mprotect");
}

// A full signal queue is not an error.
void send(worker& me) {
  worker& to = workers[me.random() % worker_count];
  const std::uint64_t value = me.random() % 1000;
  siginfo_t info{};
  info.si_code = SI_QUEUE;
  info.si_pid = getpid();
  info.si_uid = getuid();
  info.si_value.sival_ptr = reinterpret_cast<void*>(value);  // NOLINT(performance-no-int-to-ptr)
  if (syscall(SYS_rt_tgsigqueueinfo, getpid(), to.tid, queued_signal, &info) != 0) return;
  to.sum_sent_here += value;
  to.sent_here++;
}

// Each increment is an exclusive load and store.
void increment_shared_count() {
  std::uint64_t value = 0;
  std::uint32_t failed = 0;
  asm volatile(
      "1: ldaxr %0, [%2]\n"
      "add %0, %0, #1\n"
      "stlxr %w1, %0, [%2]\n"
      "cbnz %w1, 1b\n"
      : "=&r"(value), "=&r"(failed)
      : "r"(&shared_count)
      : "memory");
}

void count_exclusively(worker& me) {
  for (int i = 0; i < 100; i++) increment_shared_count();
  me.increments += 100;
}

void start_threads(worker& me) {
  std::array<std::thread, 3> threads;
  for (std::thread& thread : threads) {
    thread = std::thread([seed = me.random()] {
      own_number = seed;
      check_vectors(seed, &at_once);
      demand(own_number == seed, "thread-local memory has changed");
      counts.threads++;
    });
  }
  for (std::thread& thread : threads) thread.join();
}

// Signals interrupt these system calls. Reads and writes are restarted; a sleep may end early.
void call_system(worker& me) {
  const std::uint64_t value = me.random();
  std::thread late([&me, value] {
    const timespec pause = {.tv_sec = 0, .tv_nsec = 3'000'000};
    nanosleep(&pause, nullptr);
    demand(write(me.pipe[1], &value, sizeof value) == sizeof value, "write");
  });
  std::uint64_t got = 0;
  demand(read(me.pipe[0], &got, sizeof got) == sizeof got && got == value, "read");
  late.join();
}

// --- A worker's life -----------------------------------------------------------------------------

// The page lies between pages that are never accessible. Where neighbours differ only in the right
// to execute, QEMU's /proc/self/maps gives both the permissions of the first, and the launcher
// believes it.
unsigned char* map_page(int protection) {
  void* const pages = mmap(nullptr, 3 * page_bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  demand(pages != MAP_FAILED, "mmap");
  unsigned char* const page = static_cast<unsigned char*>(pages) + page_bytes;
  demand(mprotect(page, page_bytes, protection) == 0, "mprotect");
  return page;
}

void use_alternate_stack() {
  const stack_t stack = {
      .ss_sp = std::malloc(alternate_stack_bytes), .ss_flags = 0, .ss_size = alternate_stack_bytes};
  demand(sigaltstack(&stack, nullptr) == 0, "sigaltstack");
}

timer_t start_timer(const worker& me) {
  sigevent event{};
  event.sigev_notify = SIGEV_THREAD_ID;
  event.sigev_signo = timer_signal;
  event._sigev_un._tid = me.tid;
  timer_t timer = nullptr;
  demand(timer_create(CLOCK_MONOTONIC, &event, &timer) == 0, "timer_create");
  const itimerspec often = {{.tv_sec = 0, .tv_nsec = 151'000'000},
                            {.tv_sec = 0, .tv_nsec = 1'000'000}};
  demand(timer_settime(timer, 0, &often, nullptr) == 0, "timer_settime");
  return timer;
}

// Each round does everything once, in another order.
void work(worker& me) {
  std::array tasks = {
      hold_until_signal, load_to_the_end,  generate, remap, fault, start_threads, send,
      call_system,       count_exclusively};
  while (!stopping) {
    std::ranges::shuffle(tasks, me.random);
    for (const auto task : tasks) {
      own_number = me.random();
      task(me);
    }
  }
}

void live(unsigned number, std::barrier<>& all) {
  worker& me = workers[number];
  me.tid = static_cast<pid_t>(syscall(SYS_gettid));
  me.code = map_page(PROT_READ | PROT_WRITE | PROT_EXEC);
  me.guarded = map_page(PROT_NONE);
  demand(::pipe(me.pipe.data()) == 0, "pipe");
  if (number % 2 == 0) use_alternate_stack();
  self = &me;
  all.arrive_and_wait();
  timer_t timer = start_timer(me);
  work(me);
  timer_delete(timer);
  all.arrive_and_wait();  // nobody sends signals any more
  while (me.received < me.sent_here) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  demand(me.received == me.sent_here, "more signals than were sent");
  demand(me.sum_received == me.sum_sent_here, "signals carry other values");
  all.arrive_and_wait();
}

void tick_everywhere(long microseconds) {
  const itimerval often = {{.tv_sec = 0, .tv_usec = microseconds},
                           {.tv_sec = 0, .tv_usec = microseconds}};
  setitimer(ITIMER_REAL, &often, nullptr);
}

void run(std::chrono::seconds length) {
  std::barrier<> all(worker_count);
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < worker_count; i++) {
    threads.emplace_back([i, &all] { live(i, all); });
  }
  tick_everywhere(97'000);
  const auto end = std::chrono::steady_clock::now() + length;
  while (std::chrono::steady_clock::now() < end) usleep(50'000);
  stopping = true;
  for (std::thread& thread : threads) thread.join();
  tick_everywhere(0);
  std::uint64_t increments = 0;
  for (const worker& each : workers) increments += each.increments;
  demand(shared_count == increments, "increments were lost");
}

void report() {
  const std::pair<const char*, std::uint64_t> happened[] = {
      {"vectors held", counts.vectors},
      {"first-fault loads", counts.loads},
      {"generated functions", counts.functions},
      {"mappings replaced", counts.mappings},
      {"faults", counts.faults},
      {"queued signals", counts.queued},
      {"timer signals", counts.ticks},
      {"threads", counts.threads},
      {"increments", shared_count}};
  for (const auto& [what, count] : happened) {
    std::printf("%s %lu\n", what, count);
    demand(count != 0, "it was too short for everything to happen");
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::chrono::seconds length(argc > 1 ? std::strtol(argv[1], nullptr, 10) : 30);
  const std::uint64_t seed = argc > 2 ? std::strtoul(argv[2], nullptr, 10) : std::random_device{}();
  std::printf("soak: %ld seconds, seed %lu, vectors of %lu bits\n", length.count(), seed,
              8 * svcntb());
  std::fflush(stdout);
  for (unsigned i = 0; i < worker_count; i++) workers.emplace_back(seed + i);
  handle(queued_signal, on_queued, 0);
  handle(timer_signal, on_tick, SA_ONSTACK);
  handle(SIGALRM, on_tick, 0);
  handle(SIGSEGV, on_fault, SA_ONSTACK);
  run(length);
  report();
}
