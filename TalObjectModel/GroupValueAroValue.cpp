#include <KnxHelper/Latin1.h>
#include <KnxStackApi/GroupValueException.h>
#include <Tal/GroupValueAroValue.h>
#include <Tal/TimeOfDay.h>
#include <TalLog/LogRecord.h>

#include <array>
#include <boost/date_time/posix_time/conversion.hpp>
#include <cmath>

#include "DirectRoad.h"
#include "KnxWire.h"
#include "MainTypes.h"

namespace Tal {
namespace {

using KnxStack::GroupValue;

/// What an encoder may look at, and name in a log record.
struct EncodeRequest {
  const CallSite& site;
  const AROVALUE& value;
  unsigned long dpt;
};

/// Writes the group value and returns true, or returns false after its record.
using Encoder = bool (*)(const EncodeRequest& request, GroupValue& out);

template <std::size_t Count>
GroupValue MakeGroupValue(const std::array<std::uint8_t, Count>& octets) {
  return {KnxStack::BinaryData(octets.data(), Count), static_cast<unsigned>(8 * Count)};
}

template <class Number>
bool RefuseNumber(const EncodeRequest& request, Number number) {
  TAL_LOG_AT(Error, request.site) << "Value out of range: " << number << " (DPT " << (request.dpt >> 16) << ")";
  return false;
}

bool EncodeBoolean(const EncodeRequest& request, GroupValue& out) {
  out.SetAsBoolean(request.value.GetBool());
  return true;
}

bool EncodeUnsigned2(const EncodeRequest& request, GroupValue& out) {
  out.SetAsUnsigned2(request.value.GetByte());
  return true;
}

bool EncodeUnsigned4(const EncodeRequest& request, GroupValue& out) {
  out.SetAsUnsigned4(request.value.GetByte());
  return true;
}

bool EncodeUnsigned8(const EncodeRequest& request, GroupValue& out) {
  out.SetAsUnsigned8(request.value.GetByte());
  return true;
}

bool EncodeSigned8(const EncodeRequest& request, GroupValue& out) {
  out.SetAsSigned8(static_cast<std::int8_t>(request.value.GetByte()));
  return true;
}

bool EncodeScene(const EncodeRequest& request, GroupValue& out) {
  // Deliberate: no record. Callers know this refusal from the empty result alone and expect a quiet log.
  if (request.value.GetByte() > 63) return false;
  return EncodeUnsigned8(request, out);
}

bool EncodeUnsigned16(const EncodeRequest& request, GroupValue& out) {
  const std::uint32_t number = request.value.GetDWord();  // all 32 bits, so that a number too large is seen
  if (number > 0xFFFF) return RefuseNumber(request, number);
  out.SetAsUnsigned16(static_cast<std::uint16_t>(number));
  return true;
}

bool EncodeSigned16(const EncodeRequest& request, GroupValue& out) {
  const std::int32_t number = request.value.GetInteger();
  if (number < -32768 || number > 32767) return RefuseNumber(request, number);
  out.SetAsSigned16(static_cast<std::int16_t>(number));
  return true;
}

bool EncodeUnsigned32(const EncodeRequest& request, GroupValue& out) {
  out.SetAsUnsigned32(request.value.GetDWord());
  return true;
}

bool EncodeSigned32(const EncodeRequest& request, GroupValue& out) {
  out.SetAsSigned32(request.value.GetInteger());
  return true;
}

bool EncodeFloat16(const EncodeRequest& request, GroupValue& out) {
  const double number = request.value.GetFloat();
  // Deliberate: no record, as for scenes. A NaN is sent on: it has a code on the bus, an infinity has none.
  if (std::isinf(number)) return false;
  out.SetAsFloat16(number);
  return true;
}

bool EncodeFloat32(const EncodeRequest& request, GroupValue& out) {
  out.SetAsFloat32(static_cast<float>(request.value.GetFloat()));
  return true;
}

bool EncodeTimeOfDay(const EncodeRequest& request, GroupValue& out) {
  const AROTIME& time = request.value.time;
  const boost::optional<TalApp::TimeOfDay> timeOfDay = TalApp::FromAroTime(time);
  if (!timeOfDay) {
    TAL_LOG_AT(Error, request.site) << "Could not convert AROTIME " << time.ToString() << " to TimeOfDay";
    return false;
  }
  out.SetAsTimeOfDay(timeOfDay->GetHour(), timeOfDay->GetMinute(), timeOfDay->GetSecond(),
                     static_cast<unsigned>(timeOfDay->GetWeekday()));
  return true;
}

bool EncodeDate(const EncodeRequest& request, GroupValue& out) {
  const AROTIME& time = request.value.time;
  if (!AROTIME::IsValidDate(time.year, time.month, time.day)) {
    TAL_LOG_AT(Error, request.site) << "Not a valid date: " << time.year << ' ' << unsigned{time.month} << ' '
                                    << unsigned{time.day} << ' ';
    return false;
  }
  out.SetAsDate(time.day, time.month, time.year);
  return true;
}

bool EncodeDateTime(const EncodeRequest& request, GroupValue& out) {
  out = MakeGroupValue(KnxWire::PackDateTime(boost::posix_time::ptime_from_tm(request.value.time)));
  return true;
}

bool EncodeText(const EncodeRequest& request, GroupValue& out) {
  const boost::optional<UTF8String> text = UTF8String::Create(request.value.text);
  if (!text) {
    TAL_LOG_AT(Error, request.site) << "Got AROVALUE that contains a non-UTF8 string";
    return false;
  }
  out.SetAsString14(getLatin1FromUTF8Lossy(*text).GetBytes());
  return true;
}

bool EncodeColour(const EncodeRequest& request, GroupValue& out) {
  out = MakeGroupValue(KnxWire::PackUnsigned24(request.value.GetDWord()));
  return true;
}

struct DirectRow {
  std::uint16_t main;
  Encoder encode;
};

// clang-format off
constexpr DirectRow kDirectRows[] = {
    {  1, EncodeBoolean},
    {  2, EncodeUnsigned2},
    {  3, EncodeUnsigned4},
    {  5, EncodeUnsigned8},
    {  6, EncodeSigned8},
    {  7, EncodeUnsigned16},
    {  8, EncodeSigned16},
    {  9, EncodeFloat16},
    { 10, EncodeTimeOfDay},
    { 11, EncodeDate},
    { 12, EncodeUnsigned32},
    { 13, EncodeSigned32},
    { 14, EncodeFloat32},
    { 15, EncodeUnsigned32},
    { 16, EncodeText},
    { 17, EncodeScene},
    { 18, EncodeUnsigned8},
    { 19, EncodeDateTime},
    { 20, EncodeUnsigned8},
    { 21, EncodeUnsigned8},
    { 22, EncodeUnsigned16},
    { 23, EncodeUnsigned2},
    { 26, EncodeUnsigned8},
    { 27, EncodeUnsigned32},
    {217, EncodeUnsigned16},
    {232, EncodeColour},
    {234, EncodeUnsigned16},
    {237, EncodeUnsigned16},
    {238, EncodeUnsigned8},
};
// clang-format on

/// All that a conversion needs to know of a main type, in one look-up.
struct DirectEntry {
  AroValueType valueType = avtEmpty;
  Encoder encode = nullptr;
};

constexpr std::array<DirectEntry, kMainTypeLimit> MakeEntries() {
  std::array<DirectEntry, kMainTypeLimit> entries = {};
  for (std::size_t main = 0; main < kMainTypeLimit; ++main) entries[main].valueType = kValueTypes[main];
  for (const DirectRow& row : kDirectRows) entries[row.main].encode = row.encode;
  return entries;
}
constexpr std::array<DirectEntry, kMainTypeLimit> kEntries = MakeEntries();
constexpr DirectEntry kNoEntry = {};

const DirectEntry& EntryOf(unsigned long main) noexcept { return main < kEntries.size() ? kEntries[main] : kNoEntry; }

}  // namespace

bool HasDirectEncoder(unsigned long main) noexcept { return EntryOf(main).encode != nullptr; }

boost::optional<GroupValue> AroValueToGroupValue(const AROVALUE& value, unsigned long dpt) {
  const CallSite site = TAL_HERE;
  const unsigned long main = dpt >> 16;
  const DirectEntry& entry = EntryOf(main);
  if (value.avt != entry.valueType) {
    TAL_LOG_AT(Error, site) << "Value type mismatch: Expected '" << AROVALUE::GetNameFromValueType(entry.valueType)
                            << "', got '" << AROVALUE::GetNameFromValueType(value.avt) << "'";
    return boost::none;
  }
  if (entry.encode == nullptr) {
    TAL_LOG_AT(Error, site) << "Value type " << main << " not supported (dwDPT=" << dpt
                            << " with value='avt: " << static_cast<std::int32_t>(AroValueType{value.avt})
                            << ", ToString(): " << value.ToString() << "').";
    return boost::none;
  }
  boost::optional<GroupValue> groupValue(GroupValue{});
  try {
    if (!entry.encode({site, value, dpt}, *groupValue)) groupValue.reset();
  } catch (const KnxStack::GroupValueException& exception) {
    TAL_LOG_AT(Error, site) << "Exception caught during conversion of AROVALUE to GroupValue: " << exception.what();
    groupValue.reset();
  }
  return groupValue;
}

}  // namespace Tal
