#include "common/record_stream.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/errors.hpp"
#include "support/not_finite.hpp"

namespace dravo {
namespace {

using test::kInfinity;
using test::kNaN;

/// Bytes of one free-format record.
template <class... Items>
std::string record(const Items&... items) {
  RecordStream stream;
  stream.record(items...);
  return stream.text();
}

/// Bytes of one record with a stated format.
template <class... Fields>
std::string formatted(const Fields&... fields) {
  RecordStream stream;
  stream.formatted(fields...);
  return stream.text();
}

/// Keeps the pieces as they come.
class PieceSink final : public ByteSink {
 public:
  void write(std::string_view bytes) override { pieces.emplace_back(bytes); }

  std::vector<std::string> pieces;
};

class BrokenSink final : public ByteSink {
 public:
  void write(std::string_view) override { throw IoFailure("broken: cannot write"); }
};

TEST(FreeRecords, TextStandsBehindTheBlankOfTheRecord) {
  EXPECT_EQ(record("molecule 1"), " molecule 1\n");
  EXPECT_EQ(record(std::string("molecule"), std::string_view(" 1")), " molecule 1\n");
}

TEST(FreeRecords, TextKeepsItsOwnBlanksAtBothEnds) {
  EXPECT_EQ(record(" molecule 1 "), "  molecule 1 \n");
  EXPECT_EQ(record(" ERROR \t"), "  ERROR \t\n");
}

TEST(FreeRecords, NeighbouringTextsTouch) { EXPECT_EQ(record("c", "d", " e"), " cd e\n"); }

TEST(FreeRecords, BlankOfTheRecordSeparatesItsFirstNumber) {
  EXPECT_EQ(record(12345, -7), "       12345          -7\n");
  EXPECT_EQ(record(1.0), "   1.0000000000000000     \n");
}

TEST(FreeRecords, NumberIsSeparatedFromTheTextBeforeIt) {
  EXPECT_EQ(record("lab", 10, -1), " lab          10          -1\n");
}

TEST(FreeRecords, TextIsSeparatedFromTheNumberBeforeItOnly) {
  EXPECT_EQ(record("a", 5, "b", 1.5, "c", "d"), " a           5 b   1.5000000000000000      cd\n");
  EXPECT_EQ(record(1.5, " DEGREE "), "   1.5000000000000000       DEGREE \n");
}

TEST(FreeRecords, RealsOfBothFormsStandInColumns) {
  EXPECT_EQ(record(-8.2, 3e-5, 4.0),
            "  -8.1999999999999993        3.0000000000000001E-005   4.0000000000000000     \n");
}

TEST(FreeRecords, InfinitiesAndNotANumberStandInTheSameColumns) {
  EXPECT_EQ(record(kInfinity, -kInfinity, kNaN),
            "                  Infinity                 -Infinity                       NaN\n");
}

TEST(FreeRecords, VectorIsThreeReals) {
  EXPECT_EQ(record(Vec3{-8.2, 3e-5, 4.0}), record(-8.2, 3e-5, 4.0));
  EXPECT_EQ(
      record("CM", Vec3{1.0, 0.0, 3.5}, "A"),
      " CM   1.0000000000000000        0.0000000000000000        3.5000000000000000      A\n");
}

TEST(FreeRecords, SeparationStartsAnewWithEachRecord) {
  RecordStream stream;
  stream.record(1);
  stream.record("a");
  stream.record("b");
  stream.record(2);
  EXPECT_EQ(stream.text(), "           1\n a\n b\n           2\n");
}

TEST(FreeRecords, BlankRecordHoldsTwoBlanksBehindItsOwn) {
  RecordStream stream;
  stream.blank();
  EXPECT_EQ(stream.text(), "   \n");
  stream.blank(2);
  EXPECT_EQ(stream.text(), "   \n   \n   \n");
  stream.blank(0);
  EXPECT_EQ(stream.text(), "   \n   \n   \n");
}

TEST(FreeRecords, RepeatedTextFillsThatManyRecords) {
  RecordStream stream;
  stream.repeat(" - ", 2);
  stream.repeat("x", 0);
  EXPECT_EQ(stream.text(), "  - \n  - \n");
}

TEST(FormattedRecords, HaveNoBlankOfTheirOwn) {
  EXPECT_EQ(formatted(Fwd{12345.67, 7, 1}), "12345.7\n");
  EXPECT_EQ(formatted(Fwd{123456.7, 7, 1}), "*******\n");
  EXPECT_EQ(formatted(Fwd{-0.0001, 8, 3}), "  -0.000\n");
  EXPECT_EQ(formatted(Fwd{-1000.0, 8, 3}), "********\n");
  EXPECT_EQ(formatted(Fwd{10000.0, 8, 3}), "********\n");
  EXPECT_EQ(formatted(Iw{-15, 2}), "**\n");
  EXPECT_EQ(formatted("C "), "C \n");
}

TEST(FormattedRecords, FieldsTouch) {
  EXPECT_EQ(formatted(Fwd{kInfinity, 8, 3}, Fwd{kNaN, 8, 3}), "Infinity     NaN\n");
  EXPECT_EQ(formatted(Fwd{0.005, 7, 2}, Fwd{-0.005, 7, 2}, Fwd{0.015, 7, 2}),
            "   0.01  -0.01   0.01\n");
  EXPECT_EQ(formatted(Fwd{0.05, 7, 1}, Aw{" NAD ", 5}, Aw{" NAD ", 5}), "    0.1 NAD  NAD \n");
}

TEST(FormattedRecords, FieldThatDoesNotFitFillsWithAsterisks) {
  EXPECT_EQ(formatted(Iw{100, 2}, Fwd{1000000.0, 15, 8}, Fwd{-100000.0, 15, 8}, Fwd{1.5, 15, 8}),
            "********************************     1.50000000\n");
}

TEST(FormattedRecords, PairLineOfAShortContact) {
  EXPECT_EQ(formatted(Aw{"C ", 2}, Iw{150001, 6}, Aw{" .. ", 4}, Aw{"Cl", 2}, Iw{12, 6},
                      " dist:", Fwd{1.8, 7, 3}),
            "C 150001 .. Cl    12 dist:  1.800\n");
}

TEST(FormattedRecords, DoNotDisturbTheSeparationOfFreeOnes) {
  RecordStream stream;
  stream.record(1);
  stream.formatted("x");
  stream.record("a", 2);
  EXPECT_EQ(stream.text(), "           1\nx\n a           2\n");
}

TEST(RecordStreams, KeepTheirRecordsInMemoryWithoutASink) {
  RecordStream stream;
  EXPECT_EQ(stream.text(), "");
  stream.record("a");
  stream.flush();
  EXPECT_EQ(stream.text(), " a\n");
}

TEST(RecordStreams, FlushHandsEverythingToTheSinkOnce) {
  PieceSink sink;
  RecordStream stream(&sink);
  stream.record("a");
  stream.formatted("b");
  EXPECT_EQ(stream.text(), " a\nb\n");
  EXPECT_TRUE(sink.pieces.empty());
  stream.flush();
  stream.flush();
  EXPECT_EQ(sink.pieces, std::vector<std::string>{" a\nb\n"});
  EXPECT_EQ(stream.text(), "");
}

TEST(RecordStreams, AttachedSinkTakesWhatWasWrittenBefore) {
  PieceSink sink;
  RecordStream stream;
  stream.record("before");
  stream.attach(&sink);
  stream.record("after");
  stream.flush();
  EXPECT_EQ(sink.pieces, std::vector<std::string>{" before\n after\n"});
}

TEST(RecordStreams, HandOverLargePiecesOfWholeRecords) {
  PieceSink sink;
  RecordStream stream(&sink);
  std::string expected;
  for (std::int32_t i = 0; i < 20000; ++i) {
    stream.formatted(Iw{i, 9});  // 10 bytes a record, 200000 in all
    const std::string digits = std::to_string(i);
    expected += std::string(9 - digits.size(), ' ') + digits + "\n";
  }
  EXPECT_LT(stream.text().size(), 100000U);  // memory stays bounded
  EXPECT_GE(sink.pieces.size(), 1U);
  EXPECT_LT(sink.pieces.size(), 100U);  // and few calls are made
  stream.flush();
  std::string written;
  for (const std::string& piece : sink.pieces) {
    EXPECT_EQ(piece.back(), '\n');
    written += piece;
  }
  EXPECT_TRUE(written == expected);
}

TEST(RecordStreams, GiveUpTheirBytesWhenTheSinkFails) {
  BrokenSink broken;
  PieceSink sink;
  RecordStream stream(&broken);
  stream.record("lost");
  EXPECT_THROW(stream.flush(), IoFailure);
  EXPECT_EQ(stream.text(), "");
  EXPECT_NO_THROW(stream.flush());  // so that the end of the run does not fail a second time
  stream.attach(&sink);
  stream.record("kept");
  stream.flush();
  EXPECT_EQ(sink.pieces, std::vector<std::string>{" kept\n"});
}

}  // namespace
}  // namespace dravo
