#include "RoadOption.h"

#include <Notation/Cursor.h>

namespace Talctl {

using Notation::NameOf;
using Notation::Road;

void AddRoadOption(CLI::App& command, Road& road) {
  const auto set = [&road](const std::string& name) {
    road = Notation::SameText(name, NameOf(Road::Map)) ? Road::Map : Road::Direct;
  };
  command
      .add_option_function<std::string>("--road", set,
                                        "direct (one-step functions, the default) or map (table of datapoint types)")
      ->type_name("ROAD")
      ->check(CLI::IsMember({NameOf(Road::Direct), NameOf(Road::Map)}, CLI::ignore_case));
}

}  // namespace Talctl
