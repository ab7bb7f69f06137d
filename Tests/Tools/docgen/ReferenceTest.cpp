// What the pages of datapoint types and identifiers show.
#include <gmock/gmock.h>

#include <fstream>
#include <numeric>
#include <sstream>

#include "Reference.h"
#include "Tools/talctl/RunTalctl.h"

namespace Talctl {
namespace {

TEST(Reference, PagesOfTheDocumentationAreWhatTheTablesSay) {
  for (const auto& [command, file] :
       {std::pair{"dpts|--markdown|-", "Datapoints.md"}, {"id|--markdown|-", "Identifiers.md"}}) {
    std::ifstream page(std::string(TAL_DOCS) + '/' + file);
    std::ostringstream text;
    text << page.rdbuf();
    EXPECT_TRUE(RunWith(command).out == text.str()) << file << ": run Scripts/pages.sh";
  }
}

TEST(Reference, FieldsOfEveryLayoutFillTheGroupValue) {
  for (const ReferenceRow& row : Reference()) {
    const auto fields = FieldsOf(row.meaning.layout);
    const unsigned bits = std::accumulate(fields.begin(), fields.end(), 0u,
                                          [](unsigned sum, const Field& field) { return sum + field.bits; });
    EXPECT_EQ(bits == 0 ? "any" : std::to_string(bits), row.bits) << row.label;
  }
}

TEST(Reference, ExamplesAreEncodedWithEveryConverterThatEncodes) {
  const std::vector<ReferenceRow> rows = Reference();
  for (const ReferenceRow& row : rows) {
    EXPECT_EQ(row.direct.isEncoded, CanEncode(row.dpt, Converter::Direct)) << row.label;
  }
  const auto octets = [&rows](const std::string& label) {
    for (const auto& row : rows) {
      if (row.label == label) return row.Octets().ToString();
    }
    return std::string("not listed");
  };
  // From tables of the field, not from this library.
  EXPECT_EQ(octets("9.001"), "0C 33");
  EXPECT_EQ(octets("10.x"), "2C 1E 0F");
  EXPECT_EQ(octets("14.x"), "43 66 80 00");
  EXPECT_EQ(octets("16.001"), "47 72 FC DF 65 00 00 00 00 00 00 00 00 00");
  EXPECT_EQ(octets("234.x"), "65 6E");
}

}  // namespace
}  // namespace Talctl
