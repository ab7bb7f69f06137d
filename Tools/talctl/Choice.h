// Options whose value is one of a few names.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace Talctl {

/// Takes one of @p names in any case, and makes it what stands there; else says which there are, and which is near.
CLI::Validator OneOf(std::vector<std::string> names);

/// The names that an option takes; none when it takes others too.
std::vector<std::string> ChoicesOf(const CLI::Option& option);

}  // namespace Talctl
