// Threads as programs use them: joined and detached, with thread-local storage, locks, condition
// variables and atomics, many at once and many in turn.
#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <pthread.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

thread_local int own = 5;
std::mutex mutex;
std::condition_variable changed;
long total = 0;
std::atomic<long> counted = 0;
int turn = 0;

void work(int number) {
  for (int i = 0; i < 500; i++) {
    own += number;
    counted.fetch_add(1, std::memory_order_relaxed);
    const std::lock_guard lock(mutex);
    total += own % 3;
  }
}

void take_turns(int number, int of) {
  for (int round = 0; round < 20; round++) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [=] { return turn % of == number; });
    turn++;
    changed.notify_all();
  }
}

template <typename Body>
void run_together(int count, Body body) {
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; i++) threads.emplace_back(body, i);
  for (std::thread& thread : threads) thread.join();
}

void* leave_early(void* argument) { pthread_exit(argument); }

}  // namespace

int main() {
  for (int round = 0; round < 3; round++) run_together(6, work);
  std::printf("counted %ld total %ld own %d\n", counted.load(), total, own);
  run_together(4, [](int number) { take_turns(number, 4); });
  std::printf("turns %d\n", turn);
  for (int i = 0; i < 20; i++) std::thread(work, i).join();
  std::printf("counted %ld\n", counted.load());
  pthread_t early{};
  pthread_create(&early, nullptr, leave_early, &own);
  void* result = nullptr;
  pthread_join(early, &result);
  std::printf("early %d\n", result == &own ? 1 : 0);
  std::atomic<bool> done = false;
  std::thread([&done] { done = true; }).detach();
  while (!done) std::this_thread::yield();
  std::printf("main is the process: %d\n", gettid() == getpid() ? 1 : 0);
  return 0;
}
