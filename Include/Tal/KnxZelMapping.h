// How the KNX side of the device is laid out in the object model: identifiers, and what a main type carries.
#pragma once

#include <BasePlatform/AroValueType.h>
#include <Tal/BoundedInt.h>
#include <Tal/Export.h>

#include <boost/optional.hpp>
#include <cstdint>
#include <string>

namespace Tal {

struct LogicalDeviceIdTag;
/// Number of a logical KNX device: 1 or 2.
using LogicalDeviceId = BoundedInt<int, 1, 2, LogicalDeviceIdTag>;

/// Kinds of application parameters. Every 32-bit number is representable; only these three have parameters.
enum class ParameterType : std::uint32_t { Ip = 0, Number = 1, Text = 2 };

/// Object-model identifiers are unsigned 32-bit numbers; their layout is a contract with the device-stack service.
/// With B = 100000 * dev for logical device dev:
///
///     1000                            the device, and the KNX device
///     B                               the logical KNX device
///     B + 20                          app host application-control channel
///     B + 21, 22, 23, 24              its state, event, alive-heartbeat and app-debug values
///     B + 98 + 2 * co                 channel of communication object co (1 to 4095); its value is the next number
///     B + 60000 + 10000 * type + 2*n  channel of parameter n of a type; its value is the next number
///     B + 99999                       the last identifier of the logical device
///
/// Nothing here throws, except that texts need memory. All functions may be called from any thread.
namespace KnxZelMapping {

using ObjectId = std::uint32_t;  ///< object-model identifier

TALOBJECTMODEL_EXPORT bool IsAnyLogicalKnxDeviceId(ObjectId id) noexcept;  ///< id >= 100000
TALOBJECTMODEL_EXPORT ObjectId GetDeviceObjModelId() noexcept;             ///< 1000
TALOBJECTMODEL_EXPORT ObjectId GetKnxDeviceObjModelId() noexcept;          ///< 1000
/// B
TALOBJECTMODEL_EXPORT ObjectId GetLogicalKnxDeviceObjModelId(LogicalDeviceId dev) noexcept;
/// B + 99999
TALOBJECTMODEL_EXPORT ObjectId GetLastObjModelId(LogicalDeviceId dev) noexcept;
/// The device that @p id belongs to; nothing below 100000 and from 300000.
TALOBJECTMODEL_EXPORT boost::optional<LogicalDeviceId> GetLogicalDeviceIdFromObject(ObjectId id) noexcept;

/// An identifier of app host application control: the channel B + 20, or one of its values B + 21 to 24.
/// @{
TALOBJECTMODEL_EXPORT ObjectId GetAppHostAppControlChannelObjModelId(LogicalDeviceId dev) noexcept;
TALOBJECTMODEL_EXPORT ObjectId GetAppHostAppControlStateObjModelId(LogicalDeviceId dev) noexcept;
TALOBJECTMODEL_EXPORT ObjectId GetAppHostAppControlEventObjModelId(LogicalDeviceId dev) noexcept;
TALOBJECTMODEL_EXPORT ObjectId GetAppHostAppControlAliveObjModelId(LogicalDeviceId dev) noexcept;
TALOBJECTMODEL_EXPORT ObjectId GetAppHostAppControlAppDebugObjModelId(LogicalDeviceId dev) noexcept;
/// @}
/// True for this value of application control in the logical device @p dev, and for no other identifier.
/// @{
TALOBJECTMODEL_EXPORT bool IsAppHostAppControlState(ObjectId id, LogicalDeviceId dev) noexcept;
TALOBJECTMODEL_EXPORT bool IsAppHostAppControlEvent(ObjectId id, LogicalDeviceId dev) noexcept;
TALOBJECTMODEL_EXPORT bool IsAppHostAppControlAliveHeartbeat(ObjectId id, LogicalDeviceId dev) noexcept;
TALOBJECTMODEL_EXPORT bool IsAppHostAppControlAppDebug(ObjectId id, LogicalDeviceId dev) noexcept;
/// @}

/// Nothing for @p co above 4095. 0 gives an identifier (B + 98), but no communication-object channel.
TALOBJECTMODEL_EXPORT boost::optional<ObjectId> GetCoChannelObjModelId(unsigned short co, LogicalDeviceId dev) noexcept;
/// True for an even identifier from 100000 up whose last five digits are 00100 to 08288. The logical device is not
/// looked at, so it need not be 1 or 2.
TALOBJECTMODEL_EXPORT bool IsCoChannel(ObjectId id) noexcept;
/// True when the number before @p id is the channel of a communication object.
TALOBJECTMODEL_EXPORT bool IsCoValue(ObjectId id) noexcept;
/// Nothing when @p channelId is no channel of a communication object.
TALOBJECTMODEL_EXPORT boost::optional<ObjectId> GetCoValueObjModelId(ObjectId channelId) noexcept;
/// Nothing for @p co 0 and above 4095.
TALOBJECTMODEL_EXPORT boost::optional<ObjectId> GetCoValueObjModelId(unsigned short co, LogicalDeviceId dev) noexcept;
/// The number of the communication object whose value has the identifier @p id; nothing when it is no such value or
/// needs more than 32 bits. @p dev must be the device of @p id: with another one the number means nothing.
TALOBJECTMODEL_EXPORT boost::optional<std::uint16_t> GetCoNumberFromObjModelId(unsigned long id,
                                                                               LogicalDeviceId dev) noexcept;

/// The largest parameter number: 100, 200, 500 for Ip, Number, Text; 0 for any other type.
TALOBJECTMODEL_EXPORT unsigned GetMaxParametersOfType(ParameterType type) noexcept;
/// True for the channels of parameters from number 1 (of text parameters from 0). True also for their values, and for
/// identifiers of other kinds in logical devices from 160000 up that look alike modulo 60000, communication objects
/// among them: ask IsCoChannel() first where both may occur.
TALOBJECTMODEL_EXPORT bool IsParameterChannel(ObjectId id) noexcept;
/// Nothing for @p n above the type's maximum.
TALOBJECTMODEL_EXPORT boost::optional<ObjectId> GetParameterChannelObjModelId(unsigned short n, LogicalDeviceId dev,
                                                                              ParameterType type) noexcept;
/// The identifier of the value of parameter @p n of a type; nothing for @p n above the type's maximum.
/// @{
TALOBJECTMODEL_EXPORT boost::optional<ObjectId> GetIpParameterValueObjModelId(unsigned short n,
                                                                              LogicalDeviceId dev) noexcept;
TALOBJECTMODEL_EXPORT boost::optional<ObjectId> GetNumberParameterValueObjModelId(unsigned short n,
                                                                                  LogicalDeviceId dev) noexcept;
TALOBJECTMODEL_EXPORT boost::optional<ObjectId> GetTextParameterValueObjModelId(unsigned short n,
                                                                                LogicalDeviceId dev) noexcept;
/// @}
/// The next number; nothing when IsParameterChannel() is false for @p channelId.
TALOBJECTMODEL_EXPORT boost::optional<ObjectId> GetParameterValueObjModelId(ObjectId channelId) noexcept;
/// As for the single types: nothing for @p n above the type's maximum.
TALOBJECTMODEL_EXPORT boost::optional<ObjectId> GetParameterValueObjModelId(unsigned short n, LogicalDeviceId dev,
                                                                            ParameterType type) noexcept;
/// The type of the parameter with the channel @p id, an identifier of @p dev; nothing when IsParameterChannel() is
/// false or @p id lies outside the device's parameters. For the identifier of another device the answer means nothing.
TALOBJECTMODEL_EXPORT boost::optional<ParameterType> GetParameterTypeFromObjModelId(ObjectId id,
                                                                                    LogicalDeviceId dev) noexcept;
/// The low 8 bits of the parameter's number, so numbers above 255 are not told apart from smaller ones; nothing where
/// GetParameterTypeFromObjModelId() gives nothing.
TALOBJECTMODEL_EXPORT boost::optional<std::uint8_t> GetParameterNumberFromObjModelId(ObjectId id,
                                                                                     LogicalDeviceId dev) noexcept;

/// The type that values of datapoint type @p dpt (main << 16 | sub) carry; avtEmpty when the main type is not known.
TALOBJECTMODEL_EXPORT AroValueType GetAvtFromDpt(unsigned int dpt) noexcept;
/// Its name as AROVALUE::GetNameFromValueType() gives it; "Empty" when the main type is not known.
TALOBJECTMODEL_EXPORT std::string GetAvtFromMainType(unsigned long main);
/// The name of the sub type that values of the main type carry; "Generic" when the main type is not known.
TALOBJECTMODEL_EXPORT std::string GetAstFromMainType(unsigned long main);
/// The serialised default value of the main type of @p dpt, in the internal format when @p internalFormat is true;
/// empty when the main type is not known.
TALOBJECTMODEL_EXPORT std::string GetDefaultValueFromDpt(unsigned long dpt, bool internalFormat);

}  // namespace KnxZelMapping
}  // namespace Tal
