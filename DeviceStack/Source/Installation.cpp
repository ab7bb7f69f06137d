#include <DeviceStack/Installation.h>
#include <Format/Converter.h>
#include <Format/Cursor.h>
#include <Format/Quoted.h>
#include <Tal/GroupValueAroValue.h>

#include <algorithm>
#include <fstream>
#include <set>

#include "BoundedJson.h"

namespace DeviceStack {
namespace {

using Format::Json;
using Format::Quoted;
using Tal::LogicalDeviceId;

/// Where in the text something stands, for errors: "house.json: objects[2].dpt".
class Place {
 public:
  explicit Place(std::string source) : m_text(std::move(source)) {}
  Place Key(const std::string& key) const { return Place(m_text + (m_isTop ? ": " : ".") + key, false); }
  Place Index(std::size_t i) const { return Place(m_text + '[' + std::to_string(i) + ']', false); }
  [[noreturn]] void Fail(const std::string& reason) const { throw InstallationError(m_text + ": " + reason); }

 private:
  Place(std::string text, bool isTop) : m_text(std::move(text)), m_isTop(isTop) {}
  std::string m_text;
  bool m_isTop = true;
};

struct FlagRow {
  const char* name;
  bool Flags::*flag;
};
constexpr FlagRow kFlags[] = {
    {"read", &Flags::read}, {"write", &Flags::write}, {"transmit", &Flags::transmit}, {"update", &Flags::update}};

LogicalDeviceId DeviceOf(const CommunicationObject& object) {
  return object.device == 1 ? LogicalDeviceId::Of<1>() : LogicalDeviceId::Of<2>();
}

std::string ReadText(const Json& json, const Place& place) {
  if (!json.is_string()) place.Fail("expected a text");
  return json.get<std::string>();
}

unsigned ReadNumber(const Json& json, const Place& place, unsigned max) {
  if (!json.is_number_unsigned() || json.get<std::uint64_t>() < 1 || json.get<std::uint64_t>() > max) {
    place.Fail("expected a whole number from 1 to " + std::to_string(max));
  }
  return json.get<unsigned>();
}

template <class Address>
void ReadAddress(const Json& json, const Place& place, Address& address) {
  std::string error;
  if (!ParseAddress(ReadText(json, place), address, error)) place.Fail(error);
}

void ReadDevice(const Json& json, const Place& place, CommunicationObject& object) {
  object.device = static_cast<int>(ReadNumber(json, place, 2));
}

void ReadObjectNumber(const Json& json, const Place& place, CommunicationObject& object) {
  object.number = static_cast<std::uint16_t>(ReadNumber(json, place, 4095));
}

/// A text for people: not empty, on one line.
std::string ReadTitle(const Json& json, const Place& place) {
  std::string title = ReadText(json, place);
  if (title.empty()) place.Fail("the text is empty");
  if (Format::OneLine(title) != title) place.Fail(Quoted(title) + " has control characters");
  return title;
}

void ReadName(const Json& json, const Place& place, CommunicationObject& object) {
  object.name = ReadTitle(json, place);
  if (std::all_of(object.name.begin(), object.name.end(), Format::IsDigit)) {
    place.Fail(Quoted(object.name) + " would be taken for an identifier: expected a name with other than digits");
  }
}

void ReadDpt(const Json& json, const Place& place, CommunicationObject& object) {
  std::string error;
  if (!Format::ParseDpt(ReadText(json, place), object.dpt, error)) place.Fail(error);
  const auto* const main = Format::FindMainType(object.dpt);
  if (main == nullptr || (!main->isEncoded && !main->isDecoded)) {
    place.Fail(Format::FormatDpt(object.dpt) + " has no values here");
  }
}

void ReadGroupAddress(const Json& json, const Place& place, CommunicationObject& object) {
  ReadAddress(json, place, object.address);
}

void ReadFlags(const Json& json, const Place& place, CommunicationObject& object) {
  if (!json.is_array()) place.Fail("expected a list of read, write, transmit, update");
  for (std::size_t i = 0; i < json.size(); ++i) {
    const std::string name = ReadText(json[i], place.Index(i));
    const auto* const row =
        std::find_if(std::begin(kFlags), std::end(kFlags), [&](const FlagRow& r) { return r.name == name; });
    if (row == std::end(kFlags)) {
      place.Index(i).Fail(Quoted(name) + " is no flag: expected read, write, transmit or update");
    }
    if (object.flags.*row->flag) place.Index(i).Fail(Quoted(name) + " is there twice");
    object.flags.*row->flag = true;
  }
}

/// After the datapoint type is known. A text is read as people write values; booleans and numbers may be JSON's own.
void ReadInitial(const Json& json, const Place& place, CommunicationObject& object) {
  if (!json.is_string() && !json.is_number() && !json.is_boolean())
    place.Fail("expected a text, a number or a boolean");
  const std::string text = json.is_string() ? json.get<std::string>() : json.dump();
  const AroValueType type = Format::ValueTypeOf(object.dpt, Format::Converter::Direct);
  AROVALUE value;
  bool isGood = Format::ParseValue(text, object.dpt, type, value);
  if (isGood) {
    try {
      isGood = Tal::AroValueToGroupValue(value, object.dpt.Number()).has_value();
    } catch (const std::exception&) {  // the calendar's range errors
      isGood = false;
    }
  }
  if (!isGood) {
    place.Fail(Quoted(text) + " is no value of " + Format::FormatDpt(object.dpt) + ": expected " +
               Format::Expectation(object.dpt, Format::Converter::Direct));
  }
  object.initial = std::move(value);
}

struct KeyRow {
  const char* key;
  bool isRequired;
  void (*read)(const Json& json, const Place& place, CommunicationObject& object);
};
// In the order in which they are read, which is the order in which they are written.
constexpr KeyRow kObjectKeys[] = {
    {"device", true, ReadDevice},    {"number", true, ReadObjectNumber},       {"name", true, ReadName},
    {"dpt", true, ReadDpt},          {"groupAddress", true, ReadGroupAddress}, {"flags", true, ReadFlags},
    {"initial", false, ReadInitial},
};
constexpr KeyRow kInstallationKeys[] = {
    {"name", true, nullptr}, {"address", true, nullptr}, {"objects", true, nullptr}};

/// Refuses what is no object, unknown keys and missing ones.
template <std::size_t size>
void CheckKeys(const Json& json, const Place& place, const KeyRow (&rows)[size]) {
  if (!json.is_object()) place.Fail("expected an object");
  std::string known;
  for (const KeyRow& row : rows) known += (known.empty() ? "" : ", ") + std::string(row.key);
  for (const auto& item : json.items()) {
    const bool isKnown =
        std::any_of(std::begin(rows), std::end(rows), [&](const KeyRow& r) { return r.key == item.key(); });
    if (!isKnown) place.Fail("there is no key " + Quoted(item.key()) + ": expected " + known);
  }
  for (const KeyRow& row : rows) {
    if (row.isRequired && !json.contains(row.key)) place.Fail(std::string("the key '") + row.key + "' is missing");
  }
}

CommunicationObject ReadObject(const Json& json, const Place& place) {
  CheckKeys(json, place, kObjectKeys);
  CommunicationObject object;
  for (const KeyRow& row : kObjectKeys) {
    const auto value = json.find(row.key);
    if (value != json.end()) row.read(*value, place.Key(row.key), object);
  }
  return object;
}

Installation ReadInstallation(const Json& json, const Place& place) {
  CheckKeys(json, place, kInstallationKeys);
  Installation installation;
  installation.name = ReadTitle(json["name"], place.Key("name"));
  ReadAddress(json["address"], place.Key("address"), installation.address);
  const Json& objects = json["objects"];
  const Place list = place.Key("objects");
  if (!objects.is_array()) list.Fail("expected a list of objects");
  std::set<std::string> names;
  std::set<Tal::KnxZelMapping::ObjectId> ids;
  for (std::size_t i = 0; i < objects.size(); ++i) {
    CommunicationObject object = ReadObject(objects[i], list.Index(i));
    if (!names.insert(object.name).second) {
      list.Index(i).Key("name").Fail(Quoted(object.name) + " is the name of another object already");
    }
    if (!ids.insert(object.ChannelId()).second) {
      list.Index(i).Key("number").Fail("device " + std::to_string(object.device) + " has an object " +
                                       std::to_string(object.number) + " already");
    }
    installation.objects.push_back(std::move(object));
  }
  return installation;
}

}  // namespace

Tal::KnxZelMapping::ObjectId CommunicationObject::ChannelId() const {
  return *Tal::KnxZelMapping::GetCoChannelObjModelId(number, DeviceOf(*this));
}

Tal::KnxZelMapping::ObjectId CommunicationObject::ValueId() const { return ChannelId() + 1; }

Installation ParseInstallation(std::string_view text, const std::string& source) {
  const Place place(Format::OneLine(source));
  Json json;
  try {
    json = ParseBoundedJson(text, kMaxInstallationSize, kMaxInstallationDepth);
  } catch (const std::runtime_error& error) {  // want of memory says nothing of the text
    place.Fail(error.what());
  }
  return ReadInstallation(json, place);
}

Installation LoadInstallation(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string text(kMaxInstallationSize + 1, '\0');  // one more tells that it is too long
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (!file.is_open() || file.bad()) Place(Format::OneLine(path)).Fail("cannot be read");
  text.resize(static_cast<std::size_t>(file.gcount()));
  return ParseInstallation(text, path);
}

Json ToJson(const CommunicationObject& object) {
  Json json = {{"device", object.device},
               {"number", object.number},
               {"name", object.name},
               {"dpt", Format::FormatDpt(object.dpt)},
               {"groupAddress", FormatAddress(object.address)},
               {"flags", Json::array()}};
  for (const FlagRow& row : kFlags) {
    if (object.flags.*row.flag) json["flags"].push_back(row.name);
  }
  if (object.initial) json["initial"] = Format::ToJson(*object.initial);
  return json;
}

Json ToJson(const Installation& installation) {
  Json json = {
      {"name", installation.name}, {"address", FormatAddress(installation.address)}, {"objects", Json::array()}};
  for (const CommunicationObject& object : installation.objects) json["objects"].push_back(ToJson(object));
  return json;
}

std::string FormatInstallation(const Installation& installation) {
  return ToJson(installation).dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace DeviceStack
