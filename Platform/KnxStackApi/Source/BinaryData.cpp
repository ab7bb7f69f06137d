#include <KnxStackApi/BinaryData.h>
#include <KnxStackApi/GroupValueException.h>

namespace KnxStack {

std::string BinaryData::ToString() const {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t octet : *this) {
    if (!text.empty()) text += ' ';
    text += kDigits[octet >> 4];
    text += kDigits[octet & 0x0F];
  }
  return text;
}

void BinaryData::ThrowMissingOctet(std::size_t index) const {
  throw GroupValueException("Octet " + std::to_string(index) + " is missing: there are " + std::to_string(m_size) +
                            " octets");
}

GroupValueException::~GroupValueException() = default;

}  // namespace KnxStack
