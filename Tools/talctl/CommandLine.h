// The command line as it was typed, to point at what is wrong with it.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "Paint.h"

namespace Talctl {

/// Where something is wrong: an octet of an operand, of an option's value, or of any argument.
struct Place {
  enum class Of { Operand, Option, Argument };
  Of of;
  std::size_t number = 0;  ///< of the operand or the argument, from 0
  std::string option;      ///< "--bits"
  std::size_t offset = 0;
};
inline Place AtOperand(std::size_t number, std::size_t offset = 0) { return {Place::Of::Operand, number, "", offset}; }
inline Place AtOption(const std::string& name, std::size_t offset = 0) { return {Place::Of::Option, 0, name, offset}; }
inline Place AtArgument(std::size_t number, std::size_t offset = 0) {
  return {Place::Of::Argument, number, "", offset};
}

class CommandLine {
 public:
  explicit CommandLine(std::vector<std::string> arguments) : m_arguments(std::move(arguments)) {}

  const std::vector<std::string>& Arguments() const { return m_arguments; }

  /// An operand or an option's value, as it is found: an argument, and where in it the value begins.
  void AddOperand(std::size_t argument) { m_operands.push_back(argument); }
  void AddOption(const std::string& name, std::size_t argument, std::size_t offset);

  /// The name of the option that @p message begins with, as those of the parser do; empty when there is none.
  std::string OptionIn(const std::string& message) const;

  /// A place behind the end of an operand is in those that follow, joined by blanks.
  /// @return  two lines: the command line as it was typed, with quotes where a shell needs some, cut where it is long,
  /// and a caret below the place; nothing when there is no such place.
  std::string PointAt(const Place& place, const Paint& paint) const;

 private:
  struct Start {
    std::size_t argument;
    std::size_t offset;
  };
  std::vector<std::string> m_arguments;
  std::vector<std::size_t> m_operands;
  std::map<std::string, Start> m_options;
};

}  // namespace Talctl
