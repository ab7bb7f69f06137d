// A thread that works off tasks in the order of their times.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <thread>

namespace DeviceStack {

/// Tasks run one after the other on a thread of their own, those of the same time in the order in which they came. What
/// a task throws is logged and forgotten. All operations may be called from any thread, tasks included.
class TaskThread {
 public:
  using Clock = std::chrono::steady_clock;
  using Task = std::function<void()>;

  TaskThread();
  /// Must not run on the thread itself.
  ~TaskThread();
  TaskThread(const TaskThread&) = delete;
  TaskThread& operator=(const TaskThread&) = delete;

  /// @return  false after Stop(): the task will not run.
  bool Post(Task task, Clock::duration delay = {});

  /// Waits until no task runs and none is due; tasks of a later time do not count. Returns at once on the thread
  /// itself.
  void WaitUntilIdle();

  /// No task begins after this. Waits for the one that runs, unless it is this very one.
  void Stop();

 private:
  void Run();
  bool IsDue() const { return !m_tasks.empty() && m_tasks.begin()->first <= Clock::now(); }

  std::mutex m_mutex;
  std::condition_variable m_changed;
  std::condition_variable m_idle;
  std::multimap<Clock::time_point, Task> m_tasks;
  bool m_isRunning = false;
  bool m_isStopped = false;
  std::mutex m_joinMutex;
  std::thread m_thread;
  std::thread::id m_id;
};

}  // namespace DeviceStack
