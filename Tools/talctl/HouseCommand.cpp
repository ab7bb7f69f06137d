#include "HouseCommand.h"

#include "ReasonLog.h"

namespace Talctl {

void HouseCommand::AddHouse(CLI::App& command, const std::string& usage, const std::string& description) {
  SetHelp(command, {usage}, description + '\n' + kHouseHelp);
  AddHouseOptions(command, m_house);
}

ExitStatus HouseCommand::Run(const Invocation& invocation) {
  CheckOperands(invocation.operands);
  const ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  return Answering(invocation, [&] {
    Knx::LoopbackBus bus;
    House house(m_house, bus);
    house.Register("talctl", TALCTL_VERSION, "");
    RunIn(house, invocation);
    return kDone;
  });
}

}  // namespace Talctl
