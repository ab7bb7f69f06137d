#include <Format/ObjectId.h>

namespace Format {
namespace {

using namespace Tal::KnxZelMapping;
using Tal::LogicalDeviceId;
using Tal::ParameterType;

ObjectExplanation Explained(ObjectKind kind, const std::string& what, LogicalDeviceId dev,
                            boost::optional<unsigned> number = boost::none) {
  ObjectExplanation explanation;
  explanation.kind = kind;
  explanation.text =
      what + (number ? " " + std::to_string(*number) : "") + " of logical device " + std::to_string(dev.Get());
  explanation.device = dev;
  explanation.number = number;
  return explanation;
}

/// Deliberate: a parameter is found by computing identifiers forwards. GetParameterNumberFromObjModelId() keeps the low
/// 8 bits only and would call text parameter 500 number 244.
boost::optional<ObjectExplanation> ExplainParameter(ObjectId id, LogicalDeviceId dev) {
  for (const ParameterKind& kind : ParameterKinds()) {
    const ObjectId first = *GetParameterChannelObjModelId(0, dev, kind.type);
    const ObjectId last =
        *GetParameterValueObjModelId(static_cast<unsigned short>(GetMaxParametersOfType(kind.type)), dev, kind.type);
    if (id < first || id > last) continue;
    const bool isValue = (id - first) % 2 != 0;
    const std::string what = std::string(isValue ? "value" : "channel") + " of " + kind.title + " parameter";
    ObjectExplanation explanation =
        Explained(isValue ? ObjectKind::ParameterValue : ObjectKind::ParameterChannel, what, dev, (id - first) / 2);
    explanation.parameter = &kind;
    return explanation;
  }
  return boost::none;
}

}  // namespace

const std::vector<ParameterKind>& ParameterKinds() {
  static const std::vector<ParameterKind> kinds = {{ParameterType::Ip, "ip", "IP"},
                                                   {ParameterType::Number, "number", "number"},
                                                   {ParameterType::Text, "text", "text"}};
  return kinds;
}

const std::vector<AppControlKind>& AppControlKinds() {
  static const std::vector<AppControlKind> kinds = {
      {"channel", "app host control: channel", GetAppHostAppControlChannelObjModelId},
      {"state", "app host control: state", GetAppHostAppControlStateObjModelId},
      {"event", "app host control: event", GetAppHostAppControlEventObjModelId},
      {"alive", "app host control: alive heartbeat", GetAppHostAppControlAliveObjModelId},
      {"app-debug", "app host control: app debug", GetAppHostAppControlAppDebugObjModelId},
  };
  return kinds;
}

const char* NameOf(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::Device: return "device";
    case ObjectKind::LogicalDevice: return "logical-device";
    case ObjectKind::AppControl: return "app-control";
    case ObjectKind::CoChannel: return "co-channel";
    case ObjectKind::CoValue: return "co-value";
    case ObjectKind::ParameterChannel: return "parameter-channel";
    case ObjectKind::ParameterValue: return "parameter-value";
    case ObjectKind::Last: return "last";
    case ObjectKind::None: break;
  }
  return "none";
}

ObjectExplanation Explain(ObjectId id) {
  ObjectExplanation explanation;
  if (id == GetDeviceObjModelId()) {
    explanation.kind = ObjectKind::Device;
    explanation.text = "the device, and the KNX device";
    return explanation;
  }
  const boost::optional<LogicalDeviceId> dev = GetLogicalDeviceIdFromObject(id);
  if (!dev) return explanation;
  if (id == GetLogicalKnxDeviceObjModelId(*dev)) {
    explanation.kind = ObjectKind::LogicalDevice;
    explanation.text = "logical KNX device " + std::to_string(dev->Get());
    explanation.device = dev;
    return explanation;
  }
  for (const AppControlKind& kind : AppControlKinds()) {
    if (id != kind.idOf(*dev)) continue;
    explanation = Explained(ObjectKind::AppControl, kind.title, *dev);
    explanation.control = &kind;
    return explanation;
  }
  if (IsCoChannel(id)) {
    return Explained(ObjectKind::CoChannel, "channel of communication object", *dev,
                     *GetCoNumberFromObjModelId(id + 1, *dev));
  }
  if (IsCoValue(id)) {
    return Explained(ObjectKind::CoValue, "value of communication object", *dev, *GetCoNumberFromObjModelId(id, *dev));
  }
  if (auto parameter = ExplainParameter(id, *dev)) return *parameter;
  if (id == GetLastObjModelId(*dev)) return Explained(ObjectKind::Last, "the last identifier", *dev);
  return explanation;
}

}  // namespace Format
