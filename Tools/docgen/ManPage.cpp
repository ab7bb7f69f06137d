#include "ManPage.h"

#include <Tal/AppHostConfig.h>

#include <boost/algorithm/string/join.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <ostream>
#include <sstream>
#include <string_view>

#include "Command.h"
#include "Completion.h"

namespace Talctl {
namespace {

/// @p text as it is to be shown.
std::string Plain(std::string_view text) {
  std::string plain;
  for (const char c : text) {
    const bool startsLine = plain.empty() || plain.back() == '\n';
    if (startsLine && c == '.') plain += "\\&";
    switch (c) {
      case '\\': plain += "\\(rs"; break;
      case '-': plain += "\\-"; break;
      case '\'': plain += "\\(aq"; break;
      case '`': plain += "\\(ga"; break;
      case '^': plain += "\\(ha"; break;
      case '~': plain += "\\(ti"; break;
      default: plain += c;
    }
  }
  return plain;
}

std::string Bold(std::string_view text) { return "\\fB" + Plain(text) + "\\fR"; }

/// Text that is filled anew.
std::string Paragraph(const std::string& text) {
  return Plain(boost::algorithm::replace_all_copy(text, "\n", " ")) + '\n';
}

/// The footer of a help: what is indented stays as it is, the rest are headings.
void WriteFooter(const std::string& footer, std::ostream& out) {
  bool isVerbatim = false;
  std::istringstream lines(footer);
  for (std::string line; std::getline(lines, line);) {
    const bool isIndented = line.rfind("  ", 0) == 0;
    if (isIndented != isVerbatim) out << (isIndented ? ".PP\n.RS 2\n.nf\n" : ".fi\n.RE\n");
    isVerbatim = isIndented;
    if (isIndented) {
      out << Plain(std::string_view(line).substr(2)) << '\n';
    } else if (!line.empty()) {
      out << ".PP\n" << Plain(line) << '\n';
    }
  }
  if (isVerbatim) out << ".fi\n.RE\n";
}

void WriteOptions(const CLI::App& app, std::ostream& out) {
  for (const CLI::Option* option : app.get_options()) {
    const bool isRepeated = option == app.get_help_ptr() && app.get_parent() != nullptr;
    if (isRepeated) continue;
    out << ".TP\n" << Bold(boost::algorithm::replace_all_copy(option->get_name(false, true), ",", ", "));
    const bool takesValue = option->get_expected_min() > 0;
    if (takesValue)
      out << " \\fI" << Plain(option->get_type_name().substr(0, option->get_type_name().find(':'))) << "\\fR";
    out << '\n' << Paragraph(option->get_description());
  }
}

void WriteCommand(const CLI::App& command, std::ostream& out) {
  const Help& help = HelpOf(command);
  out << ".SS " << Plain(command.get_name()) << '\n' << Paragraph(command.get_description() + ".");
  for (const std::string& usage : help.usages) {
    out << (usage == help.usages.front() ? ".PP\n" : ".br\n") << Bold("talctl " + command.get_name()) << " [OPTIONS] "
        << Plain(usage) << '\n';
  }
  out << ".PP\n" << Paragraph(help.description);
  WriteOptions(command, out);
  WriteFooter(command.get_footer(), out);
}

constexpr char kEnvironment[] = R"(.SH ENVIRONMENT
.TP
.B NO_COLOR
If it is set and not empty, nothing is coloured unless \fB\-\-color\fR asks for it.
.TP
.B TERM
On a terminal that is \(lqdumb\(rq, or of no kind, there are no colours and no line of progress.
.TP
.B TZ
The time zone of local times.
.SH FILES
.TP
.I )";

constexpr char kRest[] = R"(The app host's configuration, which \fBconfig\fR reads unless another is given.
.PP
Installations and telegram logs are described in the library's documentation.
.SH EXAMPLES
)";

}  // namespace

void WriteManPage(const CLI::App& app, std::ostream& out) {
  out << ".\\\" Made by `talctl man`.\n"
      << ".TH TALCTL 1 \"\" \"talctl " TALCTL_VERSION "\" \"User Commands\"\n"
      << ".SH NAME\ntalctl \\- KNX values, their octets and object\\-model identifiers on the command line\n"
      << ".SH SYNOPSIS\n.B talctl\n.I COMMAND\n[OPTIONS] [OPERANDS]\n"
      << ".SH DESCRIPTION\n"
      << Paragraph(app.get_description() + R"( Options may stand before and behind the command.
Operands that look like an option go behind --. What is refused is told on standard error with the reason and the place;
lines from standard input are each answered in their place.)")
      << ".SH OPTIONS\n.PP\nEvery command has these.\n";
  WriteOptions(app, out);
  out << ".SH COMMANDS\n";
  for (const CLI::App* command : CommandsOf(app)) WriteCommand(*command, out);
  out << ".SH EXIT STATUS\n";
  for (const auto& [status, meaning] : kExitStatuses) out << ".TP\n.B " << status << '\n' << Plain(meaning) << '\n';
  out << kEnvironment << Plain(Tal::AppHostConfiguration::ConfigurationFile()) << '\n' << kRest;
  WriteFooter(app.get_footer().substr(0, app.get_footer().find("\n\n")), out);
  out << ".SH SEE ALSO\n.BR bash (1),\n.BR jq (1)\n";
}

}  // namespace Talctl
