// Octets as people write them.
#pragma once

#include <KnxStackApi/BinaryData.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Notation {

/// Reads octets: two hex digits each, with or without blanks between octets, and with 0x before the first.
/// @return  false: the text is no octets, or none.
bool ParseOctets(std::string_view text, std::vector<std::uint8_t>& octets);

/// Octets as upper-case hex without blanks.
std::string Hex(const KnxStack::BinaryData& octets);

}  // namespace Notation
