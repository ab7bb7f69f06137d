#include "Conversion.h"

#include <Tal/GroupValueAroValue.h>

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <Format/Quoted.h>
#include "Suggestion.h"

namespace Talctl {
namespace {

using KnxStack::GroupValue;

KNXDPT ToKnxDpt(const Dpt& dpt, unsigned bits) { return {static_cast<std::uint8_t>(bits), dpt.main, dpt.sub}; }

/// The group value, or nothing. May throw what the calendar throws.
boost::optional<GroupValue> EncodeWith(Converter converter, const Dpt& dpt, const AROVALUE& value) {
  if (converter == Converter::Direct) return Tal::AroValueToGroupValue(value, dpt.Number());
  KNXDPT knxDpt = ToKnxDpt(dpt, 0);
  GroupValue groupValue;
  if (!TableConverter().ToKnxValue(knxDpt, value, groupValue)) return boost::none;
  return groupValue;
}

/// The value, or nothing. May throw what the calendar throws.
/// A datapoint type that is not given (main 0) is the one that the table converter chooses.
boost::optional<AROVALUE> DecodeWith(Converter converter, Dpt& dpt, const GroupValue& groupValue) {
  if (converter == Converter::Direct) return Tal::GroupValueToAroValue(groupValue, dpt.Number());
  KNXDPT knxDpt = ToKnxDpt(dpt, groupValue.GetDefinedSize());
  AROVALUE value;
  const bool isDecoded = TableConverter().FromKnxValue(knxDpt, groupValue, value);
  dpt = {knxDpt.main, knxDpt.sub};
  if (!isDecoded) return boost::none;
  // Deliberate: 3.x comes back as a byte under the type avtFloat; shown as the number it is.
  if (knxDpt.main == 3) value.avt = avtByte;
  return value;
}

bool HasContent(const AROVALUE& value) { return value.avt != avtInvalid && value.avt != avtEmpty; }

bool Decodes(Converter converter, Dpt dpt, const GroupValue& groupValue) {
  const ReasonLog::Pause pause;
  try {
    const auto value = DecodeWith(converter, dpt, groupValue);
    return value && HasContent(*value);
  } catch (const std::exception&) {
    return false;
  }
}

/// True when a converter reads some octet of this datapoint type.
bool IsDecodedAtAll(const Dpt& dpt, Converter converter) {
  return Decodes(converter, dpt, GroupValue({0}, 8)) || Decodes(converter, dpt, GroupValue({1}, 8));
}

std::string MainLabel(const Dpt& dpt) { return std::to_string(dpt.main) + ".x"; }
std::string TakeConverter(Converter converter) { return std::string("take `--converter ") + NameOf(converter) + "`"; }

bool IsKnown(const Dpt& dpt) { return FindMainType(dpt) != nullptr || FindDptRow(dpt) != nullptr; }
std::string NotKnown(const Dpt& dpt, Converter converter) {
  return MainLabel(dpt) + " is not known; `talctl dpts` lists what is" + DidYouMeanDpt(dpt, converter);
}

/// What to do about a refusal to encode.
std::string EncodeAdvice(const Dpt& dpt, Converter converter) {
  if (CanEncode(dpt, converter)) return "expected " + Expectation(dpt, converter);
  if (CanEncode(dpt, Other(converter)))
    return FormatDpt(dpt) + " is not encoded on this converter; " + TakeConverter(Other(converter));
  return IsKnown(dpt) ? MainLabel(dpt) + " is not encoded; `talctl dpts` lists what is" : NotKnown(dpt, converter);
}

/// True for a sub number that is never read where the first one is.
bool IsReadAsFirst(const Dpt& dpt, const GroupValue& groupValue, Converter converter) {
  return !IsDecodedAtAll(dpt, converter) && Decodes(converter, {dpt.main, 1}, groupValue);
}

/// What to do about octets that are refused, or stand for nothing.
std::string DecodeAdvice(const Dpt& dpt, const GroupValue& groupValue, Converter converter) {
  if (Decodes(Other(converter), dpt, groupValue)) return TakeConverter(Other(converter)) + ", which reads them";
  const boost::optional<unsigned> bits = Tal::DescribeExpectedBits(dpt.main);
  if (bits && *bits > 0 && (*bits != groupValue.GetDefinedSize() || 8 * groupValue.GetRawData().size() < *bits)) {
    const auto count = [](unsigned number, const char* what) {
      return std::to_string(number) + what + (number == 1 ? "" : "s");
    };
    return FormatDpt(dpt) + " has " + count(*bits, " bit") + " in " + count((*bits + 7) / 8, " octet");
  }
  if (!IsKnown(dpt)) return NotKnown(dpt, converter);
  return IsReadAsFirst(dpt, groupValue, converter) ? "they can be read as " + FormatDpt({dpt.main, 1})
                                                   : "check that the sender uses " + FormatDpt(dpt);
}

/// True when it is the datapoint type that stands in the way of decoding, not the octets.
bool IsDptAtFault(const Dpt& dpt, const GroupValue& groupValue, Converter converter) {
  const auto* const main = FindMainType(dpt);
  const bool isOfOtherConverter = converter == Converter::Direct && main != nullptr && !main->isDecoded;
  return !IsKnown(dpt) || isOfOtherConverter || IsReadAsFirst(dpt, groupValue, converter);
}

/// The library's reason without what ends its sentence, or else @p silent; then what to do.
std::string Explain(std::string reason, const std::string& silent, const std::string& advice) {
  boost::algorithm::trim_right_if(reason, boost::algorithm::is_any_of(" ."));
  return (reason.empty() ? silent : reason) + ": " + advice;
}

/// Why a decoded value has no content, and what to do.
std::string ExplainNothing(const Dpt& dpt, const GroupValue& groupValue, const AROVALUE& value, Converter converter) {
  const bool isLate = dpt.main == 11 || dpt.main == 19;
  if (value.avt == avtEmpty && !isLate) {
    const bool otherReads = Decodes(Other(converter), dpt, groupValue);
    return MainLabel(dpt) + " is accepted, but not decoded: " +
           (otherReads ? TakeConverter(Other(converter)) : "neither converter decodes it");
  }
  const char* const reason =
      value.avt == avtEmpty ? "the time is later than 2038-01-19 03:14:07" : "the octets stand for no valid value";
  return std::string(reason) + ": " + DecodeAdvice(dpt, groupValue, converter);
}

bool ReadDpt(std::string_view text, Conversion& conversion) {
  Dpt dpt;
  conversion.isDptWrong = !ParseDpt(text, dpt, conversion.error, &conversion.fault);
  if (conversion.isDptWrong) {
    conversion.error += DidYouMeanDpt(text);
    return false;
  }
  conversion.dpt = dpt;
  return true;
}

/// Reads what `decode` and `check` are given; on failure the error says what was expected.
bool ReadGroupValue(std::string_view dptText, std::string_view octetsText, boost::optional<unsigned> bits,
                    Conversion& conversion) {
  conversion.text = octetsText;
  if (!ReadDpt(dptText, conversion)) return false;
  const Dpt dpt = *conversion.dpt;
  std::vector<std::uint8_t> octets;
  if (!ParseOctets(octetsText, octets, &conversion.fault)) {
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

bool CanEncode(const Dpt& dpt, Converter converter) {
  const ReasonLog::Pause pause;
  for (const unsigned number : {0u, 1u}) {  // one of them, false, an empty text or a plain date is in every range
    AROVALUE probe;
    probe.avt = ValueTypeOf(dpt, converter);
    probe.time.SetDate(2000, 1, 1);
    probe.SetPayload(number);
    const auto groupValue = EncodeWith(converter, dpt, probe);
    if (groupValue && !groupValue->GetRawData().empty()) return true;
  }
  return false;
}

Conversion Encode(std::string_view dptText, std::string_view valueText, Converter converter, ReasonLog& log) {
  Conversion conversion;
  conversion.text = valueText;
  if (!ReadDpt(dptText, conversion)) return conversion;
  const Dpt dpt = *conversion.dpt;
  const AroValueType type = ValueTypeOf(dpt, converter);
  if (type != avtString) valueText = valueText.substr(0, valueText.find_last_not_of(" \t") + 1);
  if (type != avtString && valueText.empty()) {
    conversion.error = "the value is missing: " + EncodeAdvice(dpt, converter);
    conversion.isDptWrong = !CanEncode(dpt, converter);
    return conversion;
  }
  AROVALUE value;
  const std::string plain = type == avtString ? Unescaped(valueText) : std::string(valueText);
  if (!ParseValue(plain, dpt, type, value)) {
    conversion.error = Quoted(valueText) + " is no value of " + FormatDpt(dpt) + ": " + EncodeAdvice(dpt, converter);
    conversion.fault = FaultIn(valueText, dpt, type);
    return conversion;
  }
  conversion.value = value;
  const auto explain = [&](const std::string& reason) {
    return Explain(reason, Quoted(valueText) + " cannot be sent as " + FormatDpt(dpt), EncodeAdvice(dpt, converter));
  };
  log.Clear();
  try {
    conversion.groupValue = EncodeWith(converter, dpt, value);
    if (conversion.groupValue && conversion.groupValue->GetRawData().empty()) {
      conversion.groupValue = boost::none;
      conversion.error =
          Explain("", FormatDpt(dpt) + " is taken for valid, but no octets are written", EncodeAdvice(dpt, converter));
    } else if (!conversion.groupValue) {
      conversion.error = explain(log.FirstReason());
    }
  } catch (const std::exception& exception) {  // the calendar's range errors
    conversion.error = explain(exception.what());
  }
  conversion.isDptWrong = !conversion.error.empty() && !CanEncode(dpt, converter);
  return conversion;
}

Conversion Decode(std::string_view dptText, std::string_view octets, boost::optional<unsigned> bits,
                  Converter converter, ReasonLog& log) {
  Conversion conversion;
  if (!ReadGroupValue(dptText, octets, bits, conversion)) return conversion;
  Conversion decoded = Decode(*conversion.dpt, *conversion.groupValue, converter, log);
  decoded.text = std::move(conversion.text);
  return decoded;
}

Conversion Decode(const Dpt& given, const GroupValue& groupValue, Converter converter, ReasonLog& log) {
  Conversion conversion;
  Dpt dpt = given;
  conversion.groupValue = groupValue;
  conversion.dpt = dpt;
  const auto explain = [&](const std::string& reason) {
    return Explain(reason, "the octets are refused for " + FormatDpt(dpt), DecodeAdvice(dpt, groupValue, converter));
  };
  log.Clear();
  try {
    conversion.value = DecodeWith(converter, dpt, groupValue);
    conversion.dpt = dpt;
    if (conversion.value && HasContent(*conversion.value)) return conversion;
    conversion.error =
        conversion.value ? ExplainNothing(dpt, groupValue, *conversion.value, converter) : explain(log.FirstReason());
  } catch (const std::exception& exception) {  // the calendar's range errors
    conversion.error = explain(exception.what());
  }
  conversion.value = boost::none;
  conversion.isDptWrong = IsDptAtFault(dpt, groupValue, converter);
  return conversion;
}

Conversion Check(std::string_view dptText, std::string_view octets, boost::optional<unsigned> bits, ReasonLog& log) {
  Conversion conversion;
  if (!ReadGroupValue(dptText, octets, bits, conversion)) return conversion;
  KNXDPT bySize = ToKnxDpt({}, conversion.groupValue->GetDefinedSize());
  if (conversion.dpt->main == 0 && TableConverter().GetDefaultMappingDptForSize(bySize)) {
    conversion.dpt = Dpt{bySize.main, bySize.sub};
  }
  log.Clear();
  if (!Tal::CheckGroupValue(*conversion.groupValue, conversion.dpt->Number())) {
    conversion.error = Explain(log.FirstReason(), "the octets are refused for " + FormatDpt(*conversion.dpt),
                               DecodeAdvice(*conversion.dpt, *conversion.groupValue, Converter::Table));
    conversion.isDptWrong = IsDptAtFault(*conversion.dpt, *conversion.groupValue, Converter::Table);
  }
  return conversion;
}

}  // namespace Talctl
