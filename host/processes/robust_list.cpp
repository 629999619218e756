#include "host/processes/robust_list.h"

#include <atomic>
#include <linux/futex.h>
#include <sys/syscall.h>

#include "host/kernel/address.h"
#include "host/kernel/guarded_copy.h"
#include "host/kernel/kernel_call.h"
#include "host/threads/thread.h"

namespace host {
namespace {

// Bit 0 of an entry's address marks a mutex with priority inheritance. The kernel knows these
// mutexes without the list.
class entry {
 public:
  explicit entry(std::uint64_t word) : word_(word) {}
  [[nodiscard]] std::uint64_t address() const { return word_ & ~std::uint64_t{1}; }
  [[nodiscard]] bool inherits_priority() const { return (word_ & 1) != 0; }

 private:
  std::uint64_t word_;
};

void wake_one(std::uint64_t futex) { kernel_call(SYS_futex, futex, FUTEX_WAKE, 1); }

// `pending` means that the thread was taking or releasing this mutex. It may have released it
// without waking a waiter.
void leave(std::uint64_t futex, const entry& of, pid_t owner, bool pending) {
  std::uint32_t seen = 0;
  if (futex % sizeof seen != 0 || !read_from_application(futex, seen)) return;
  if (pending && !of.inherits_priority() && seen == 0) wake_one(futex);
  const std::atomic_ref word(*pointer_to<std::uint32_t>(futex));
  while ((seen & FUTEX_TID_MASK) == static_cast<std::uint32_t>(owner)) {
    const std::uint32_t dead = (seen & FUTEX_WAITERS) | FUTEX_OWNER_DIED;
    if (!word.compare_exchange_strong(seen, dead)) continue;
    if (!of.inherits_priority() && (seen & FUTEX_WAITERS) != 0) wake_one(futex);
    return;
  }
}

void leave_all(std::uint64_t address, pid_t owner) {
  robust_list_head head{};
  if (!read_from_application(address, head)) return;
  const auto futex_of = [&head](const entry& e) {
    return e.address() + static_cast<std::uint64_t>(head.futex_offset);
  };
  const entry pending(address_of(head.list_op_pending));
  entry at(address_of(head.list.next));
  for (int left = ROBUST_LIST_LIMIT; left > 0 && at.address() != address; --left) {
    std::uint64_t next =
        0;  // read first: another thread may take the mutex as soon as it is released
    const bool readable = read_from_application(at.address(), next);
    if (at.address() != pending.address()) leave(futex_of(at), at, owner, false);
    if (!readable) return;
    at = entry(next);
  }
  if (pending.address() != 0) leave(futex_of(pending), pending, owner, true);
}

}  // namespace

std::int64_t set_robust_list(thread_state& thread, const std::uint64_t* x) {
  const std::int64_t result = kernel_call(SYS_set_robust_list, x[0], x[1]);
  if (result == 0) thread.process.robust_list = x[0];
  return result;
}

void leave_robust_mutexes(thread_state& thread) {
  if (thread.process.robust_list == 0) return;
  leave_all(thread.process.robust_list, thread.tid);
  kernel_call(SYS_set_robust_list, 0, sizeof(robust_list_head));
}

}  // namespace host
