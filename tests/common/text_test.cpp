#include "common/text.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace dravo::test {
namespace {

struct Trimming {
  std::string_view text;
  std::string_view trimmed;
};

TEST(Trimmed, TextHasNoBlanksTabsAndCarriageReturnsAroundIt) {
  constexpr std::array<Trimming, 7> kTexts{{{"", ""},
                                            {"a", "a"},
                                            {" \t\r", ""},
                                            {"  a b\t", "a b"},
                                            {"a\r", "a"},
                                            {"\ta", "a"},
                                            {"a\n ", "a\n"}}};
  for (const auto& [text, trimmed] : kTexts) EXPECT_EQ(dravo::trimmed(text), trimmed) << text;
}

/// Messages point into the text, so a part must lie in it even where it is empty.
TEST(Trimmed, TextLiesInTheWholeOne) {
  for (const std::string_view text : {"   ", " a ", ""}) {
    const std::string_view part = trimmed(text);
    EXPECT_GE(part.data(), text.data());
    EXPECT_LE(part.data() + part.size(), text.data() + text.size());
  }
}

struct DividedText {
  std::string_view text;
  std::vector<std::string_view> parts;
};

TEST(PartsBetween, SeparatorsAreTrimmedAndMayBeEmpty) {
  const std::vector<DividedText> texts{{"", {""}},
                                       {"a", {"a"}},
                                       {" a , b\t", {"a", "b"}},
                                       {",", {"", ""}},
                                       {"a,,b,", {"a", "", "b", ""}},
                                       {"a:b,c d", {"a:b", "c d"}}};
  for (const auto& [text, parts] : texts) EXPECT_EQ(parts_between(text, ','), parts) << text;
  EXPECT_EQ(parts_between("0: 1:2", ':'), (std::vector<std::string_view>{"0", "1", "2"}));
}

TEST(PartAt, IsFoundByItsPlaceAndEmptyBehindTheLast) {
  const std::vector<std::string_view> parts{"a", " b", "", "c", "", ""};
  for (std::size_t k = 0; k < parts.size(); ++k)
    EXPECT_EQ(part_at("a, b,,c", ',', k), parts[k]) << k;
  EXPECT_EQ(part_at("", ',', 0), "");
  EXPECT_EQ(part_at("a", ',', 1), "") << "not the last one once more";
}

}  // namespace
}  // namespace dravo::test
