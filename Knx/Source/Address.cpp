#include <Format/Cursor.h>
#include <Format/Quoted.h>
#include <Knx/Address.h>

namespace Knx {
namespace {

/// Three numbers with a mark between them, of @p high, @p middle and 8 bits.
struct Layout {
  const char* mark;
  unsigned high;
  unsigned middle;
};
constexpr Layout kGroup{"/", 5, 3};
constexpr Layout kIndividual{".", 4, 4};

bool Parse(std::string_view text, const Layout& layout, std::uint16_t& raw) {
  Format::Cursor cursor(text);
  unsigned high = 0;
  unsigned middle = 0;
  unsigned low = 0;
  if (!cursor.Number(high) || !cursor.Word(layout.mark) || !cursor.Number(middle) || !cursor.Word(layout.mark) ||
      !cursor.Number(low) || !cursor.AtEnd() || high >> layout.high != 0 || middle >> layout.middle != 0 || low > 255) {
    return false;
  }
  raw = static_cast<std::uint16_t>(high << (layout.middle + 8) | middle << 8 | low);
  return true;
}

std::string Format(std::uint16_t raw, const Layout& layout) {
  const unsigned number = raw;
  const unsigned middle = number >> 8 & ((1u << layout.middle) - 1);
  return std::to_string(number >> (layout.middle + 8)) + layout.mark + std::to_string(middle) + layout.mark +
         std::to_string(number & 255);
}

}  // namespace

bool ParseAddress(std::string_view text, GroupAddress& address, std::string& error) {
  std::uint16_t raw = 0;
  if (Parse(text, kGroup, raw) && raw != 0) {
    address.raw = raw;
    return true;
  }
  error = Format::Quoted(text) + " is not a group address: expected main/middle/sub from 0/0/1 to 31/7/255";
  return false;
}

bool ParseAddress(std::string_view text, IndividualAddress& address, std::string& error) {
  if (Parse(text, kIndividual, address.raw)) return true;
  error = Format::Quoted(text) + " is not a device address: expected area.line.device from 0.0.0 to 15.15.255";
  return false;
}

std::string FormatAddress(GroupAddress address) { return Format(address.raw, kGroup); }
std::string FormatAddress(IndividualAddress address) { return Format(address.raw, kIndividual); }

}  // namespace Knx
