// talctl's manual page, made of its help.
#pragma once

#include <CLI/CLI.hpp>
#include <iosfwd>

namespace Talctl {

/// Writes talctl(1) with all commands in the language of man pages.
void WriteManPage(const CLI::App& app, std::ostream& out);

}  // namespace Talctl
