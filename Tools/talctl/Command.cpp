#include "Command.h"

#include <ostream>

#include <Notation/ValueText.h>

namespace Talctl {
namespace {

class HelpFormatter final : public CLI::Formatter {
 public:
  HelpFormatter(std::vector<std::string> usages, std::string description)
      : m_usages(std::move(usages)), m_description(std::move(description)) {}

  std::string make_usage(const CLI::App*, std::string name) const override {
    std::string text;
    for (const std::string& usage : m_usages) {
      text.append(text.empty() ? "Usage: " : "       ").append(name).append(" [OPTIONS] ").append(usage).append("\n");
    }
    return text;
  }
  std::string make_description(const CLI::App*) const override { return m_description + '\n'; }
  std::string make_footer(const CLI::App* app) const override {
    return app->get_footer() +
           "\n\nEverywhere: --json, --log-level LEVEL, --version (see `talctl --help`).\n"
           "Exit status: 0 done, 1 something was refused, 2 wrong use.\n";
  }

 private:
  std::vector<std::string> m_usages;
  std::string m_description;
};

}  // namespace

ExitStatus Refuse(const Invocation& invocation, const std::string& reason) {
  if (invocation.options.json) {
    invocation.streams.out << Line({{"error", reason}});
  } else {
    invocation.streams.err << "error: " << reason << '\n';
  }
  return kRefused;
}

void SetHelp(CLI::App& command, std::vector<std::string> usages, std::string description) {
  command.formatter(std::make_shared<HelpFormatter>(std::move(usages), std::move(description)));
}

}  // namespace Talctl
