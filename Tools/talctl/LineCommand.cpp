#include "LineCommand.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <ostream>

#include "LineReader.h"

namespace Talctl {
namespace {

constexpr char kBlanks[] = " \t";

std::string_view WithoutLeadingBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

}  // namespace

ExitStatus LineCommand::Run(const Invocation& invocation) {
  ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  return invocation.operands.empty() ? RunLines(invocation, log) : RunOperands(invocation, log);
}

std::string LineCommand::Answer(const Invocation& invocation, unsigned long line, const Conversion& conversion) const {
  if (!invocation.options.json) {
    return (conversion.error.empty() ? Text(conversion) : "error: " + conversion.error) + '\n';
  }
  JsonLine json;
  json.Add("line", Json(line));
  if (conversion.dpt) json.Add("dpt", FormatDpt(*conversion.dpt));
  Describe(conversion, json);
  if (!conversion.error.empty()) json.Add("error", conversion.error);
  return json.Take();
}

ExitStatus LineCommand::RunOperands(const Invocation& invocation, ReasonLog& log) const {
  const auto& [options, operands, streams] = invocation;
  if (operands.size() < 2) {
    throw WrongUse(std::string(OperandName()) + " is missing: expected DPT " + OperandName() +
                   ", or no operands and lines on standard input");
  }
  const std::string rest = boost::algorithm::join(std::vector<std::string>(operands.begin() + 1, operands.end()), " ");
  const Conversion conversion = Convert(operands[0], rest, log);
  const bool isDone = conversion.error.empty();
  (isDone || options.json ? streams.out : streams.err) << Answer(invocation, 1, conversion);
  return isDone ? kDone : kRefused;
}

ExitStatus LineCommand::RunLines(const Invocation& invocation, ReasonLog& log) const {
  const auto& [in, out, err] = invocation.streams;
  LineReader lines(in, [&out = out] { out.flush(); });
  ExitStatus status = kDone;
  while (lines.Next()) {
    const std::string_view line = WithoutLeadingBlanks(lines.Text());
    if (line.empty() ? !lines.TooLong() : line.front() == '#') continue;  // of a line too long only this much is known
    Conversion conversion;
    if (lines.TooLong()) {
      conversion.error = "the line is longer than " + std::to_string(LineReader::kMaxLength) + " bytes";
    } else {
      const std::size_t dptEnd = std::min(line.find_first_of(kBlanks), line.size());
      conversion = Convert(line.substr(0, dptEnd), WithoutLeadingBlanks(line.substr(dptEnd)), log);
    }
    if (!conversion.error.empty()) status = kRefused;
    out << Answer(invocation, lines.Number(), conversion);
    if (!out) return kRefused;
  }
  if (!lines.Failed()) return status;
  err << "talctl: standard input cannot be read\n";
  return kRefused;
}

}  // namespace Talctl
