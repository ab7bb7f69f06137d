#include "XmlDepth.h"

#include <algorithm>
#include <cstring>

namespace Tal {
namespace {

bool StartsWith(const char* text, const char* prefix) { return std::strncmp(text, prefix, std::strlen(prefix)) == 0; }

/// What follows the next @p mark, or the end of the text.
const char* Behind(const char* text, const char* mark) {
  const char* const found = std::strstr(text, mark);
  return found != nullptr ? found + std::strlen(mark) : text + std::strlen(text);
}

/// What follows a tag that starts at @p text; @p isEmpty: it ends with "/>".
const char* BehindTag(const char* text, bool& isEmpty) {
  char quote = '\0';
  for (; *text != '\0'; ++text) {
    if (quote != '\0') {
      if (*text == quote) quote = '\0';
    } else if (*text == '"' || *text == '\'') {
      quote = *text;
    } else if (*text == '>') {
      isEmpty = text[-1] == '/';
      return text + 1;
    }
  }
  return text;
}

}  // namespace

std::size_t DepthOfXml(const char* text) noexcept {
  std::size_t depth = 0;
  std::size_t deepest = 0;
  while ((text = std::strchr(text, '<')) != nullptr) {
    if (StartsWith(text, "<!--")) {
      text = Behind(text, "-->");
    } else if (StartsWith(text, "<![CDATA[")) {
      text = Behind(text, "]]>");
    } else if (StartsWith(text, "<?")) {
      text = Behind(text, "?>");
    } else if (StartsWith(text, "</")) {
      depth -= depth > 0 ? 1 : 0;
      text += 2;
    } else if (StartsWith(text, "<!")) {
      text += 2;  // a declaration; what it contains may count, which only makes the result larger
    } else {
      bool isEmpty = false;
      text = BehindTag(text + 1, isEmpty);
      deepest = std::max(deepest, depth + 1);
      if (!isEmpty) ++depth;
    }
  }
  return deepest;
}

}  // namespace Tal
