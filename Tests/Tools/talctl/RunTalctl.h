// talctl on streams of a test's own.
#pragma once

#include "Talctl.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace Talctl {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

/// Runs talctl with arguments that are separated by "|".
inline Outcome RunWith(const std::string& line, const std::string& input = "") {
  std::vector<std::string> arguments;
  if (!line.empty()) boost::split(arguments, line, boost::is_any_of("|"));
  std::istringstream in(input);
  std::ostringstream out;
  std::ostringstream err;
  const int status = Run(arguments, {in, out, err});
  return {status, out.str(), err.str()};
}

}  // namespace Talctl
