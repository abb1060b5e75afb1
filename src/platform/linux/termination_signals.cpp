// SPDX-FileCopyrightText: 2026 The Tarn authors
// SPDX-License-Identifier: MIT

#include "platform/linux/termination_signals.hpp"

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <utility>

namespace tarn {

namespace {

constexpr std::array terminationSignals{SIGTERM, SIGINT, SIGHUP};
constexpr int noDescriptor = -1;

/// The eventfd that the handler writes to. Global, because a signal handler has no context argument.
std::atomic<int> signalledDescriptor = noDescriptor;
static_assert(std::atomic<int>::is_always_lock_free);

void handleSignal(int /*signal*/) {
  const int savedErrno = errno;
  const std::uint64_t increment = 1;
  [[maybe_unused]] const ssize_t written = ::write(signalledDescriptor, &increment, sizeof increment);
  errno = savedErrno;
}

void installHandler(void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  for (const int signal : terminationSignals) ::sigaction(signal, &action, nullptr);
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> terminate)
    : signalled_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      notifier_(signalled_.number(), QSocketNotifier::Read) {
  if (!signalled_.valid()) return;
  connect(&notifier_, &QSocketNotifier::activated, this, [this, terminate = std::move(terminate)] {
    std::uint64_t count = 0;
    if (::read(signalled_.number(), &count, sizeof count) > 0) terminate();
  });
  signalledDescriptor = signalled_.number();
  installHandler(&handleSignal);
}

TerminationSignals::~TerminationSignals() {
  if (!signalled_.valid()) return;
  installHandler(SIG_DFL);
  signalledDescriptor = noDescriptor;
}

}  // namespace tarn
