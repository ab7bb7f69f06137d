// Object-model identifiers in words.
#pragma once

#include <Tal/KnxZelMapping.h>

#include <boost/optional.hpp>
#include <string>
#include <vector>

namespace Notation {

struct ParameterKind {
  Tal::ParameterType type;
  const char* name;   ///< "ip"
  const char* title;  ///< in a sentence: "IP"
};
const std::vector<ParameterKind>& ParameterKinds();

struct AppControlKind {
  const char* name;   ///< "alive"
  const char* title;  ///< "app host control: alive heartbeat"
  Tal::KnxZelMapping::ObjectId (*idOf)(Tal::LogicalDeviceId) noexcept;
};
/// The channel comes first, its values follow.
const std::vector<AppControlKind>& AppControlKinds();

enum class ObjectKind {
  None,
  Device,
  LogicalDevice,
  AppControl,
  CoChannel,
  CoValue,
  ParameterChannel,
  ParameterValue,
  Last,
};

/// What an identifier stands for.
struct ObjectExplanation {
  ObjectKind kind = ObjectKind::None;
  std::string text = "not an identifier of the KNX side";
  boost::optional<Tal::LogicalDeviceId> device;
  boost::optional<unsigned> number;          ///< of the communication object or the parameter
  const ParameterKind* parameter = nullptr;  ///< of a parameter
  const AppControlKind* control = nullptr;   ///< of app host control
};

/// "co-value"
const char* NameOf(ObjectKind kind);

/// A communication object is looked for before a parameter.
ObjectExplanation Explain(Tal::KnxZelMapping::ObjectId id);

}  // namespace Notation
