#include <BasePlatform/AroTime.h>
#include <Format/Cursor.h>
#include <Format/Octets.h>
#include <Format/Quoted.h>
#include <Knx/TelegramLog.h>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <cstdio>
#include <istream>

namespace Knx {
namespace {

using Format::Cursor;
using Format::Quoted;
using std::chrono::milliseconds;
using Time = std::chrono::system_clock::time_point;

const boost::posix_time::ptime kEpoch(boost::gregorian::date(1970, 1, 1));

constexpr const char* kServices[] = {"read", "write", "response"};  // by Service

/// The next word; empty at the end.
std::string_view NextWord(std::string_view& line) {
  constexpr std::string_view kBlank = " \t";
  line.remove_prefix(std::min(line.find_first_not_of(kBlank), line.size()));
  const std::string_view word = line.substr(0, line.find_first_of(kBlank));
  line.remove_prefix(word.size());
  return word;
}

/// "2026-11-21T06:30:00.000Z"; the milliseconds may be missing.
bool ParseTime(std::string_view text, Time& time) {
  Cursor cursor(text);
  AROTIME fields;
  unsigned fraction = 0;
  if (!cursor.Number(fields.year) || !cursor.Word("-") || !cursor.Number(fields.month) || !cursor.Word("-") ||
      !cursor.Number(fields.day) || !cursor.Word("T") || !cursor.Number(fields.hour) || !cursor.Word(":") ||
      !cursor.Number(fields.minute) || !cursor.Word(":") || !cursor.Number(fields.second)) {
    return false;
  }
  if (cursor.Word(".")) {
    const std::size_t digits = cursor.Rest().size();
    if (!cursor.Number(fraction) || digits - cursor.Rest().size() != 3) return false;
  }
  const bool isClock = fields.year >= 1970 && fields.year <= 2261;  // what a clock of nanoseconds holds
  if (!cursor.Word("Z") || !cursor.AtEnd() || !isClock ||
      !AROTIME::IsValidTime(fields.hour, fields.minute, fields.second) ||
      !AROTIME::IsValidDate(fields.year, fields.month, fields.day)) {
    return false;
  }
  const boost::posix_time::ptime moment(boost::gregorian::date(fields.year, fields.month, fields.day),
                                        boost::posix_time::time_duration(fields.hour, fields.minute, fields.second) +
                                            boost::posix_time::milliseconds(fraction));
  time = Time(std::chrono::duration_cast<Time::duration>(milliseconds((moment - kEpoch).total_milliseconds())));
  return true;
}

bool ParseService(std::string_view text, Service& service) {
  for (const Service known : {Service::Read, Service::Write, Service::Response}) {
    if (!Format::SameText(text, NameOf(known))) continue;
    service = known;
    return true;
  }
  return false;
}

/// The size and the octets must belong together: a size up to 8 bits in one octet, else full octets.
bool ParseValue(std::string_view sizeText, std::string_view octetsText, Service service, KnxStack::GroupValue& value,
                std::string& error) {
  constexpr unsigned kMaxBits = 8 * 254;  // the longest group value
  Cursor size(sizeText);
  unsigned bits = 0;
  if (!size.Number(bits) || !size.AtEnd() || bits > kMaxBits) {
    error = Quoted(sizeText) + " is not a size in bits: expected 0 to 2032";
    return false;
  }
  std::vector<std::uint8_t> octets;
  if (octetsText != "-" && !Format::ParseOctets(octetsText, octets)) {
    error = Quoted(octetsText) + " is no octets: expected two hex digits an octet, such as 0C1A, or - for none";
    return false;
  }
  if ((service == Service::Read) != octets.empty()) {
    error = service == Service::Read ? "a read carries no value: expected 0 -" : "the value is missing";
    return false;
  }
  if (octets.size() != (bits + 7) / 8) {
    error = std::to_string(bits) + " bits do not make " + std::to_string(octets.size()) + " octets";
    return false;
  }
  value = octets.empty() ? KnxStack::GroupValue()
                         : KnxStack::GroupValue(KnxStack::BinaryData(octets.data(), octets.size()), bits);
  return true;
}

/// Reads a line of bounded length. @return false at the end.
bool ReadLine(std::istream& in, std::string& line) {
  line.clear();
  for (int c = in.get(); c != std::istream::traits_type::eof(); c = in.get()) {
    if (c == '\n') return true;
    line += static_cast<char>(c);
    if (line.size() > kMaxTelegramLine) return true;
  }
  return !line.empty();
}

}  // namespace

const char* NameOf(Service service) { return kServices[static_cast<std::size_t>(service)]; }

std::string FormatTime(Time time) {
  const auto whole = std::chrono::duration_cast<milliseconds>(time.time_since_epoch());
  const boost::posix_time::ptime moment = kEpoch + boost::posix_time::milliseconds(whole.count());
  const auto date = moment.date().year_month_day();
  const auto clock = moment.time_of_day();
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", int{date.year}, int{date.month},
                int{date.day}, static_cast<int>(clock.hours()), static_cast<int>(clock.minutes()),
                static_cast<int>(clock.seconds()), static_cast<int>(clock.total_milliseconds() % 1000));
  return text;
}

std::string FormatTelegram(const Telegram& telegram) {
  const KnxStack::BinaryData octets = telegram.value.GetRawData();
  return FormatTime(telegram.time) + ' ' + FormatAddress(telegram.source) + ' ' + FormatAddress(telegram.destination) +
         ' ' + NameOf(telegram.service) + ' ' + std::to_string(telegram.value.GetDefinedSize()) + ' ' +
         (octets.empty() ? "-" : Format::Hex(octets));
}

bool ParseTelegram(std::string_view line, Telegram& telegram, std::string& error) {
  constexpr const char* kFields[] = {"time", "source", "destination", "service", "size in bits", "octets"};
  std::string_view words[std::size(kFields)];
  for (std::size_t i = 0; i < std::size(kFields); ++i) {
    words[i] = NextWord(line);
    if (!words[i].empty()) continue;
    error = std::string("no ") + kFields[i] + ": expected TIME SOURCE DESTINATION SERVICE BITS OCTETS";
    return false;
  }
  const std::string_view more = NextWord(line);
  Telegram parsed;
  if (!more.empty()) {
    error = Quoted(more) + " stands behind the octets: expected TIME SOURCE DESTINATION SERVICE BITS OCTETS";
    return false;
  }
  if (!ParseTime(words[0], parsed.time)) {
    error = Quoted(words[0]) + " is not a time: expected UTC such as 2026-11-21T06:30:00.000Z";
    return false;
  }
  if (!ParseAddress(words[1], parsed.source, error) || !ParseAddress(words[2], parsed.destination, error)) return false;
  if (!ParseService(words[3], parsed.service)) {
    error = Quoted(words[3]) + " is not a service: expected read, write or response";
    return false;
  }
  if (!ParseValue(words[4], words[5], parsed.service, parsed.value, error)) return false;
  telegram = std::move(parsed);
  return true;
}

std::vector<Telegram> ReadTelegramLog(std::istream& in, const std::string& name) {
  std::vector<Telegram> telegrams;
  std::string line;
  for (unsigned long number = 1; ReadLine(in, line); ++number) {
    const auto fail = [&](const std::string& reason) {
      throw TelegramLogError(Format::OneLine(name) + ':' + std::to_string(number) + ": " + reason);
    };
    if (line.size() > kMaxTelegramLine) fail("the line is longer than " + std::to_string(kMaxTelegramLine) + " octets");
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (number == 1 && line.rfind("\xEF\xBB\xBF", 0) == 0) line.erase(0, 3);
    const std::size_t start = line.find_first_not_of(" \t");
    if (start == line.npos || line[start] == '#') continue;
    Telegram telegram;
    std::string error;
    if (!ParseTelegram(line, telegram, error)) fail(error);
    if (!telegrams.empty() && telegram.time < telegrams.back().time) fail("the time goes back");
    telegrams.push_back(std::move(telegram));
  }
  if (in.bad()) throw TelegramLogError(Format::OneLine(name) + ": cannot be read");
  return telegrams;
}

}  // namespace Knx
