// The commands of talctl.
#pragma once

#include <Format/Converter.h>

#include <optional>
#include <string>

#include "Command.h"
#include "House.h"
#include "HouseCommand.h"
#include "LineCommand.h"

namespace Talctl {

/// `encode [DPT VALUE]`: values to octets.
class EncodeCommand final : public LineCommand {
 public:
  CLI::App* AddTo(CLI::App& app) override;

 protected:
  Conversion Convert(std::string_view dpt, std::string_view rest, ReasonLog& log) const override;
  std::string Text(const Conversion& conversion) const override;
  void Describe(const Conversion& conversion, JsonLine& json) const override;
  const char* OperandName() const override { return "VALUE"; }

 private:
  Converter m_converter = Converter::Direct;
};

/// `decode [DPT OCTETS]`: octets to values.
class DecodeCommand final : public LineCommand {
 public:
  CLI::App* AddTo(CLI::App& app) override;

 protected:
  Conversion Convert(std::string_view dpt, std::string_view rest, ReasonLog& log) const override;
  std::string Text(const Conversion& conversion) const override;
  void Describe(const Conversion& conversion, JsonLine& json) const override;
  const char* OperandName() const override { return "OCTETS"; }

 private:
  Converter m_converter = Converter::Direct;
  std::optional<std::string> m_bits;
};

/// `check [DPT OCTETS]`: whether octets can be decoded.
class CheckCommand final : public LineCommand {
 public:
  CLI::App* AddTo(CLI::App& app) override;

 protected:
  Conversion Convert(std::string_view dpt, std::string_view rest, ReasonLog& log) const override;
  std::string Text(const Conversion& conversion) const override;
  void Describe(const Conversion& conversion, JsonLine& json) const override;
  const char* OperandName() const override { return "OCTETS"; }

 private:
  std::optional<std::string> m_bits;
};

/// `dpts [DPT...]`: what the library knows of datapoint types.
class DptsCommand final : public Command {
 public:
  CLI::App* AddTo(CLI::App& app) override;
  ExitStatus Run(const Invocation& invocation) override;

 private:
  Converter m_converter = Converter::Direct;
  std::optional<std::string> m_html;
  std::optional<std::string> m_markdown;
};

/// `id NUMBER...` explains identifiers, `id --device D ...` computes them.
class IdCommand final : public Command {
 public:
  CLI::App* AddTo(CLI::App& app) override;
  ExitStatus Run(const Invocation& invocation) override;

 private:
  std::optional<std::string> m_device;
  std::optional<std::string> m_co;
  std::optional<std::string> m_parameter;
  std::optional<std::string> m_appControl;
  std::optional<std::string> m_markdown;
};

/// `demo`: the embedded day of a house through both converters and back, as a table, compared with what must come out.
class DemoCommand final : public Command {
 public:
  CLI::App* AddTo(CLI::App& app) override;
  ExitStatus Run(const Invocation& invocation) override;

 private:
  bool m_lines = false;
};

/// `get ID|NAME`: reads an object's value through the messenger.
class GetCommand final : public HouseCommand {
 public:
  CLI::App* AddTo(CLI::App& app) override;

 private:
  void CheckOperands(const std::vector<std::string>& operands) const override;
  void RunIn(House& house, const Invocation& invocation) const override;
};

/// `set ID|NAME VALUE`: sets it, shows the telegram and reads it back.
class SetCommand final : public HouseCommand {
 public:
  CLI::App* AddTo(CLI::App& app) override;

 private:
  void CheckOperands(const std::vector<std::string>& operands) const override;
  void RunIn(House& house, const Invocation& invocation) const override;
};

/// `request TEXT`: a free-form request.
class RequestCommand final : public HouseCommand {
 public:
  CLI::App* AddTo(CLI::App& app) override;

 private:
  void CheckOperands(const std::vector<std::string>& operands) const override;
  void RunIn(House& house, const Invocation& invocation) const override;
};

/// `register A B C`: registers an application.
class RegisterCommand final : public HouseCommand {
 public:
  CLI::App* AddTo(CLI::App& app) override;

 private:
  void CheckOperands(const std::vector<std::string>& operands) const override;
  void RunIn(House& house, const Invocation& invocation) const override;
};

/// `monitor`: what happens on the bus.
class MonitorCommand final : public Command {
 public:
  CLI::App* AddTo(CLI::App& app) override;
  ExitStatus Run(const Invocation& invocation) override;

 private:
  HouseOptions m_house;
  std::optional<std::string> m_log;
  std::optional<std::string> m_record;
  std::string m_speed = "full";
  bool m_wait = false;
};

/// `config [FILE]`: the app host's configuration.
class ConfigCommand final : public Command {
 public:
  CLI::App* AddTo(CLI::App& app) override;
  ExitStatus Run(const Invocation& invocation) override;
};

/// `journey`: the way of values between an application and the bus, on the sample house, compared with what must come.
class JourneyCommand final : public Command {
 public:
  CLI::App* AddTo(CLI::App& app) override;
  ExitStatus Run(const Invocation& invocation) override;
};

}  // namespace Talctl
