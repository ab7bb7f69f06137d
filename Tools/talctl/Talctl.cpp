#include "Talctl.h"

#include <CLI/CLI.hpp>
#include <map>
#include <memory>
#include <ostream>

#include <Notation/Quoted.h>
#include "Commands.h"

namespace Talctl {
namespace {

const std::map<std::string, Tal::LogLevel> kLogLevels = {{"debug", Tal::LogLevel::Debug},
                                                         {"info", Tal::LogLevel::Info},
                                                         {"warn", Tal::LogLevel::Warn},
                                                         {"error", Tal::LogLevel::Error},
                                                         {"fatal", Tal::LogLevel::Fatal}};

struct Arguments {
  std::vector<std::string> options;  ///< the command and the options, for CLI11
  std::vector<std::string> operands;
};

std::vector<const CLI::App*> CommandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

std::string NamesOf(const CLI::App& app) {
  std::string names;
  for (const CLI::App* command : CommandsOf(app)) names += (names.empty() ? "" : ", ") + command->get_name();
  return names;
}

/// The command of that name. @throws WrongUse when there is none.
const CLI::App* FindCommand(const CLI::App& app, const std::string& name) {
  for (const CLI::App* command : CommandsOf(app)) {
    if (command->get_name() == name) return command;
  }
  throw WrongUse("there is no command " + Quoted(name) + ": expected " + NamesOf(app));
}

/// Sets operands apart before CLI11 sees the line, because a value may begin with a minus ("-30", "-inf", "-text") or
/// look like a list or a command. After the first operand only long options and "-h" are options; behind "--" nothing.
Arguments Separate(const CLI::App& app, const std::vector<std::string>& arguments) {
  Arguments separated;
  const CLI::App* command = nullptr;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument == "--") {
      separated.operands.insert(separated.operands.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                                arguments.end());
      break;
    }
    if (command == nullptr && argument.rfind('-', 0) != 0) {
      command = FindCommand(app, argument);
      separated.options.push_back(argument);
      continue;
    }
    const std::string name = argument.substr(0, argument.find('='));
    const CLI::Option* option = app.get_option_no_throw(name);
    if (option == nullptr && command != nullptr) option = command->get_option_no_throw(name);
    const bool isLong = argument.rfind("--", 0) == 0;
    const bool startsWithMinus = argument.size() > 1 && argument[0] == '-';
    const bool isNumber = startsWithMinus && argument.find_first_of("0123456789") == 1;
    const bool isOption = isLong || option != nullptr || (startsWithMinus && !isNumber && separated.operands.empty());
    if (isOption && option == nullptr) {
      throw WrongUse("there is no option " + Quoted(name) + (command == nullptr ? " before the command" : "") +
                     "; a value that looks like an option goes behind --");
    }
    if (isOption) {
      separated.options.push_back(argument);
      const bool takesValue = option->get_expected_min() > 0 && name.size() == argument.size();
      if (takesValue && i + 1 < arguments.size()) separated.options.push_back(arguments[++i]);
    } else {
      separated.operands.push_back(argument);
    }
  }
  return separated;
}

/// @p status, unless the output cannot be written.
ExitStatus Flushed(const Streams& streams, ExitStatus status) {
  if (streams.out.flush()) return status;
  streams.err << "talctl: standard output cannot be written\n";
  return kRefused;
}

int RunUnguarded(const std::vector<std::string>& arguments, const Streams& streams) {
  CLI::App app("Looks at KNX values and object-model identifiers through libtalobjectmodel.", "talctl");
  CommonOptions options;
  app.fallthrough();
  app.set_version_flag("--version", std::string("talctl ") + TALCTL_VERSION);
  app.add_flag("--json", options.json, "Print one JSON object a line");
  std::string logLevel;
  app.add_option("--log-level", logLevel, "Show the library's log records from this level on standard error")
      ->type_name("LEVEL")
      ->check(CLI::IsMember(kLogLevels, CLI::ignore_case));
  app.footer(
      "Examples:\n"
      "  talctl encode 9.001 21            0C1A\n"
      "  talctl dpts 9.001\n"
      "  talctl id 100101\n"
      "  talctl demo --lines | talctl encode --json\n"
      "  talctl set kitchen.light on\n"
      "  talctl monitor --json\n\n"
      "Exit status: 0 done, 1 something was refused, 2 wrong use.\n"
      "`talctl COMMAND --help` shows a command's options and examples.");

  struct Added {
    CLI::App* app;
    std::unique_ptr<Command> command;
  };
  std::vector<Added> commands;
  const auto add = [&](std::unique_ptr<Command> command) {
    CLI::App* const subcommand = command->AddTo(app);
    subcommand->fallthrough();
    commands.push_back({subcommand, std::move(command)});
  };
  add(std::make_unique<EncodeCommand>());
  add(std::make_unique<DecodeCommand>());
  add(std::make_unique<CheckCommand>());
  add(std::make_unique<DptsCommand>());
  add(std::make_unique<IdCommand>());
  add(std::make_unique<DemoCommand>());
  add(std::make_unique<GetCommand>());
  add(std::make_unique<SetCommand>());
  add(std::make_unique<RequestCommand>());
  add(std::make_unique<RegisterCommand>());
  add(std::make_unique<MonitorCommand>());
  add(std::make_unique<JourneyCommand>());
  add(std::make_unique<ConfigCommand>());

  try {
    Arguments separated = Separate(app, arguments);
    std::vector<std::string> reversed(separated.options.rbegin(), separated.options.rend());  // as CLI11 wants them
    app.parse(reversed);
    if (!logLevel.empty()) options.logLevel = kLogLevels.at(CLI::detail::to_lower(logLevel));
    for (const Added& added : commands) {
      if (!added.app->parsed()) continue;
      const ExitStatus status = added.command->Run({options, separated.operands, streams});
      return Flushed(streams, status);
    }
    throw WrongUse("a command is missing: expected " + NamesOf(app));
  } catch (const CLI::Success& help) {
    app.exit(help, streams.out, streams.err);
    return Flushed(streams, kDone);
  } catch (const CLI::ParseError& error) {
    streams.err << "talctl: " << OneLine(error.what()) << "\nTry `talctl --help`, or `talctl COMMAND --help`.\n";
  } catch (const WrongUse& error) {
    streams.err << "talctl: " << OneLine(error.what()) << "\nTry `talctl --help`, or `talctl COMMAND --help`.\n";
  }
  return kWrongUse;
}

}  // namespace

int Run(const std::vector<std::string>& arguments, const Streams& streams) noexcept {
  try {
    return RunUnguarded(arguments, streams);
  } catch (const std::exception& error) {  // nothing is expected here but want of memory
    streams.err << "talctl: " << error.what() << '\n';
    return kRefused;
  }
}

}  // namespace Talctl
