// What there is to know of every datapoint type and identifier, from the library's tables, as pages for people.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "Command.h"
#include "Conversion.h"

namespace Talctl {

/// What a converter makes of a datapoint type.
struct ConverterFacts {
  bool isEncoded = false;
  bool isDecoded = false;
  std::string values;           ///< "Float: a number from -273.0 to 670760.0, or nan"; or why there are none
  KnxStack::BinaryData octets;  ///< of the example; empty where the converter does not encode it
};

struct ReferenceRow {
  Dpt dpt;
  std::string label;  ///< "9.001", or "9.x" for a whole main type
  Tal::DptMeaning meaning;
  std::string bits;  ///< "16", or "any"
  ConverterFacts direct;
  ConverterFacts map;
  std::string differences;  ///< between the converters; "" for none

  /// Octets of the example, of the direct converter where it encodes; empty when neither does.
  const KnxStack::BinaryData& Octets() const { return direct.octets.empty() ? map.octets : direct.octets; }
};

/// Every main type and every row of the table's table, by number.
std::vector<ReferenceRow> Reference();

/// A field of a layout, in the order of the wire.
struct Field {
  std::string name;  ///< "-" for bits that are not used
  unsigned bits = 0;
};
std::vector<Field> FieldsOf(const std::string& layout);

/// The example with its unit: "21.5 °C".
std::string ExampleOf(const ReferenceRow& row);

/// The pages.
std::string DatapointsInMarkdown();
std::string DatapointsInHtml();
std::string IdentifiersInMarkdown();

/// Writes a page to a file, or to @p invocation's output for "-"; refuses with the file's name when that fails.
ExitStatus WritePage(const Invocation& invocation, const std::string& file, const std::string& page);

}  // namespace Talctl
