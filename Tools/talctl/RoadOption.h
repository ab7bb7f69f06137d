// --road, as several commands have it.
#pragma once

#include <Notation/Road.h>

#include <CLI/CLI.hpp>

namespace Talctl {

/// Adds --road to a command.
void AddRoadOption(CLI::App& command, Notation::Road& road);

}  // namespace Talctl
