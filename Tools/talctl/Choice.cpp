#include "Choice.h"

#include <Format/Cursor.h>
#include <Format/Quoted.h>

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/split.hpp>

#include "Suggestion.h"

namespace Talctl {

CLI::Validator OneOf(std::vector<std::string> names) {
  const std::string description = "{" + boost::algorithm::join(names, ",") + "}";
  const auto check = [names = std::move(names)](std::string& text) {
    for (const std::string& name : names) {
      if (!Format::SameText(text, name)) continue;
      text = name;
      return std::string();
    }
    return Format::Quoted(text) + " is none of " + boost::algorithm::join(names, ", ") + DidYouMean(text, names);
  };
  return {check, description};
}

std::vector<std::string> ChoicesOf(const CLI::Option& option) {
  const std::string type = option.get_type_name();  // "CONVERTER:{direct,table}"
  const std::size_t open = type.find('{');
  std::vector<std::string> names;
  if (open == type.npos) return names;
  const std::string list = type.substr(open + 1, type.find('}', open) - open - 1);
  boost::algorithm::split(names, list, boost::algorithm::is_any_of(","));
  return names;
}

}  // namespace Talctl
