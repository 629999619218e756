// Feeds a fuzz target with random inputs. The targets have libFuzzer's entry, so that they can be
// linked with -fsanitize=fuzzer instead where clang is at hand; GCC brings the sanitizers alone,
// and this driver makes up for the rest: input number i follows from the seed and i. A child
// process runs them, so that whatever ends it, the command that runs this input alone is printed.
#include <atomic>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <random>
#include <string_view>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

struct settings {
  std::uint64_t seed = std::random_device{}();
  std::uint64_t first = 0;
  std::uint64_t count = 100'000;
} chosen;

const char* program;
[[noreturn]] void refuse(const char* what, const char* argument) {
  std::fprintf(stderr, "%s %s; usage: %s [--seed N] [--first N] [--count N]\n", what, argument,
               program);
  std::exit(2);
}

std::uint64_t* setting_of(std::string_view option) {
  if (option == "--seed") return &chosen.seed;
  if (option == "--first") return &chosen.first;
  if (option == "--count") return &chosen.count;
  return nullptr;
}

void read_options(int argc, char* argv[]) {
  for (int i = 1; i < argc; i += 2) {
    std::uint64_t* const setting = setting_of(argv[i]);
    if (setting == nullptr) refuse("there is no option", argv[i]);
    if (i + 1 == argc) refuse("a number is missing after", argv[i]);
    const char* const end = argv[i + 1] + std::strlen(argv[i + 1]);
    const auto [stop, error] = std::from_chars(argv[i + 1], end, *setting);
    if (error != std::errc{} || stop != end) refuse("this is not a number:", argv[i + 1]);
  }
}

void run_input(std::uint64_t number) {
  std::mt19937_64 random(chosen.seed * 0x9e3779b97f4a7c15 + number);
  std::vector<std::uint8_t> input(random() % 64);
  for (std::uint8_t& byte : input) byte = static_cast<std::uint8_t>(random());
  LLVMFuzzerTestOneInput(input.data(), input.size());
}

void run_inputs(std::atomic<std::uint64_t>& current) {
  for (current = chosen.first; current < chosen.first + chosen.count; ++current) run_input(current);
}

}  // namespace

int main(int argc, char* argv[]) {
  program = argv[0];
  read_options(argc, argv);
  std::printf("seed %lu\n", chosen.seed);
  std::fflush(stdout);
  void* const shared = mmap(nullptr, sizeof(std::atomic<std::uint64_t>), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  auto& current = *new (shared) std::atomic<std::uint64_t>;
  const pid_t child = fork();
  if (child == 0) {
    run_inputs(current);
    return 0;
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) {
    std::fprintf(stderr, "again with: %s --seed %lu --first %lu --count 1\n", program, chosen.seed,
                 current.load());
    return 1;
  }
  std::printf("%lu inputs without a finding\n", chosen.count);
}
