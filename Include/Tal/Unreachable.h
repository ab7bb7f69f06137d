// States that must not occur.
#pragma once

#include <KnxHelper/Utf8String.h>
#include <Tal/Export.h>

#include <boost/optional.hpp>

namespace Tal {

/// The contained value. An empty optional is a bug in the caller: one FATAL record "This statement should not be
/// executed. There is a bug somewhere around ...", then std::terminate().
template <class T>
TALOBJECTMODEL_EXPORT T UndefinedBehaviourIfNone(boost::optional<T> value);

/// @cond  the same, for the linker
extern template TALOBJECTMODEL_EXPORT UTF8String UndefinedBehaviourIfNone<UTF8String>(boost::optional<UTF8String>);
/// @endcond

}  // namespace Tal
