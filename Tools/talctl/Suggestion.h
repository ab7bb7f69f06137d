// What somebody may have meant who typed something else.
#pragma once

#include <Format/Converter.h>

#include <string>
#include <string_view>
#include <vector>

namespace Talctl {

/// How many characters must be inserted, deleted, replaced or swapped with their neighbour to make one text of the
/// other, without regard to case.
/// @return  at most @p bound + 1, which stands for all above the bound.
std::size_t EditDistance(std::string_view a, std::string_view b, std::size_t bound);

/// The nearest candidate, of several the first, when at most a third of its characters differ; else nothing.
std::string Nearest(std::string_view typed, const std::vector<std::string>& candidates);

/// "; did you mean 'decode'?" when a candidate is near enough, else nothing.
std::string DidYouMean(std::string_view typed, const std::vector<std::string>& candidates);

/// The same for a text that is not a datapoint type, but nearly.
std::string DidYouMeanDpt(std::string_view typed);

/// The same for a datapoint type that a converter does not know: of its main number the nearest sub number, or the same
/// sub number of a main number that reads nearly the same.
std::string DidYouMeanDpt(const Format::Dpt& dpt, Format::Converter converter);

/// What `dpts` lists of a converter: "9.x", "9.001".
std::vector<std::string> KnownDpts(Format::Converter converter);

}  // namespace Talctl
