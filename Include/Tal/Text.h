// Text: repair of broken UTF-8, and ISO 8859-1.
#pragma once

#include <KnxHelper/Utf8String.h>
#include <Tal/Export.h>

#include <string>
#include <string_view>

namespace Tal {

/// Makes any bytes valid UTF-8. Valid text stays as it is, zero bytes included; in other text each broken sequence
/// becomes one "?": 41 C3 gives "A?", E2 82 78 gives "?x".
TALOBJECTMODEL_EXPORT UTF8String RepairUTF8(std::string text);

}  // namespace Tal

namespace Vanta {

/// UTF-8 to ISO 8859-1 for text up to U+00FF: two-byte sequences become one byte. Code points from U+0100 to U+07FF are
/// folded onto that range; bytes of longer sequences and stray continuation bytes are copied.
///
/// @param text  must be zero-terminated: the first zero byte ends it, not the view's length. A null view is empty.
TALOBJECTMODEL_EXPORT std::string Utf8ToIso88591(std::string_view text);

/// ISO 8859-1 to UTF-8. @param text  zero-terminated, as above.
TALOBJECTMODEL_EXPORT std::string Iso88591ToUtf8(std::string_view text);

}  // namespace Vanta
