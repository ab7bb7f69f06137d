#include "Conversion.h"

#include <Tal/GroupValueAroValue.h>

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <Notation/Quoted.h>

namespace Talctl {
namespace {

using KnxStack::GroupValue;

KNXDPT ToKnxDpt(const Dpt& dpt, unsigned bits) { return {static_cast<std::uint8_t>(bits), dpt.main, dpt.sub}; }

/// The group value, or nothing. May throw what the calendar throws.
boost::optional<GroupValue> EncodeOn(Road road, const Dpt& dpt, const AROVALUE& value) {
  if (road == Road::Direct) return Tal::AroValueToGroupValue(value, dpt.Number());
  KNXDPT knxDpt = ToKnxDpt(dpt, 0);
  GroupValue groupValue;
  if (!MapConverter().ToKnxValue(knxDpt, value, groupValue)) return boost::none;
  return groupValue;
}

/// The value, or nothing. May throw what the calendar throws.
/// A datapoint type that is not given (main 0) is the one that the map chooses.
boost::optional<AROVALUE> DecodeOn(Road road, Dpt& dpt, const GroupValue& groupValue) {
  if (road == Road::Direct) return Tal::GroupValueToAroValue(groupValue, dpt.Number());
  KNXDPT knxDpt = ToKnxDpt(dpt, groupValue.GetDefinedSize());
  AROVALUE value;
  const bool isDecoded = MapConverter().FromKnxValue(knxDpt, groupValue, value);
  dpt = {knxDpt.main, knxDpt.sub};
  if (!isDecoded) return boost::none;
  // Deliberate: 3.x comes back as a byte under the type avtFloat; shown as the number it is.
  if (knxDpt.main == 3) value.avt = avtByte;
  return value;
}

bool HasContent(const AROVALUE& value) { return value.avt != avtInvalid && value.avt != avtEmpty; }

bool Decodes(Road road, Dpt dpt, const GroupValue& groupValue) {
  const ReasonLog::Pause pause;
  try {
    const auto value = DecodeOn(road, dpt, groupValue);
    return value && HasContent(*value);
  } catch (const std::exception&) {
    return false;
  }
}

/// True when a road reads some octet of this datapoint type.
bool IsDecodedAtAll(const Dpt& dpt, Road road) {
  return Decodes(road, dpt, GroupValue({0}, 8)) || Decodes(road, dpt, GroupValue({1}, 8));
}

std::string MainLabel(const Dpt& dpt) { return std::to_string(dpt.main) + ".x"; }
std::string TakeRoad(Road road) { return std::string("take `--road ") + NameOf(road) + "`"; }

/// What to do about a refusal to encode.
std::string EncodeAdvice(const Dpt& dpt, Road road) {
  if (CanEncode(dpt, road)) return "expected " + Expectation(dpt, road);
  if (CanEncode(dpt, Other(road))) return FormatDpt(dpt) + " is not encoded on this road; " + TakeRoad(Other(road));
  const bool isKnown = FindMainType(dpt) != nullptr || FindDptRow(dpt) != nullptr;
  return MainLabel(dpt) + (isKnown ? " is not encoded" : " is not known") + "; `talctl dpts` lists what is";
}

/// What to do about octets that are refused, or stand for nothing.
std::string DecodeAdvice(const Dpt& dpt, const GroupValue& groupValue, Road road) {
  if (Decodes(Other(road), dpt, groupValue)) return TakeRoad(Other(road)) + ", which reads them";
  const boost::optional<unsigned> bits = Tal::DescribeExpectedBits(dpt.main);
  if (bits && *bits > 0 && (*bits != groupValue.GetDefinedSize() || 8 * groupValue.GetRawData().size() < *bits)) {
    const auto count = [](unsigned number, const char* what) {
      return std::to_string(number) + what + (number == 1 ? "" : "s");
    };
    return FormatDpt(dpt) + " has " + count(*bits, " bit") + " in " + count((*bits + 7) / 8, " octet");
  }
  if (FindMainType(dpt) == nullptr && FindDptRow(dpt) == nullptr) {
    return MainLabel(dpt) + " is not known; `talctl dpts` lists what is";
  }
  const Dpt first{dpt.main, 1};
  return !IsDecodedAtAll(dpt, road) && Decodes(road, first, groupValue)
             ? "they can be read as " + FormatDpt(first)
             : "check that the sender uses " + FormatDpt(dpt);
}

/// The library's reason without what ends its sentence, or else @p silent; then what to do.
std::string Explain(std::string reason, const std::string& silent, const std::string& advice) {
  boost::algorithm::trim_right_if(reason, boost::algorithm::is_any_of(" ."));
  return (reason.empty() ? silent : reason) + ": " + advice;
}

/// Why a decoded value has no content, and what to do.
std::string ExplainNothing(const Dpt& dpt, const GroupValue& groupValue, const AROVALUE& value, Road road) {
  const bool isLate = dpt.main == 11 || dpt.main == 19;
  if (value.avt == avtEmpty && !isLate) {
    const bool otherReads = Decodes(Other(road), dpt, groupValue);
    return MainLabel(dpt) +
           " is accepted, but not decoded: " + (otherReads ? TakeRoad(Other(road)) : "neither road decodes it");
  }
  const char* const reason =
      value.avt == avtEmpty ? "the time is later than 2038-01-19 03:14:07" : "the octets stand for no valid value";
  return std::string(reason) + ": " + DecodeAdvice(dpt, groupValue, road);
}

/// Reads what `decode` and `check` are given; on failure the error says what was expected.
bool ReadGroupValue(std::string_view dptText, std::string_view octetsText, boost::optional<unsigned> bits,
                    Conversion& conversion) {
  conversion.text = octetsText;
  Dpt dpt;
  if (!ParseDpt(dptText, dpt, conversion.error)) return false;
  conversion.dpt = dpt;
  std::vector<std::uint8_t> octets;
  if (!ParseOctets(octetsText, octets)) {
    conversion.error = (octetsText.empty() ? "the octets are missing" : Quoted(octetsText) + " is no octets") +
                       ": expected two hex digits an octet, such as 0C1A, 0C 1A or 0x0C1A";
    return false;
  }
  constexpr unsigned kShortForm = 6;  // bits, as the bus sends values of at most that size
  const boost::optional<unsigned> expected = Tal::DescribeExpectedBits(dpt.main);
  const bool isShort = octets.size() == 1 && expected && *expected > 0 && *expected <= kShortForm;
  const unsigned size = bits ? *bits : isShort ? kShortForm : static_cast<unsigned>(8 * octets.size());
  conversion.groupValue = GroupValue(KnxStack::BinaryData(octets.data(), octets.size()), size);
  return true;
}

}  // namespace

bool CanEncode(const Dpt& dpt, Road road) {
  const ReasonLog::Pause pause;
  for (const unsigned number : {0u, 1u}) {  // one of them, false, an empty text or a plain date is in every range
    AROVALUE probe;
    probe.avt = ValueTypeOf(dpt, road);
    probe.time.SetDate(2000, 1, 1);
    probe.SetPayload(number);
    const auto groupValue = EncodeOn(road, dpt, probe);
    if (groupValue && !groupValue->GetRawData().empty()) return true;
  }
  return false;
}

Conversion Encode(std::string_view dptText, std::string_view valueText, Road road, ReasonLog& log) {
  Conversion conversion;
  conversion.text = valueText;
  Dpt dpt;
  if (!ParseDpt(dptText, dpt, conversion.error)) return conversion;
  conversion.dpt = dpt;
  const AroValueType type = ValueTypeOf(dpt, road);
  if (type != avtString) valueText = valueText.substr(0, valueText.find_last_not_of(" \t") + 1);
  if (type != avtString && valueText.empty()) {
    conversion.error = "the value is missing: " + EncodeAdvice(dpt, road);
    return conversion;
  }
  AROVALUE value;
  const std::string plain = type == avtString ? Unescaped(valueText) : std::string(valueText);
  if (!ParseValue(plain, dpt, type, value)) {
    conversion.error = Quoted(valueText) + " is no value of " + FormatDpt(dpt) + ": " + EncodeAdvice(dpt, road);
    return conversion;
  }
  conversion.value = value;
  const std::string silent = Quoted(valueText) + " cannot be sent as " + FormatDpt(dpt);
  log.Clear();
  try {
    conversion.groupValue = EncodeOn(road, dpt, value);
    if (conversion.groupValue && conversion.groupValue->GetRawData().empty()) {
      conversion.groupValue = boost::none;
      conversion.error =
          Explain("", FormatDpt(dpt) + " is taken for valid, but no octets are written", EncodeAdvice(dpt, road));
    } else if (!conversion.groupValue) {
      conversion.error = Explain(log.FirstReason(), silent, EncodeAdvice(dpt, road));
    }
  } catch (const std::exception& exception) {  // the calendar's range errors
    conversion.error = Explain(exception.what(), silent, EncodeAdvice(dpt, road));
  }
  return conversion;
}

Conversion Decode(std::string_view dptText, std::string_view octets, boost::optional<unsigned> bits, Road road,
                  ReasonLog& log) {
  Conversion conversion;
  if (!ReadGroupValue(dptText, octets, bits, conversion)) return conversion;
  Conversion decoded = Decode(*conversion.dpt, *conversion.groupValue, road, log);
  decoded.text = std::move(conversion.text);
  return decoded;
}

Conversion Decode(const Dpt& given, const GroupValue& groupValue, Road road, ReasonLog& log) {
  Conversion conversion;
  Dpt dpt = given;
  conversion.groupValue = groupValue;
  conversion.dpt = dpt;
  const std::string silent = "the octets are refused for " + FormatDpt(dpt);
  log.Clear();
  try {
    conversion.value = DecodeOn(road, dpt, groupValue);
    conversion.dpt = dpt;
    if (conversion.value && HasContent(*conversion.value)) return conversion;
    conversion.error = conversion.value ? ExplainNothing(dpt, groupValue, *conversion.value, road)
                                        : Explain(log.FirstReason(), silent, DecodeAdvice(dpt, groupValue, road));
  } catch (const std::exception& exception) {  // the calendar's range errors
    conversion.error = Explain(exception.what(), silent, DecodeAdvice(dpt, groupValue, road));
  }
  conversion.value = boost::none;
  return conversion;
}

Conversion Check(std::string_view dptText, std::string_view octets, boost::optional<unsigned> bits, ReasonLog& log) {
  Conversion conversion;
  if (!ReadGroupValue(dptText, octets, bits, conversion)) return conversion;
  KNXDPT bySize = ToKnxDpt({}, conversion.groupValue->GetDefinedSize());
  if (conversion.dpt->main == 0 && MapConverter().GetDefaultMappingDptForSize(bySize)) {
    conversion.dpt = Dpt{bySize.main, bySize.sub};
  }
  log.Clear();
  if (!Tal::CheckGroupValue(*conversion.groupValue, conversion.dpt->Number())) {
    conversion.error = Explain(log.FirstReason(), "the octets are refused for " + FormatDpt(*conversion.dpt),
                               DecodeAdvice(*conversion.dpt, *conversion.groupValue, Road::Map));
  }
  return conversion;
}

}  // namespace Talctl
