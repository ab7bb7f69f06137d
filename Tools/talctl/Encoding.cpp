#include "Encoding.h"

#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxZelMapping.h>
#include <Tal/TableDescription.h>

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/trim.hpp>

#include "Quoted.h"

namespace Talctl {
namespace {

constexpr char kBlanks[] = " \t";

std::string Hex(const KnxStack::BinaryData& octets) {
  std::string text = octets.ToString();
  text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
  return text;
}

/// What to do about a refusal.
std::string Advice(const Dpt& dpt) {
  const auto rows = Tal::DescribeMainTypes();
  const auto row = std::find_if(rows.begin(), rows.end(), [&](const auto& r) { return r.main == dpt.main; });
  if (row != rows.end() && row->isEncoded) return "expected " + Expectation(dpt);
  return std::to_string(dpt.main) + (row == rows.end() ? ".x is not known" : ".x is not encoded") +
         "; `talctl dpts` lists what is";
}

/// The library's reason, without what ends its sentence, and what to do about it.
std::string Explain(std::string reason, const Dpt& dpt, std::string_view value) {
  boost::algorithm::trim_right_if(reason, boost::algorithm::is_any_of(" ."));
  if (reason.empty()) reason = Quoted(value) + " cannot be sent as " + FormatDpt(dpt);
  return reason + ": " + Advice(dpt);
}

}  // namespace

std::string Encoding::Answer() const { return groupValue ? Hex(groupValue->GetRawData()) : "error: " + error; }

Json Encoding::ToJson(unsigned long line) const {
  Json json;
  json["line"] = line;
  if (dpt) json["dpt"] = FormatDpt(*dpt);
  if (value && value->avt != avtEmpty) {
    json["value"] = Talctl::ToJson(*value);
  } else if (!text.empty()) {
    json["value"] = text;  // as it was given
  }
  if (!groupValue) {
    json["error"] = error;
    return json;
  }
  json["type"] = AROVALUE::GetNameFromValueType(value->avt);
  json["octets"] = Hex(groupValue->GetRawData());
  json["bits"] = groupValue->GetDefinedSize();
  return json;
}

Encoding Encode(std::string_view dptText, boost::optional<std::string_view> valueText, ReasonLog& log) {
  Encoding encoding;
  if (valueText) encoding.text = *valueText;
  Dpt dpt;
  if (!ParseDpt(dptText, dpt, encoding.error)) return encoding;
  encoding.dpt = dpt;
  AROVALUE value;
  if (!valueText) {
    encoding.error = "the value is missing: expected " + Expectation(dpt);
    return encoding;
  }
  if (!ParseValue(*valueText, dpt, value, encoding.error)) return encoding;
  encoding.value = value;
  log.Clear();
  try {
    encoding.groupValue = Tal::AroValueToGroupValue(value, dpt.Number());
    if (!encoding.groupValue) encoding.error = Explain(log.FirstReason(), dpt, *valueText);
  } catch (const std::exception& exception) {  // the calendar's range errors
    encoding.error = Explain(exception.what(), dpt, *valueText);
  }
  return encoding;
}

Encoding EncodeLine(std::string_view line, ReasonLog& log) {
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  const std::size_t dptEnd = std::min(line.find_first_of(kBlanks), line.size());
  const std::string_view dptText = line.substr(0, dptEnd);
  std::string_view value = line.substr(dptEnd);
  value.remove_prefix(std::min(value.find_first_not_of(kBlanks), value.size()));

  std::string ignored;
  Dpt dpt;
  const bool isText = ParseDpt(dptText, dpt, ignored) &&
                      Tal::KnxZelMapping::GetAvtFromDpt(static_cast<unsigned>(dpt.Number())) == avtString;
  if (isText) return Encode(dptText, value, log);
  value = value.substr(0, value.find_last_not_of(kBlanks) + 1);
  return Encode(dptText, value.empty() ? boost::none : boost::make_optional(value), log);
}

}  // namespace Talctl
