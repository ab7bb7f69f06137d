#include <boost/algorithm/string/join.hpp>
#include <ostream>

#include "Commands.h"
#include "Encoding.h"
#include "LineReader.h"

namespace Talctl {
namespace {

constexpr char kExamples[] = R"(Values by type:
  truth values   true false on off 1 0
  numbers        21.5, -30, 0x1F; floats also nan, inf, -inf
  time of day    12:30:15 or Mon 12:30:15
  date           2023-01-01, with time 2023-01-01T12:30:15
  text           the rest of the line
  colour (232)   1193046 or #123456
A value may begin with a minus; one that looks like an option goes behind --.

Examples:
  talctl encode 9.001 21            0C1A
  talctl encode 10.001 Sun 23:59:59
  talctl encode 16.000 -- --text
  printf '9.001 21\n1.001 on\n' | talctl encode --json)";

ExitStatus EncodeOperands(const Invocation& invocation, ReasonLog& log) {
  const std::vector<std::string>& operands = invocation.operands;
  if (operands.size() < 2)
    throw WrongUse("VALUE is missing: expected DPT VALUE, or no operands and lines on standard input");
  const std::string value = boost::algorithm::join(std::vector<std::string>(operands.begin() + 1, operands.end()), " ");
  const Encoding encoding = Encode(operands[0], std::string_view(value), log);
  if (invocation.options.json) {
    invocation.streams.out << Line(encoding.ToJson(1));
  } else {
    (encoding.groupValue ? invocation.streams.out : invocation.streams.err) << encoding.Answer() << '\n';
  }
  return encoding.groupValue ? kDone : kRefused;
}

/// Blank lines and comments. Of a line that is too long only the beginning is known, so it may not be blank.
bool IsSkipped(std::string_view line, bool isCut) {
  const std::size_t first = line.find_first_not_of(" \t");
  return first == line.npos ? !isCut : line[first] == '#';
}

ExitStatus EncodeLines(const Invocation& invocation, ReasonLog& log) {
  const auto& [in, out, err] = invocation.streams;
  LineReader lines(in, [&out = out] { out.flush(); });
  ExitStatus status = kDone;
  while (lines.Next()) {
    if (IsSkipped(lines.Text(), lines.TooLong())) continue;
    Encoding encoding;
    if (lines.TooLong()) {
      encoding.error = "the line is longer than " + std::to_string(LineReader::kMaxLength) + " bytes";
    } else {
      encoding = EncodeLine(lines.Text(), log);
    }
    if (!encoding.groupValue) status = kRefused;
    out << (invocation.options.json ? Line(encoding.ToJson(lines.Number())) : encoding.Answer() + '\n');
    if (!out) return kRefused;
  }
  if (!lines.Failed()) return status;
  err << "talctl: standard input cannot be read\n";
  return kRefused;
}

}  // namespace

CLI::App* EncodeCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("encode", "Values to the octets that go on the bus");
  SetHelp(*command, {"[DPT VALUE]"},
          "Prints the octets of VALUE as datapoint type DPT (9.001, 9, DPST-9-1) in upper-case hex; a value shorter "
          "than an\n"
          "octet as one octet. Without operands, answers lines `DPT VALUE` from standard input one by one; blank lines "
          "and\n"
          "# comments are skipped, and a refused line is answered with `error: ` and the reason.");
  command->footer(kExamples);
  return command;
}

ExitStatus EncodeCommand::Run(const Invocation& invocation) {
  ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  return invocation.operands.empty() ? EncodeLines(invocation, log) : EncodeOperands(invocation, log);
}

}  // namespace Talctl
