// Telegrams as lines of text.
#pragma once

#include <Knx/Bus.h>

#include <iosfwd>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Knx {

/// A telegram log that cannot be read: "bus.log:7: " and the reason.
class TelegramLogError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The longest line that is read, in octets.
constexpr std::size_t kMaxTelegramLine = 4096;

/// One telegram on one line, in UTC: time, source, destination group, service, size in bits, octets in hex; "0 -" for
/// none.
///
///     2026-11-21T06:30:00.000Z 1.1.10 1/2/1 write 16 0C1A
///     2026-11-21T06:30:05.250Z 1.1.20 1/2/1 read 0 -
std::string FormatTelegram(const Telegram& telegram);

/// Reads such a line; blanks may be many. @return false, with the reason in @p error.
bool ParseTelegram(std::string_view line, Telegram& telegram, std::string& error);

/// "2026-11-21T06:30:00.000Z"
std::string FormatTime(std::chrono::system_clock::time_point time);

/// Reads a whole log. Blank lines and lines that begin with # are passed over; times must not go back.
/// @param in    read to its end.
/// @param name  what errors call the log.
/// @throws TelegramLogError  for the first line that is wrong, or when the stream cannot be read.
std::vector<Telegram> ReadTelegramLog(std::istream& in, const std::string& name);

}  // namespace Knx
