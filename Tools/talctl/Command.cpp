#include "Command.h"

#include <ostream>

#include <Format/ValueText.h>

namespace Talctl {
namespace {

class HelpFormatter final : public CLI::Formatter {
 public:
  explicit HelpFormatter(Help help) : m_help(std::move(help)) {}
  const Help& GetHelp() const { return m_help; }

  std::string make_usage(const CLI::App*, std::string name) const override {
    std::string text;
    for (const std::string& usage : m_help.usages) {
      text.append(text.empty() ? "Usage: " : "       ").append(name).append(" [OPTIONS] ").append(usage).append("\n");
    }
    return text;
  }
  std::string make_description(const CLI::App*) const override { return m_help.description + '\n'; }
  std::string make_footer(const CLI::App* app) const override {
    return app->get_footer() +
           "\n\nEverywhere: --json, --color WHEN, --log-level LEVEL, --version (see `talctl --help`).\n"
           "Exit status: 0 done, 1 something was refused, 2 wrong use.\n";
  }

 private:
  Help m_help;
};

}  // namespace

ExitStatus Refuse(const Invocation& invocation, const std::string& reason, const std::optional<Place>& place) {
  const CommonOptions& options = invocation.options;
  if (options.json) {
    invocation.streams.out << Line({{"error", reason}});
    return kRefused;
  }
  invocation.streams.err << options.err(Colour::Error, "error:") << ' ' << reason << '\n';
  if (place && options.line != nullptr) invocation.streams.err << options.line->PointAt(*place, options.err);
  return kRefused;
}

void SetHelp(CLI::App& command, std::vector<std::string> usages, std::string description) {
  command.formatter(std::make_shared<HelpFormatter>(Help{std::move(usages), std::move(description)}));
}

const Help& HelpOf(const CLI::App& command) {
  return dynamic_cast<const HelpFormatter&>(*command.get_formatter()).GetHelp();
}

}  // namespace Talctl
