// A bus without wires.
#pragma once

#include <DeviceStack/KnxBus.h>

#include <mutex>

namespace DeviceStack {

/// Everything that is sent comes in at once, as if every other device on the bus heard it and had the same groups. Any
/// thread may put further telegrams on it.
class LoopbackBus final : public KnxBus {
 public:
  bool Send(const Telegram& telegram, std::string& error) override;
  void SetReceiver(Receiver receiver) override;

 private:
  std::mutex m_mutex;
  Receiver m_receiver;
};

}  // namespace DeviceStack
