// What all commands of talctl share.
#pragma once

#include <TalLog/Logger.h>

#include <CLI/CLI.hpp>
#include <boost/optional.hpp>
#include <iosfwd>
#include <string>
#include <vector>

namespace Notation {}

namespace Talctl {

using namespace Notation;

/// Exit statuses.
enum ExitStatus : int {
  kDone = 0,
  kRefused = 1,   ///< something was refused, or could not be read or written
  kWrongUse = 2,  ///< the command line is wrong
};

/// Where a command reads and writes.
struct Streams {
  std::istream& in;
  std::ostream& out;
  std::ostream& err;
};

struct CommonOptions {
  bool json = false;
  boost::optional<Tal::LogLevel> logLevel;  ///< records from this level are shown
};

/// What a command gets to run.
struct Invocation {
  const CommonOptions& options;
  const std::vector<std::string>& operands;  ///< what is no option, in order
  const Streams& streams;
};

/// Tells why an operand is refused: on standard error, or as an object among the others with --json.
ExitStatus Refuse(const Invocation& invocation, const std::string& reason);

/// A command line that CLI11 accepts but the command does not: reported with exit status kWrongUse.
class WrongUse : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Gives a command its help: what follows its name in the usage lines, a description longer than the one in the list of
/// commands, and a word on the options that every command has.
void SetHelp(CLI::App& command, std::vector<std::string> usages, std::string description);

/// One command: adds itself with its options to the command line, then runs.
class Command {
 public:
  virtual ~Command() = default;
  virtual CLI::App* AddTo(CLI::App& app) = 0;
  virtual ExitStatus Run(const Invocation& invocation) = 0;
};

}  // namespace Talctl
