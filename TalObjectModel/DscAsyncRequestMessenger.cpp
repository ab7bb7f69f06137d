#include <Tal/DscAsyncRequestMessenger.h>
#include <TalLog/LogRecord.h>

#include <algorithm>
#include <boost/chrono/system_clocks.hpp>
#include <boost/date_time/posix_time/posix_time_io.hpp>
#include <boost/optional.hpp>

namespace Tal {
namespace {

using boost::chrono::steady_clock;
using boost::posix_time::time_duration;

const time_duration kUseDefault;  // zero

const BoolReader& Always() {
  static const BoolReader always([] { return true; });
  return always;
}

/// The longest that is waited at a stretch, so that no clock overflows.
constexpr boost::chrono::hours kStretch(24);

/// The moment when a wait of @p timeout ends; nothing: it does not end. Durations beyond the clock's range count as
/// infinite, negative ones and not-a-date-time as over.
boost::optional<steady_clock::time_point> DeadlineOf(const time_duration& timeout) {
  const steady_clock::time_point now = steady_clock::now();
  if (timeout.is_pos_infinity()) return boost::none;
  if (timeout.is_special() || timeout.is_negative()) return now;
  using Microseconds = boost::chrono::microseconds;
  const auto room = boost::chrono::duration_cast<Microseconds>(steady_clock::time_point::max() - now);
  if (timeout.total_microseconds() >= room.count()) return boost::none;
  return now + Microseconds(timeout.total_microseconds());
}

bool IsAnswered(const std::weak_ptr<Docket>& entry) {
  const std::shared_ptr<Docket> docket = entry.lock();
  return docket && docket->IsAnswered();
}

/// What every record of a failed request begins with.
struct ErrorText {
  const std::string& requestId;
  const Vanta::IDeviceStackClient::IError& error;
  friend std::ostream& operator<<(std::ostream& os, const ErrorText& text) {
    return os << "ZEL error for request " << text.requestId << ": " << text.error.GetErrorCode() << "; "
              << text.error.GetFirstDetail() << "; " << text.error.GetSecondDetail();
  }
};

}  // namespace

DscAsyncRequestMessenger::DscAsyncRequestMessenger(RequestMessengerDeviceStack& messenger, time_duration timeout,
                                                   unsigned int retries)
    : m_messenger(messenger), m_defaultTimeout(timeout), m_attempts(retries + 1) {}
DscAsyncRequestMessenger::~DscAsyncRequestMessenger() = default;

void DscAsyncRequestMessenger::SetAsResponseHandler() { m_messenger.SetResponseHandler(this); }
void DscAsyncRequestMessenger::UnsetAsResponseHandler() { m_messenger.SetResponseHandler(nullptr); }
bool DscAsyncRequestMessenger::EnableNativeFormat() { return m_messenger.EnableNativeFormat(); }

template <class Step>
Docket DscAsyncRequestMessenger::SynchronizeRequest(const time_duration& timeout,
                                                    const function<bool()>& isStillRelevant, Step step) {
  Lock lock(m_mutex);
  for (unsigned int attempt = 0; attempt < m_attempts; ++attempt) {
    const std::string id = step();
    TAL_LOG(Debug) << "Request ID is '" << id << "'";
    if (id.empty()) {
      TAL_LOG(Error) << "Request ID is empty, retrying";
      continue;
    }
    const std::shared_ptr<Docket> docket = WaitForDocket(lock, id, timeout, isStillRelevant);
    if (!isStillRelevant()) {
      TAL_LOG(Debug) << "returned from waiting for response with ID '" << id << "': !isStillRelevant";
      return Docket();
    }
    if (!docket) {
      TAL_LOG(Error) << "No response received for ID '" << id << "' with timeout " << timeout << ", retrying";
      continue;
    }
    TAL_LOG(Debug) << "returned from waiting for response with ID '" << id << "': got response";
    return *docket;
  }
  TAL_LOG(Error) << "Maximum number of retries (" << m_attempts - 1 << ") reached.";
  return Docket();
}

/// Null when no answer came in time.
std::shared_ptr<Docket> DscAsyncRequestMessenger::WaitForDocket(Lock& lock, const std::string& id,
                                                                const time_duration& timeout,
                                                                const function<bool()>& isStillRelevant) {
  /// Removes the entry whatever happens; the lock is held again by then.
  struct EntryGuard {
    std::map<std::string, std::weak_ptr<Docket>>& list;
    const std::string& id;
    ~EntryGuard() { list.erase(id); }
  };
  const auto docket = std::make_shared<Docket>();
  const EntryGuard guard{m_docketList, id};
  m_docketList.emplace(id, docket);  // an entry that is there already stays
  const bool isAnswered = WaitForAnswer(lock, id, timeout == kUseDefault ? m_defaultTimeout : timeout, isStillRelevant);
  return isAnswered ? docket : nullptr;
}

bool DscAsyncRequestMessenger::WaitForAnswer(Lock& lock, const std::string& id, const time_duration& timeout,
                                             const function<bool()>& isStillRelevant) {
  const boost::optional<steady_clock::time_point> deadline = DeadlineOf(timeout);
  for (;;) {
    if (!isStillRelevant()) {
      TAL_LOG(Info) << "Aborted a ZEL request because its result is no longer relevant";
      return false;
    }
    if (IsAnswered(m_docketList[id])) return true;
    const steady_clock::time_point stretch = steady_clock::now() + kStretch;
    const bool isNotified = m_answerSignal.wait_until(lock, deadline ? std::min(*deadline, stretch) : stretch) ==
                            boost::cv_status::no_timeout;
    if (!isNotified && deadline && steady_clock::now() >= *deadline) break;
  }
  TAL_LOG(Warn) << "Timeout (" << timeout << ") occured for request ID '" << id << "'";
  return false;
}

Docket DscAsyncRequestMessenger::RegisterApplication(const std::string& first, const std::string& second,
                                                     const std::string& third) {
  return SynchronizeRequest(kUseDefault, Always(),
                            [&] { return m_messenger.RegisterApplicationAsync(first, second, third); });
}

Docket DscAsyncRequestMessenger::SetValue(unsigned long id, const AROVALUE& value, bool flag) {
  return SynchronizeRequest(kUseDefault, Always(), [&] { return m_messenger.SetValueAsync(id, value, flag); });
}

Docket DscAsyncRequestMessenger::GetValue(unsigned long id, bool flag) {
  return SynchronizeRequest(kUseDefault, Always(), [&] { return m_messenger.GetValueAsync(id, flag); });
}

Docket DscAsyncRequestMessenger::Request(const std::string& request, time_duration timeout) {
  return SynchronizeRequest(timeout, Always(), [&] { return m_messenger.RequestAsync(request); });
}

Docket DscAsyncRequestMessenger::SetConfiguration(const std::string& configuration, time_duration timeout,
                                                  const function<bool()>& isStillRelevant) {
  return SynchronizeRequest(timeout, isStillRelevant, [&] { return m_messenger.SetConfigurationAsync(configuration); });
}

bool DscAsyncRequestMessenger::SetValueAndIgnoreResponse(unsigned long id, const AROVALUE& value, bool flag) {
  const Lock lock(m_mutex);
  const std::string requestId = m_messenger.SetValueAsync(id, value, flag);
  TAL_LOG(Debug) << "Request ID is '" << requestId << "'";
  return !requestId.empty();
}

Docket DscAsyncRequestMessenger::SetConfiguration(unsigned long id, std::map<PropertyType, Property> properties) {
  return Docket("", "", m_messenger.SetConfiguration(id, std::move(properties)), true);
}

bool DscAsyncRequestMessenger::GetDeviceConfig(std::string& config, bool flag) {
  return m_messenger.GetDeviceConfig(config, flag);
}

bool DscAsyncRequestMessenger::SetDeviceConfig(std::map<std::string, std::string> entries) {
  return m_messenger.SetDeviceConfig(std::move(entries));
}

void DscAsyncRequestMessenger::OnResponse(void*, const std::string& requestId, const std::string& response,
                                          const IError& error) {
  if (error.GetErrorCode() != 0) TAL_LOG(Error) << ErrorText{requestId, error} << "; response: " << response;
  UpdateDocketList(requestId, response, error);
}

void DscAsyncRequestMessenger::OnRegisterApplication(void*, const std::string& requestId, const IError& error) {
  if (error.GetErrorCode() != 0) TAL_LOG(Error) << ErrorText{requestId, error};
  UpdateDocketList(requestId, "", error);
}

void DscAsyncRequestMessenger::OnGetConfiguration(void*, const std::string& requestId, const std::string& configuration,
                                                  const IError& error) {
  if (error.GetErrorCode() != 0) TAL_LOG(Error) << ErrorText{requestId, error} << "; config: " << configuration;
  UpdateDocketList(requestId, configuration, error);
}

void DscAsyncRequestMessenger::OnSetConfiguration(void*, const std::string& requestId, const IError& error) {
  if (error.GetErrorCode() != 0) TAL_LOG(Error) << ErrorText{requestId, error};
  UpdateDocketList(requestId, "", error);
}

void DscAsyncRequestMessenger::OnGetValue(void*, const std::string& requestId, AROOBJECTID id, const std::string& urn,
                                          const std::string& value, const IError& error) {
  if (error.GetErrorCode() != 0)
    TAL_LOG(Error) << ErrorText{requestId, error} << "; id: " << id << "; urn: " << urn << "; value: " << value;
  UpdateDocketList(requestId, value, error);
}

void DscAsyncRequestMessenger::OnSetValue(void*, const std::string& requestId, AROOBJECTID id, const std::string& urn,
                                          const std::string& value, const IError& error) {
  if (error.GetErrorCode() != 0)
    TAL_LOG(Error) << ErrorText{requestId, error} << "; id: " << id << "; urn: " << urn << "; value: " << value;
  UpdateDocketList(requestId, value, error);
}

void DscAsyncRequestMessenger::UpdateDocketList(const std::string& id, const std::string& reply, const IError& error) {
  const Lock lock(m_mutex);
  const auto entry = m_docketList.find(id);
  if (entry == m_docketList.end()) {
    TAL_LOG(Debug) << "No docket for response ID '" << id << "'";
    if (error.GetErrorCode() != 0) {
      TAL_LOG(Error) << "Request " << id << ": Error '" << error.GetDescription() << "'";
    }
    return;
  }
  TAL_LOG(Debug) << "Got request for ID '" << id << "'.";
  const int code = error.GetErrorCode();
  std::string description = error.GetDescription();
  const std::shared_ptr<Docket> docket = entry->second.lock();
  if (!docket) return;  // its waiter has gone, and will erase the entry
  docket->SetContent(reply, std::move(description), code == 0, true);
  m_answerSignal.notify_all();
}

}  // namespace Tal
