#include "Completion.h"

#include <Format/Cursor.h>

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <filesystem>
#include <map>
#include <ostream>

#include "Choice.h"
#include "Command.h"
#include "House.h"
#include "Suggestion.h"

namespace Talctl {
namespace {

using Words = std::vector<std::string>;

const Words kFile = {":file"};

bool TakesValue(const CLI::Option& option) { return option.get_expected_min() > 0; }

const CLI::Option* FindOption(const CLI::App& app, const CLI::App* command, const std::string& word) {
  const std::string name = word.substr(0, word.find('='));
  const CLI::Option* const common = app.get_option_no_throw(name);
  return common != nullptr || command == nullptr ? common : command->get_option_no_throw(name);
}

/// What stands on the line before the word in question.
struct Before {
  const CLI::App* command = nullptr;
  const CLI::Option* pending = nullptr;  ///< an option whose value comes next
  Words operands;
  std::map<std::string, std::string> values;  ///< of options by name
  bool isBehindDashes = false;
  bool isLost = false;  ///< there is no such command
};

/// Adds to @p before what words that follow are.
void Look(const CLI::App& app, const Words& words, Before& before) {
  for (const std::string& word : words) {
    const CLI::Option* const option = before.isBehindDashes ? nullptr : FindOption(app, before.command, word);
    if (before.pending != nullptr) {
      before.values[before.pending->get_name()] = word;
      before.pending = nullptr;
    } else if (option != nullptr) {
      const std::size_t mark = word.find('=');
      if (mark != word.npos) before.values[option->get_name()] = word.substr(mark + 1);
      if (mark == word.npos && TakesValue(*option)) before.pending = option;
    } else if (word == "--") {
      before.isBehindDashes = true;
    } else if (before.command == nullptr) {
      before.command = FindCommand(app, word);
      before.isLost = before.command == nullptr;
    } else {
      before.operands.push_back(word);
    }
  }
}

/// What the next operand is, in the words of the command's usage: "DPT", "ID|NAME", "FILE"; empty: there is none.
std::string OperandAfter(const Before& before) {
  Words usage;
  const std::string text = boost::algorithm::trim_copy_if(HelpOf(*before.command).usages.front(),
                                                          [](char c) { return c == '[' || c == ']'; });
  boost::algorithm::split(usage, text, boost::algorithm::is_any_of(" "));
  const bool isRepeated = boost::algorithm::ends_with(usage.back(), "...");
  const std::size_t number = isRepeated ? std::min(before.operands.size(), usage.size() - 1) : before.operands.size();
  return number < usage.size() ? boost::algorithm::trim_right_copy_if(usage[number], [](char c) { return c == '.'; })
                               : "";
}

Converter ConverterOf(const Before& before) {
  const auto given = before.values.find("--converter");
  return given != before.values.end() && SameText(given->second, NameOf(Converter::Table)) ? Converter::Table
                                                                                           : Converter::Direct;
}

std::vector<DeviceStack::CommunicationObject> ObjectsOf(const Before& before) {
  HouseOptions options;
  const auto given = before.values.find("--installation");
  if (given != before.values.end()) options.installation = given->second;
  if (options.installation && !std::filesystem::is_regular_file(*options.installation)) return {};  // might wait
  return InstallationOf(options).objects;
}

/// Truth values have few names; others are not guessed.
Words ValuesFor(const Before& before) {
  Dpt dpt;
  std::string error;
  bool isKnown = ParseDpt(before.operands[0], dpt, error);
  if (before.command->get_option_no_throw("--installation") != nullptr) {
    isKnown = false;
    for (const auto& object : ObjectsOf(before)) {
      if (object.name != before.operands[0] && std::to_string(object.ValueId()) != before.operands[0]) continue;
      dpt = object.dpt;
      isKnown = true;
    }
  }
  return isKnown && ValueTypeOf(dpt, ConverterOf(before)) == avtBool ? Words{"on", "off", "true", "false"} : Words();
}

Words OperandsFor(const Before& before, const std::string& word) {
  const std::string operand = OperandAfter(before);
  Words words;
  if (operand == "FILE") return kFile;
  if (operand == "DPT") return KnownDpts(ConverterOf(before));
  if (operand == "VALUE") return ValuesFor(before);
  if (operand == "ID|NAME") {
    const bool isNumber = !word.empty() && IsDigit(word[0]);
    for (const auto& object : ObjectsOf(before))
      words.push_back(isNumber ? std::to_string(object.ValueId()) : object.name);
  }
  return words;
}

Words ValuesOf(const CLI::Option& option) { return option.get_type_name() == "FILE" ? kFile : ChoicesOf(option); }

/// What may stand instead of @p word.
Words Candidates(const CLI::App& app, const Before& before, const std::string& word) {
  if (before.pending != nullptr) return ValuesOf(*before.pending);
  const bool isOption = !before.isBehindDashes && word.rfind('-', 0) == 0;
  const CLI::Option* const option = isOption ? FindOption(app, before.command, word) : nullptr;
  if (option != nullptr && word.find('=') != word.npos) {
    Words values = ValuesOf(*option);
    for (std::string& value : values) {
      if (values != kFile) value.insert(0, word, 0, word.find('=') + 1);
    }
    return values;
  }
  if (isOption) return OptionNames(app, before.command);
  if (before.command != nullptr) {
    return OperandAfter(before).empty() && !before.isBehindDashes ? OptionNames(app, before.command)
                                                                  : OperandsFor(before, word);
  }
  Words names;
  for (const CLI::App* command : CommandsOf(app)) names.push_back(command->get_name());
  return names;
}

}  // namespace

std::vector<const CLI::App*> CommandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

const CLI::App* FindCommand(const CLI::App& app, const std::string& name) {
  const auto commands = CommandsOf(app);
  const auto found =
      std::find_if(commands.begin(), commands.end(), [&](const auto* c) { return c->get_name() == name; });
  return found == commands.end() ? nullptr : *found;
}

std::vector<std::string> OptionNames(const CLI::App& app, const CLI::App* command) {
  Words names;
  for (const CLI::App* from : {command, &app}) {
    if (from == nullptr) continue;
    for (const CLI::Option* option : from->get_options()) {
      const std::string name = option->get_name();
      if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    }
  }
  return names;
}

void Complete(const CLI::App& app, const Words& arguments, std::ostream& out) {
  std::size_t index = 0;
  if (arguments.empty() || !Cursor(arguments[0]).Number(index)) return;
  const auto first = arguments.begin() + 1;
  const auto current = first + static_cast<std::ptrdiff_t>(std::min(index, arguments.size() - 1));
  const std::string word = current == arguments.end() ? "" : *current;
  try {
    Before before;
    Look(app, {first, current}, before);
    if (before.isLost) return;
    if (current != arguments.end()) {  // options may also stand behind
      Before all = before;
      all.pending = nullptr;
      Look(app, {current + 1, arguments.end()}, all);
      before.values.insert(all.values.begin(), all.values.end());
    }
    const Words candidates = Candidates(app, before, word);
    const bool isFile = candidates == kFile;
    for (const std::string& candidate : candidates) {
      if (isFile || candidate.rfind(word, 0) == 0) out << candidate << '\n';
    }
  } catch (const std::exception&) {  // an installation that cannot be read has no names
  }
}

}  // namespace Talctl
