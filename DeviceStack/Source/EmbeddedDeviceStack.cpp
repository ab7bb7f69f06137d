#include <DeviceStack/EmbeddedDeviceStack.h>
#include <Format/Quoted.h>
#include <TalLog/LogRecord.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <sstream>
#include <utility>
#include <vector>

#include "ObjectStore.h"
#include "RequestText.h"
#include "TaskThread.h"

namespace DeviceStack {
namespace {

using Vanta::IDeviceStackClient;
using AROOBJECTID = IDeviceStackClient::AROOBJECTID;
using IResponseHandler = IDeviceStackClient::IResponseHandler;

/// What a request is answered with.
struct Answer {
  std::string requestId;
  AROOBJECTID id = 0;
  std::string urn;  ///< the object's name
  std::string text;
  ServiceError error;
};

/// Calls back as the operation is answered.
void Deliver(Operation operation, IResponseHandler& handler, void* context, const Answer& answer) {
  switch (operation) {
    case Operation::Request: handler.OnResponse(context, answer.requestId, answer.text, answer.error); break;
    case Operation::RegisterApplication: handler.OnRegisterApplication(context, answer.requestId, answer.error); break;
    case Operation::SetConfiguration: handler.OnSetConfiguration(context, answer.requestId, answer.error); break;
    case Operation::GetValue:
      handler.OnGetValue(context, answer.requestId, answer.id, answer.urn, answer.text, answer.error);
      break;
    case Operation::SetValue:
      handler.OnSetValue(context, answer.requestId, answer.id, answer.urn, answer.text, answer.error);
      break;
  }
}

struct PropertyRow {
  IDeviceStackClient::PropertyType type;
  const char* key;  ///< in the installation's text
};
constexpr PropertyRow kProperties[] = {{IDeviceStackClient::PropertyType::Name, "name"},
                                       {IDeviceStackClient::PropertyType::DatapointType, "dpt"},
                                       {IDeviceStackClient::PropertyType::GroupAddress, "groupAddress"},
                                       {IDeviceStackClient::PropertyType::Flags, "flags"},
                                       {IDeviceStackClient::PropertyType::InitialValue, "initial"}};

Format::Json Words(const std::string& text) {
  Format::Json words = Format::Json::array();
  std::istringstream in(text);
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

}  // namespace

/// The service proper. m_workMutex guards what the service knows, and is held while it works; m_callMutex guards who is
/// called back, and is held while that happens, so that nobody is called after having been taken off. Neither is taken
/// inside the other, and no other lock is held during a callback.
class EmbeddedDeviceStack::Service {
 public:
  Service(Installation installation, Knx::Bus& bus) : m_bus(bus), m_store(std::move(installation)) {
    m_bus.SetReceiver(
        [this](const Knx::Telegram& telegram) { m_thread.Post([this, telegram] { Receive(telegram); }); });
  }
  ~Service() { Stop(); }

  void Stop() {
    if (!m_isReleased.exchange(true)) m_bus.SetReceiver(nullptr);  // once: then the bus may be somebody else's
    {
      const CallLock lock(m_callMutex);
      m_isStopped = true;
    }
    m_thread.Stop();
  }
  void WaitUntilIdle() { m_thread.WaitUntilIdle(); }

  // Requests: each is done on the service's thread, and answered with what is left in the answer or with what was
  // thrown.
  using Work = std::function<void(Answer&)>;
  std::string Submit(Operation operation, Work work);
  void Register(const std::string& name);
  void AnswerText(const std::string& request, Answer& answer);
  void Reconfigure(const std::string& configuration);
  void GetValue(Answer& answer);
  void SetValue(const std::string& text, Answer& answer);

  // Done at once.
  bool Configure(AROOBJECTID id, const std::map<PropertyType, Property>& properties);
  bool ConfigureDevice(const std::map<std::string, std::string>& entries);
  std::string Installed() const;
  void UseInternalFormat(bool enabled) { m_internalFormat = enabled; }

  void SetResponseHandler(IResponseHandler* handler, void* context);
  void SetListener(Listener listener);
  void SetFaultPlan(FaultPlan plan);
  Counters GetCounters() const;

 private:
  using Lock = std::lock_guard<std::mutex>;
  using CallLock = std::lock_guard<std::recursive_mutex>;

  void RequireApplication() const;
  void Give(Operation operation, const Answer& answer);
  void GiveWithFault(Operation operation, const Answer& answer, Fault::Kind kind);
  bool Send(const Knx::Telegram& telegram, std::string& error);
  void Receive(const Knx::Telegram& telegram);
  void ReceiveAtWork(const Knx::Telegram& telegram, std::vector<BusEvent>& events);
  void Tell(const std::vector<BusEvent>& events);
  template <class Call>
  void CallBack(Call call);
  void Count(std::uint64_t Counters::*counter, int change = 1);
  std::string Serialised(const AROVALUE& value) const;

  Knx::Bus& m_bus;
  std::atomic<std::uint64_t> m_nextId{1};
  std::atomic<bool> m_internalFormat{false};
  std::atomic<bool> m_isReleased{false};  ///< the bus

  mutable std::mutex m_workMutex;
  ObjectStore m_store;
  std::string m_application;  ///< that is registered

  std::recursive_mutex m_callMutex;  ///< recursive: a callback may change who is called
  IResponseHandler* m_handler = nullptr;
  void* m_context = nullptr;
  std::shared_ptr<const Listener> m_listener;
  bool m_isStopped = false;                          ///< nobody is called any more
  std::vector<std::pair<Operation, Answer>> m_late;  ///< held back; used on the service's thread only

  std::mutex m_planMutex;
  FaultPlan m_plan;

  mutable std::mutex m_countMutex;
  Counters m_counters;

  TaskThread m_thread;  ///< runs none of the above before and after they live
};

std::string EmbeddedDeviceStack::Service::Submit(Operation operation, Work work) {
  Fault fault;
  {
    const Lock lock(m_planMutex);
    if (m_plan) fault = m_plan(operation);
  }
  if (fault.kind == Fault::Kind::EmptyId) return {};
  Answer answer;
  answer.requestId = std::to_string(m_nextId++);
  std::string id = answer.requestId;
  const auto task = [this, operation, fault, work = std::move(work), answer = std::move(answer)]() mutable {
    try {
      if (fault.kind == Fault::Kind::Error) {
        throw ServiceError(ErrorCode::Injected, "", "this request fails because a test wants it to");
      }
      work(answer);
    } catch (const ServiceError& error) {
      answer.error = error;
    } catch (const std::exception& error) {
      answer.error = ServiceError(ErrorCode::Internal, "", std::string("the service failed: ") + error.what());
    } catch (...) {
      answer.error = ServiceError(ErrorCode::Internal, "", "the service failed");
    }
    if (fault.delay.count() <= 0) {
      GiveWithFault(operation, answer, fault.kind);
      return;
    }
    m_thread.Post([this, operation, answer, kind = fault.kind] { GiveWithFault(operation, answer, kind); },
                  fault.delay);
  };
  Count(&Counters::requests);  // before the task can be done
  if (m_thread.Post(task)) return id;
  Count(&Counters::requests, -1);
  return {};
}

void EmbeddedDeviceStack::Service::GiveWithFault(Operation operation, const Answer& answer, Fault::Kind kind) {
  if (kind == Fault::Kind::Drop) return;
  if (kind == Fault::Kind::Late) {
    m_late.emplace_back(operation, answer);
    return;
  }
  Give(operation, answer);
  if (kind == Fault::Kind::Duplicate) Give(operation, answer);
  for (const auto& late : std::exchange(m_late, {})) Give(late.first, late.second);
}

void EmbeddedDeviceStack::Service::Give(Operation operation, const Answer& answer) {
  Count(&Counters::answered);
  if (answer.error.GetErrorCode() != 0) Count(&Counters::errors);
  CallBack([&] {
    if (m_handler != nullptr) Deliver(operation, *m_handler, m_context, answer);
  });
}

/// What a callback throws is its own affair: it is logged, and the work goes on.
template <class Call>
void EmbeddedDeviceStack::Service::CallBack(Call call) {
  const CallLock lock(m_callMutex);
  if (m_isStopped) return;
  try {
    call();
  } catch (const std::exception& error) {
    TAL_LOG(Error) << "A callback of the device stack failed: " << error.what();
  } catch (...) {
    TAL_LOG(Error) << "A callback of the device stack failed";
  }
}

void EmbeddedDeviceStack::Service::RequireApplication() const {
  if (!m_application.empty()) return;
  throw ServiceError(ErrorCode::NotRegistered, "", "no application is registered: register one first");
}

void EmbeddedDeviceStack::Service::Register(const std::string& name) {
  if (name.empty()) {
    throw ServiceError(ErrorCode::InvalidApplication, "", "an application needs a name: the first text is empty");
  }
  const Lock lock(m_workMutex);
  m_application = name;
}

void EmbeddedDeviceStack::Service::AnswerText(const std::string& request, Answer& answer) {
  const Counters counters = GetCounters();
  const Lock lock(m_workMutex);
  RequireApplication();
  answer.text = AnswerRequest(request, m_store, counters);
}

void EmbeddedDeviceStack::Service::Reconfigure(const std::string& configuration) {
  const Lock lock(m_workMutex);
  RequireApplication();
  try {
    m_store.Replace(ParseInstallation(configuration, "configuration"));
  } catch (const InstallationError& error) {
    throw ServiceError(ErrorCode::InvalidConfiguration, "", error.what());
  }
}

void EmbeddedDeviceStack::Service::GetValue(Answer& answer) {
  const Lock lock(m_workMutex);
  RequireApplication();
  if (const CommunicationObject* const object = m_store.Find(answer.id)) answer.urn = object->name;
  answer.text = Serialised(m_store.Value(answer.id));
}

void EmbeddedDeviceStack::Service::SetValue(const std::string& text, Answer& answer) {
  std::vector<BusEvent> events;
  std::unique_lock<std::mutex> lock(m_workMutex);
  RequireApplication();
  const CommunicationObject* const object = m_store.Find(answer.id);
  if (object != nullptr) answer.urn = object->name;
  AROVALUE value;
  if (!value.Deserialize(text)) {
    throw ServiceError(ErrorCode::InvalidValue, std::to_string(answer.id),
                       Format::Quoted(text) + " is no serialised value: expected a type and a content such as 3:21");
  }
  std::string stored = Serialised(value);
  if (const auto telegram = m_store.TelegramOf(answer.id, value)) {
    events.push_back({BusEvent::Kind::Sent, *telegram, *object, value, ""});
    std::string error;
    if (!Send(*telegram, error)) {
      throw ServiceError(ErrorCode::NotSent, std::to_string(answer.id), "the telegram could not be sent: " + error);
    }
  }
  // What was sent is stored: from here on nothing takes memory.
  m_store.Assign(answer.id, std::move(value));
  answer.text = std::move(stored);
  lock.unlock();
  Tell(events);
}

/// Whatever the bus does about it.
bool EmbeddedDeviceStack::Service::Send(const Knx::Telegram& telegram, std::string& error) {
  bool isSent = false;
  try {
    isSent = m_bus.Send(telegram, error);
  } catch (const std::exception& exception) {
    error = exception.what();
  } catch (...) {
    error = "the bus failed";
  }
  Count(isSent ? &Counters::telegramsSent : &Counters::telegramsNotSent);
  return isSent;
}

void EmbeddedDeviceStack::Service::Receive(const Knx::Telegram& telegram) {
  std::vector<BusEvent> events;
  {
    const Lock lock(m_workMutex);
    ReceiveAtWork(telegram, events);
  }
  Tell(events);
}

void EmbeddedDeviceStack::Service::ReceiveAtWork(const Knx::Telegram& telegram, std::vector<BusEvent>& events) {
  using Kind = BusEvent::Kind;
  Count(&Counters::telegramsReceived);
  const std::vector<ObjectStore::Effect> effects = m_store.Receive(telegram);
  if (effects.empty()) {
    Count(&Counters::telegramsIgnored);
    events.push_back({Kind::Ignored, telegram, boost::none, boost::none, ""});
  }
  for (const ObjectStore::Effect& effect : effects) {
    if (!effect.refusal.empty()) {
      Count(&Counters::valuesRefused);
      events.push_back({Kind::Refused, telegram, *effect.object, boost::none, effect.refusal});
    } else if (!effect.response) {
      Count(&Counters::valuesDecoded);
      events.push_back({Kind::Received, telegram, *effect.object, effect.value, ""});
    } else {
      events.push_back({Kind::Read, telegram, *effect.object, boost::none, ""});
      std::string error;
      if (Send(*effect.response, error)) {
        events.push_back({Kind::Sent, *effect.response, *effect.object, m_store.Value(effect.object->ValueId()), ""});
      } else {
        events.push_back({Kind::Refused, *effect.response, *effect.object, boost::none, "not sent: " + error});
      }
    }
  }
}

void EmbeddedDeviceStack::Service::Tell(const std::vector<BusEvent>& events) {
  for (const BusEvent& event : events) {
    CallBack([&] {
      const std::shared_ptr<const Listener> listener = m_listener;  // lives on when it takes itself off
      if (listener && *listener) (*listener)(event);
    });
  }
}

bool EmbeddedDeviceStack::Service::Configure(AROOBJECTID id, const std::map<PropertyType, Property>& properties) {
  const Lock lock(m_workMutex);
  const CommunicationObject* const object = m_store.Find(id);
  if (object == nullptr) {
    TAL_LOG(Error) << "There is no communication object " << id << " to configure";
    return false;
  }
  const std::string name = object->name;
  Format::Json json = ToJson(m_store.GetInstallation());
  for (auto& entry : json["objects"]) {
    if (entry["name"] != name) continue;
    for (const auto& [type, text] : properties) {
      const auto* const row = std::find_if(std::begin(kProperties), std::end(kProperties),
                                           [type = type](const PropertyRow& r) { return r.type == type; });
      if (row == std::end(kProperties)) {
        TAL_LOG(Error) << "There is no property " << static_cast<std::uint32_t>(type) << " of communication objects";
        return false;
      }
      entry[row->key] = type == PropertyType::Flags ? Words(text) : Format::Json(text);
    }
    break;
  }
  try {
    m_store.Change(ParseInstallation(json.dump(), "configuration"));
    return true;
  } catch (const std::exception& error) {
    TAL_LOG(Error) << "Communication object " << id << " cannot be configured: " << error.what();
    return false;
  }
}

bool EmbeddedDeviceStack::Service::ConfigureDevice(const std::map<std::string, std::string>& entries) {
  const Lock lock(m_workMutex);
  Format::Json json = ToJson(m_store.GetInstallation());
  for (const auto& [key, text] : entries) {
    if (key != "name" && key != "address") {
      TAL_LOG(Error) << "There is no entry " << Format::Quoted(key) << " of the device: expected name or address";
      return false;
    }
    json[key] = text;
  }
  try {
    m_store.Change(ParseInstallation(json.dump(), "configuration"));
    return true;
  } catch (const std::exception& error) {
    TAL_LOG(Error) << "The device cannot be configured: " << error.what();
    return false;
  }
}

std::string EmbeddedDeviceStack::Service::Installed() const {
  const Lock lock(m_workMutex);
  return FormatInstallation(m_store.GetInstallation());
}

void EmbeddedDeviceStack::Service::SetResponseHandler(IResponseHandler* handler, void* context) {
  const CallLock lock(m_callMutex);
  m_handler = handler;
  m_context = context;
}

void EmbeddedDeviceStack::Service::SetListener(Listener listener) {
  const CallLock lock(m_callMutex);
  m_listener = std::make_shared<const Listener>(std::move(listener));
}

void EmbeddedDeviceStack::Service::SetFaultPlan(FaultPlan plan) {
  const Lock lock(m_planMutex);
  m_plan = std::move(plan);
}

void EmbeddedDeviceStack::Service::Count(std::uint64_t Counters::*counter, int change) {
  const Lock lock(m_countMutex);
  m_counters.*counter += static_cast<std::uint64_t>(std::int64_t{change});
}

Counters EmbeddedDeviceStack::Service::GetCounters() const {
  const Lock lock(m_countMutex);
  return m_counters;
}

std::string EmbeddedDeviceStack::Service::Serialised(const AROVALUE& value) const {
  std::string text;
  value.Serialize(text, m_internalFormat);
  return text;
}

EmbeddedDeviceStack::EmbeddedDeviceStack(Installation installation, Knx::Bus& bus)
    : m_service(std::make_unique<Service>(std::move(installation), bus)) {}
EmbeddedDeviceStack::~EmbeddedDeviceStack() { m_service->Stop(); }

std::string EmbeddedDeviceStack::Request(const std::string& request) {
  return m_service->Submit(Operation::Request,
                           [this, request](Answer& answer) { m_service->AnswerText(request, answer); });
}

std::string EmbeddedDeviceStack::RegisterApplication(const std::string& first, const std::string&, const std::string&) {
  return m_service->Submit(Operation::RegisterApplication, [this, first](Answer&) { m_service->Register(first); });
}

std::string EmbeddedDeviceStack::SetConfiguration(const std::string& configuration) {
  return m_service->Submit(Operation::SetConfiguration,
                           [this, configuration](Answer&) { m_service->Reconfigure(configuration); });
}

std::string EmbeddedDeviceStack::GetValue(AROOBJECTID id, bool) {
  return m_service->Submit(Operation::GetValue, [this, id](Answer& answer) {
    answer.id = id;
    m_service->GetValue(answer);
  });
}

std::string EmbeddedDeviceStack::SetValue(AROOBJECTID id, const std::string& value, bool, void*) {
  return m_service->Submit(Operation::SetValue, [this, id, value](Answer& answer) {
    answer.id = id;
    m_service->SetValue(value, answer);
  });
}

bool EmbeddedDeviceStack::SetConfiguration(AROOBJECTID id, const std::map<PropertyType, Property>& properties) {
  return m_service->Configure(id, properties);
}

bool EmbeddedDeviceStack::GetDeviceConfig(std::string& config, bool) {
  config = m_service->Installed();
  return true;
}

bool EmbeddedDeviceStack::SetDeviceConfig(const std::map<std::string, std::string>& entries) {
  return m_service->ConfigureDevice(entries);
}

bool EmbeddedDeviceStack::SetValueFormat(const std::string& name) { return name == "Native"; }
void EmbeddedDeviceStack::SetInternalValueFormat(bool enabled) { m_service->UseInternalFormat(enabled); }
void EmbeddedDeviceStack::SetResponseHandler(IResponseHandler* handler, void* context) {
  m_service->SetResponseHandler(handler, context);
}
void EmbeddedDeviceStack::SetListener(Listener listener) { m_service->SetListener(std::move(listener)); }
void EmbeddedDeviceStack::SetFaultPlan(FaultPlan plan) { m_service->SetFaultPlan(std::move(plan)); }
Counters EmbeddedDeviceStack::GetCounters() const { return m_service->GetCounters(); }
void EmbeddedDeviceStack::WaitUntilIdle() { m_service->WaitUntilIdle(); }
void EmbeddedDeviceStack::Stop() { m_service->Stop(); }

}  // namespace DeviceStack
