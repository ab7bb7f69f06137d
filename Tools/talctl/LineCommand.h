// Commands that answer one conversion from operands, or line by line from standard input.
#pragma once

#include <Format/JsonLine.h>

#include "Command.h"
#include "Conversion.h"

namespace Talctl {

/// With operands: DPT and the rest, joined by blanks. Without: lines of the same form; blank lines and # comments are
/// skipped, every other line is answered in its place.
class LineCommand : public Command {
 public:
  ExitStatus Run(const Invocation& invocation) final;

 protected:
  virtual Conversion Convert(std::string_view dpt, std::string_view rest, ReasonLog& log) const = 0;
  /// The answer to a conversion that is done.
  virtual std::string Text(const Conversion& conversion) const = 0;
  /// Adds what the conversion gave to its object.
  virtual void Describe(const Conversion& conversion, JsonLine& json) const = 0;
  /// What stands behind DPT: "VALUE".
  virtual const char* OperandName() const = 0;

 private:
  /// @param column  of the fault in the line, from 1; 0: it is not in one place.
  std::string AsJson(unsigned long line, std::size_t column, const Conversion& conversion) const;
  ExitStatus RunOperands(const Invocation& invocation, ReasonLog& log) const;
  ExitStatus RunLines(const Invocation& invocation, ReasonLog& log) const;
};

}  // namespace Talctl
