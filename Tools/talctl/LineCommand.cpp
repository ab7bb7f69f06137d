#include "LineCommand.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <cmath>
#include <ostream>

#include "Characters.h"
#include "Interrupts.h"
#include "LineReader.h"
#include "Progress.h"

namespace Talctl {
namespace {

constexpr char kBlanks[] = " \t";

std::string_view WithoutLeadingBlanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

/// The column of an octet, in characters from 1.
std::size_t ColumnOf(std::string_view line, const char* octet) {
  return CharactersOf(line.substr(0, static_cast<std::size_t>(octet - line.data()))).size() + 1;
}

/// What is said of an input that was cut short.
void TellStop(const Streams& streams, unsigned long lines, unsigned long refused, const Progress& progress) {
  streams.out.flush();
  // Over the ^C that a terminal shows.
  streams.err << (streams.errIsTerminal ? "\r" : "") << "talctl: stopped: " << std::to_string(lines) << " lines, "
              << std::to_string(refused) << " refused, "
              << FormatNumber(std::floor(progress.Elapsed().count() * 10) / 10) << " s\n";
}

}  // namespace

ExitStatus LineCommand::Run(const Invocation& invocation) {
  ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  return invocation.operands.empty() ? RunLines(invocation, log) : RunOperands(invocation, log);
}

std::string LineCommand::AsJson(unsigned long line, std::size_t column, const Conversion& conversion) const {
  JsonLine json;
  json.Add("line", Json(line));
  if (conversion.dpt) json.Add("dpt", FormatDpt(*conversion.dpt));
  Describe(conversion, json);
  if (!conversion.error.empty()) json.Add("error", conversion.error);
  if (column != 0) json.Add("column", Json(column));
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
  if (options.json) {
    const std::string line = operands[0] + ' ' + rest;
    const std::size_t fault = (conversion.isDptWrong ? 0 : operands[0].size() + 1) + conversion.fault;
    streams.out << AsJson(1, isDone ? 0 : ColumnOf(line, line.data() + fault), conversion);
    return isDone ? kDone : kRefused;
  }
  if (isDone) {
    streams.out << Text(conversion) << '\n';
    return kDone;
  }
  return Refuse(invocation, conversion.error, AtOperand(conversion.isDptWrong ? 0 : 1, conversion.fault));
}

ExitStatus LineCommand::RunLines(const Invocation& invocation, ReasonLog& log) const {
  const CommonOptions& options = invocation.options;
  const Streams& streams = invocation.streams;
  std::ostream& out = streams.out;
  const std::string error = options.out(Colour::Error, "error:") + " line ";
  const Interrupts interrupts;
  Progress progress(streams.err, streams.showsProgress);
  unsigned long answered = 0;
  unsigned long refused = 0;
  LineReader lines(streams.in, [&] {
    out.flush();
    progress.Tell(answered, refused);
    const bool mayWait = streams.inDescriptor >= 0 && streams.in.rdbuf()->in_avail() <= 0;
    if (mayWait) Interrupts::WaitToRead(streams.inDescriptor);
    return Interrupts::Signal() == 0;
  });
  while (Interrupts::Signal() == 0 && lines.Next()) {
    const std::string_view line = WithoutLeadingBlanks(lines.Text());
    if (line.empty() ? !lines.TooLong() : line.front() == '#') continue;  // of a line too long only this much is known
    Conversion conversion;
    std::size_t column = 0;
    if (lines.TooLong()) {
      conversion.error = "the line is longer than " + std::to_string(LineReader::kMaxLength) + " bytes";
    } else {
      const std::string_view dpt = line.substr(0, std::min(line.find_first_of(kBlanks), line.size()));
      const std::string_view rest = WithoutLeadingBlanks(line.substr(dpt.size()));
      conversion = Convert(dpt, rest, log);
      if (!conversion.error.empty()) {
        column = ColumnOf(lines.Text(), (conversion.isDptWrong ? dpt : rest).data() + conversion.fault);
      }
    }
    ++answered;
    if (!conversion.error.empty()) ++refused;
    if (options.json) {
      out << AsJson(lines.Number(), column, conversion);
    } else if (conversion.error.empty()) {
      out << Text(conversion) + '\n';
    } else {
      out << error << std::to_string(lines.Number()) << (column == 0 ? "" : ", column " + std::to_string(column))
          << ": " << conversion.error << '\n';
    }
    if (!out) return kRefused;
  }
  if (const int signal = Interrupts::Signal(); signal != 0) {
    TellStop(streams, answered, refused, progress);
    return static_cast<ExitStatus>(kSignal + signal);
  }
  if (!lines.Failed()) return refused == 0 ? kDone : kRefused;
  streams.err << "talctl: standard input cannot be read\n";
  return kRefused;
}

}  // namespace Talctl
