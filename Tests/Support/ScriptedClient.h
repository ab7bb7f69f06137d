// A device-stack client that answers as a test says.
#pragma once

#include <DeviceStackClient/IDeviceStackClient.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace TalTest {

struct TestError final : Vanta::IDeviceStackClient::IError {
  TestError(int c, std::string d) : code(c), description(std::move(d)) {}
  int GetErrorCode() const override { return code; }
  std::string GetFirstDetail() const override { return "first"; }
  std::string GetSecondDetail() const override { return "second"; }
  std::string GetDescription() const override { return description; }
  int code;
  std::string description;
};

/// Returns the ids of a script, one for each request, and runs what stands beside them on a thread of its own, in
/// order. When the script is at its end, requests get an empty id.
class ScriptedClient final : public Vanta::IDeviceStackClient {
 public:
  using Action = std::function<void(IResponseHandler&)>;
  struct Step {
    std::string id;
    Action action;  ///< may be empty: no answer
  };

  /// Gives a step for each request, told as in Calls(); called one at a time.
  using Script = std::function<Step(const std::string& call)>;

  std::function<void()> onFormat;  ///< called inside SetInternalValueFormat()

  explicit ScriptedClient(Script script) : m_script(std::move(script)), m_thread([this] { Run(); }) {}
  explicit ScriptedClient(std::deque<Step> steps = {})
      : ScriptedClient([steps = std::move(steps)](const std::string&) mutable {
          if (steps.empty()) return Step{};
          Step step = std::move(steps.front());
          steps.pop_front();
          return step;
        }) {}
  ~ScriptedClient() override {
    Post(nullptr);
    m_thread.join();
  }

  /// Runs @p action after those before it.
  void Post(Action action) {
    const Lock lock(m_mutex);
    m_actions.push_back(std::move(action));
    m_changed.notify_all();
  }
  /// Waits until all actions are done.
  void Drain() {
    Lock lock(m_mutex);
    m_idle.wait(lock, [this] { return m_actions.empty() && !m_isBusy; });
  }
  std::vector<std::string> Calls() const {
    const Lock lock(m_mutex);
    return m_calls;
  }

  std::string Request(const std::string& request) override { return Next("Request " + request); }
  std::string RegisterApplication(const std::string& a, const std::string& b, const std::string& c) override {
    return Next("RegisterApplication " + a + ' ' + b + ' ' + c);
  }
  std::string SetConfiguration(const std::string& text) override { return Next("SetConfiguration " + text); }
  std::string GetValue(AROOBJECTID id, bool flag) override {
    return Next("GetValue " + std::to_string(id) + (flag ? " true" : " false"));
  }
  std::string SetValue(AROOBJECTID id, const std::string& value, bool flag, void* context) override {
    return Next("SetValue " + std::to_string(id) + ' ' + value + (flag ? " true" : " false") +
                (context == nullptr ? "" : " context"));
  }
  void SetResponseHandler(IResponseHandler* handler, void* context) override {
    Note(std::string("SetResponseHandler ") + (handler ? "handler" : "none") + (context ? " context" : ""));
    const Lock lock(m_mutex);
    m_handler = handler;
  }
  void SetInternalValueFormat(bool enabled) override {
    Note(enabled ? "internal format" : "default format");
    if (onFormat) onFormat();
  }
  bool SetValueFormat(const std::string& name) override { return Note("SetValueFormat " + name); }
  bool SetConfiguration(AROOBJECTID id, const std::map<PropertyType, Property>& properties) override {
    return Note("configure " + std::to_string(id) + ' ' + properties.at(PropertyType::Name));
  }
  bool GetDeviceConfig(std::string& config, bool flag) override {
    config = flag ? "true" : "false";
    return Note("GetDeviceConfig");
  }
  bool SetDeviceConfig(const std::map<std::string, std::string>& entries) override {
    Note("SetDeviceConfig " + entries.at("key"));
    return false;
  }

 private:
  using Lock = std::unique_lock<std::mutex>;

  bool Note(const std::string& call) {
    const Lock lock(m_mutex);
    m_calls.push_back(call);
    return true;
  }
  std::string Next(const std::string& call) {
    Note(call);
    const Lock lock(m_scriptMutex);
    Step step = m_script(call);
    if (step.action) Post(std::move(step.action));
    return step.id;
  }
  void Run() {
    Lock lock(m_mutex);
    for (;;) {
      m_changed.wait(lock, [this] { return !m_actions.empty(); });
      const Action action = std::move(m_actions.front());
      m_actions.pop_front();
      if (!action) return;  // the end
      m_isBusy = true;
      IResponseHandler* const handler = m_handler;
      lock.unlock();
      if (handler != nullptr) action(*handler);
      lock.lock();
      m_isBusy = false;
      if (m_actions.empty()) m_idle.notify_all();
    }
  }

  mutable std::mutex m_mutex;
  std::condition_variable m_changed;
  std::condition_variable m_idle;
  std::mutex m_scriptMutex;
  Script m_script;
  std::deque<Action> m_actions;
  std::vector<std::string> m_calls;
  IResponseHandler* m_handler = nullptr;
  bool m_isBusy = false;
  std::thread m_thread;
};

}  // namespace TalTest
