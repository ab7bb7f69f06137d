#include <KnxStackApi/GroupValueException.h>
#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxValueConverter.h>
#include <Tal/TimeOfDay.h>
#include <TalLog/Assertion.h>
#include <TalLog/LogRecord.h>

#include <array>
#include <cmath>

#include "AroTimeFields.h"
#include "DirectConversion.h"
#include "KnxWire.h"
#include "MainTypes.h"
#include "TimeRefusals.h"
#include "TimedScope.h"

namespace Tal {
namespace {

using KnxStack::GroupValue;

constexpr char kSource[] = "TalObjectModel/GroupValueAroValue";
constexpr char kTimeOfDayLine[] = "154";  // where a failed assertion on a time of day points to

/// Where an encoder's records come from, and of which datapoint type they tell.
struct EncodeContext {
  const CallSite& site;
  unsigned long dpt;
};

/// Writes the group value and returns true, or returns false after its record.
using Encoder = bool (*)(const AROVALUE& value, GroupValue& out, const EncodeContext& context);

template <class Number>
bool RefuseNumber(const EncodeContext& context, Number number) {
  TAL_LOG_AT(Error, context.site) << "Value out of range: " << number << " (DPT " << (context.dpt >> 16) << ")";
  return false;
}

bool EncodeBoolean(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  out.SetAsBoolean(value.GetBool());
  return true;
}

bool EncodeUnsigned2(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  out.SetAsUnsigned2(value.GetByte());
  return true;
}

bool EncodeUnsigned4(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  out.SetAsUnsigned4(value.GetByte());
  return true;
}

bool EncodeUnsigned8(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  out.SetAsUnsigned8(value.GetByte());
  return true;
}

bool EncodeSigned8(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  out.SetAsSigned8(static_cast<std::int8_t>(value.GetByte()));
  return true;
}

bool EncodeScene(const AROVALUE& value, GroupValue& out, const EncodeContext& context) {
  // Deliberate: no record. Callers know this refusal from the empty result alone and expect a quiet log.
  if (value.GetByte() > 63) return false;
  return EncodeUnsigned8(value, out, context);
}

bool EncodeUnsigned16(const AROVALUE& value, GroupValue& out, const EncodeContext& context) {
  const std::uint32_t number = value.GetDWord();  // all 32 bits, so that a number too large is seen
  if (number > 0xFFFF) return RefuseNumber(context, number);
  out.SetAsUnsigned16(static_cast<std::uint16_t>(number));
  return true;
}

bool EncodeSigned16(const AROVALUE& value, GroupValue& out, const EncodeContext& context) {
  const std::int32_t number = value.GetInteger();
  if (number < -32768 || number > 32767) return RefuseNumber(context, number);
  out.SetAsSigned16(static_cast<std::int16_t>(number));
  return true;
}

bool EncodeUnsigned32(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  out.SetAsUnsigned32(value.GetDWord());
  return true;
}

bool EncodeSigned32(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  out.SetAsSigned32(value.GetInteger());
  return true;
}

bool EncodeFloat16(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  const double number = value.GetFloat();
  // Deliberate: no record, as for scenes. A NaN is sent on: it has a code on the bus, an infinity has none.
  if (std::isinf(number)) return false;
  out.SetAsFloat16(number);
  return true;
}

bool EncodeFloat32(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  out.SetAsFloat32(static_cast<float>(value.GetFloat()));
  return true;
}

bool EncodeTimeOfDay(const AROVALUE& value, GroupValue& out, const EncodeContext& context) {
  const AROTIME& time = value.time;
  const boost::optional<TalApp::TimeOfDay> timeOfDay = TalApp::FromAroTime(time);
  if (!timeOfDay) return RefuseTimeOfDay(context.site, time);
  out.SetAsTimeOfDay(timeOfDay->GetHour(), timeOfDay->GetMinute(), timeOfDay->GetSecond(),
                     static_cast<unsigned>(timeOfDay->GetWeekday()));
  return true;
}

bool EncodeDate(const AROVALUE& value, GroupValue& out, const EncodeContext& context) {
  const AROTIME& time = value.time;
  if (!AROTIME::IsValidDate(time.year, time.month, time.day)) return RefuseDate(context.site, time);
  out.SetAsDate(time.day, time.month, time.year);
  return true;
}

bool EncodeDateTime(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  KnxWire::WriteDateTime(out, value.time);
  return true;
}

bool EncodeText(const AROVALUE& value, GroupValue& out, const EncodeContext& context) {
  if (KnxWire::WriteText(out, value.text)) return true;
  TAL_LOG_AT(Error, context.site) << "Got AROVALUE that contains a non-UTF8 string";
  return false;
}

bool EncodeColour(const AROVALUE& value, GroupValue& out, const EncodeContext&) {
  KnxWire::WriteUnsigned24(out, value.GetDWord());
  return true;
}

/// What a decoder may look at, and name in a log record.
struct DecodeRequest {
  const CallSite& site;
  const GroupValue& groupValue;
  AroValueType valueType;  ///< what the datapoint type demands
};

/// Returns the value, or nothing after its record.
using Decoder = boost::optional<AROVALUE> (*)(const DecodeRequest& request);

boost::optional<AROVALUE> DecodeBoolean(const DecodeRequest& request) {
  return ToAroValue(request.groupValue.GetAsBoolean(), request.valueType);
}

boost::optional<AROVALUE> DecodeUnsigned2(const DecodeRequest& request) {
  return ToAroValue(request.groupValue.GetAsUnsigned2(), request.valueType);
}

boost::optional<AROVALUE> DecodeUnsigned3(const DecodeRequest& request) {
  return ToAroValue(request.groupValue.GetAsUnsigned3(), request.valueType);
}

boost::optional<AROVALUE> DecodeUnsigned4(const DecodeRequest& request) {
  return ToAroValue(request.groupValue.GetAsUnsigned4(), request.valueType);
}

boost::optional<AROVALUE> DecodeUnsigned8(const DecodeRequest& request) {
  return ToAroValue(request.groupValue.GetAsUnsigned8(), request.valueType);
}

boost::optional<AROVALUE> DecodeSigned8(const DecodeRequest& request) {
  // Deliberate: the octet's pattern as an unsigned number; -1 is carried as 255.
  return ToAroValue(static_cast<unsigned char>(request.groupValue.GetAsSigned8()), request.valueType);
}

boost::optional<AROVALUE> DecodeUnsigned16(const DecodeRequest& request) {
  return ToAroValue(request.groupValue.GetAsUnsigned16(), request.valueType);
}

boost::optional<AROVALUE> DecodeSigned16(const DecodeRequest& request) {
  return ToAroValue(request.groupValue.GetAsSigned16(), request.valueType);
}

boost::optional<AROVALUE> DecodeUnsigned32(const DecodeRequest& request) {
  return ToAroValue(static_cast<unsigned int>(request.groupValue.GetRawData().GetUInt32Value(0)), request.valueType);
}

boost::optional<AROVALUE> DecodeSigned32(const DecodeRequest& request) {
  return ToAroValue(static_cast<int>(request.groupValue.GetAsSigned32()), request.valueType);
}

boost::optional<AROVALUE> DecodeFloat16(const DecodeRequest& request) {
  return ToAroValue(request.groupValue.GetAsFloat16(), request.valueType);
}

boost::optional<AROVALUE> DecodeFloat32(const DecodeRequest& request) {
  return ToAroValue(double{request.groupValue.GetAsFloat32()}, request.valueType);
}

boost::optional<AROVALUE> DecodeText(const DecodeRequest& request) {
  return ToAroValue(KnxWire::ReadText(request.groupValue), request.valueType);
}

boost::optional<AROVALUE> DecodeTimeOfDay(const DecodeRequest& request) {
  const KnxStack::DayTime fields = request.groupValue.GetAsTimeOfDay();
  const auto timeOfDay = TalApp::TimeOfDay::Create(fields.hour, fields.minute, fields.second,
                                                   static_cast<TalApp::DayOfWeek>(fields.weekday));
  if (!timeOfDay) {
    TAL_LOG_AT(Warn, request.site) << "Received invalid DPT 10 time of day: " << unsigned{fields.hour} << ':'
                                   << unsigned{fields.minute} << ':' << unsigned{fields.second} << ' '
                                   << unsigned{fields.weekday};
    return boost::none;
  }
  const AroValueType avt = request.valueType;
  const AROVALUE result = ToAroValue(*timeOfDay, avt);
  TAL_ASSERT2_AT(result.avt == avt, request.site.function, kSource, kTimeOfDayLine);
  return result;
}

/// Fields taken as local time; a time of day past 24 hours rolls over.
/// @throws std::out_of_range  for a date outside the calendar.
AROVALUE LocalTime(const KnxWire::DateTime& moment, AroValueType valueType) {
  if (KnxWire::IsProper(moment)) return LocalValue(moment, valueType);
  const boost::gregorian::date date(moment.year, moment.month, moment.day);
  const boost::posix_time::time_duration clock(moment.hour, moment.minute, moment.second);
  return ToAroValue(boost::posix_time::ptime(date, clock), valueType);
}

constexpr char kInvalidDate[] = "Received an invalid DPT 11.001 date from the KNX: ";

boost::optional<AROVALUE> DecodeDate(const DecodeRequest& request) {
  const KnxStack::BinaryData& octets = request.groupValue.GetRawData();
  if (octets.size() != KnxWire::kDateOctets) {
    TAL_LOG_AT(Warn, request.site) << kInvalidDate << "Length in bytes is " << octets.size() << ", expected "
                                   << KnxWire::kDateOctets;
    return boost::none;
  }
  const unsigned twoDigitYear = octets.GetUInt8Value(2);
  if (twoDigitYear > KnxWire::kLastTwoDigitYear) {
    TAL_LOG_AT(Warn, request.site) << kInvalidDate << "Year " << twoDigitYear << " is out of range (0-99)";
    return boost::none;
  }
  const KnxStack::Date date = request.groupValue.GetAsDate();
  const bool isYear = date.year >= 1990 && date.year <= 2089;
  if (!isYear || date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31) {
    TAL_LOG_AT(Warn, request.site) << kInvalidDate << date.year << '-' << unsigned{date.month} << '-'
                                   << unsigned{date.day};
    return boost::none;
  }
  return LocalTime({date.year, date.month, date.day, 0, 0, 0}, request.valueType);
}

boost::optional<AROVALUE> DecodeDateTime(const DecodeRequest& request) {
  const KnxWire::DateTime moment = KnxWire::UnpackDateTime(request.groupValue.GetRawData());
  return LocalTime(moment, request.valueType);
}

/// What is done with the values of a main type, in both directions. A null pointer: nothing in that direction.
struct DirectRow {
  std::uint16_t main;
  Encoder encode;
  Decoder decode;
};

// clang-format off
constexpr DirectRow kDirectRows[] = {
    {  1, EncodeBoolean,    DecodeBoolean},
    {  2, EncodeUnsigned2,  DecodeUnsigned2},
    {  3, EncodeUnsigned4,  DecodeUnsigned4},
    {  5, EncodeUnsigned8,  DecodeUnsigned8},
    {  6, EncodeSigned8,    DecodeSigned8},
    {  7, EncodeUnsigned16, DecodeUnsigned16},
    {  8, EncodeSigned16,   DecodeSigned16},
    {  9, EncodeFloat16,    DecodeFloat16},
    { 10, EncodeTimeOfDay,  DecodeTimeOfDay},
    { 11, EncodeDate,       DecodeDate},
    { 12, EncodeUnsigned32, DecodeUnsigned32},
    { 13, EncodeSigned32,   DecodeSigned32},
    { 14, EncodeFloat32,    DecodeFloat32},
    { 15, EncodeUnsigned32, DecodeUnsigned32},
    { 16, EncodeText,       DecodeText},
    { 17, EncodeScene,      DecodeUnsigned8},   // checked on the way out; on the way in CheckGroupValue() does
    { 18, EncodeUnsigned8,  DecodeUnsigned8},
    { 19, EncodeDateTime,   DecodeDateTime},
    { 20, EncodeUnsigned8,  DecodeUnsigned8},
    { 21, EncodeUnsigned8,  DecodeUnsigned8},
    { 22, EncodeUnsigned16, DecodeUnsigned16},
    { 23, EncodeUnsigned2,  DecodeUnsigned2},   // Deliberate: written in 2 bits, which CheckGroupValue() refuses (8)
    { 26, EncodeUnsigned8,  DecodeUnsigned8},
    { 27, EncodeUnsigned32, DecodeUnsigned32},
    { 31, nullptr,          DecodeUnsigned3},   // Deliberate: received only
    {217, EncodeUnsigned16, DecodeUnsigned16},
    {232, EncodeColour,     DecodeUnsigned32},  // Deliberate: written as three octets, read as a number of what is there
    {234, EncodeUnsigned16, DecodeUnsigned16},
    {237, EncodeUnsigned16, DecodeUnsigned16},
    {238, EncodeUnsigned8,  DecodeUnsigned8},
};
// clang-format on

/// All that a conversion needs to know of a main type, in one look-up.
struct DirectEntry {
  AroValueType valueType = avtEmpty;
  Encoder encode = nullptr;
  Decoder decode = nullptr;
};

constexpr std::array<DirectEntry, kMainTypeLimit> MakeEntries() {
  std::array<DirectEntry, kMainTypeLimit> entries = {};
  for (std::size_t main = 0; main < kMainTypeLimit; ++main) entries[main].valueType = kValueTypes[main];
  for (const DirectRow& row : kDirectRows) {
    entries[row.main].encode = row.encode;
    entries[row.main].decode = row.decode;
  }
  return entries;
}
constexpr std::array<DirectEntry, kMainTypeLimit> kEntries = MakeEntries();
constexpr DirectEntry kNoEntry = {};

const DirectEntry& EntryOf(unsigned long main) noexcept { return main < kEntries.size() ? kEntries[main] : kNoEntry; }

// Records stand in functions of their own: a conversion that succeeds does not pass by.

void LogOtherType(const CallSite& site, AroValueType expected, AroValueType given) {
  TAL_LOG_AT(Error, site) << "Value type mismatch: Expected '" << AROVALUE::GetNameFromValueType(expected) << "', got '"
                          << AROVALUE::GetNameFromValueType(given) << "'";
}

void LogNotEncoded(const CallSite& site, unsigned long dpt, const AROVALUE& value) {
  TAL_LOG_AT(Error, site) << "Value type " << (dpt >> 16) << " not supported (dwDPT=" << dpt
                          << " with value='avt: " << static_cast<std::int32_t>(AroValueType{value.avt})
                          << ", ToString(): " << value.ToString() << "').";
}

void LogCaught(const CallSite& site, const char* what, const std::exception& exception) {
  TAL_LOG_AT(Error, site) << "Exception caught during conversion of " << what << ": " << exception.what();
}

/// A converter with the standard rows that lives as long as the process: static objects may check.
KnxValueConverter* MakeConverter() {
  auto converter = std::make_unique<KnxValueConverter>();
  converter->Init();
  return converter.release();
}

}  // namespace

bool HasDirectEncoder(unsigned long main) noexcept { return EntryOf(main).encode != nullptr; }
bool HasDirectDecoder(unsigned long main) noexcept { return EntryOf(main).decode != nullptr; }

boost::optional<GroupValue> AroValueToGroupValue(const AROVALUE& value, unsigned long dpt) {
  static const CallSite site = TAL_HERE;
  boost::optional<GroupValue> groupValue;  // the one object that is returned: it is filled where it stands
  const DirectEntry& entry = EntryOf(dpt >> 16);
  if (value.avt != entry.valueType) {
    LogOtherType(site, entry.valueType, value.avt);
    return groupValue;
  }
  if (entry.encode == nullptr) {
    LogNotEncoded(site, dpt, value);
    return groupValue;
  }
  groupValue.emplace();
  try {
    if (!entry.encode(value, *groupValue, {site, dpt})) groupValue.reset();
  } catch (const KnxStack::GroupValueException& exception) {
    LogCaught(site, "AROVALUE to GroupValue", exception);
    groupValue.reset();
  }
  return groupValue;
}

boost::optional<AROVALUE> GroupValueToAroValue(const GroupValue& value, unsigned long dpt) {
  const TimedScope duration("Decoding a KNX value took ", boost::chrono::milliseconds(100));
  static const CallSite site = TAL_HERE;
  const DirectEntry& entry = EntryOf(dpt >> 16);
  if (entry.valueType == avtEmpty) {
    TAL_LOG_AT(Error, site) << "Unsupported DPT: " << (dpt >> 16) << '.' << (dpt & 0xFFFF);
    return boost::none;
  }
  if (!CheckGroupValue(value, dpt)) {
    TAL_LOG_AT(Error, site) << "Received invalid value " << value.GetRawData().ToString() << " for DPT " << (dpt >> 16)
                            << '.' << (dpt & 0xFFFF);
    return boost::none;
  }
  // Deliberate: a main type that is known but not decoded here gives a value without content.
  if (entry.decode == nullptr) return AROVALUE();
  try {
    return entry.decode({site, value, entry.valueType});
  } catch (const KnxStack::GroupValueException& exception) {
    LogCaught(site, "GroupValue", exception);
    return boost::none;
  }
}

bool CheckGroupValue(const GroupValue& value, unsigned long dpt) {
  const unsigned long main = dpt >> 16;
  if (main > 0xFFFF) {  // more than the 32 bits of a datapoint type number
    TAL_LOG(Error) << "Unsupported DPT: " << main << '.' << (dpt & 0xFFFF);
    return false;
  }
  // Deliberate: a datapoint type's size has 8 bits, and a larger size wraps; FromKnxValue() of the table converter
  // looks at the whole.
  KNXDPT knxDpt{static_cast<std::uint8_t>(value.GetDefinedSize()), static_cast<std::uint16_t>(main),
                static_cast<std::uint16_t>(dpt & 0xFFFF)};
  static KnxValueConverter& converter = *MakeConverter();
  TAL_LOG(Debug) << "DPT is " << knxDpt << " with bit size " << unsigned{knxDpt.size};
  AROVALUE ignored;
  return converter.FromKnxValue(knxDpt, value, ignored);
}

}  // namespace Tal
