#include <Knx/LogBus.h>
#include <Knx/TelegramLog.h>

#include <algorithm>
#include <ostream>
#include <thread>
#include <utility>

namespace Knx {

LogBus::LogBus(std::vector<Telegram> telegrams, Speed speed, std::ostream* record)
    : m_telegrams(std::move(telegrams)), m_speed(speed), m_record(record) {}

std::size_t LogBus::Play(const std::function<bool()>& isStopped) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  std::size_t played = 0;
  for (const Telegram& telegram : m_telegrams) {
    if (m_speed == Speed::Real) {
      const auto due = start + std::chrono::duration_cast<Clock::duration>(telegram.time - m_telegrams.front().time);
      while (Clock::now() < due && !isStopped()) {
        std::this_thread::sleep_until(std::min(due, Clock::now() + std::chrono::milliseconds(100)));
      }
    }
    if (isStopped()) break;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_receiver) m_receiver(telegram);
    ++played;
  }
  return played;
}

bool LogBus::Send(const Telegram& telegram, std::string& error) {
  if (m_record == nullptr) return true;
  const std::lock_guard<std::mutex> lock(m_mutex);
  Telegram sent = telegram;
  sent.time = std::chrono::system_clock::now();
  if (*m_record << FormatTelegram(sent) << std::endl) return true;
  error = "the record of sent telegrams cannot be written";
  return false;
}

void LogBus::SetReceiver(Receiver receiver) {
  const std::lock_guard<std::mutex> lock(m_mutex);
  m_receiver = std::move(receiver);
}

}  // namespace Knx
