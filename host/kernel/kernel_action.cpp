#include "host/kernel/kernel_action.h"

#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>

#include "host/kernel/address.h"
#include "host/kernel/kernel_call.h"

namespace host {
namespace {

std::int64_t call_sigaction(int signal, const kernel_action* action, kernel_action* previous) {
  return kernel_call(SYS_rt_sigaction, static_cast<std::uint64_t>(signal), address_of(action),
                     address_of(previous), sizeof action->mask);
}

}  // namespace

kernel_action action_in_kernel(int signal) {
  kernel_action action{};
  call_sigaction(signal, nullptr, &action);
  return action;
}

std::int64_t set_action_in_kernel(int signal, const kernel_action& action) {
  return call_sigaction(signal, &action, nullptr);
}

void die_by_signal(int signal) {
  set_action_in_kernel(signal, kernel_action{});
  sigset_t only;
  sigemptyset(&only);
  sigaddset(&only, signal);
  pthread_sigmask(SIG_UNBLOCK, &only, nullptr);
  syscall(SYS_tgkill, getpid(), syscall(SYS_gettid), signal);
  _exit(128 + signal);  // the signal was not fatal by default
}

}  // namespace host
