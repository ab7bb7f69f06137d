#include <Knx/LoopbackBus.h>

#include <utility>

namespace Knx {

bool LoopbackBus::Send(const Telegram& telegram, std::string&) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  Telegram heard = telegram;
  heard.time = std::chrono::system_clock::now();
  if (m_receiver) m_receiver(heard);
  return true;
}

void LoopbackBus::SetReceiver(Receiver receiver) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_receiver = std::move(receiver);
}

}  // namespace Knx
