// The octets of a group value.
#pragma once

#include <KnxStackApi/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

namespace KnxStack {

/// A sequence of octets of a length that is fixed at construction. Up to 14 octets, the most that a group value of a
/// fixed-size datapoint type has, live inside the object; longer sequences take memory of their own.
class BinaryData {
 public:
  static constexpr std::size_t kInlineOctets = 14;  ///< so many need no memory beside the object

  /// No octets.
  BinaryData() noexcept = default;
  /// A copy of @p count octets; @p octets may be null when it is 0.
  BinaryData(const std::uint8_t* octets, std::size_t count) {
    std::uint8_t* const room = Allocate(count);
    if (count > 0) std::memcpy(room, octets, count);
  }
  /// These octets.
  BinaryData(std::initializer_list<std::uint8_t> octets) : BinaryData(octets.begin(), octets.size()) {}

  /// A copy.
  BinaryData(const BinaryData& other) : m_inline(other.m_inline) {
    if (other.m_far) {
      std::memcpy(Allocate(other.m_size), other.m_far.get(), other.m_size);
    } else {
      m_size = other.m_size;
    }
  }
  /// Takes the octets of @p other, which has none afterwards.
  BinaryData(BinaryData&& other) noexcept
      : m_far(std::move(other.m_far)), m_size(std::exchange(other.m_size, 0)), m_inline(other.m_inline) {}
  /// A copy; when memory runs out, nothing has changed.
  BinaryData& operator=(const BinaryData& other) {
    BinaryData copy(other);
    return *this = std::move(copy);
  }
  /// Takes the octets of @p other, which has none afterwards.
  BinaryData& operator=(BinaryData&& other) noexcept {
    m_far = std::move(other.m_far);
    m_inline = other.m_inline;
    const std::size_t size = std::exchange(other.m_size, 0);
    m_size = size;
    return *this;
  }
  ~BinaryData() = default;

  /// Replaces all octets by these, up to 14, where the object stands.
  template <class... Octets>
  void Assign(Octets... octets) noexcept {
    std::uint8_t* next = Renew<sizeof...(octets)>();
    ((*next++ = static_cast<std::uint8_t>(octets)), ...);
  }
  /// Makes it so many octets, up to 14. @return  where they stand; what they were is not told.
  template <std::size_t Count>
  std::uint8_t* Renew() noexcept {
    static_assert(Count <= kInlineOctets, "there is no room for more");
    m_far.reset();
    m_size = Count;
    return m_inline.data();
  }

  std::size_t size() const noexcept { return m_size; }  ///< how many octets
  bool empty() const noexcept { return m_size == 0; }   ///< there are none
  /// Where they stand, until the object changes or moves.
  const std::uint8_t* data() const noexcept { return m_far ? m_far.get() : m_inline.data(); }
  const std::uint8_t* begin() const noexcept { return data(); }         ///< the first one
  const std::uint8_t* end() const noexcept { return data() + m_size; }  ///< behind the last one

  /// Octet @p index. @throws GroupValueException when there is no such octet.
  std::uint8_t GetUInt8Value(std::size_t index) const {
    Require(index);
    return data()[index];
  }
  /// Replaces octet @p index. @throws GroupValueException, with nothing changed, when there is no such octet.
  void SetUInt8Value(std::size_t index, std::uint8_t octet) {
    Require(index);
    (m_far ? m_far.get() : m_inline.data())[index] = octet;
  }

  /// The unsigned number that up to three octets from @p index make, most significant first; fewer octets at the end
  /// make a smaller number. @throws GroupValueException when there is no octet @p index.
  std::uint32_t GetUInt24Value(std::size_t index) const { return GetNumber(index, 3); }
  /// The same with up to four octets: 12 34 56 gives 0x123456.
  std::uint32_t GetUInt32Value(std::size_t index) const { return GetNumber(index, 4); }

  /// Upper-case hex, two digits an octet, a blank between octets.
  KNXSTACKAPI_EXPORT std::string ToString() const;

  /// The same octets.
  friend bool operator==(const BinaryData& a, const BinaryData& b) noexcept {
    return a.m_size == b.m_size && std::memcmp(a.data(), b.data(), a.m_size) == 0;
  }
  /// Other octets.
  friend bool operator!=(const BinaryData& a, const BinaryData& b) noexcept { return !(a == b); }

 private:
  std::uint8_t* Allocate(std::size_t count) {
    if (count > kInlineOctets) m_far.reset(new std::uint8_t[count]);
    m_size = count;
    return m_far ? m_far.get() : m_inline.data();
  }
  void Require(std::size_t index) const {
    if (index >= m_size) ThrowMissingOctet(index);
  }
  [[noreturn]] KNXSTACKAPI_EXPORT void ThrowMissingOctet(std::size_t index) const;

  std::uint32_t GetNumber(std::size_t index, std::size_t count) const {
    Require(index);
    const std::uint8_t* const octets = data();
    const std::size_t stop = m_size - index < count ? m_size : index + count;
    std::uint32_t number = 0;
    for (std::size_t i = index; i < stop; ++i) number = number << 8 | octets[i];
    return number;
  }

  std::unique_ptr<std::uint8_t[]> m_far;  ///< the octets when there are more than fit inside
  std::size_t m_size = 0;
  std::array<std::uint8_t, kInlineOctets> m_inline = {};
};

}  // namespace KnxStack
