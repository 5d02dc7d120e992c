#include "view/base64.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dravo::test {
namespace {

std::string encoded(std::string_view text) {
  return base64(std::as_bytes(std::span(text.data(), text.size())));
}

TEST(Base64, IsThatOfTheExamplesInRfc4648) {
  const std::vector<std::pair<std::string, std::string>> examples{{"", ""},
                                                                  {"f", "Zg=="},
                                                                  {"fo", "Zm8="},
                                                                  {"foo", "Zm9v"},
                                                                  {"foob", "Zm9vYg=="},
                                                                  {"fooba", "Zm9vYmE="},
                                                                  {"foobar", "Zm9vYmFy"}};
  for (const auto& [text, expected] : examples) EXPECT_EQ(encoded(text), expected);
}

TEST(Base64, HasTheLastTwoLetters) {
  EXPECT_EQ(encoded("\xFB\xEF\xBE"), "++++");
  EXPECT_EQ(encoded("\xFF\xFF\xFF"), "////");
}

TEST(Base64, OfNumbersHasTheLowestByteFirst) {
  EXPECT_EQ(base64_of(std::vector<std::uint16_t>{0x6F66}), "Zm8=");
  EXPECT_EQ(base64_of(std::vector<float>{1.0F}), "AACAPw==");      // 3F800000
  EXPECT_EQ(base64_of(std::vector<double>{1.0}), "AAAAAAAA8D8=");  // 3FF0000000000000
}

}  // namespace
}  // namespace dravo::test
