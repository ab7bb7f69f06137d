#include "RoadOption.h"

#include "Choice.h"

namespace Talctl {

using Notation::NameOf;
using Notation::Road;

void AddRoadOption(CLI::App& command, Road& road) {
  const auto set = [&road](const std::string& name) { road = name == NameOf(Road::Map) ? Road::Map : Road::Direct; };
  command
      .add_option_function<std::string>("--road", set,
                                        "direct (one-step functions, the default) or map (table of datapoint types)")
      ->type_name("ROAD")
      ->transform(OneOf({NameOf(Road::Direct), NameOf(Road::Map)}));
}

}  // namespace Talctl
