#include "Samples.h"

#include <Tal/GroupValueAroValue.h>
#include <Tal/KnxValueConverter.h>

#include <random>
#include <stdexcept>

namespace Bench {
namespace {

AROVALUE Typed(AroValueType type) {
  AROVALUE value;
  value.avt = type;
  return value;
}
AROVALUE Number(AroValueType type, std::uint32_t number) {
  AROVALUE value = Typed(type);
  value.SetDWord(number);
  return value;
}
AROVALUE Float(double number) {
  AROVALUE value = Typed(avtFloat);
  value.SetFloat(number);
  return value;
}
AROVALUE Text(const std::string& text) {
  AROVALUE value = Typed(avtString);
  value.text = text;
  return value;
}
AROVALUE Moment(AroValueType type) {
  AROVALUE value = Typed(type);
  value.time.SetDateTime(2023, 6, 1, 12, 30, 15);
  value.time.weekDays = AroWeekDays::Thursday;
  return value;
}

std::vector<Sample> MakeSamples() {
  return {
      {"1.001", {0, 1, 1}, Number(avtBool, 1), Number(avtBool, 1), {{1}, 1}},
      {"5.001", {0, 5, 1}, Number(avtByte, 128), Number(avtByte, 128), {{0x80}, 8}},
      {"5.010", {0, 5, 10}, Number(avtByte, 254), Number(avtByte, 254), {{0xFE}, 8}},
      {"6.010", {0, 6, 10}, Number(avtByte, 200), Number(avtInteger, 0xFFFFFFC8), {{0xC8}, 8}},
      {"7.001", {0, 7, 1}, Number(avtWord, 4711), Number(avtWord, 4711), {{0x12, 0x67}, 16}},
      {"8.001", {0, 8, 1}, Number(avtInteger, 0xFFFFED99), Number(avtInteger, 0xFFFFED99), {{0xED, 0x99}, 16}},
      {"9.001", {0, 9, 1}, Float(21.5), Float(21.5), {{0x0C, 0x33}, 16}},
      {"10.001", {0, 10, 1}, Moment(avtDayTime), Moment(avtTime), {{0x8C, 0x1E, 0x0F}, 24}},
      {"11.001", {0, 11, 1}, Moment(avtDate), Moment(avtDate), {{0x01, 0x06, 0x17}, 24}},
      {"12.001", {0, 12, 1}, Number(avtDWord, 305419896), Number(avtDWord, 305419896), {{0x12, 0x34, 0x56, 0x78}, 32}},
      {"13.001", {0, 13, 1}, Number(avtInteger, 0xFFFF0000), Number(avtInteger, 0xFFFF0000), {{0xFF, 0xFF, 0, 0}, 32}},
      {"14.056", {0, 14, 56}, Float(1234.5), Float(1234.5), {{0x44, 0x9A, 0x50, 0}, 32}},
      {"16.001",
       {0, 16, 1},
       Text("Wohnzimmer 21 C"),
       Text("Wohnzimmer 21 C"),
       {{'W', 'o', 'h', 'n', 'z', 'i', 'm', 'm', 'e', 'r', ' ', '2', '1', ' '}, 112}},
      {"17.001", {0, 17, 1}, Number(avtByte, 12), Number(avtInteger, 12), {{12}, 8}},
      {"19.001", {0, 19, 1}, Moment(avtDateTime), Moment(avtDateTime), {{0x7B, 6, 1, 0x8C, 0x1E, 0x0F, 0x20, 0}, 64}},
      {"20.102", {0, 20, 102}, Number(avtByte, 3), Number(avtByte, 3), {{3}, 8}},
      {"232.600", {0, 232, 600}, Number(avtDWord, 0x123456), Number(avtDWord, 0x123456), {{0x12, 0x34, 0x56}, 24}},
  };
}

/// What is refused would be fast, and the figures would be of nothing.
void RequireConversions(const Sample& sample) {
  Tal::KnxValueConverter converter;
  converter.Init();
  KNXDPT dpt = sample.dpt;
  KnxStack::GroupValue sent;
  AROVALUE received;
  const auto direct = Tal::AroValueToGroupValue(sample.direct, sample.Number());
  const auto back = Tal::GroupValueToAroValue(sample.groupValue, sample.Number());
  const bool isRight = direct && direct->GetRawData() == sample.groupValue.GetRawData() && back &&
                       back->avt == sample.direct.avt && converter.ToKnxValue(dpt, sample.map, sent) &&
                       sent.GetRawData() == sample.groupValue.GetRawData() &&
                       converter.FromKnxValue(dpt, sample.groupValue, received) && received.avt != avtEmpty;
  if (!isRight) throw std::logic_error("the sample of " + sample.name + " is not converted");
}

}  // namespace

const std::vector<Sample>& Samples() {
  static const std::vector<Sample> samples = [] {
    std::vector<Sample> all = MakeSamples();
    for (const Sample& sample : all) RequireConversions(sample);
    return all;
  }();
  return samples;
}

const std::uint8_t* MixedOrder() {
  constexpr std::size_t kOrders = 64;
  static const std::vector<std::uint8_t> orders = [] {
    std::mt19937 random(1);
    std::vector<std::uint8_t> positions(kOrders * kMixed);
    for (std::uint8_t& position : positions) position = static_cast<std::uint8_t>(random() % Samples().size());
    return positions;
  }();
  static std::size_t next = 0;
  return orders.data() + kMixed * (next++ % kOrders);
}

}  // namespace Bench
