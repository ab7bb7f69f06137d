#include <BasePlatform/AroDP.h>
#include <BasePlatform/AroValue.h>
#include <Tal/KnxZelMapping.h>
#include <TalLog/Assertion.h>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <limits>

#include "AroTimeFields.h"
#include "MainTypes.h"

namespace Tal {
namespace {

constexpr std::uint32_t kDevice = 1000;
constexpr std::uint32_t kLogicalDeviceSize = 100000;

constexpr std::uint32_t kAppControl = 20;  // offsets in a logical device
constexpr std::uint32_t kAppControlState = 21;
constexpr std::uint32_t kAppControlEvent = 22;
constexpr std::uint32_t kAppControlAlive = 23;
constexpr std::uint32_t kAppControlAppDebug = 24;
constexpr std::uint32_t kFirstCo = 100;
constexpr std::uint32_t kLastCoOffset = 8189;  // relative to kFirstCo
constexpr std::uint32_t kParameters = 60000;
constexpr std::uint32_t kParameterTypeSize = 10000;
constexpr std::uint32_t kParameterTypes = 3;

constexpr unsigned short kCoLimit = 4096;
constexpr unsigned kMaxParameters[kParameterTypes] = {100, 200, 500};

constexpr std::uint32_t BaseOf(LogicalDeviceId dev) noexcept {
  return kLogicalDeviceSize * static_cast<std::uint32_t>(dev.Get());
}

const MainType* FindMainType(unsigned long main) noexcept {
  for (const MainType& row : kMainTypes) {
    if (row.main == main) return &row;
  }
  return nullptr;
}

AROVALUE CreateAt(AroValueType avt, unsigned short year) {
  // Set as fields: the history of no time zone and the width of no time_t has a part in a default value.
  AROVALUE result;
  result.avt = avt;
  SetCalendarFields(result.time, boost::posix_time::ptime(boost::gregorian::date(year, 1, 1)));
  return result;
}

}  // namespace

AROVALUE CreateDefaultValueEmpty(AroValueType avt) {
  AROVALUE emptyAroValue;
  TAL_ASSERT2(emptyAroValue.avt == avt);
  return emptyAroValue;
}
AROVALUE CreateDefaultWord5A5A(AroValueType avt) { return ToAroValue<unsigned short>(0x5A5A, avt); }
AROVALUE CreateDefaultTimeOfDay(AroValueType avt) {
  return ToAroValue(*TalApp::TimeOfDay::Create(0, 0, 0, TalApp::DayOfWeek::NoDay), avt);
}
AROVALUE CreateDefaultDate(AroValueType avt) { return CreateAt(avt, 1990); }
AROVALUE CreateDefaultDateTime(AroValueType avt) { return CreateAt(avt, 1900); }

namespace KnxZelMapping {

bool IsAnyLogicalKnxDeviceId(ObjectId id) noexcept { return id >= kLogicalDeviceSize; }
ObjectId GetDeviceObjModelId() noexcept { return kDevice; }
ObjectId GetKnxDeviceObjModelId() noexcept { return kDevice; }
ObjectId GetLogicalKnxDeviceObjModelId(LogicalDeviceId dev) noexcept { return BaseOf(dev); }
ObjectId GetLastObjModelId(LogicalDeviceId dev) noexcept { return BaseOf(dev) + kLogicalDeviceSize - 1; }

boost::optional<LogicalDeviceId> GetLogicalDeviceIdFromObject(ObjectId id) noexcept {
  return LogicalDeviceId::Create(static_cast<int>(id / kLogicalDeviceSize));
}

ObjectId GetAppHostAppControlChannelObjModelId(LogicalDeviceId dev) noexcept { return BaseOf(dev) + kAppControl; }
ObjectId GetAppHostAppControlStateObjModelId(LogicalDeviceId dev) noexcept { return BaseOf(dev) + kAppControlState; }
ObjectId GetAppHostAppControlEventObjModelId(LogicalDeviceId dev) noexcept { return BaseOf(dev) + kAppControlEvent; }
ObjectId GetAppHostAppControlAliveObjModelId(LogicalDeviceId dev) noexcept { return BaseOf(dev) + kAppControlAlive; }
ObjectId GetAppHostAppControlAppDebugObjModelId(LogicalDeviceId dev) noexcept {
  return BaseOf(dev) + kAppControlAppDebug;
}
bool IsAppHostAppControlState(ObjectId id, LogicalDeviceId dev) noexcept {
  return id == GetAppHostAppControlStateObjModelId(dev);
}
bool IsAppHostAppControlEvent(ObjectId id, LogicalDeviceId dev) noexcept {
  return id == GetAppHostAppControlEventObjModelId(dev);
}
bool IsAppHostAppControlAliveHeartbeat(ObjectId id, LogicalDeviceId dev) noexcept {
  return id == GetAppHostAppControlAliveObjModelId(dev);
}
bool IsAppHostAppControlAppDebug(ObjectId id, LogicalDeviceId dev) noexcept {
  return id == GetAppHostAppControlAppDebugObjModelId(dev);
}

boost::optional<ObjectId> GetCoChannelObjModelId(unsigned short co, LogicalDeviceId dev) noexcept {
  if (co >= kCoLimit) return boost::none;
  return BaseOf(dev) + kFirstCo - 2 + 2u * co;
}

bool IsCoChannel(ObjectId id) noexcept {
  return id >= kLogicalDeviceSize && id % kLogicalDeviceSize - kFirstCo <= kLastCoOffset && id % 2 == 0;
}

bool IsCoValue(ObjectId id) noexcept { return id != 0 && IsCoChannel(id - 1); }

boost::optional<ObjectId> GetCoValueObjModelId(ObjectId channelId) noexcept {
  if (!IsCoChannel(channelId)) return boost::none;
  return channelId + 1;
}

boost::optional<ObjectId> GetCoValueObjModelId(unsigned short co, LogicalDeviceId dev) noexcept {
  const boost::optional<ObjectId> channel = GetCoChannelObjModelId(co, dev);
  return channel ? GetCoValueObjModelId(*channel) : boost::none;
}

boost::optional<std::uint16_t> GetCoNumberFromObjModelId(unsigned long id, LogicalDeviceId dev) noexcept {
  if (id > std::numeric_limits<ObjectId>::max()) return boost::none;
  const auto value = static_cast<ObjectId>(id);
  if (value % 2 == 0 || !IsCoChannel(value - 1)) return boost::none;
  return static_cast<std::uint16_t>((value % BaseOf(dev) - kFirstCo) / 2 + 1);
}

unsigned GetMaxParametersOfType(ParameterType type) noexcept {
  const auto number = static_cast<std::uint32_t>(type);
  return number < kParameterTypes ? kMaxParameters[number] : 0;
}

bool IsParameterChannel(ObjectId id) noexcept {
  if (id < kLogicalDeviceSize + kParameters) return false;
  // Deliberate: evenness is not tested, and the second modulo lets other identifiers at like offsets pass. This
  // arithmetic is a contract with the device-stack service; callers that must tell the kinds apart ask IsCoChannel()
  // too.
  std::uint32_t rest = id % kLogicalDeviceSize % kParameters;
  if (rest < 2 || rest - 2 >= kParameterTypes * kParameterTypeSize) return false;
  const std::uint32_t type = (rest - 2) / kParameterTypeSize;
  if (rest - 2 >= kParameterTypeSize) rest %= type * kParameterTypeSize;
  return rest / 2 <= GetMaxParametersOfType(static_cast<ParameterType>(type));
}

boost::optional<ObjectId> GetParameterChannelObjModelId(unsigned short n, LogicalDeviceId dev,
                                                        ParameterType type) noexcept {
  if (n > GetMaxParametersOfType(type)) return boost::none;
  return BaseOf(dev) + kParameters + kParameterTypeSize * static_cast<std::uint32_t>(type) + 2u * n;
}

boost::optional<ObjectId> GetIpParameterValueObjModelId(unsigned short n, LogicalDeviceId dev) noexcept {
  return GetParameterValueObjModelId(n, dev, ParameterType::Ip);
}
boost::optional<ObjectId> GetNumberParameterValueObjModelId(unsigned short n, LogicalDeviceId dev) noexcept {
  return GetParameterValueObjModelId(n, dev, ParameterType::Number);
}
boost::optional<ObjectId> GetTextParameterValueObjModelId(unsigned short n, LogicalDeviceId dev) noexcept {
  return GetParameterValueObjModelId(n, dev, ParameterType::Text);
}

boost::optional<ObjectId> GetParameterValueObjModelId(ObjectId channelId) noexcept {
  if (!IsParameterChannel(channelId)) return boost::none;
  return channelId + 1;
}

boost::optional<ObjectId> GetParameterValueObjModelId(unsigned short n, LogicalDeviceId dev,
                                                      ParameterType type) noexcept {
  const boost::optional<ObjectId> channel = GetParameterChannelObjModelId(n, dev, type);
  if (!channel) return boost::none;
  return *channel + 1;
}

boost::optional<ParameterType> GetParameterTypeFromObjModelId(ObjectId id, LogicalDeviceId dev) noexcept {
  const std::uint32_t rest = id % (kParameters + BaseOf(dev));
  if (!IsParameterChannel(id) || rest >= kParameterTypes * kParameterTypeSize) return boost::none;
  return static_cast<ParameterType>(rest / kParameterTypeSize);
}

boost::optional<std::uint8_t> GetParameterNumberFromObjModelId(ObjectId id, LogicalDeviceId dev) noexcept {
  const boost::optional<ParameterType> type = GetParameterTypeFromObjModelId(id, dev);
  if (!type) return boost::none;
  const std::uint32_t first = kParameters + kParameterTypeSize * static_cast<std::uint32_t>(*type) + BaseOf(dev);
  // Deliberate: the number is an octet in the interface, so text parameters above 255 come out modulo 256.
  return static_cast<std::uint8_t>(id % first / 2);
}

AroValueType GetAvtFromDpt(unsigned int dpt) noexcept {
  const unsigned int main = dpt >> 16;
  return main < kValueTypes.size() ? kValueTypes[main] : avtEmpty;
}

std::string GetAvtFromMainType(unsigned long main) {
  const MainType* const row = FindMainType(main);
  return AROVALUE::GetNameFromValueType(row != nullptr ? row->valueType : avtEmpty);
}

std::string GetAstFromMainType(unsigned long main) {
  const MainType* const row = FindMainType(main);
  return AroDP::GetNameFromValueSubType(row != nullptr ? row->subType : AroDP::astGeneric);
}

std::string GetDefaultValueFromDpt(unsigned long dpt, bool internalFormat) {
  std::string text;
  const MainType* const row = FindMainType(dpt >> 16);
  if (row != nullptr) row->createDefault(row->valueType).Serialize(text, internalFormat);
  return text;
}

}  // namespace KnxZelMapping
}  // namespace Tal
