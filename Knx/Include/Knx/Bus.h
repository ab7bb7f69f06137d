// The seam to the KNX bus: group telegrams in and out.
#pragma once

#include <Knx/Address.h>
#include <KnxStackApi/GroupValue.h>

#include <chrono>
#include <functional>
#include <string>

namespace Knx {

/// What a telegram asks of the group.
enum class Service {
  Read,      ///< tell the value; carries none
  Write,     ///< take this value
  Response,  ///< this is the value that was asked for
};

/// "read", "write" or "response".
const char* NameOf(Service service);

/// What goes over the bus: a value for a group, or the wish for one.
struct Telegram {
  std::chrono::system_clock::time_point time;  ///< when it was on the bus
  IndividualAddress source;                    ///< who sent it
  GroupAddress destination;                    ///< whom it is for
  Service service = Service::Write;            ///< what it asks of the group
  KnxStack::GroupValue value;                  ///< octets and size in bits; empty for a read
};

/// A connection to the bus. Made so that a connection to a real one fits: sending may fail, and telegrams come in on
/// any thread.
class Bus {
 public:
  using Receiver = std::function<void(const Telegram&)>;  ///< takes what comes in

  virtual ~Bus() = default;
  /// Puts a telegram on the bus, which sets its time. Called with the service's lock held: must not call the service.
  /// @return false, with the reason in @p error: nothing was sent.
  virtual bool Send(const Telegram& telegram, std::string& error) = 0;
  /// Who gets the telegrams that come in, on any thread, also while Send() runs; an empty one: nobody. The receiver
  /// must be quick and must not call the bus. When this returns, the previous receiver is not and will not be called
  /// any more.
  virtual void SetReceiver(Receiver receiver) = 0;
};

}  // namespace Knx
