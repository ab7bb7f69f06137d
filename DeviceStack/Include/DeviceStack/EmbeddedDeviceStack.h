// A device-stack service inside the process.
#pragma once

#include <DeviceStack/Installation.h>
#include <DeviceStack/ServiceError.h>
#include <DeviceStackClient/IDeviceStackClient.h>
#include <Knx/Bus.h>

#include <chrono>
#include <functional>
#include <memory>

namespace DeviceStack {

/// The requests that are answered later.
enum class Operation {
  Request,              ///< EmbeddedDeviceStack::Request()
  RegisterApplication,  ///< EmbeddedDeviceStack::RegisterApplication()
  SetConfiguration,     ///< EmbeddedDeviceStack::SetConfiguration() with a text
  GetValue,             ///< EmbeddedDeviceStack::GetValue()
  SetValue,             ///< EmbeddedDeviceStack::SetValue()
};

/// What goes wrong with a request on purpose.
struct Fault {
  /// What goes wrong.
  enum class Kind {
    None,       ///< nothing
    Drop,       ///< done, but not answered
    Duplicate,  ///< answered twice
    Late,       ///< answered only after the next request that is answered
    EmptyId,    ///< not accepted
    Error,      ///< not done, answered with ErrorCode::Injected
  };
  Kind kind = Kind::None;              ///< what goes wrong
  std::chrono::milliseconds delay{0};  ///< how much later the answer comes; up to a day
};

/// What happened on the bus, for one object.
struct BusEvent {
  /// What it was.
  enum class Kind {
    Received,  ///< decoded and stored
    Read,      ///< the value was asked for, and is answered
    Sent,      ///< the bus has taken it
    Refused,   ///< the octets or the value do not fit, or the bus did not take the telegram; nothing has changed
    Ignored,   ///< for no object: another group, or no flag lets it in
  };
  Kind kind;                                    ///< what it was
  Knx::Telegram telegram;                       ///< as it was on the bus, or was to be
  boost::optional<CommunicationObject> object;  ///< whose it is; nothing when it is ignored
  boost::optional<AROVALUE> value;              ///< received or sent
  std::string reason;                           ///< of a refusal
};

/// What happened since the service's start.
struct Counters {
  std::uint64_t requests = 0;           ///< accepted
  std::uint64_t answered = 0;           ///< answers that were given, good and bad
  std::uint64_t errors = 0;             ///< bad answers among them
  std::uint64_t telegramsReceived = 0;  ///< for any group
  std::uint64_t telegramsIgnored = 0;   ///< received, for no object
  std::uint64_t valuesDecoded = 0;      ///< by object: a telegram may go to several
  std::uint64_t valuesRefused = 0;      ///< by object, from the bus
  std::uint64_t telegramsSent = 0;      ///< the bus took them
  std::uint64_t telegramsNotSent = 0;   ///< the bus did not take them
};

/// Keeps the objects of an installation between an application and a KNX bus, as the device-stack service does.
///
/// A value that the application sets is encoded, sent to the object's group where its flags say so, and stored. What
/// comes from the bus is decoded and stored; a read is answered. A value or telegram that does not fit changes and
/// sends nothing.
///
/// All work and all callbacks happen one after the other on a thread of the service's own. Operations may be called
/// from any thread, callbacks included, before and after Stop(); afterwards requests are not accepted. Callbacks are
/// made without a lock that an operation needs; what one throws is logged, and changes nothing else.
///
/// The flags of SetValue(), GetValue() and GetDeviceConfig() mean nothing here, and neither does SetValue()'s context.
/// Values are accepted in both text forms; answers have the form that SetInternalValueFormat() chose. All requests but
/// RegisterApplication() need a registered application.
class EmbeddedDeviceStack final : public Vanta::IDeviceStackClient {
 public:
  /// @param installation  taken as it is; ParseInstallation() checks it.
  /// @param bus           must outlive the service, and be its alone: stop a service before another takes over its bus.
  EmbeddedDeviceStack(Installation installation, Knx::Bus& bus);
  /// Stops first. Must not run inside a callback.
  ~EmbeddedDeviceStack() override;

  void SetInternalValueFormat(bool enabled) override;
  /// Changes a communication object, given by its channel or value. PropertyType: Name, DatapointType,
  /// Knx::GroupAddress and InitialValue as in the installation's text; Flags with blanks between them. All or nothing;
  /// a refusal leaves one ERROR record.
  bool SetConfiguration(AROOBJECTID id, const std::map<PropertyType, Property>& properties) override;
  /// The installation as text. Always succeeds.
  bool GetDeviceConfig(std::string& config, bool flag) override;
  /// "name" and "address" of the installation. All or nothing; a refusal leaves one ERROR record.
  bool SetDeviceConfig(const std::map<std::string, std::string>& entries) override;
  /// Knows "Native" only, the form that it speaks anyway.
  bool SetValueFormat(const std::string& name) override;
  /// JSON, see Docs/Messaging.md: {"request":"list"}, {"request":"describe","object":"NAME"} or with "id",
  /// {"request":"counters"}.
  std::string Request(const std::string& request) override;
  /// The first text names the application and must not be empty. Registering again replaces it.
  std::string RegisterApplication(const std::string& first, const std::string& second,
                                  const std::string& third) override;
  /// Replaces the installation by the one in the text; all values begin anew. All or nothing.
  std::string SetConfiguration(const std::string& configuration) override;
  std::string GetValue(AROOBJECTID id, bool flag) override;
  std::string SetValue(AROOBJECTID id, const std::string& value, bool flag, void* context) override;
  /// Waits for a callback that runs, unless called by it.
  void SetResponseHandler(IResponseHandler* handler, void* context) override;

  using Listener = std::function<void(const BusEvent&)>;  ///< hears one event after the other
  /// Who hears what happens on the bus, on the service's thread, before a request that caused it is answered; an empty
  /// one: nobody. Returns as SetResponseHandler() does.
  void SetListener(Listener listener);

  using FaultPlan = std::function<Fault(Operation)>;  ///< says what goes wrong with a request
  /// Asked once for every request, on the caller's thread, one call at a time; it must not call the
  /// service. An empty one: all is well.
  void SetFaultPlan(FaultPlan plan);

  /// All counters, as they are at one moment.
  Counters GetCounters() const;

  /// Waits until everything has been done that is due by now; delayed answers do not count.
  void WaitUntilIdle();

  /// No callback begins after it returns, and requests get no id any more; those under way stay unanswered. Waits for a
  /// callback that runs, unless called by it.
  void Stop();

 private:
  class Service;
  const std::unique_ptr<Service> m_service;
};

}  // namespace DeviceStack
