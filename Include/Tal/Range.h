// Value ranges of a datapoint type on two sides, and the scale factor between them.
#pragma once

#include <cstdint>
#include <iosfwd>

namespace Tal {

/// All four classes: the constructor stores the bounds and calls CalculateScaleFactor(), which sets the scale factor to
/// external span / internal span. A degenerate range leaves the factor as it was (1.0 at first) after one ERROR record;
/// a quotient of 0.0 gives 1.0 and one ERROR record. Nothing throws. Internal is the side of AROVALUE, external the
/// side of KNX; bounds are inclusive.
///
/// The text form is the class name and the four bounds: "IntegerRange(0, 254, 0, 254)".
///
/// This one: 32-bit bounds; spans are computed in 64 bits.
class IntegerRange {
 public:
  /// Stores the bounds and calculates the scale factor.
  IntegerRange(std::int32_t internalMin, std::int32_t internalMax, std::int32_t externalMin, std::int32_t externalMax);
  /// Calculates the factor anew.
  void CalculateScaleFactor();

  /// The lower bound on the side of AROVALUE.
  std::int32_t InternalMin() const noexcept { return m_internalMin; }
  /// The upper bound on the side of AROVALUE.
  std::int32_t InternalMax() const noexcept { return m_internalMax; }
  /// External units to one internal unit.
  double ScaleFactor() const noexcept { return m_scaleFactor; }
  /// True from the lower to the upper internal bound.
  bool Contains(std::int32_t value) const noexcept { return value >= m_internalMin && value <= m_internalMax; }

  /// @p value on the external side: externalMin + (value - internalMin) * scale factor, rounded half away from zero and
  /// held within 32 bits.
  std::int32_t ToExternal(std::int32_t value) const noexcept;

  /// Prints the text form.
  friend std::ostream& operator<<(std::ostream& os, const IntegerRange& range);

 private:
  std::int32_t m_internalMin;
  std::int32_t m_internalMax;
  std::int32_t m_externalMin;
  std::int32_t m_externalMax;
  double m_scaleFactor = 1.0;
};

/// 64-bit bounds; see IntegerRange.
class LongIntegerRange {
 public:
  /// Stores the bounds and calculates the scale factor.
  LongIntegerRange(std::int64_t internalMin, std::int64_t internalMax, std::int64_t externalMin,
                   std::int64_t externalMax);
  /// The ERROR records show the low 32 bits of each bound as a signed number.
  void CalculateScaleFactor();

  /// External units to one internal unit.
  double ScaleFactor() const noexcept { return m_scaleFactor; }
  /// True from the lower to the upper internal bound.
  bool Contains(std::int64_t value) const noexcept { return value >= m_internalMin && value <= m_internalMax; }

  /// The text form starts with "IntegerRange(".
  friend std::ostream& operator<<(std::ostream& os, const LongIntegerRange& range);

 private:
  std::int64_t m_internalMin;
  std::int64_t m_internalMax;
  std::int64_t m_externalMin;
  std::int64_t m_externalMax;
  double m_scaleFactor = 1.0;
};

/// A floating range against an integer range; see IntegerRange.
class FloatIntegerRange {
 public:
  /// The range of the two-octet float against all 32-bit integers.
  FloatIntegerRange();
  /// Stores the bounds and calculates the scale factor.
  FloatIntegerRange(double floatMin, double floatMax, std::int32_t integerMin, std::int32_t integerMax);
  /// Calculates the factor anew.
  void CalculateScaleFactor();

  /// External units to one internal unit.
  double ScaleFactor() const noexcept { return m_scaleFactor; }

  /// Prints the text form.
  friend std::ostream& operator<<(std::ostream& os, const FloatIntegerRange& range);

 private:
  double m_floatMin;
  double m_floatMax;
  std::int32_t m_integerMin;
  std::int32_t m_integerMax;
  double m_scaleFactor = 1.0;
};

/// Two floating ranges (see IntegerRange); widths are absolute, so the bounds of a range may be given in either order.
class FloatRange {
 public:
  /// Stores the bounds and calculates the scale factor.
  FloatRange(double first, double second, double externalFirst, double externalSecond);
  /// Calculates the factor anew.
  void CalculateScaleFactor();

  /// External units to one internal unit.
  double ScaleFactor() const noexcept { return m_scaleFactor; }
  /// False only below the first bound or above the second of the first range; NaN is neither.
  bool Contains(double value) const noexcept { return !(value < m_first || value > m_second); }

  /// Prints the text form.
  friend std::ostream& operator<<(std::ostream& os, const FloatRange& range);

 private:
  double m_first;
  double m_second;
  double m_externalFirst;
  double m_externalSecond;
  double m_scaleFactor = 1.0;
};

}  // namespace Tal
