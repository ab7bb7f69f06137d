#include <Format/Quoted.h>
#include <Knx/TelegramLog.h>

#include <boost/algorithm/string/join.hpp>
#include <ostream>

#include "Commands.h"
#include "House.h"
#include "TelegramTable.h"

namespace Talctl {
namespace {

using DeviceStack::BusEvent;

Json Described(const HouseObject& object, const AROVALUE& value) {
  Json json = {{"id", object.id}};
  if (!object.name.empty()) json["object"] = object.name;
  if (object.dpt) json["dpt"] = FormatDpt(*object.dpt);
  json["type"] = AROVALUE::GetNameFromValueType(value.avt);
  json["value"] = ToJson(value);
  return json;
}

}  // namespace

CLI::App* GetCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("get", "Reads an object's value from a house");
  AddHouse(*command, "ID|NAME", "Asks the device-stack service of a house for a value.");
  command->footer(
      "Examples:\n  talctl get living.setpoint\n  talctl get 100101 --json\n"
      "  talctl get hall.mode --installation house.json --timeout 0.5");
  return command;
}

void GetCommand::CheckOperands(const std::vector<std::string>& operands) const {
  if (operands.size() != 1) throw WrongUse("expected ID|NAME, one object");
}

void GetCommand::RunIn(House& house, const Invocation& invocation) const {
  const HouseObject object = house.Find(invocation.operands[0]);
  const AROVALUE value = house.Get(object);
  invocation.streams.out << (invocation.options.json ? Line(Described(object, value)) : FormatOneLine(value) + '\n');
}

CLI::App* SetCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("set", "Sets an object's value in a house");
  AddHouse(*command, "ID|NAME VALUE",
           "Sets a value through the device-stack service of a house; prints the telegram that went out and "
           "the value\nthat is read back. VALUE is written as for `encode`.");
  command->footer(
      "Examples:\n  talctl set kitchen.light on\n  talctl set living.setpoint 21.5 --json\n"
      "  talctl set 170003 -4            # an application parameter");
  return command;
}

void SetCommand::CheckOperands(const std::vector<std::string>& operands) const {
  if (operands.size() < 2) throw WrongUse("expected ID|NAME VALUE");
}

void SetCommand::RunIn(House& house, const Invocation& invocation) const {
  const auto& operands = invocation.operands;
  const std::string text = boost::algorithm::join(std::vector<std::string>(operands.begin() + 1, operands.end()), " ");
  const HouseObject object = house.Find(operands[0]);
  boost::optional<Knx::Telegram> telegram;  // told before the answer comes
  {
    const BusWatch watch(house, [&](const BusEvent& event) {
      if (event.kind == BusEvent::Kind::Sent && !telegram) telegram = event.telegram;
    });
    house.Set(object, text);
  }
  const AROVALUE value = house.Get(object);
  std::ostream& out = invocation.streams.out;
  if (invocation.options.json) {
    Json json = Described(object, value);
    json["telegram"] = telegram ? DescribeTelegram(*telegram) : Json(nullptr);
    out << Line(json);
    return;
  }
  out << (telegram ? FormatTelegram(*telegram) : "no telegram: the object does not transmit") << '\n'
      << FormatOneLine(value) << '\n';
}

CLI::App* RequestCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("request", "Sends a free-form request to a house");
  AddHouse(*command, "TEXT",
           "Sends TEXT to the device-stack service of a house and prints its answer. The service answers "
           "JSON:\n{\"request\":\"list\"}, {\"request\":\"describe\",\"object\":\"NAME\"} or with \"id\", "
           "{\"request\":\"counters\"}.");
  command->footer(
      "Examples:\n  talctl request '{\"request\":\"list\"}'\n"
      "  talctl request '{\"request\":\"describe\",\"object\":\"kitchen.light\"}'");
  return command;
}

void RequestCommand::CheckOperands(const std::vector<std::string>& operands) const {
  if (operands.empty()) throw WrongUse("expected TEXT, a request");
}

void RequestCommand::RunIn(House& house, const Invocation& invocation) const {
  invocation.streams.out << house.Request(boost::algorithm::join(invocation.operands, " ")) << '\n';
}

CLI::App* RegisterCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("register", "Registers an application with a house");
  AddHouse(*command, "A B C",
           "Registers the application that three texts identify: its name, which must not be empty, and "
           "two more that\nare up to the application.");
  command->footer("Examples:\n  talctl register blinds 1.0 '' --json");
  return command;
}

void RegisterCommand::CheckOperands(const std::vector<std::string>& operands) const {
  if (operands.size() != 3) throw WrongUse("expected A B C, three texts");
}

void RegisterCommand::RunIn(House& house, const Invocation& invocation) const {
  const auto& operands = invocation.operands;
  house.Register(operands[0], operands[1], operands[2]);
  invocation.streams.out << (invocation.options.json ? Line({{"registered", operands[0]}})
                                                     : OneLine(operands[0]) + " is registered\n");
}

}  // namespace Talctl
