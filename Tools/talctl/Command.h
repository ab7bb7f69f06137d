// What all commands of talctl share.
#pragma once

#include <TalLog/Logger.h>

#include <CLI/CLI.hpp>
#include <boost/optional.hpp>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "Paint.h"

namespace Format {}

namespace Talctl {

using namespace Format;

/// Exit statuses.
enum ExitStatus : int {
  kDone = 0,
  kRefused = 1,   ///< something was refused, or could not be read or written
  kWrongUse = 2,  ///< the command line is wrong
  kSignal = 128,  ///< plus the number of a signal: it ended the command, and shall end the process
};

/// What they mean, for the manual.
struct ExitStatusMeaning {
  const char* status;
  const char* meaning;
};
constexpr ExitStatusMeaning kExitStatuses[] = {
    {"0", "Done."},
    {"1", "Something was refused, or could not be read or written."},
    {"2", "The command line is wrong."},
    {"128+N",
     "The signal N ended the command, as shells show it: 130 Ctrl-C, 143 a request to end, 141 nobody reads the "
     "output. "
     "Lines that were read till then are answered. To monitor, Ctrl-C is the end: 0."},
};

/// Where a command reads and writes.
struct Streams {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
  int inDescriptor = -1;  ///< what `in` and `out` stand for, if they are files
  int outDescriptor = -1;
  bool outIsTerminal = false;
  bool errIsTerminal = false;
  bool showsProgress = false;  ///< a line of progress on `err` meets neither output nor what is typed
};

/// What holds for every command.
struct CommonOptions {
  bool json = false;
  boost::optional<Tal::LogLevel> logLevel;  ///< records from this level are shown
  Paint out;                                ///< what goes to standard output in colours
  Paint err;
  const CommandLine* line = nullptr;  ///< if there is one
};

/// What a command gets to run.
struct Invocation {
  const CommonOptions& options;
  const std::vector<std::string>& operands;  ///< what is no option, in order
  const Streams& streams;
};

/// Tells why an operand is refused: on standard error with the command line and the place, or as an object among the
/// others with --json.
ExitStatus Refuse(const Invocation& invocation, const std::string& reason, const std::optional<Place>& place = {});

/// A command line that CLI11 accepts but the command does not: reported with exit status kWrongUse.
class WrongUse : public std::runtime_error {
 public:
  explicit WrongUse(const std::string& reason, std::optional<Place> at = {})
      : std::runtime_error(reason), place(std::move(at)) {}

  const std::optional<Place> place;
};

/// What the help of a command says beside its options.
struct Help {
  std::vector<std::string> usages;  ///< what follows the name: "[DPT VALUE]"
  std::string description;          ///< longer than the one in the list of commands
};
void SetHelp(CLI::App& command, std::vector<std::string> usages, std::string description);
/// As it was set.
const Help& HelpOf(const CLI::App& command);

/// One command: adds itself with its options to the command line, then runs.
class Command {
 public:
  virtual ~Command() = default;
  virtual CLI::App* AddTo(CLI::App& app) = 0;
  virtual ExitStatus Run(const Invocation& invocation) = 0;
};

}  // namespace Talctl
