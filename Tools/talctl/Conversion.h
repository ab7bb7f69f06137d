// One value on its way to octets, or back.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxStackApi/GroupValue.h>

#include <boost/optional.hpp>
#include <string>
#include <string_view>

#include <Format/Converter.h>
#include <Format/DptText.h>
#include <Format/Octets.h>
#include <Format/ValueText.h>
#include "ReasonLog.h"

namespace Talctl {

using namespace Format;

/// What came of a conversion: a value and its group value, or an error and as much as could be read of the rest.
struct Conversion {
  std::string text;  ///< what was given behind the datapoint type
  boost::optional<Dpt> dpt;
  boost::optional<AROVALUE> value;
  boost::optional<KnxStack::GroupValue> groupValue;
  std::string error;        ///< why it failed, and what to do; empty: it is done
  bool isDptWrong = false;  ///< the fault is in the datapoint type, not in what stands behind it
  std::size_t fault = 0;    ///< the octet of it where the fault is; 0 also when all of it is refused
};

/// Encodes a value given as text. Blanks at the end count only in a text value, which alone may be empty.
Conversion Encode(std::string_view dpt, std::string_view value, Converter converter, ReasonLog& log);

/// Decodes octets given as hex: "0C1A", "0c 1a" or "0x0C1A".
/// @param bits  the defined size; nothing: 8 bits an octet, or the bus's short form for one octet of a short type.
Conversion Decode(std::string_view dpt, std::string_view octets, boost::optional<unsigned> bits, Converter converter,
                  ReasonLog& log);

/// Decodes a group value that is at hand. A result without a value is an error that says so.
Conversion Decode(const Dpt& given, const KnxStack::GroupValue& groupValue, Converter converter, ReasonLog& log);

/// Asks CheckGroupValue(). The result has no value.
Conversion Check(std::string_view dpt, std::string_view octets, boost::optional<unsigned> bits, ReasonLog& log);

/// True when the converter encodes values of this datapoint type at all.
bool CanEncode(const Dpt& dpt, Converter converter);

}  // namespace Talctl
