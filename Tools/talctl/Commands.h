// The commands of talctl.
#pragma once

#include <optional>
#include <string>

#include "Command.h"

namespace Talctl {

/// `encode [DPT VALUE]`: values to octets, from operands or line by line from standard input.
class EncodeCommand final : public Command {
 public:
  CLI::App* AddTo(CLI::App& app) override;
  ExitStatus Run(const Invocation& invocation) override;
};

/// `dpts [DPT...]`: what the library knows of main types.
class DptsCommand final : public Command {
 public:
  CLI::App* AddTo(CLI::App& app) override;
  ExitStatus Run(const Invocation& invocation) override;
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
};

/// `demo`: the embedded day of a house through `encode`, as a table, compared with what must come out.
class DemoCommand final : public Command {
 public:
  CLI::App* AddTo(CLI::App& app) override;
  ExitStatus Run(const Invocation& invocation) override;

 private:
  bool m_lines = false;
};

}  // namespace Talctl
