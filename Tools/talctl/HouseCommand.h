// Commands that ask a house for something.
#pragma once

#include <string>
#include <vector>

#include "Command.h"
#include "House.h"

namespace Talctl {

/// Starts a house on a bus of its own and registers talctl as its application.
class HouseCommand : public Command {
 public:
  ExitStatus Run(const Invocation& invocation) final;

 protected:
  /// Adds the command's options for the house, and to @p description what all these commands have in common.
  void AddHouse(CLI::App& command, const std::string& usage, const std::string& description);
  /// @throws WrongUse when these are not the operands that the command takes.
  virtual void CheckOperands(const std::vector<std::string>& operands) const = 0;
  /// @throws Refusal when the house does not do what it is asked for.
  virtual void RunIn(House& house, const Invocation& invocation) const = 0;

 private:
  HouseOptions m_house;
};

}  // namespace Talctl
