#include <DeviceStack/EmbeddedDeviceStack.h>
#include <Knx/LoopbackBus.h>
#include <Tal/DscAsyncRequestMessenger.h>

#include <atomic>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <stdexcept>
#include <thread>

#include "Operation.h"
#include "Pinning.h"

namespace Bench {
namespace {

constexpr char kHouse[] = R"({"name": "house", "address": "1.1.250", "objects": [{"device": 1, "number": 1,
  "name": "temperature", "dpt": "9.001", "groupAddress": "1/0/1", "flags": ["read"], "initial": 21.5}]})";
constexpr unsigned long kTemperature = 100101;

/// The messenger in front of a device stack inside the process.
class Rig {
 public:
  Rig()
      : m_pin(ServiceSide()),
        m_stack(DeviceStack::ParseInstallation(kHouse, "house"), m_bus),
        m_adapter(m_stack),
        m_messenger(m_adapter, boost::posix_time::minutes(5), 0) {
    m_pin.reset();
    m_messenger.SetAsResponseHandler();
    m_messenger.RegisterApplication("bench", "", "");
  }
  ~Rig() { m_messenger.UnsetAsResponseHandler(); }

  void Get(std::size_t times) {
    const auto pin = CallerSide();
    for (; times > 0; --times) {
      if (m_messenger.GetValue(kTemperature, false).ReadReply() != "3:21.5") throw std::logic_error("a reply is lost");
    }
  }

  void GetFrom(std::size_t callers, std::size_t times) {
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < callers; ++i) threads.emplace_back([&] { Get(times / callers); });
    for (std::thread& thread : threads) thread.join();
  }

 private:
  Knx::LoopbackBus m_bus;
  std::unique_ptr<Pin> m_pin;
  DeviceStack::EmbeddedDeviceStack m_stack;
  Tal::RemoteRequestMessengerDeviceStack m_adapter;
  Tal::DscAsyncRequestMessenger m_messenger;
};

}  // namespace

void AddMessenger(Operations& operations) {
  const auto rig = std::make_shared<Rig>();
  operations.push_back(
      {"messenger/1", "hand_over", [rig](std::size_t times) { rig->Get(times); }, 64, 1, false, false});
  for (const std::size_t callers : {8, 64}) {
    operations.push_back({"messenger/" + std::to_string(callers), "hand_over",
                          [rig, callers](std::size_t times) { rig->GetFrom(callers, times); }, 64 * 64, 1, false,
                          false});
  }
}

}  // namespace Bench
