#include <Format/DptText.h>

#include <Format/Cursor.h>
#include <Format/Quoted.h>

namespace Format {

bool ParseDpt(std::string_view text, Dpt& dpt, std::string& error, std::size_t* fault) {
  Cursor cursor(text);
  Dpt parsed;
  bool good;
  if (cursor.Word("DPST-")) {
    good = cursor.Number(parsed.main) && cursor.Word("-") && cursor.Number(parsed.sub);
  } else if (cursor.Word("DPT-")) {
    good = cursor.Number(parsed.main);
  } else {
    good = cursor.Number(parsed.main) &&
           (cursor.AtEnd() || (cursor.Word(".") && (cursor.Word("x") || cursor.Number(parsed.sub))));
  }
  if (!good || !cursor.AtEnd()) {
    error = Quoted(text) +
            " is not a datapoint type: expected main.sub up to 65535 each, such as 9.001, 9, DPST-9-1 or DPT-9";
    if (fault != nullptr) *fault = text.size() - cursor.Rest().size();
    return false;
  }
  dpt = parsed;
  return true;
}

std::string FormatDpt(const Dpt& dpt) {
  const std::string sub = std::to_string(dpt.sub);
  return std::to_string(dpt.main) + '.' + std::string(sub.size() < 3 ? 3 - sub.size() : 0, '0') + sub;
}

}  // namespace Format
