// Values of any type with any payload bits as any datapoint type into both encoders. What is encoded and decodes again
// must encode to the same octets.
#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxValueConverter.h>

#include <stdexcept>

#include "Input.h"

namespace {

using KnxStack::GroupValue;

AROVALUE TakeValue(Fuzz::Input& input) {
  AROVALUE value;
  const std::uint8_t type = input.Octet();
  value.avt = type == 255 ? static_cast<AroValueType>(static_cast<std::int32_t>(input.Number(4))) : AroValueType{type};
  value.SetPayload(input.Number(8));
  value.time.SetDateTime(input.Word(), input.Octet(), input.Octet(), input.Octet(), input.Octet(), input.Octet());
  value.time.weekDays = input.Word();
  value.text = std::string(input.Rest());
  return value;
}

/// A zero octet ends a text that is received, not one that is sent; 19.x keeps the year modulo 256 years.
bool ComesBack(const KNXDPT& dpt, const AROVALUE& value) {
  const bool isYear = value.time.year >= 1900 && value.time.year < 2155;
  return value.text.find('\0') == std::string::npos && (dpt.main != 19 || isYear);
}

bool Same(const GroupValue& a, const GroupValue& b) {
  return a.GetDefinedSize() == b.GetDefinedSize() && a.GetRawData() == b.GetRawData();
}

boost::optional<GroupValue> EncodeDirect(unsigned long dpt, const AROVALUE& value) {
  try {
    return Tal::AroValueToGroupValue(value, dpt);
  } catch (const std::out_of_range&) {
    FUZZ_CHECK(dpt >> 16 == 19, Fuzz::Shown(value));
    return boost::none;
  }
}

void Direct(const KNXDPT& dpt, const AROVALUE& value) {
  const auto sent = EncodeDirect(Fuzz::NumberOf(dpt), value);
  if (!sent) return;
  FUZZ_CHECK((sent->GetDefinedSize() + 7) / 8 == sent->GetRawData().size(), Fuzz::Shown(*sent));
  if (!ComesBack(dpt, value)) return;
  const auto received = Tal::GroupValueToAroValue(*sent, Fuzz::NumberOf(dpt));
  if (!received || received->avt == avtEmpty) return;
  const auto again = EncodeDirect(Fuzz::NumberOf(dpt), *received);
  FUZZ_CHECK(again && Same(*again, *sent), Fuzz::Shown(value) + " > " + Fuzz::Shown(*sent));
}

void Map(const KNXDPT& given, const AROVALUE& value) {
  static Tal::KnxValueConverter converter;
  static Tal::TalKnxValueConverter facade;
  static const bool isFilled = (converter.Init(), facade.Init(), true);
  static_cast<void>(isFilled);
  KNXDPT dpt = given;
  GroupValue sent;
  const bool isEncoded = converter.ToKnxValue(dpt, value, sent);

  // The facade for serialised text says the same of what the text carries.
  std::string text;
  value.Serialize(text, false);
  AROVALUE carried;
  if (carried.Deserialize(text) && carried == value) {
    KNXDPT facadeDpt = given;
    GroupValue facadeSent;
    FUZZ_CHECK(facade.ToKnxValue(facadeDpt, text, facadeSent) == isEncoded && Same(facadeSent, sent), text);
  }
  AROVALUE received;
  if (!isEncoded || !ComesBack(dpt, value) || !converter.FromKnxValue(dpt, sent, received)) return;
  if (received.avt == avtEmpty || received.avt == avtInvalid || dpt.main == 19) return;  // 19.x: no weekday comes back
  GroupValue again;
  const bool isOneWay = dpt.main == 2 || dpt.main == 3 || dpt.main == 17 || dpt.main == 18;  // see Docs/Converters.md
  const bool isEncodedAgain = converter.ToKnxValue(dpt, received, again);
  FUZZ_CHECK(isEncodedAgain || isOneWay, Fuzz::Shown(received));
  if (!isEncodedAgain) return;
  FUZZ_CHECK(Same(again, sent), Fuzz::Shown(value) + " > " + Fuzz::Shown(sent) + " > " + Fuzz::Shown(received));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Prepare();
  Fuzz::Input input(data, size);
  KNXDPT dpt = Fuzz::TakeDpt(input);
  dpt.size = input.Octet();
  const AROVALUE value = TakeValue(input);
  Direct(dpt, value);
  Map(dpt, value);
  return 0;
}
