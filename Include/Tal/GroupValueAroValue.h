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

/// Decodes a group value received from the bus as datapoint type @p dpt.
///
/// @return  the value, of the type that the main type demands; or nothing after one or more records: an unsupported
///          datapoint type, a value that CheckGroupValue() refuses or whose octets are missing (ERROR), a time of day
///          or a date that is none (WARN). A value of type avtEmpty is present for a main type that is known but not
///          decoded (24, 25, 28, 30, 200 to 202), and for dates and times after 2038-01-19 03:14:07 (11, 19).
/// @throws std::out_of_range  11.x with a day beyond its month, 19.x with an impossible month or day.
///
/// Numbers are raw as in AroValueToGroupValue(); an octet of 6.x is carried as 0 to 255; 7F FF of 9.x is NaN. Dates and
/// times are taken as local time, a time of day stands on 2000-01-01. A call of 100 ms and more is logged at INFO.
/// Keeps no state: may be called from any thread.
TALOBJECTMODEL_EXPORT boost::optional<AROVALUE> GroupValueToAroValue(const KnxStack::GroupValue& value,
                                                                     unsigned long dpt);

/// True when the table converter-driven converter (KnxValueConverter) decodes @p value as datapoint type @p dpt; its
/// records say why not. A datapoint type that it does not know is taken for valid. Throws nothing but want of memory,
/// on the first conversion of a process; may be called from any thread.
TALOBJECTMODEL_EXPORT bool CheckGroupValue(const KnxStack::GroupValue& value, unsigned long dpt);

}  // namespace Tal
