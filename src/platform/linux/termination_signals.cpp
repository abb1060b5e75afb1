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

constexpr std::array endings{SIGTERM, SIGINT, SIGHUP};
constexpr int none = -1;

/// What the handler writes to: a handler is given nothing else.
std::atomic<int> signalledDescriptor = none;
static_assert(std::atomic<int>::is_always_lock_free);

void noteSignal(int /*signal*/) {
  const int before = errno;
  const std::uint64_t one = 1;
  [[maybe_unused]] const ssize_t written = ::write(signalledDescriptor, &one, sizeof one);
  errno = before;
}

void handleEndings(void (*handler)(int)) {
  struct sigaction action = {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  for (const int signal : endings) ::sigaction(signal, &action, nullptr);
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> end)
    : signalled_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      notifier_(signalled_.number(), QSocketNotifier::Read) {
  if (!signalled_.valid()) return;
  connect(&notifier_, &QSocketNotifier::activated, this, [this, end = std::move(end)] {
    std::uint64_t count = 0;
    if (::read(signalled_.number(), &count, sizeof count) > 0) end();
  });
  signalledDescriptor = signalled_.number();
  handleEndings(&noteSignal);
}

TerminationSignals::~TerminationSignals() {
  if (!signalled_.valid()) return;
  handleEndings(SIG_DFL);
  signalledDescriptor = none;
}

}  // namespace tarn
