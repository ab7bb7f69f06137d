// The whole program behind main().
#pragma once

#include <string>
#include <vector>

#include "Command.h"

namespace Talctl {

/// Runs talctl with the arguments that follow the program's name. Returns the exit status; throws nothing.
int Run(const std::vector<std::string>& arguments, const Streams& streams) noexcept;

}  // namespace Talctl
