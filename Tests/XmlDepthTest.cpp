#include "TalObjectModel/XmlDepth.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <rapidxml.hpp>
#include <string>

namespace Tal {
namespace {

std::size_t DepthOf(const rapidxml::xml_node<char>& node) {
  std::size_t deepest = 0;
  for (auto* child = node.first_node(); child != nullptr; child = child->next_sibling()) {
    if (child->type() == rapidxml::node_element) deepest = std::max(deepest, 1 + DepthOf(*child));
  }
  return deepest;
}

TEST(XmlDepth, IsWhatTheParserMakesOfIt) {
  constexpr const char* kPieces[] = {"<a>",       "</a>",       "<b/>", "<c d='>'>", "<e f=\"/>\" g = '\"'/>",
                                     "<'>",       "<h'=\"x\">", "<!--", "-->",       "<!-- <a> -->",
                                     "<![CDATA[", "]]>",        "<?",   "?>",        "<?xml ",
                                     "<!x",       "<!DOCTYPE ", "[",    "]",         ">",
                                     "</",        " ",          "text", "&lt;",      "<",
                                     "/",         "=",          "'",    "\"",        "!"};
  std::mt19937 random(7);
  int parsed = 0;
  for (int round = 0; round < 200000; ++round) {
    std::string text = round % 2 == 0 ? "<a>" : "";
    for (auto pieces = random() % 12; pieces > 0; --pieces) text += kPieces[random() % std::size(kPieces)];
    if (round % 2 == 0) text += "</a>";
    const std::size_t depth = DepthOfXml(text.c_str());
    const std::string shown = text;
    rapidxml::xml_document<char> document;
    try {
      document.parse<0>(&text[0]);
    } catch (const rapidxml::parse_error&) {
      continue;
    }
    ++parsed;
    ASSERT_EQ(depth, DepthOf(document)) << shown;
  }
  EXPECT_GT(parsed, 10000);
}

// Each of them, a million times or with a million elements behind it, takes the parser as deep.
TEST(XmlDepth, IsNotTalkedOutOfNestingByOddMarkup) {
  constexpr std::size_t kTimes = 1000;
  const auto repeated = [](const std::string& text) {
    std::string all;
    for (std::size_t i = 0; i < kTimes; ++i) all += text;
    return all;
  };
  for (const char* odd :
       {"<'>", "<a b'=\"\">", "<!--><![CDATA[ -->", "<?><!-- ?>", "<!x <!-- >", "<!DOCTYPE a [ <!-- ]>",
        "<!DOCTYPE a [<?]>", "<a/>", "<!DOCTYPE a [<!ENTITY e '<b>'>]>", "<a></<!--x>"}) {
    EXPECT_GE(DepthOfXml((odd + repeated("<a>")).c_str()), kTimes) << odd;
  }
  for (const char* odd : {"<'a>", "<a><!DOCTYPE [</a>]>", "<a><!x</>", "<a b='</a>'>", "<a><?</a>?>"}) {
    EXPECT_EQ(DepthOfXml(repeated(odd).c_str()), kTimes) << odd;
  }
  EXPECT_EQ(DepthOfXml(("<!DOCTYPE a [" + repeated("<!ENTITY e \"<b>\">") + "]><a/>").c_str()), 1u);
  EXPECT_EQ(DepthOfXml(repeated("<a></<!--x>").c_str()), 1u);
}

}  // namespace
}  // namespace Tal
