// What the library's tables hold, for tools and documentation.
#pragma once

#include <BasePlatform/AroDP.h>
#include <BasePlatform/AroValueType.h>
#include <KnxStackApi/KnxDpt.h>
#include <Tal/Export.h>

#include <boost/optional.hpp>
#include <cstdint>
#include <string>
#include <vector>

namespace Tal {

/// What a datapoint type stands for, in words for people; "" where there is nothing to say.
struct DptMeaning {
  std::string name;  ///< "temperature difference"
  std::string unit;  ///< symbol of the unit, in UTF-8: "K"
  /// The fields from the first bit on the wire to the last: "sign:1 exponent:4 mantissa:11"; several of a kind as
  /// "character:8*14", "-" for bits that are not used. "" for what varies in size.
  std::string layout;
  std::string example;  ///< a value of it, as people write it: "-2.5"
};

/// A main type as the one-step conversions (GroupValueAroValue.h) know it.
struct MainTypeDescription {
  std::uint16_t main;              ///< main number
  AroValueType valueType;          ///< what its values carry
  AroDP::AroValueSubType subType;  ///< what they stand for
  bool isEncoded;                  ///< AroValueToGroupValue() encodes it
  bool isDecoded;                  ///< GroupValueToAroValue() decodes it
  DptMeaning meaning;              ///< of the whole main type
};

/// A row of the standard table of the table converter-driven converter (KnxValueConverter.h).
struct DptDescription {
  KNXDPT dpt;                      ///< sub 0: the whole main type
  AroValueType valueType;          ///< what its values carry
  AroDP::AroValueSubType subType;  ///< what they stand for
  std::string codec;               ///< name of the codec's class
  /// The range that the codec carries, bounds inclusive: the side of AROVALUE and the side of KNX.
  struct Range {
    /// A bound.
    /// @{
    double internalMin, internalMax, externalMin, externalMax;
    /// @}
  };
  boost::optional<Range> range;  ///< nothing: the codec carries none
  DptMeaning meaning;            ///< in words
};

/// All main types of the one-step conversions, ascending.
TALOBJECTMODEL_EXPORT std::vector<MainTypeDescription> DescribeMainTypes();

/// All rows of the standard table in their order of insertion.
TALOBJECTMODEL_EXPORT std::vector<DptDescription> DescribeDptTable();

/// Bits that the group values of a main type must have; nothing when any size will do, 0 for an unknown main type.
TALOBJECTMODEL_EXPORT boost::optional<unsigned> DescribeExpectedBits(std::uint16_t main);

}  // namespace Tal
