#include "BoundedJson.h"

#include <Format/Quoted.h>

#include <set>
#include <stdexcept>
#include <vector>

namespace DeviceStack {

using Format::Json;

constexpr std::size_t kMaxKeys = 64;  // in one object: they are searched one by one

Json ParseBoundedJson(std::string_view text, std::size_t maxSize, int maxDepth) {
  if (text.size() > maxSize) throw std::runtime_error("is longer than " + std::to_string(maxSize) + " octets");
  if (text.find('\0') != text.npos) throw std::runtime_error("is not JSON: there is a NUL in it");
  std::vector<std::set<std::string>> keys;  // of the objects that are open
  const auto check = [&](int depth, Json::parse_event_t event, Json& parsed) {
    if (depth >= maxDepth) throw std::runtime_error("is nested deeper than " + std::to_string(maxDepth) + " levels");
    if (event == Json::parse_event_t::object_start) keys.emplace_back();
    if (event == Json::parse_event_t::object_end) keys.pop_back();
    if (event == Json::parse_event_t::key && !keys.back().insert(parsed.get<std::string>()).second) {
      throw std::runtime_error("has the key " + Format::Quoted(parsed.get<std::string>()) + " twice in an object");
    }
    if (event == Json::parse_event_t::key && keys.back().size() > kMaxKeys) {
      throw std::runtime_error("has an object with more than " + std::to_string(kMaxKeys) + " keys");
    }
    return true;
  };
  try {
    return Json::parse(text.begin(), text.end(), check);
  } catch (const Json::exception& error) {
    std::string reason = error.what();  // "[json.exception.parse_error.101] parse error at line 1, ..."
    const std::size_t bracket = reason.find("] ");
    if (bracket != reason.npos) reason.erase(0, bracket + 2);
    constexpr std::size_t kShown = 160;  // the parser repeats what it read last, however long
    const bool isLong = reason.size() > kShown;
    throw std::runtime_error("is not JSON: " + Format::OneLine(reason.substr(0, kShown)) + (isLong ? "..." : ""));
  }
}

}  // namespace DeviceStack
