// A house to talk to: an installation, its device-stack service, and a messenger.
#pragma once

#include <DeviceStack/EmbeddedDeviceStack.h>
#include <Knx/LoopbackBus.h>
#include <Tal/DscAsyncRequestMessenger.h>

#include <optional>
#include <stdexcept>
#include <string>

#include "Command.h"
#include "ReasonLog.h"

namespace Talctl {

/// The options of the commands that talk to a house.
struct HouseOptions {
  std::optional<std::string> installation;
  std::string timeout = "0";
  unsigned retries = 2;
  std::string format = "default";
};
void AddHouseOptions(CLI::App& command, HouseOptions& options);

/// What their help says of the house.
extern const char kHouseHelp[];

/// Something that a house was asked for and did not do; the text is the reason.
class Refusal : public std::runtime_error {
 public:
  explicit Refusal(const std::string& reason, std::optional<Place> at = {})
      : std::runtime_error(reason), place(std::move(at)) {}

  const std::optional<Place> place;
};

/// The installation that the options name. @throws DeviceStack::InstallationError.
DeviceStack::Installation InstallationOf(const HouseOptions& options);

/// An object as the service describes it.
struct HouseObject {
  unsigned long id = 0;
  std::string name;          ///< empty for parameters and control values
  boost::optional<Dpt> dpt;  ///< none for those
};

/// Runs a service on a bus, with a messenger in front that is its response handler.
class House {
 public:
  /// @param bus  must outlive the house.
  /// @throws WrongUse or DeviceStack::InstallationError for options that are wrong.
  House(const HouseOptions& options, Knx::Bus& bus);
  ~House();
  House(const House&) = delete;
  House& operator=(const House&) = delete;

  const DeviceStack::Installation& Installed() const { return m_installation; }
  DeviceStack::EmbeddedDeviceStack& Stack() { return m_stack; }
  Tal::DscAsyncRequestMessenger& Messenger() { return m_messenger; }

  /// The reply. @throws Refusal  with the service's description, or with what to do when no answer came.
  std::string ReplyOf(const Tal::Docket& docket) const;

  void Register(const std::string& first, const std::string& second, const std::string& third);
  std::string Request(const std::string& text);
  /// The object with an identifier (digits) or a name.
  HouseObject Find(const std::string& idOrName);
  AROVALUE Get(const HouseObject& object);
  /// Reads @p text as a value of the object and sets it. @return the value.
  AROVALUE Set(const HouseObject& object, const std::string& text);

 private:
  const boost::posix_time::time_duration m_timeout;
  const unsigned m_retries;
  const DeviceStack::Installation m_installation;  ///< as it was at the start
  DeviceStack::EmbeddedDeviceStack m_stack;
  Tal::RemoteRequestMessengerDeviceStack m_adapter;
  Tal::DscAsyncRequestMessenger m_messenger;
};

/// Hears a house's bus while it lives.
class BusWatch {
 public:
  BusWatch(House& house, DeviceStack::EmbeddedDeviceStack::Listener listener) : m_house(house) {
    m_house.Stack().SetListener(std::move(listener));
  }
  ~BusWatch() { m_house.Stack().SetListener(nullptr); }
  BusWatch(const BusWatch&) = delete;
  BusWatch& operator=(const BusWatch&) = delete;

 private:
  House& m_house;
};

/// Runs @p body and answers what it refuses.
template <class Body>
ExitStatus Answering(const Invocation& invocation, Body body) {
  try {
    return body();
  } catch (const Refusal& refusal) {
    return Refuse(invocation, refusal.what(), refusal.place);
  } catch (const DeviceStack::InstallationError& error) {
    return Refuse(invocation, error.what());
  }
}

}  // namespace Talctl
