// One value on its way to octets.
#pragma once

#include <BasePlatform/AroValue.h>
#include <KnxStackApi/GroupValue.h>

#include <boost/optional.hpp>
#include <string>
#include <string_view>

#include "DptText.h"
#include "ReasonLog.h"
#include "ValueText.h"

namespace Talctl {

/// What came of encoding one value: the group value, or an error; and as much as could be read of the rest.
struct Encoding {
  std::string text;  ///< the value as it was given
  boost::optional<Dpt> dpt;
  boost::optional<AROVALUE> value;
  boost::optional<KnxStack::GroupValue> groupValue;
  std::string error;  ///< why there is no group value, and what to do

  /// The octets as upper-case hex without blanks, or "error: " and the reason.
  std::string Answer() const;
  /// One object with what there is: line, dpt, value, type, octets, bits, or error.
  Json ToJson(unsigned long line) const;
};

/// Encodes a value given as texts. @p value empty: it is missing.
Encoding Encode(std::string_view dpt, boost::optional<std::string_view> value, ReasonLog& log);

/// The same for a line "DPT VALUE". The value is the rest of the line; blanks around it count only behind a text.
Encoding EncodeLine(std::string_view line, ReasonLog& log);

}  // namespace Talctl
