#include "ObjectStore.h"

#include <Format/Converter.h>
#include <Format/ObjectId.h>
#include <Format/Octets.h>
#include <Format/Quoted.h>
#include <Tal/GroupValueAroValue.h>
#include <Tal/TableDescription.h>

namespace DeviceStack {
namespace {

using Format::FormatDpt;
using Format::ObjectExplanation;
using Format::ObjectKind;
using Format::Quoted;

std::string Described(const CommunicationObject& object) {
  return Quoted(object.name) + " (" + std::to_string(object.ValueId()) + ", " + FormatDpt(object.dpt) + ")";
}

/// The type of an application parameter's or control value; avtEmpty for the rest.
AroValueType OtherType(const ObjectExplanation& explanation) {
  if (explanation.kind == ObjectKind::ParameterValue) {
    return explanation.parameter->type == Tal::ParameterType::Number ? avtFloat : avtString;
  }
  if (explanation.kind != ObjectKind::AppControl) return avtEmpty;
  const std::string name = explanation.control->name;
  if (name == "alive") return avtDWord;
  if (name == "app-debug") return avtBool;
  return name == "channel" ? avtEmpty : avtString;
}

[[noreturn]] void FailWithout(Tal::KnxZelMapping::ObjectId id, const ObjectExplanation& explanation) {
  const std::string number = std::to_string(id);
  switch (explanation.kind) {
    case ObjectKind::None:
    case ObjectKind::Last:
    case ObjectKind::CoValue:
      throw ServiceError(ErrorCode::UnknownObject, number, "there is no object " + number + " in this installation");
    case ObjectKind::CoChannel:
    case ObjectKind::ParameterChannel:
      throw ServiceError(ErrorCode::NoValueObject, number,
                         number + " is the " + explanation.text + ": its value is " + std::to_string(id + 1));
    default: throw ServiceError(ErrorCode::NoValueObject, number, number + " has no value: it is " + explanation.text);
  }
}

void RequireType(const std::string& what, Tal::KnxZelMapping::ObjectId id, AroValueType type, const AROVALUE& value) {
  if (value.avt == type) return;
  throw ServiceError(ErrorCode::WrongType, std::to_string(id),
                     what + " takes values of type " + AROVALUE::GetNameFromValueType(type) + " (" +
                         std::to_string(type) + "), not " + AROVALUE::GetNameFromValueType(value.avt) + " (" +
                         std::to_string(static_cast<AroValueType>(value.avt)) + ")");
}

struct Decoded {
  boost::optional<AROVALUE> value;
  std::string refusal;
};

Decoded Decode(const KnxStack::GroupValue& groupValue, const Format::Dpt& dpt) {
  Decoded decoded;
  try {
    decoded.value = Tal::GroupValueToAroValue(groupValue, dpt.Number());
  } catch (const std::exception&) {  // the calendar's range errors: no such date
  }
  if (decoded.value && decoded.value->avt != avtEmpty && decoded.value->avt != avtInvalid) return decoded;
  decoded.value = boost::none;
  decoded.refusal = Format::Hex(groupValue.GetRawData()) + " (" + std::to_string(groupValue.GetDefinedSize()) +
                    " bits) is no value of " + FormatDpt(dpt);
  const boost::optional<unsigned> bits = Tal::DescribeExpectedBits(dpt.main);
  if (bits && *bits != groupValue.GetDefinedSize()) {
    decoded.refusal += ", which has " + std::to_string(*bits) + (*bits == 1 ? " bit" : " bits");
  }
  return decoded;
}

/// The group value, or why there is none.
struct Encoded {
  boost::optional<KnxStack::GroupValue> groupValue;
  std::string refusal;
};

Encoded Encode(const AROVALUE& value, const Format::Dpt& dpt) {
  Encoded encoded;
  try {
    encoded.groupValue = Tal::AroValueToGroupValue(value, dpt.Number());
  } catch (const std::exception&) {  // the calendar's range errors
  }
  if (!encoded.groupValue) {
    encoded.refusal = Quoted(Format::FormatValue(value)) + " cannot be sent as " + FormatDpt(dpt) + ": expected " +
                      Format::Expectation(dpt, Format::Converter::Direct);
  }
  return encoded;
}

}  // namespace

void ObjectStore::Replace(Installation installation) {
  m_objects = Build(std::move(installation), nullptr);
  m_others.clear();
}

void ObjectStore::Change(Installation installation) { m_objects = Build(std::move(installation), &m_objects); }

ObjectStore::Objects ObjectStore::Build(Installation installation, const Objects* before) {
  Objects objects;
  for (const CommunicationObject& object : installation.objects) {
    Entry entry{object, object.initial};
    if (before != nullptr && before->byId.count(object.ValueId()) > 0) {
      const Entry& old = before->entries[before->byId.at(object.ValueId())];
      const bool isSame = old.object.dpt.Number() == object.dpt.Number() && old.object.initial == object.initial;
      if (isSame) entry.value = old.value;
    }
    objects.byId[object.ValueId()] = objects.entries.size();
    objects.byName[object.name] = objects.entries.size();
    objects.byAddress[object.address.raw].push_back(objects.entries.size());
    objects.entries.push_back(std::move(entry));
  }
  objects.installation = std::move(installation);
  return objects;
}

const ObjectStore::Entry* ObjectStore::FindEntry(ObjectId id) const {
  const auto found = m_objects.byId.find(id);
  return found != m_objects.byId.end() ? &m_objects.entries[found->second] : nullptr;
}

const CommunicationObject* ObjectStore::Find(ObjectId id) const {
  const Entry* const entry = FindEntry(Tal::KnxZelMapping::IsCoChannel(id) ? id + 1 : id);
  return entry != nullptr ? &entry->object : nullptr;
}

const CommunicationObject* ObjectStore::Find(const std::string& name) const {
  const auto found = m_objects.byName.find(name);
  return found != m_objects.byName.end() ? &m_objects.entries[found->second].object : nullptr;
}

const AROVALUE& ObjectStore::Value(ObjectId id) const {
  if (const Entry* const entry = FindEntry(id)) {
    if (entry->value) return *entry->value;
    throw ServiceError(ErrorCode::NoValueYet, std::to_string(id),
                       Described(entry->object) + " has no value yet: it has neither been set nor received");
  }
  const ObjectExplanation explanation = Format::Explain(id);
  const AroValueType type = OtherType(explanation);
  if (type == avtEmpty) FailWithout(id, explanation);
  const auto other = m_others.find(id);
  if (other != m_others.end()) return other->second;
  static const auto defaults = [] {
    std::map<AroValueType, AROVALUE> values;
    for (const AroValueType t : {avtFloat, avtString, avtDWord, avtBool}) values[t].avt = t;
    return values;
  }();
  return defaults.at(type);
}

boost::optional<Knx::Telegram> ObjectStore::TelegramOf(ObjectId id, const AROVALUE& value) const {
  const Entry* const entry = FindEntry(id);
  if (entry == nullptr) {
    const ObjectExplanation explanation = Format::Explain(id);
    const AroValueType type = OtherType(explanation);
    if (type == avtEmpty) FailWithout(id, explanation);
    RequireType("the " + explanation.text, id, type, value);
    return boost::none;
  }
  const CommunicationObject& object = entry->object;
  RequireType(Described(object), id, Format::ValueTypeOf(object.dpt, Format::Converter::Direct), value);
  Encoded encoded = Encode(value, object.dpt);
  if (!encoded.groupValue) throw ServiceError(ErrorCode::RefusedValue, std::to_string(id), encoded.refusal);
  if (!object.flags.transmit) return boost::none;
  return Outgoing(object, Knx::Service::Write, std::move(*encoded.groupValue));
}

void ObjectStore::Assign(ObjectId id, AROVALUE value) {
  const auto found = m_objects.byId.find(id);
  if (found != m_objects.byId.end()) {
    m_objects.entries[found->second].value = std::move(value);
  } else {
    m_others[id] = std::move(value);
  }
}

std::vector<ObjectStore::Effect> ObjectStore::Receive(const Knx::Telegram& telegram) {
  std::vector<Effect> effects;
  const auto group = m_objects.byAddress.find(telegram.destination.raw);
  if (group == m_objects.byAddress.end()) return effects;
  for (const std::size_t i : group->second) {
    Entry& entry = m_objects.entries[i];
    const Flags& flags = entry.object.flags;
    Effect effect{&entry.object, boost::none, boost::none, ""};
    if (telegram.service == Knx::Service::Read) {
      if (!flags.read || !entry.value) continue;
      Encoded encoded = Encode(*entry.value, entry.object.dpt);
      if (encoded.groupValue) {
        effect.response = Outgoing(entry.object, Knx::Service::Response, std::move(*encoded.groupValue));
      } else {
        effect.refusal = std::move(encoded.refusal);
      }
    } else {
      if (!(telegram.service == Knx::Service::Write ? flags.write : flags.update)) continue;
      Decoded decoded = Decode(telegram.value, entry.object.dpt);
      if (decoded.value) entry.value = decoded.value;
      effect.value = std::move(decoded.value);
      effect.refusal = std::move(decoded.refusal);
    }
    effects.push_back(std::move(effect));
  }
  return effects;
}

Knx::Telegram ObjectStore::Outgoing(const CommunicationObject& object, Knx::Service service,
                                    KnxStack::GroupValue value) const {
  Knx::Telegram telegram;
  telegram.time = std::chrono::system_clock::now();
  telegram.source = m_objects.installation.address;
  telegram.destination = object.address;
  telegram.service = service;
  telegram.value = std::move(value);
  return telegram;
}

}  // namespace DeviceStack
