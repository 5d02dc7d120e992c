#include "results/checksum.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "scan/plans.hpp"
#include "support/temporary_folder.hpp"

namespace dravo::test {
namespace {

std::uint64_t checksum_of(std::string_view bytes) {
  Checksum checksum;
  checksum.add(bytes);
  return checksum.value();
}

// That of nothing is published with the algorithm.
TEST(Checksum, IsXxh3) { EXPECT_EQ(checksum_of(""), 0x2D06800538D394C2U); }

TEST(Checksum, DoesNotDependOnThePieces) {
  std::string text;
  for (int k = 0; k < 2000; ++k) text += std::to_string(k);
  for (const std::size_t piece : {1U, 7U, 255U, 256U, 1000U, 100000U}) {
    Checksum checksum;
    for (std::size_t at = 0; at < text.size(); at += piece) {
      checksum.add(std::string_view(text).substr(at, piece));
      EXPECT_EQ(checksum.value(), checksum.value()) << "may be asked for at any time";
    }
    EXPECT_EQ(checksum.value(), checksum_of(text)) << piece;
  }
}

TEST(Checksum, TellsChangesOfABitApart) {
  std::string text(5000, 'a');
  const std::uint64_t before = checksum_of(text);
  for (std::size_t k = 0; k < text.size(); k += 31) {
    text[k] ^= 1;
    EXPECT_NE(checksum_of(text), before) << k;
    text[k] ^= 1;
  }
}

TEST(Checksum, OfTheFirstBytesOfAFile) {
  const TemporaryFolder folder;
  std::string text(3'000'000, 'x');
  for (std::size_t k = 0; k < text.size(); k += 1000) text[k] = static_cast<char>('a' + k % 26);
  folder.write("file", text);
  const std::string name = (folder.path() / "file").string();
  for (const std::size_t bytes : {0U, 1U, 1048576U, 1048577U, 2999999U, 3000000U})
    EXPECT_EQ(checksum_of_first(static_cast<std::int64_t>(bytes), name),
              checksum_of(std::string_view(text).substr(0, bytes)))
        << bytes;
  EXPECT_FALSE(checksum_of_first(3'000'001, name)) << "there are not so many";
  EXPECT_EQ(message_of([&] { (void)checksum_of_first(1, name + "2"); }),
            name + "2: cannot read: No such file or directory");
}

}  // namespace
}  // namespace dravo::test
