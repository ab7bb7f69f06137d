// What may stand next on a command line, for a shell that asks.
#pragma once

#include <CLI/CLI.hpp>
#include <iosfwd>
#include <string>
#include <vector>

namespace Talctl {

/// The commands that an application has.
std::vector<const CLI::App*> CommandsOf(const CLI::App& app);
/// Null: there is none of that name.
const CLI::App* FindCommand(const CLI::App& app, const std::string& name);
/// The long names of a command's options and of those that every command has; no command: those before one.
std::vector<std::string> OptionNames(const CLI::App& app, const CLI::App* command);

/// Answers `complete INDEX WORD...`: prints what may stand instead of the word at INDEX and begins like it, a line
/// each. The line ":file" says that the name of a file is expected. Prints nothing when it does not know.
void Complete(const CLI::App& app, const std::vector<std::string>& arguments, std::ostream& out);

}  // namespace Talctl
