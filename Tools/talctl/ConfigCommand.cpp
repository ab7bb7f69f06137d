#include <Format/Quoted.h>
#include <Tal/AppHostConfig.h>

#include <filesystem>
#include <ostream>

#include "Commands.h"
#include "ReasonLog.h"
#include "Table.h"

namespace Talctl {

CLI::App* ConfigCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("config", "The settings of the app host");
  SetHelp(*command, {"[FILE]"},
          std::string("Reads the app host's configuration and prints every setting with its origin: the file, or the "
                      "default. FILE\nis ") +
              Tal::AppHostConfiguration::ConfigurationFile() +
              " unless given; without it all is\ndefault. What stands before a fault in the file counts.");
  command->footer("Examples:\n  talctl config\n  talctl config talapphostconfig.xml --json");
  return command;
}

ExitStatus ConfigCommand::Run(const Invocation& invocation) {
  if (invocation.operands.size() > 1) throw WrongUse("expected one FILE at most");
  const bool isGiven = !invocation.operands.empty();
  const std::string path = isGiven ? invocation.operands[0] : Tal::AppHostConfiguration::ConfigurationFile();
  ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  Tal::AppHostConfiguration configuration;
  std::error_code error;
  const bool isMissing =
      !isGiven && std::filesystem::status(path, error).type() == std::filesystem::file_type::not_found;
  if (isMissing) {
    invocation.streams.err << OneLine(path) << ": there is no such file, so every setting has its default\n";
  }
  const bool isGood = isMissing || configuration.LoadConfigurationFile(path);
  if (log.FirstReason().rfind("App host config file cannot be read", 0) == 0) {
    return Refuse(invocation, OneLine(path) + ": cannot be read");
  }
  std::ostream& out = invocation.streams.out;
  Table table({"SETTING", "VALUE", "ORIGIN"});
  for (const auto& setting : configuration.Describe()) {
    const char* const origin = setting.isFromFile ? "file" : "default";
    table.Add({setting.name, setting.value.empty() ? "-" : OneLine(setting.value), origin});
    if (!invocation.options.json) continue;
    const Json value = setting.value.empty() ? Json(nullptr)
                       : setting.isFlag      ? Json(setting.value == "true")
                                             : Json(setting.value);
    out << Line({{"setting", setting.name}, {"value", value}, {"origin", origin}});
  }
  if (!invocation.options.json) table.Print(out, invocation.options.out);
  return isGood ? kDone : Refuse(invocation, OneLine(path) + ": " + log.FirstReason());
}

}  // namespace Talctl
