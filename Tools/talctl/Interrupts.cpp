#include "Interrupts.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <iterator>

namespace Talctl {
namespace {

static_assert(std::atomic<int>::is_always_lock_free);
std::atomic<int> g_signal{0};
std::atomic<int> g_toWaiter{-1};  // a byte for each signal, so that it cannot come between a look and a wait

void OnSignal(int signal) {
  const int saved = errno;
  g_signal = signal;
  if (g_toWaiter >= 0 && ::write(g_toWaiter, "", 1) < 0) errno = saved;  // full: the waiter has enough to read
  errno = saved;
}

/// The end that a waiter reads of a pipe that lives as long as the process; -1: there is none.
int WaitersEnd() {
  static const int end = [] {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return -1;
    g_toWaiter = ends[1];
    return ends[0];
  }();
  return end;
}

}  // namespace

Interrupts::Interrupts() {
  static_assert(std::size(kSignals) == sizeof m_previous / sizeof m_previous[0]);
  char stale[16];
  while (::read(WaitersEnd(), stale, sizeof stale) > 0) {
  }
  g_signal = 0;
  struct sigaction action = {};
  action.sa_handler = OnSignal;
  action.sa_flags = static_cast<int>(SA_RESETHAND);  // and no restart of what waits for a file
  for (std::size_t i = 0; i < std::size(kSignals); ++i) {
    sigaction(kSignals[i], nullptr, &m_previous[i]);
    if (m_previous[i].sa_handler != SIG_IGN) sigaction(kSignals[i], &action, nullptr);
  }
}

Interrupts::~Interrupts() {
  for (std::size_t i = 0; i < std::size(kSignals); ++i) sigaction(kSignals[i], &m_previous[i], nullptr);
}

int Interrupts::Signal() { return g_signal.load(std::memory_order_relaxed); }

void Interrupts::WaitToRead(int descriptor) {
  pollfd waits[] = {{descriptor, POLLIN, 0}, {WaitersEnd(), POLLIN, 0}};
  while (g_signal == 0 && ::poll(waits, std::size(waits), -1) < 0 && errno == EINTR) {
  }
}

bool IsReaderGone(int descriptor) {
  pollfd pipe{descriptor, POLLOUT, 0};
  return descriptor >= 0 && ::poll(&pipe, 1, 0) == 1 && (pipe.revents & POLLERR) != 0;
}

}  // namespace Talctl
