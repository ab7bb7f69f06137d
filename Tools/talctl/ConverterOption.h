// --converter, as several commands have it.
#pragma once

#include <Format/Converter.h>

#include <CLI/CLI.hpp>

namespace Talctl {

/// Adds --converter to a command.
void AddConverterOption(CLI::App& command, Format::Converter& converter);

}  // namespace Talctl
