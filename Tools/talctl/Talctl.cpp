#include "Talctl.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>
#include <ostream>

#include <Format/Quoted.h>
#include "Choice.h"
#include "Commands.h"
#include "Completion.h"
#include "Interrupts.h"
#include "ManPage.h"
#include "Suggestion.h"

namespace Talctl {
namespace {

struct LogLevelRow {
  const char* name;
  Tal::LogLevel level;
};
constexpr LogLevelRow kLogLevels[] = {{"debug", Tal::LogLevel::Debug},
                                      {"info", Tal::LogLevel::Info},
                                      {"warn", Tal::LogLevel::Warn},
                                      {"error", Tal::LogLevel::Error},
                                      {"fatal", Tal::LogLevel::Fatal}};

constexpr char kFooter[] = R"(Examples:
  talctl encode 9.001 21            0C1A
  talctl dpts 9.001
  talctl id 100101
  talctl demo --lines | talctl encode --json
  talctl set kitchen.light on
  talctl monitor --json

Exit status: 0 done, 1 something was refused, 2 wrong use, 128 + N ended by the signal N.
Environment: NO_COLOR (see --color), TERM.
`talctl COMMAND --help` shows a command's options and examples.)";

/// The command line as CLI11 knows it, with what it fills in.
class Program {
 public:
  struct Added {
    CLI::App* app;
    std::unique_ptr<Command> command;
  };

  Program() {
    app.fallthrough();
    app.set_version_flag("--version", std::string("talctl ") + TALCTL_VERSION, "Print the version and exit");
    app.add_flag("--json", options.json, "Print one JSON object a line");
    app.add_option("--color", m_color,
                   "Colours: auto (on a terminal, unless NO_COLOR is set; the default), always or never")
        ->type_name("WHEN")
        ->transform(OneOf({"auto", "always", "never"}));
    std::vector<std::string> levels;
    for (const LogLevelRow& row : kLogLevels) levels.emplace_back(row.name);
    app.add_option("--log-level", m_logLevel, "Show the library's log records from this level on standard error")
        ->type_name("LEVEL")
        ->transform(OneOf(levels));
    app.footer(kFooter);
    Add<EncodeCommand>();
    Add<DecodeCommand>();
    Add<CheckCommand>();
    Add<DptsCommand>();
    Add<IdCommand>();
    Add<DemoCommand>();
    Add<GetCommand>();
    Add<SetCommand>();
    Add<RequestCommand>();
    Add<RegisterCommand>();
    Add<MonitorCommand>();
    Add<JourneyCommand>();
    Add<ConfigCommand>();
  }

  /// Takes over what every command has, once it is parsed.
  void Settle(const Streams& streams) {
    for (const LogLevelRow& row : kLogLevels) {
      if (m_logLevel == row.name) options.logLevel = row.level;
    }
    const char* const noColor = std::getenv("NO_COLOR");
    const bool isAuto = m_color == "auto" && (noColor == nullptr || *noColor == '\0');
    options.out = Paint(m_color == "always" || (isAuto && streams.outIsTerminal));
    options.err = Paint(m_color == "always" || (isAuto && streams.errIsTerminal));
  }

  CLI::App app{"Looks at KNX values and object-model identifiers through libtalobjectmodel.", "talctl"};
  CommonOptions options;
  std::vector<Added> commands;

 private:
  template <class Kind>
  void Add() {
    auto command = std::make_unique<Kind>();
    CLI::App* const subcommand = command->AddTo(app);
    subcommand->fallthrough();
    commands.push_back({subcommand, std::move(command)});
  }

  std::string m_color = "auto";
  std::string m_logLevel;
};

std::vector<std::string> NamesOf(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::App* command : CommandsOf(app)) names.push_back(command->get_name());
  return names;
}
std::string Expected(const CLI::App& app) { return ": expected " + boost::algorithm::join(NamesOf(app), ", "); }

/// What CLI11 is to parse, and what is no option.
struct Arguments {
  std::vector<std::string> options;  ///< the command and the options
  std::vector<std::string> operands;
};

/// Sets operands apart before CLI11 sees the line, because a value may begin with a minus ("-30", "-inf", "-text") or
/// look like a list or a command. After the first operand only long options and "-h" are options; behind "--" nothing.
Arguments Separate(const CLI::App& app, CommandLine& line) {
  const std::vector<std::string>& arguments = line.Arguments();
  Arguments separated;
  const CLI::App* command = nullptr;
  bool isBehindDashes = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const bool startsWithMinus = argument.size() > 1 && argument[0] == '-' && !isBehindDashes;
    if (startsWithMinus && argument == "--") {
      isBehindDashes = true;
      continue;
    }
    if (command == nullptr && !isBehindDashes && argument.rfind('-', 0) != 0) {
      command = FindCommand(app, argument);
      if (command == nullptr) {
        throw WrongUse("there is no command " + Quoted(argument) + Expected(app) + DidYouMean(argument, NamesOf(app)),
                       AtArgument(i));
      }
      separated.options.push_back(argument);
      continue;
    }
    const std::string name = argument.substr(0, argument.find('='));
    const CLI::Option* option = startsWithMinus ? app.get_option_no_throw(name) : nullptr;
    if (startsWithMinus && option == nullptr && command != nullptr) option = command->get_option_no_throw(name);
    const bool isLong = startsWithMinus && argument[1] == '-';
    const bool isNumber = startsWithMinus && argument.find_first_of("0123456789") == 1;
    const bool isOption = isLong || option != nullptr || (startsWithMinus && !isNumber && separated.operands.empty());
    if (isOption && option == nullptr) {
      throw WrongUse("there is no option " + Quoted(name) + (command == nullptr ? " before the command" : "") +
                         "; a value that looks like an option goes behind --" +
                         DidYouMean(name, OptionNames(app, command)),
                     AtArgument(i));
    }
    if (isOption) {
      separated.options.push_back(argument);
      const bool isAlone = name.size() == argument.size();
      if (name.size() + 1 == argument.size() &&
          option->get_expected_min() > 0) {  // the parser would take the next word
        throw WrongUse(name + ": the value is missing", AtArgument(i, argument.size()));
      }
      const bool takesNext = option->get_expected_min() > 0 && isAlone && i + 1 < arguments.size();
      if (takesNext) separated.options.push_back(arguments[++i]);
      line.AddOption(option->get_name(), i, takesNext || isAlone ? 0 : name.size() + 1);
    } else {
      line.AddOperand(i);
      separated.operands.push_back(argument);
    }
  }
  return separated;
}

/// @p status, unless the output cannot be written. A reader who has gone away has had enough, which is not worth a
/// word.
ExitStatus Flushed(const Streams& streams, ExitStatus status) {
  if (streams.out.flush()) return status;
  if (IsReaderGone(streams.outDescriptor)) return static_cast<ExitStatus>(kSignal + SIGPIPE);
  streams.err << "talctl: standard output cannot be written\n";
  return kRefused;
}

/// What shells and builds ask for; no command of its own, as nobody types it.
bool RunHidden(const CLI::App& app, const std::vector<std::string>& arguments, std::ostream& out) {
  if (arguments.empty()) return false;
  if (arguments[0] == "complete") Complete(app, {arguments.begin() + 1, arguments.end()}, out);
  if (arguments[0] == "man") WriteManPage(app, out);
  return arguments[0] == "complete" || arguments[0] == "man";
}

ExitStatus TellWrongUse(const Program& program, const Streams& streams, const std::string& reason,
                        const std::optional<Place>& place) {
  const CommonOptions& options = program.options;
  streams.err << options.err(Colour::Error, "talctl:") << ' ' << OneLine(reason) << '\n';
  if (place) streams.err << options.line->PointAt(*place, options.err);
  streams.err << "Try `talctl --help`, or `talctl COMMAND --help`.\n";
  return kWrongUse;
}

int RunUnguarded(const std::vector<std::string>& arguments, const Streams& streams) {
  Program program;
  CommandLine line(arguments);
  program.options.line = &line;
  if (RunHidden(program.app, arguments, streams.out)) return Flushed(streams, kDone);
  try {
    program.Settle(streams);  // for what is wrong before the options are known
    const Arguments separated = Separate(program.app, line);
    std::vector<std::string> reversed(separated.options.rbegin(), separated.options.rend());  // as CLI11 wants them
    program.app.parse(reversed);
    program.Settle(streams);
    for (const Program::Added& added : program.commands) {
      if (!added.app->parsed()) continue;
      const ExitStatus status = added.command->Run({program.options, separated.operands, streams});
      return Flushed(streams, status);
    }
    throw WrongUse("a command is missing" + Expected(program.app));
  } catch (const CLI::Success& help) {
    program.app.exit(help, streams.out, streams.err);
    return Flushed(streams, kDone);
  } catch (const CLI::ParseError& error) {
    const std::string option = line.OptionIn(error.what());
    return TellWrongUse(program, streams, error.what(),
                        option.empty() ? std::nullopt : std::optional(AtOption(option)));
  } catch (const WrongUse& error) {
    return TellWrongUse(program, streams, error.what(), error.place);
  }
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
