#include "XmlDepth.h"

#include <algorithm>
#include <cstring>

namespace Tal {
namespace {

constexpr char kBlanks[] = " \t\r\n";

/// Reads markup in the grammar of the parser, rapidxml, which is more liberal than the standard's: names hold
/// everything but a few characters, and closing tags need not match. Where the parser would give up, so does the
/// scanner.
class Scanner {
 public:
  explicit Scanner(const char* text) : m_text(text) {}

  std::size_t Deepest() {
    while (m_text != nullptr && (m_text = std::strchr(m_text, '<')) != nullptr) {
      ++m_text;
      switch (*m_text) {
        case '?': PassBehind(1, "?>"); break;
        case '!': PassDeclaration(); break;
        case '/': Close(); break;
        default: Open();
      }
    }
    return m_deepest;
  }

 private:
  bool Starts(const char* word) const { return std::strncmp(m_text, word, std::strlen(word)) == 0; }
  void GiveUp() { m_text = nullptr; }
  void PassAll(const char* characters) { m_text += std::strspn(m_text, characters); }
  void PassUntil(const char* characters) { m_text += std::strcspn(m_text, characters); }
  /// Passes over @p opener characters and over the next @p end behind them.
  void PassBehind(std::size_t opener, const char* end) {
    m_text = std::strstr(m_text + opener, end);
    if (m_text != nullptr) m_text += std::strlen(end);
  }

  void PassDeclaration() {
    constexpr char kComment[] = "!--";
    constexpr char kData[] = "![CDATA[";
    constexpr char kDoctype[] = "!DOCTYPE";
    const std::size_t doctype = std::strlen(kDoctype);
    if (Starts(kComment)) {
      PassBehind(std::strlen(kComment), "-->");
    } else if (Starts(kData)) {
      PassBehind(std::strlen(kData), "]]>");
    } else if (Starts(kDoctype) && m_text[doctype] != '\0' && std::strchr(kBlanks, m_text[doctype]) != nullptr) {
      m_text += doctype;
      PassDoctype();
    } else {
      PassBehind(1, ">");
    }
  }

  /// To the first '>' outside brackets, which may be nested.
  void PassDoctype() {
    std::size_t brackets = 0;
    for (; *m_text != '\0'; ++m_text) {
      if (*m_text == '[') ++brackets;
      if (*m_text == ']' && brackets > 0) --brackets;
      if (*m_text == '>' && brackets == 0) {
        ++m_text;
        return;
      }
    }
    GiveUp();
  }

  void Close() {
    ++m_text;
    PassUntil(" \t\r\n/>?");
    PassAll(kBlanks);
    if (m_depth == 0 || *m_text != '>') return GiveUp();
    ++m_text;
    --m_depth;
  }

  void Open() {
    const char* const name = m_text;
    PassUntil(" \t\r\n/>?");
    if (m_text == name || !PassAttributes()) return GiveUp();
    m_deepest = std::max(m_deepest, m_depth + 1);
    if (*m_text == '>') {
      ++m_depth;
    } else if (!Starts("/>")) {
      GiveUp();
    }
  }

  bool PassAttributes() {
    constexpr char kNoName[] = " \t\r\n/<>=?!";
    PassAll(kBlanks);
    while (*m_text != '\0' && std::strchr(kNoName, *m_text) == nullptr) {
      PassUntil(kNoName);
      PassAll(kBlanks);
      if (*m_text != '=') return false;
      ++m_text;
      PassAll(kBlanks);
      const char quote = *m_text;
      if (quote != '"' && quote != '\'') return false;
      m_text = std::strchr(m_text + 1, quote);
      if (m_text == nullptr) return false;
      ++m_text;
      PassAll(kBlanks);
    }
    return true;
  }

  const char* m_text;  ///< null: nothing more to come
  std::size_t m_depth = 0;
  std::size_t m_deepest = 0;
};

}  // namespace

std::size_t DepthOfXml(const char* text) noexcept { return Scanner(text).Deepest(); }

}  // namespace Tal
