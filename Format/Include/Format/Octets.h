// Octets as people write them.
#pragma once

#include <KnxStackApi/BinaryData.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Format {

/// Reads octets: two hex digits each, with or without blanks between octets, and with 0x before the first.
/// @param text    the whole of it is read.
/// @param octets  empty before; when the text is refused it holds those before the fault.
/// @param fault   where given, takes the first octet of @p text that cannot belong to them.
/// @return        false: the text is no octets, or none.
bool ParseOctets(std::string_view text, std::vector<std::uint8_t>& octets, std::size_t* fault = nullptr);

/// Octets as upper-case hex without blanks.
std::string Hex(const KnxStack::BinaryData& octets);

}  // namespace Format
