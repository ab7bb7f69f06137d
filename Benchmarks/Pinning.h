// Keeping threads on processors of their own.
#pragma once

#include <sched.h>

#include <memory>
#include <thread>

namespace Bench {

/// Keeps the calling thread, and the threads that it starts meanwhile, on one processor while it lives.
class Pin {
 public:
  explicit Pin(unsigned processor) {
    ::sched_getaffinity(0, sizeof m_before, &m_before);
    cpu_set_t only;
    CPU_ZERO(&only);
    CPU_SET(processor % std::thread::hardware_concurrency(), &only);
    ::sched_setaffinity(0, sizeof only, &only);
  }
  ~Pin() { ::sched_setaffinity(0, sizeof m_before, &m_before); }
  Pin(const Pin&) = delete;
  Pin& operator=(const Pin&) = delete;

 private:
  cpu_set_t m_before;
};

/// Where callers run, and where the thread runs that answers them.
inline std::unique_ptr<Pin> CallerSide() { return std::make_unique<Pin>(0); }
inline std::unique_ptr<Pin> ServiceSide() { return std::make_unique<Pin>(1); }

}  // namespace Bench
