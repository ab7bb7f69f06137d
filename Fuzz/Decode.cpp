// Any octets and size as any datapoint type into both decoders and the check. What decodes must encode again, and then
// decode to an equal value.
#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxValueConverter.h>
#include <Tal/KnxZelMapping.h>

#include <stdexcept>

#include "Input.h"

namespace {

using KnxStack::GroupValue;

/// Main types whose values do not come back, as Docs/Converters.md tells.
bool IsOneWayDirect(unsigned main) {
  return main == 23      // what is sent has 2 bits, and 8 are received
         || main == 31;  // received only
}
bool IsOneWayMap(unsigned main) {
  return main == 2 || main == 3 || main == 18  // decoded to a type that the codec does not take
         || main == 17;                        // encodes integers and decodes to an octet
}

/// As many octets as the size says. Of others some decoders read what is there beyond it.
bool IsSound(const GroupValue& received) { return received.GetRawData().size() == (received.GetDefinedSize() + 7) / 8; }

void Direct(const KNXDPT& dpt, const GroupValue& received) {
  boost::optional<AROVALUE> value;
  try {
    value = Tal::GroupValueToAroValue(received, Fuzz::NumberOf(dpt));
  } catch (const std::out_of_range&) {
    FUZZ_CHECK(dpt.main == 11 || dpt.main == 19, Fuzz::Shown(received));
  }
  if (!value) return;
  FUZZ_CHECK(Tal::CheckGroupValue(received, Fuzz::NumberOf(dpt)), Fuzz::Shown(received));
  if (value->avt == avtEmpty || IsOneWayDirect(dpt.main) || !IsSound(received)) return;
  FUZZ_CHECK(value->avt == Tal::KnxZelMapping::GetAvtFromDpt(static_cast<unsigned>(Fuzz::NumberOf(dpt))),
             Fuzz::Shown(*value));
  const auto sent = Tal::AroValueToGroupValue(*value, Fuzz::NumberOf(dpt));
  FUZZ_CHECK(sent, Fuzz::Shown(*value));
  const auto again = Tal::GroupValueToAroValue(*sent, Fuzz::NumberOf(dpt));
  FUZZ_CHECK(again && *again == *value,
             Fuzz::Shown(received) + " > " + Fuzz::Shown(*value) + " > " + Fuzz::Shown(*sent));
}

void Map(const KNXDPT& given, const GroupValue& received) {
  static Tal::KnxValueConverter converter;
  static const bool isFilled = (converter.Init(), true);
  static_cast<void>(isFilled);
  KNXDPT dpt = given;
  AROVALUE value;
  const bool isDecoded = converter.FromKnxValue(dpt, received, value);
  if (given.main != 0) {
    FUZZ_CHECK(isDecoded == Tal::CheckGroupValue(received, Fuzz::NumberOf(given)), Fuzz::Shown(received));
  }
  if (!isDecoded || value.avt == avtEmpty || value.avt == avtInvalid || IsOneWayMap(dpt.main) || !IsSound(received))
    return;
  GroupValue sent;
  FUZZ_CHECK(converter.ToKnxValue(dpt, value, sent), Fuzz::Shown(value));
  AROVALUE again;
  FUZZ_CHECK(converter.FromKnxValue(dpt, sent, again) && again == value,
             Fuzz::Shown(received) + " > " + Fuzz::Shown(value) + " > " + Fuzz::Shown(sent));
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Prepare();
  Fuzz::Input input(data, size);
  KNXDPT dpt = Fuzz::TakeDpt(input);
  const std::uint8_t bits = input.Octet();  // 0: as many as the octets have
  const auto octets = input.Rest();
  const GroupValue received(KnxStack::BinaryData(reinterpret_cast<const std::uint8_t*>(octets.data()), octets.size()),
                            bits != 0 ? bits : static_cast<unsigned>(8 * octets.size()));
  Direct(dpt, received);
  Map(dpt, received);
  return 0;
}
