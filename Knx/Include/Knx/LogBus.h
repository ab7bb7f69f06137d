// A bus that plays a telegram log.
#pragma once

#include <Knx/Bus.h>

#include <functional>
#include <iosfwd>
#include <mutex>
#include <vector>

namespace Knx {

/// Plays telegrams as if they came in now, and records what is sent in the form of TelegramLog.h. What is sent is not
/// heard: the log is the rest of the house.
class LogBus final : public Bus {
 public:
  /// How fast the log is played.
  enum class Speed {
    Real,  ///< with the pauses between the telegrams' times
    Full,  ///< without
  };

  /// @param telegrams  in the order of their times.
  /// @param speed      how fast they are played.
  /// @param record     where sent telegrams are written, a line each; must outlive the bus; null: nowhere.
  LogBus(std::vector<Telegram> telegrams, Speed speed, std::ostream* record);

  /// Plays the log once, on the caller's thread. @p isStopped is asked before each telegram and while waiting, at least
  /// ten times a second. @return how many telegrams were played.
  std::size_t Play(const std::function<bool()>& isStopped);

  /// Fails when the record cannot be written.
  bool Send(const Telegram& telegram, std::string& error) override;
  void SetReceiver(Receiver receiver) override;

 private:
  const std::vector<Telegram> m_telegrams;
  const Speed m_speed;
  std::ostream* const m_record;
  std::mutex m_mutex;
  Receiver m_receiver;
};

}  // namespace Knx
