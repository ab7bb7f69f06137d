// Object-model identifiers in words.
#pragma once

#include <Tal/KnxZelMapping.h>

#include <boost/optional.hpp>
#include <string>
#include <vector>

namespace Format {

/// A kind of application parameters.
struct ParameterKind {
  Tal::ParameterType type;  ///< its number
  const char* name;         ///< "ip"
  const char* title;        ///< in a sentence: "IP"
};
/// All three.
const std::vector<ParameterKind>& ParameterKinds();

/// An object of app host application control.
struct AppControlKind {
  const char* name;                                                     ///< "alive"
  const char* title;                                                    ///< "app host control: alive heartbeat"
  Tal::KnxZelMapping::ObjectId (*idOf)(Tal::LogicalDeviceId) noexcept;  ///< its identifier in a logical device
};
/// The channel comes first, its values follow.
const std::vector<AppControlKind>& AppControlKinds();

/// Kinds of objects.
enum class ObjectKind {
  None,              ///< no object of the KNX side
  Device,            ///< the device, and the KNX device
  LogicalDevice,     ///< a logical KNX device
  AppControl,        ///< channel or value of application control
  CoChannel,         ///< channel of a communication object
  CoValue,           ///< value of a communication object
  ParameterChannel,  ///< channel of a parameter
  ParameterValue,    ///< value of a parameter
  Last,              ///< the last identifier of a logical device
};

/// What an identifier stands for.
struct ObjectExplanation {
  ObjectKind kind = ObjectKind::None;                      ///< what kind of object
  std::string text = "not an identifier of the KNX side";  ///< in words
  boost::optional<Tal::LogicalDeviceId> device;            ///< whose it is
  boost::optional<unsigned> number;                        ///< of the communication object or the parameter
  const ParameterKind* parameter = nullptr;                ///< of a parameter
  const AppControlKind* control = nullptr;                 ///< of app host control
};

/// "co-value"
const char* NameOf(ObjectKind kind);

/// What @p id stands for. A communication object is looked for before a parameter.
ObjectExplanation Explain(Tal::KnxZelMapping::ObjectId id);

}  // namespace Format
