#include <DeviceStack/TelegramLog.h>
#include <Notation/Quoted.h>

#include <boost/algorithm/string/join.hpp>
#include <ostream>

#include "Commands.h"
#include "House.h"
#include "TelegramTable.h"

namespace Talctl {
namespace {

using DeviceStack::BusEvent;
using DeviceStack::LoopbackBus;

constexpr char kApplication[] = "talctl";

Json Described(const HouseObject& object, const AROVALUE& value) {
  Json json = {{"id", object.id}};
  if (!object.name.empty()) json["object"] = object.name;
  if (object.dpt) json["dpt"] = FormatDpt(*object.dpt);
  json["type"] = AROVALUE::GetNameFromValueType(value.avt);
  json["value"] = ToJson(value);
  return json;
}

/// Runs @p body with a house on a bus of its own, where talctl is a registered application.
template <class Body>
ExitStatus InHouse(const Invocation& invocation, const HouseOptions& options, Body body) {
  const ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  return Answering(invocation, [&] {
    LoopbackBus bus;
    House house(options, bus);
    house.Register(kApplication, TALCTL_VERSION, "");
    body(house);
    return kDone;
  });
}

}  // namespace

CLI::App* GetCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("get", "Reads an object's value from a house");
  SetHelp(*command, {"ID|NAME"}, std::string("Asks the device-stack service of a house for a value.\n") + kHouseHelp);
  AddHouseOptions(*command, m_house);
  command->footer(
      "Examples:\n  talctl get living.setpoint\n  talctl get 100101 --json\n"
      "  talctl get hall.mode --installation house.json --timeout 0.5");
  return command;
}

ExitStatus GetCommand::Run(const Invocation& invocation) {
  if (invocation.operands.size() != 1) throw WrongUse("expected ID|NAME, one object");
  return InHouse(invocation, m_house, [&](House& house) {
    const HouseObject object = house.Find(invocation.operands[0]);
    const AROVALUE value = house.Get(object);
    invocation.streams.out << (invocation.options.json ? Line(Described(object, value)) : FormatOneLine(value) + '\n');
  });
}

CLI::App* SetCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("set", "Sets an object's value in a house");
  SetHelp(*command, {"ID|NAME VALUE"},
          std::string("Sets a value through the device-stack service of a house; prints the telegram that went out and "
                      "the value\nthat is read back. VALUE is written as for `encode`.\n") +
              kHouseHelp);
  AddHouseOptions(*command, m_house);
  command->footer(
      "Examples:\n  talctl set kitchen.light on\n  talctl set living.setpoint 21.5 --json\n"
      "  talctl set 170003 -4            # an application parameter");
  return command;
}

ExitStatus SetCommand::Run(const Invocation& invocation) {
  if (invocation.operands.size() < 2) throw WrongUse("expected ID|NAME VALUE");
  const auto& operands = invocation.operands;
  const std::string text = boost::algorithm::join(std::vector<std::string>(operands.begin() + 1, operands.end()), " ");
  return InHouse(invocation, m_house, [&](House& house) {
    boost::optional<DeviceStack::Telegram> telegram;  // written before the answer comes
    const HouseObject object = house.Find(operands[0]);
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
  });
}

CLI::App* RequestCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("request", "Sends a free-form request to a house");
  SetHelp(*command, {"TEXT"},
          std::string("Sends TEXT to the device-stack service of a house and prints its answer. The service answers "
                      "JSON:\n{\"request\":\"list\"}, {\"request\":\"describe\",\"object\":\"NAME\"} or with \"id\", "
                      "{\"request\":\"counters\"}.\n") +
              kHouseHelp);
  AddHouseOptions(*command, m_house);
  command->footer(
      "Examples:\n  talctl request '{\"request\":\"list\"}'\n"
      "  talctl request '{\"request\":\"describe\",\"object\":\"kitchen.light\"}'");
  return command;
}

ExitStatus RequestCommand::Run(const Invocation& invocation) {
  if (invocation.operands.empty()) throw WrongUse("expected TEXT, a request");
  const std::string text = boost::algorithm::join(invocation.operands, " ");
  return InHouse(invocation, m_house, [&](House& house) { invocation.streams.out << house.Request(text) << '\n'; });
}

CLI::App* RegisterCommand::AddTo(CLI::App& app) {
  CLI::App* const command = app.add_subcommand("register", "Registers an application with a house");
  SetHelp(*command, {"A B C"},
          std::string("Registers the application that three texts identify: its name, which must not be empty, and "
                      "two more that\nare up to the application.\n") +
              kHouseHelp);
  AddHouseOptions(*command, m_house);
  command->footer("Examples:\n  talctl register blinds 1.0 '' --json");
  return command;
}

ExitStatus RegisterCommand::Run(const Invocation& invocation) {
  const auto& operands = invocation.operands;
  if (operands.size() != 3) throw WrongUse("expected A B C, three texts");
  const ReasonLog log(invocation.options.logLevel, invocation.streams.err);
  return Answering(invocation, [&] {
    LoopbackBus bus;
    House house(m_house, bus);
    house.Register(operands[0], operands[1], operands[2]);
    invocation.streams.out << (invocation.options.json ? Line({{"registered", operands[0]}})
                                                       : OneLine(operands[0]) + " is registered\n");
    return kDone;
  });
}

}  // namespace Talctl
