#include "ConverterOption.h"

#include "Choice.h"

namespace Talctl {

using Format::Converter;
using Format::NameOf;

void AddConverterOption(CLI::App& command, Converter& converter) {
  const auto set = [&converter](const std::string& name) {
    converter = name == NameOf(Converter::Table) ? Converter::Table : Converter::Direct;
  };
  command
      .add_option_function<std::string>("--converter", set,
                                        "direct (one-step functions, the default) or map (table of datapoint types)")
      ->type_name("CONVERTER")
      ->transform(OneOf({NameOf(Converter::Direct), NameOf(Converter::Table)}));
}

}  // namespace Talctl
