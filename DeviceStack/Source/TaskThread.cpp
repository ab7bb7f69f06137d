#include "TaskThread.h"

#include <TalLog/LogRecord.h>

#include <utility>

namespace DeviceStack {
namespace {

void RunGuarded(const TaskThread::Task& task) {
  try {
    task();
  } catch (const std::exception& error) {
    TAL_LOG(Error) << "A task of the device stack failed: " << error.what();
  } catch (...) {
    TAL_LOG(Error) << "A task of the device stack failed";
  }
}

}  // namespace

TaskThread::TaskThread() {
  m_thread = std::thread([this] { Run(); });
  m_id = m_thread.get_id();
}

TaskThread::~TaskThread() { Stop(); }

bool TaskThread::Post(Task task, Clock::duration delay) {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isStopped) return false;
    m_tasks.emplace(Clock::now() + delay, std::move(task));
  }
  m_changed.notify_one();
  return true;
}

void TaskThread::WaitUntilIdle() {
  if (std::this_thread::get_id() == m_id) return;
  std::unique_lock<std::mutex> lock(m_mutex);
  m_idle.wait(lock, [this] { return m_isStopped || (!m_isRunning && !IsDue()); });
}

void TaskThread::Stop() {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_isStopped = true;
  }
  m_changed.notify_one();
  m_idle.notify_all();
  if (std::this_thread::get_id() == m_id) return;
  const std::lock_guard<std::mutex> lock(m_joinMutex);
  if (m_thread.joinable()) m_thread.join();
}

void TaskThread::Run() {
  std::unique_lock<std::mutex> lock(m_mutex);
  while (!m_isStopped) {
    if (!IsDue()) {
      m_idle.notify_all();
      if (m_tasks.empty()) {
        m_changed.wait(lock);
      } else {
        m_changed.wait_until(lock, Clock::time_point(m_tasks.begin()->first));  // a copy: the queue may change
      }
      continue;
    }
    Task task = std::move(m_tasks.begin()->second);
    m_tasks.erase(m_tasks.begin());
    m_isRunning = true;
    lock.unlock();
    RunGuarded(task);
    task = nullptr;  // what it holds goes outside the lock
    lock.lock();
    m_isRunning = false;
  }
}

}  // namespace DeviceStack
