// A bus without wires.
#pragma once

#include <Knx/Bus.h>

#include <mutex>

namespace Knx {

/// Everything that is sent comes in at once, as if every other device on the bus heard it and had the same groups. Any
/// thread may put further telegrams on it.
class LoopbackBus final : public Bus {
 public:
  bool Send(const Telegram& telegram, std::string& error) override;
  void SetReceiver(Receiver receiver) override;

 private:
  std::mutex m_mutex;
  Receiver m_receiver;
};

}  // namespace Knx
