#include <Format/ObjectId.h>
#include <Tal/KnxZelMapping.h>

#include <locale>
#include <sstream>

#include "Reference.h"

namespace Talctl {
namespace {

std::string OctetsOn(const ReferenceRow& row) {
  const auto& [direct, map] = std::tie(row.direct.octets, row.map.octets);
  if (row.Octets().empty()) return "-";
  if (direct.empty() || map.empty() || direct == map) return '`' + row.Octets().ToString() + '`';
  return '`' + direct.ToString() + "` direct, `" + map.ToString() + "` map";
}

std::string OrDash(const std::string& text) { return text.empty() ? "-" : text; }

/// "sign 1, exponent 4, mantissa 11; unused 2"
std::string InWords(const std::string& layout) {
  std::string words;
  const std::vector<Field> fields = FieldsOf(layout);
  for (std::size_t i = 0; i < fields.size();) {
    std::size_t next = i + 1;
    while (next < fields.size() && fields[next].name == fields[i].name && fields[next].bits == fields[i].bits) ++next;
    words += (words.empty() ? "" : ", ") + (fields[i].name == "-" ? std::string("unused") : fields[i].name) + ' ' +
             (next - i > 1 ? std::to_string(next - i) + " x " : "") + std::to_string(fields[i].bits);
    i = next;
  }
  return words;
}

}  // namespace

std::string DatapointsInMarkdown() {
  std::ostringstream page;
  page.imbue(std::locale::classic());
  page << "# Datapoint types\n\n"
          "Written by `Scripts/pages.sh` from the library's tables; a test compares. `talctl dpts --html FILE` writes "
          "the\n"
          "same as a page to search in, with pictures of the layouts. A row with `x` stands for all sub types of a "
          "main type\n"
          "that have no row of their own. When octets are read, the bounds of the table's row count on both "
          "converters. The "
          "converters and\n"
          "their differences: [Converters](Converters.md).\n\n"
          "| DPT | Meaning | Unit | Bits | On the direct converter | On the table converter | Example | Octets |\n"
          "|---|---|---|---|---|---|---|---|\n";
  const std::vector<ReferenceRow> rows = Reference();
  for (const ReferenceRow& row : rows) {
    page << "| " << row.label << " | " << row.meaning.name << " | " << OrDash(row.meaning.unit) << " | " << row.bits
         << " | " << row.direct.values << " | " << row.map.values << " | " << OrDash(row.meaning.example) << " | "
         << OctetsOn(row) << " |\n";
  }
  page << "\n## Layouts\n\nFields with their bits, from the first on the wire to the last.\n\n| DPT | Fields "
          "|\n|---|---|\n";
  std::string previous;
  for (const ReferenceRow& row : rows) {
    const bool isShown = row.dpt.sub == 0 || row.meaning.layout != previous;
    if (row.dpt.sub == 0) previous = row.meaning.layout;
    if (isShown) page << "| " << row.label << " | " << OrDash(InWords(row.meaning.layout)) << " |\n";
  }
  return page.str();
}

std::string IdentifiersInMarkdown() {
  using namespace Tal::KnxZelMapping;
  using Tal::LogicalDeviceId;
  std::ostringstream page;
  page.imbue(std::locale::classic());
  page
      << "# Object-model identifiers\n\n"
         "Written by `Scripts/pages.sh` from the library's functions; a test compares. `talctl id NUMBER` explains an\n"
         "identifier, `talctl id --device D ...` computes one. Everything is there for each logical device.\n\n"
         "| Identifiers | Logical device | What | Step |\n|---|---|---|---|\n";
  const auto row = [&page](ObjectId first, ObjectId last, const std::string& device, const std::string& what,
                           const char* step) {
    page << "| " << first;
    if (last != first) page << " to " << last;
    page << " | " << device << " | " << what << " | " << step << " |\n";
  };
  const auto one = [&row](ObjectId id, const std::string& device) { row(id, id, device, Explain(id).text, "-"); };
  one(GetDeviceObjModelId(), "-");
  for (const LogicalDeviceId dev : {LogicalDeviceId::Of<1>(), LogicalDeviceId::Of<2>()}) {
    const std::string device = std::to_string(dev.Get());
    one(GetLogicalKnxDeviceObjModelId(dev), device);
    for (const AppControlKind& kind : AppControlKinds()) one(kind.idOf(dev), device);
    constexpr unsigned short kLastCo = 4095;
    row(*GetCoChannelObjModelId(1, dev), *GetCoChannelObjModelId(kLastCo, dev), device,
        "channels of communication objects 1 to " + std::to_string(kLastCo), "2");
    row(*GetCoValueObjModelId(1, dev), *GetCoValueObjModelId(kLastCo, dev), device,
        "values of communication objects 1 to " + std::to_string(kLastCo), "2");
    for (const ParameterKind& kind : ParameterKinds()) {
      const auto last = static_cast<unsigned short>(GetMaxParametersOfType(kind.type));
      const std::string what = " of " + std::string(kind.title) + " parameters 0 to " + std::to_string(last);
      row(*GetParameterChannelObjModelId(0, dev, kind.type), *GetParameterChannelObjModelId(last, dev, kind.type),
          device, "channels" + what, "2");
      row(*GetParameterValueObjModelId(0, dev, kind.type), *GetParameterValueObjModelId(last, dev, kind.type), device,
          "values" + what, "2");
    }
    one(GetLastObjModelId(dev), device);
  }
  return page.str();
}

}  // namespace Talctl
