// Integers that cannot leave their range.
#pragma once

#include <boost/optional.hpp>

namespace Tal {

/// An integer from Min to Max, both inclusive. @tparam Tag  keeps numbers of different meaning apart.
template <class Int, Int Min, Int Max, class Tag>
class BoundedInt {
 public:
  static_assert(Min <= Max, "an empty range has no numbers");
  static constexpr Int kMin = Min;  ///< the smallest number
  static constexpr Int kMax = Max;  ///< the largest number

  /// A number known at compile time, which is checked there.
  template <Int Number>
  static constexpr BoundedInt Of() noexcept {
    static_assert(Number >= Min && Number <= Max, "out of range");
    return BoundedInt(Number);
  }

  /// @return  nothing when @p number is out of range.
  static boost::optional<BoundedInt> Create(Int number) noexcept {
    if (number < Min || number > Max) return boost::none;
    return BoundedInt(number);
  }

  /// The number, from kMin to kMax.
  constexpr Int Get() const noexcept { return m_number; }

  /// Same number.
  friend constexpr bool operator==(BoundedInt a, BoundedInt b) noexcept { return a.m_number == b.m_number; }
  /// Another number.
  friend constexpr bool operator!=(BoundedInt a, BoundedInt b) noexcept { return !(a == b); }

 private:
  constexpr explicit BoundedInt(Int number) noexcept : m_number(number) {}
  Int m_number;
};

}  // namespace Tal
