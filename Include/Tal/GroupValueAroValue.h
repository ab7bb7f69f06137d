// One-step conversion between values and KNX group values, by datapoint type.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxStackApi/GroupValue.h>
#include <Tal/Export.h>

#include <boost/optional.hpp>

namespace Tal {

/// Encodes @p value as the group value that a group object of datapoint type @p dpt sends.
///
/// @param value  its type must be exactly the one that the main type demands (KnxZelMapping::GetAvtFromDpt()); nothing
///               is converted implicitly.
/// @param dpt    main << 16 | sub, e.g. 589825 for 9.001. The main type alone selects the layout.
/// @return       the group value, or nothing; then one ERROR record names the reason. Silent by design: a scene number
///               above 63 (17.x) and an infinite number (9.x).
/// @throws std::out_of_range  19.x with a date outside the calendar (years 1400 to 9999, months 1 to 12, days of the
///                            month), also when its time of day runs over the calendar's end.
///
/// Units and ranges by main type; numbers are raw, without scaling (5.001 takes 0 to 255, not percent):
///     1 truth value; 2, 23 two bits; 3 four bits; 5, 18, 20, 21, 26, 238 one octet; 6 one octet, two's complement
///     7, 22, 217, 234, 237 0 to 65535; 8 -32768 to 32767; 12, 15, 27 and 13 unsigned and signed 32 bits
///     9 -671088.64 to 670760.96 in the datapoint type's unit, rounded to an 11-bit mantissa, NaN as "invalid"
///     14 IEEE 754 single precision; 16 text of 14 characters of ISO 8859-1, others as "_", longer text is cut
///     10 time of day with weekday; 11 dates from 1990 to 2089; 17 scene 0 to 63; 19 date with time: a time of day past
///     24 hours rolls over, the weekday is the calendar's
///     232 three octets 0xRRGGBB
///
/// Keeps no state: may be called from any thread.
TALOBJECTMODEL_EXPORT boost::optional<KnxStack::GroupValue> AroValueToGroupValue(const AROVALUE& value,
                                                                                 unsigned long dpt);

}  // namespace Tal
