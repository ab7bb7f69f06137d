#include "TalObjectModel/XmlDepth.h"

#include <algorithm>
#include <random>
#include <rapidxml.hpp>
#include <string>

#include "Support/Cases.h"

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
  // clang-format off
  constexpr const char* kPieces[] = {
      "<a>", "</a>", "<b/>", "<c d='>'>", "<e f=\"/>\" g = '\"'/>", "<'>", "<h'=\"x\">", "<!--", "-->", "<!-- <a> -->", "<![CDATA[", "]]>", "<?", "?>",
      "<?xml ", "<!x", "<!DOCTYPE ", "[", "]", ">", "</", " ", "text", "&lt;", "<", "/", "=", "'", "\"", "!"};
  // clang-format on
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

TEST(XmlDepth, IsNotTalkedOutOfNestingByOddMarkup) {
  TalTest::ForEachCase("XmlDepth.txt", "depth", [](const TalTest::Case& c) {
    const std::size_t depth = DepthOfXml(c[0].c_str());
    const bool isEnough = c[1] == "at least 1000" ? depth >= 1000 : std::to_string(depth) == c[1];
    EXPECT_TRUE(isEnough) << depth;
  });
}

}  // namespace
}  // namespace Tal
