#include "RequestText.h"

#include <Format/ObjectId.h>
#include <Format/Quoted.h>

#include <algorithm>

#include "BoundedJson.h"

namespace DeviceStack {
namespace {

using Format::Json;
using Format::Quoted;

constexpr std::size_t kMaxRequestSize = std::size_t{64} * 1024;
constexpr int kMaxRequestDepth = 4;

[[noreturn]] void Fail(const std::string& about, const std::string& reason) {
  throw ServiceError(ErrorCode::InvalidRequest, about, reason);
}

/// The object with its identifiers and its value; null while it has none.
Json DescribeObject(const CommunicationObject& object, const ObjectStore& store) {
  Json json = {{"id", object.ValueId()}, {"kind", NameOf(Format::ObjectKind::CoValue)}};
  json.update(ToJson(object));
  json.erase("initial");
  try {
    json["value"] = Format::ToJson(store.Value(object.ValueId()));
  } catch (const ServiceError&) {
    json["value"] = nullptr;
  }
  return json;
}

Json List(const Json&, const ObjectStore& store, const Counters&) {
  Json objects = Json::array();
  for (const CommunicationObject& object : store.GetInstallation().objects) {
    objects.push_back(DescribeObject(object, store));
  }
  return {{"installation", store.GetInstallation().name}, {"objects", std::move(objects)}};
}

/// Identifiers that are no communication object of the installation are explained.
Json DescribeId(const Json& id, const ObjectStore& store) {
  constexpr std::uint64_t kLargest = 0xFFFFFFFF;
  if (!id.is_number_unsigned() || id.get<std::uint64_t>() > kLargest) {
    Fail("id", "'id' is wrong: expected a whole number from 0 to 4294967295");
  }
  const auto number = id.get<Tal::KnxZelMapping::ObjectId>();
  if (const CommunicationObject* const object = store.Find(number)) return DescribeObject(*object, store);
  const Format::ObjectExplanation explanation = Format::Explain(number);
  using Kind = Format::ObjectKind;
  if (explanation.kind == Kind::None || explanation.kind == Kind::CoChannel || explanation.kind == Kind::CoValue) {
    throw ServiceError(ErrorCode::UnknownObject, id.dump(),
                       "there is no object " + id.dump() + " in this installation");
  }
  Json json = {{"id", number}, {"kind", NameOf(explanation.kind)}, {"text", explanation.text}};
  try {
    json["value"] = Format::ToJson(store.Value(number));
  } catch (const ServiceError&) {  // a device or a channel
  }
  return json;
}

Json Describe(const Json& request, const ObjectStore& store, const Counters&) {
  const bool hasName = request.contains("object");
  if (hasName == request.contains("id")) Fail("describe", "expected either 'object' with a name, or 'id'");
  if (!hasName) return DescribeId(request["id"], store);
  if (!request["object"].is_string()) Fail("object", "'object' is wrong: expected a name");
  const std::string name = request["object"].get<std::string>();
  const CommunicationObject* const object = store.Find(name);
  if (object == nullptr) {
    throw ServiceError(ErrorCode::UnknownObject, name, "there is no object " + Quoted(name) + " in this installation");
  }
  return DescribeObject(*object, store);
}

Json Count(const Json&, const ObjectStore&, const Counters& counters) {
  return {{"requests", counters.requests},
          {"answered", counters.answered},
          {"errors", counters.errors},
          {"telegramsReceived", counters.telegramsReceived},
          {"telegramsIgnored", counters.telegramsIgnored},
          {"valuesDecoded", counters.valuesDecoded},
          {"valuesRefused", counters.valuesRefused},
          {"telegramsSent", counters.telegramsSent},
          {"telegramsNotSent", counters.telegramsNotSent}};
}

struct RequestRow {
  const char* name;
  std::vector<std::string> keys;  ///< beside "request"
  Json (*answer)(const Json& request, const ObjectStore& store, const Counters& counters);
};
const RequestRow kRequests[] = {{"list", {}, List}, {"describe", {"object", "id"}, Describe}, {"counters", {}, Count}};

}  // namespace

std::string AnswerRequest(const std::string& text, const ObjectStore& store, const Counters& counters) {
  const std::string expected = "expected {\"request\": ...} with list, describe or counters";
  Json request;
  try {
    request = ParseBoundedJson(text, kMaxRequestSize, kMaxRequestDepth);
  } catch (const std::runtime_error& error) {
    Fail("", std::string("the request ") + error.what() + ": " + expected);
  }
  if (!request.is_object() || !request.contains("request") || !request["request"].is_string()) {
    Fail("", "the request has no name: " + expected);
  }
  const std::string name = request["request"].get<std::string>();
  for (const RequestRow& row : kRequests) {
    if (name != row.name) continue;
    for (const auto& item : request.items()) {
      const bool isKnown = std::find(row.keys.begin(), row.keys.end(), item.key()) != row.keys.end();
      if (!isKnown && item.key() != "request") Fail(item.key(), name + " has no key " + Quoted(item.key()));
    }
    std::string answer = Format::Line(row.answer(request, store, counters));
    answer.pop_back();  // the line's end
    return answer;
  }
  Fail(name, "there is no request " + Quoted(name) + ": " + expected);
}

}  // namespace DeviceStack
