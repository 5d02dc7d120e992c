#include "results/scan_record.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "scan/plans.hpp"
#include "support/not_finite.hpp"
#include "support/run_time.hpp"

namespace dravo::test {
namespace {

// Parts.

TEST(Shard, PartsFollowEachOtherAndCoverAllPoses) {
  for (const std::int64_t of : {1, 2, 3, 7, 64, 1000, 99991})
    for (const std::int64_t poses :
         {std::int64_t{0}, std::int64_t{1}, std::int64_t{6}, std::int64_t{999}, std::int64_t{1000},
          std::int64_t{123457}, std::int64_t{1'000'000'000'000'000}}) {
      std::int64_t next = 0;
      for (std::int64_t number = 1; number <= of; ++number) {
        const Shard shard{number, of};
        ASSERT_EQ(shard.first(poses), next) << number << " of " << of << ", " << poses;
        next = shard.end(poses);
        // No part has two poses more than another.
        ASSERT_GE(next - shard.first(poses), poses / of);
        ASSERT_LE(next - shard.first(poses), poses / of + 1);
      }
      ASSERT_EQ(next, poses) << of;
    }
}

TEST(Shard, OfTheMostPartsOfTheMostPosesHasThem) {
  const std::int64_t poses = 1'000'000'000'000'000;
  const std::int64_t of = std::numeric_limits<std::int32_t>::max();
  const Shard last{of, of};
  EXPECT_EQ(last.end(poses), poses);
  EXPECT_EQ((Shard{of - 1, of}.end(poses)), last.first(poses));
  EXPECT_EQ(last.end(poses) - last.first(poses), poses / of + 1);
  EXPECT_EQ((Shard{1, of}.first(poses)), 0);
}

/// No scan has so many, but a damaged record may say so.
TEST(Shard, MayBeTheLastOfAsManyAsANumberCanTell) {
  const std::int64_t most = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ((Shard{most, most}.first(most)), most - 1);
  EXPECT_EQ((Shard{most, most}.end(most)), most);
}

TEST(Shard, NamesItsFiles) {
  EXPECT_EQ((Shard{1, 1}.name("out/scan")), "out/scan-1-of-1");
  EXPECT_EQ((Shard{1, 2}.name("out/scan")), "out/scan-1-of-2");
  EXPECT_EQ((Shard{12, 200}.name("scan")), "scan-12-of-200");
}

// Text and back.

ScanRecord record() {
  return {{{"r", "contact + 0:1:0.1"}, {"theta", "a \"quoted\" text\nand Å"}, {"version", "1.2"}},
          123456789012345,
          {3, 7},
          {1000, 50, 900, 100, 1.8999999761581421, 17},
          {{ResultFile::frames, {std::int64_t{5'000'000'000}, 0x0123456789ABCDEFU}},
           {ResultFile::table, {654321, std::numeric_limits<std::uint64_t>::max()}}}};
}

void expect_same(const ScanRecord& a, const ScanRecord& b) {
  EXPECT_EQ(a.origin, b.origin);
  EXPECT_EQ(a.poses, b.poses);
  EXPECT_EQ(a.shard.number, b.shard.number);
  EXPECT_EQ(a.shard.of, b.shard.of);
  EXPECT_EQ(a.totals.poses, b.totals.poses);
  EXPECT_EQ(a.totals.left_out, b.totals.left_out);
  EXPECT_EQ(a.totals.written, b.totals.written);
  EXPECT_EQ(a.totals.with_contacts, b.totals.with_contacts);
  EXPECT_EQ(a.totals.shortest, b.totals.shortest);
  EXPECT_EQ(a.totals.shortest_index, b.totals.shortest_index);
  ASSERT_EQ(a.files.size(), b.files.size());
  for (const auto& [file, state] : a.files) {
    EXPECT_EQ(state.bytes, b.files.at(file).bytes);
    EXPECT_EQ(state.checksum, b.files.at(file).checksum);
  }
}

TEST(ScanRecord, IsReadBackFromItsText) {
  expect_same(parse_record("a.json", text_of(record())), record());
}

/// Seconds to write and read a record of so many keys.
double seconds_of_keys(int count) {
  ScanRecord scan = record();
  for (int k = 0; k < count; ++k) scan.origin["key " + std::to_string(k)] = "value";
  const RunTime time;
  const ScanRecord again = parse_record("a.json", text_of(scan));
  const double seconds = time.seconds();
  EXPECT_EQ(again.origin, scan.origin);
  return seconds;
}

/// Anybody may have made the file. Four times as many take 16 times as long where each is compared
/// with all.
TEST(ScanRecord, OfManyKeysIsReadAndWrittenInAMoment) {
  const double few = seconds_of_keys(15000);
  EXPECT_LT(seconds_of_keys(60000), 9.0 * few);
}

TEST(ScanRecord, HasNumbersAndTruthsAsSuch) {
  ScanRecord scan = record();
  scan.origin = {{"files", "false"},
                 {"frame_rule", "1"},
                 {"phi", "0:350:10"},
                 {"r", "3.25"},
                 {"theta", "90"},
                 {"alpha", "1e-07"},
                 {"seed", "18446744073709551615"},
                 {"gamma", "05"},
                 {"contacts", "keep"},
                 {"version", "1.2"},
                 {"beta", "null"}};
  const std::string text = text_of(scan);
  EXPECT_TRUE(text.starts_with(
      "{\"origin\":{\"alpha\":1e-07,\"beta\":\"null\",\"contacts\":\"keep\",\"files\":false,"
      "\"frame_rule\":1,\"gamma\":\"05\",\"phi\":\"0:350:10\",\"r\":3.25,"
      "\"seed\":18446744073709551615,\"theta\":90,\"version\":\"1.2\"}"))
      << text;
  expect_same(parse_record("a.json", text), scan);
}

TEST(ScanRecord, OfAnEarlierVersionHasTextsForNumbersAndTruths) {
  const std::string text =
      "{\"origin\":{\"contacts\":\"keep\",\"files\":\"false\",\"frame_rule\":\"1\",\"r\":\"3\"},"
      "\"poses\":5,\"shard\":1,\"shards\":1,\"totals\":{\"done\":5,\"left_out\":0,\"written\":5,"
      "\"with_contacts\":0,\"shortest\":2.5,\"shortest_index\":1},\"frame_bytes\":10,"
      "\"table_bytes\":20}";
  const ScanRecord scan = parse_record("a.json", text);
  EXPECT_EQ(scan.origin.at("files"), "false");
  EXPECT_EQ(scan.origin.at("frame_rule"), "1");
  EXPECT_EQ(scan.origin.at("r"), "3");
  EXPECT_EQ(scan.molecules, nullptr);
}

TEST(ScanRecord, HasTheMoleculesWithEveryBit) {
  const Pair pair(2, Molecule({"Cl", "H", "O"},
                              {{1.0 / 3.0, -0.0, 5e-324}, {0.1 + 0.2, -99999.0, 0.0}, {1, 2, 3}}));
  const Pair other(1, Molecule(std::vector<std::string>{"He", "U"}, {{0.1, 0.2, 0.3}, {4, 5, 6}}));
  ScanRecord scan = record();
  scan.molecules = std::make_shared<const ScannedPair>(ScannedPair{pair, std::nullopt});
  ScanRecord read = parse_record("a.json", text_of(scan));
  ASSERT_NE(read.molecules, nullptr);
  EXPECT_EQ(read.molecules->pair.n1(), 2);
  EXPECT_EQ(read.molecules->pair.labels(), pair.labels());
  EXPECT_EQ(fingerprint_of(read.molecules->pair), fingerprint_of(pair)) << "to the last bit";
  EXPECT_FALSE(read.molecules->like);

  scan.molecules = std::make_shared<const ScannedPair>(ScannedPair{pair, other});
  read = parse_record("a.json", text_of(scan));
  ASSERT_TRUE(read.molecules->like);
  EXPECT_EQ(fingerprint_of(*read.molecules->like), fingerprint_of(other));
}

TEST(ScanRecord, WithMoleculesThatAreNoneIsRefused) {
  ScanRecord scan = record();
  scan.molecules = std::make_shared<const ScannedPair>(
      ScannedPair{Pair(1, Molecule(std::vector<std::string>{"He", "Ne"}, {{0, 0, 0}, {1, 2, 3}})),
                  std::nullopt});
  const std::string whole = text_of(scan);
  const auto replaced = [&](const std::string& from, const std::string& to) {
    std::string text = whole;
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
  };
  for (const std::string& text :
       {replaced("\"n1\":1", "\"n1\":2"), replaced("\"n1\":1", "\"n1\":0"),
        replaced("\"Ne\"", "\"Xx\""), replaced("\"He\",", ""), replaced("2.0,", ""),
        replaced("2.0", "\"2\""), replaced("\"symbols\"", "\"others\"")})
    EXPECT_EQ(message_of([&] { (void)parse_record("a.json", text); }),
              "a.json: expected the record of a scan by dravo, found something else")
        << text;
}

TEST(ScanRecord, IsOneLine) { EXPECT_EQ(text_of(record()).find('\n'), std::string::npos); }

TEST(ScanRecord, WithoutPosesHasAnInfiniteShortestDistance) {
  ScanRecord nothing = record();
  nothing.totals = {};
  const ScanRecord read = parse_record("a.json", text_of(nothing));
  EXPECT_EQ(read.totals.shortest, kInfinity);
  expect_same(read, nothing);
}

TEST(ScanRecord, KeepsEveryBitOfTheShortestDistance) {
  for (const double distance : {0.1 + 0.2, 1.0 / 3.0, 5e-324, 0.0, 1e300}) {
    ScanRecord given = record();
    given.totals.shortest = distance;
    EXPECT_EQ(parse_record("a.json", text_of(given)).totals.shortest, distance);
  }
}

TEST(ScanRecord, AnythingElseIsRefused) {
  const std::string whole = text_of(record());
  const auto without = [&](const std::string& key) {
    std::string text = whole;
    return text.replace(text.find("\"" + key + "\""), key.size() + 2, "\"other\"");
  };
  std::vector<std::string> texts{"",          "{}",
                                 "[]",        "null",
                                 "no JSON",   whole.substr(0, whole.size() - 1),
                                 whole + "}", "{\"origin\": 5}"};
  for (const char* key :
       {"origin", "poses", "shard", "shards", "totals", "done", "written", "with_contacts",
        "shortest", "shortest_index", "frame_bytes", "table_bytes"})
    texts.push_back(without(key));
  for (const std::string& text : texts)
    EXPECT_EQ(message_of([&] { (void)parse_record("out/a.json", text); }),
              "out/a.json: expected the record of a scan by dravo, found something else")
        << text;
}

/// The text of a record with another value of a key.
std::string with_value(const std::string& key, const std::string& value) {
  std::string text = text_of(record());
  const std::size_t begin = text.find("\"" + key + "\":") + key.size() + 3;
  return text.replace(begin, text.find_first_of(",}", begin) - begin, value);
}

TEST(ScanRecord, HasWholeCountsThatAreNotNegative) {
  for (const char* key : {"poses", "shard", "shards", "done", "left_out", "written",
                          "with_contacts", "shortest_index", "frame_bytes", "table_bytes"}) {
    for (const char* value : {"-1", "1.0", "1.5", "1e3", "\"3\"", "null", "true", "[3]",
                              "9223372036854775808", "-9223372036854775809"})
      EXPECT_EQ(message_of([&] { (void)parse_record("a.json", with_value(key, value)); }),
                "a.json: expected the record of a scan by dravo, found something else")
          << key << ' ' << value;
    EXPECT_EQ(message_of([&] { (void)parse_record("a.json", with_value(key, "3")); }), "") << key;
  }
  EXPECT_EQ(parse_record("a.json", with_value("poses", "0")).poses, 0);
  const ScanRecord longest =
      parse_record("a.json", with_value("table_bytes", "9223372036854775807"));
  EXPECT_EQ(longest.files.at(ResultFile::table).bytes, std::numeric_limits<std::int64_t>::max());
}

TEST(ScanRecord, HasNoChecksumsWhenAnEarlierVersionWroteIt) {
  ScanRecord older = record();
  for (auto& [file, state] : older.files) state.checksum.reset();
  EXPECT_EQ(text_of(older).find("xxh3"), std::string::npos);
  expect_same(parse_record("a.json", text_of(older)), older);
}

TEST(ScanRecord, LeftNothingOutWhenAnEarlierVersionWroteIt) {
  ScanRecord older = record();
  older.totals.left_out = 0;
  std::string text = text_of(older);
  const std::string count = "\"left_out\":0,";
  ASSERT_NE(text.find(count), std::string::npos);
  expect_same(parse_record("a.json", text.erase(text.find(count), count.size())), older);
}

TEST(ScanRecord, HasChecksumsOfSixteenDigits) {
  EXPECT_NE(text_of(record()).find("\"frame_xxh3\":\"0123456789abcdef\",\"table_xxh3\":"
                                   "\"ffffffffffffffff\""),
            std::string::npos);
  for (const char* value : {"\"\"", "\"123456789abcdef\"", "\"00123456789abcdef\"", "17", "null",
                            "\"0123456789ABCDEF\"", "\"0123456789abcdeg\"", "\"-123456789abcdef\""})
    EXPECT_EQ(message_of([&] { (void)parse_record("a.json", with_value("frame_xxh3", value)); }),
              "a.json: expected the record of a scan by dravo, found something else")
        << value;
}

TEST(ScanRecord, IsOfOneOfItsParts) {
  const auto refused = [](const char* key, const char* value) {
    return !message_of([&] { (void)parse_record("a.json", with_value(key, value)); }).empty();
  };
  EXPECT_FALSE(refused("shard", "1"));  // of 7
  EXPECT_FALSE(refused("shard", "7"));
  EXPECT_TRUE(refused("shard", "0"));
  EXPECT_TRUE(refused("shard", "8"));
  EXPECT_TRUE(refused("shards", "2"));  // the third
  EXPECT_TRUE(refused("shards", "0"));
}

TEST(ScanRecord, HasFramesUnlessEachPoseHasFiles) {
  ScanRecord scan = record();
  const std::vector<ResultFile> both{ResultFile::frames, ResultFile::table};
  EXPECT_EQ(scan.results(), both);
  scan.origin["files"] = "false";
  EXPECT_EQ(scan.results(), both);
  scan.origin["files"] = "true";
  EXPECT_EQ(scan.results(), std::vector<ResultFile>{ResultFile::table});
}

TEST(ScanRecord, TellsWhatIsWrittenOfWhichPoses) {
  ScanRecord scan = record();
  EXPECT_EQ(scan.writing(), Writing::frames);
  EXPECT_FALSE(scan.best());
  add_to_origin(scan.origin, Writing::frames, std::nullopt);
  EXPECT_EQ(scan.origin, record().origin) << "as earlier versions wrote it";
  add_to_origin(scan.origin, Writing::moving, BestRule{100, "shortest", true});
  EXPECT_EQ(scan.writing(), Writing::moving);
  EXPECT_EQ(scan.results(), (std::vector<ResultFile>{ResultFile::frames, ResultFile::table,
                                                     ResultFile::molecule2}));
  ASSERT_TRUE(scan.best());
  EXPECT_EQ(scan.best()->count, 100);
  EXPECT_EQ(scan.best()->column, "shortest");
  EXPECT_TRUE(scan.best()->largest);
  add_to_origin(scan.origin, Writing::table, BestRule{7, "r", false});
  EXPECT_EQ(scan.results(), std::vector<ResultFile>{ResultFile::table});
  EXPECT_FALSE(scan.best()->largest);
}

TEST(ScanRecord, OfABestScanHasFilesOfTheWayOrOfItsEnd) {
  ScanRecord scan = record();
  add_to_origin(scan.origin, Writing::frames, BestRule{100, "shortest", false});
  scan.totals.kept = 93;
  const ScanRecord finished = parse_record("a.json", text_of(scan));
  EXPECT_EQ(finished.totals.kept, 93);
  expect_same(finished, scan);
  scan.totals.kept.reset();
  scan.files = {{ResultFile::best2, {77, 5U}}};
  expect_same(parse_record("a.json", text_of(scan)), scan);
  for (const char* count : {"0", "-3", "many"}) {
    scan.origin["best"] = count;
    EXPECT_EQ(message_of([&] { (void)parse_record("a.json", text_of(scan)); }),
              "a.json: expected the record of a scan by dravo, found something else");
  }
}

// Differences.

struct Change {
  const char* what;
  void (*change)(ScanRecord& now);
  const char* difference;
};

void PrintTo(const Change& change, std::ostream* out) { *out << change.what; }

class DifferenceOf : public ::testing::TestWithParam<Change> {};

TEST_P(DifferenceOf, TwoScansIsNamedByItsKeys) {
  const ScanRecord earlier{{{"r", "3"}, {"random", "5"}, {"seed", "1"}}, 5, {}, {}, {}};
  ScanRecord now = earlier;
  GetParam().change(now);
  const std::string difference = GetParam().difference;
  EXPECT_EQ(message_of([&] { require_same_origin("a.json", earlier, now); }),
            difference.empty() ? "" : "a.json: is of another scan: " + difference);
}

TEST(Difference, ShowsValuesAsTextAndNotWhole) {
  ScanRecord earlier = record(), now = record();
  earlier.origin["seed"] = "1";
  now.origin["seed"] = "\x1b[2J\n" + std::string(300, '2');
  EXPECT_EQ(message_of([&] { require_same_origin("a.json", earlier, now); }),
            "a.json: is of another scan: seed was 1, is ?[2J?" + std::string(195, '2') + "...");
}

INSTANTIATE_TEST_SUITE_P(
    Keys, DifferenceOf,
    ::testing::Values(Change{"none", [](ScanRecord&) {}, ""},
                      Change{"progress",
                             [](ScanRecord& now) {
                               now.totals.poses = now.files[ResultFile::table].bytes = 3;
                             },
                             ""},
                      Change{"another value", [](ScanRecord& now) { now.origin["seed"] = "2"; },
                             "seed was 1, is 2"},
                      Change{"a key more", [](ScanRecord& now) { now.origin["phi"] = "10"; },
                             "phi was not given, is 10"},
                      Change{"a key less", [](ScanRecord& now) { now.origin.erase("r"); },
                             "r was 3, is not given"},
                      Change{"another part",
                             [](ScanRecord& now) {
                               now.shard = {2, 3};
                             },
                             "shard was 1/1, is 2/3"},
                      Change{"everything",
                             [](ScanRecord& now) {
                               now.origin = {{"r", "4"}, {"random", "6"}, {"zip", "x"}};
                               now.shard = {1, 2};
                             },
                             "r was 3, is 4; random was 5, is 6; seed was 1, is not given; "
                             "zip was not given, is x; shard was 1/1, is 1/2"}));

// Origin.

TEST(Origin, TellsPlansAndPairsApart) {
  const ScanPlan plan = plan_of({{"r", "3"}, {"random", "5"}});
  const Pair pair = pair_of(sample("formamide-dimer"));
  const PairPlacer placer(pair);
  const auto origin = origin_of(placer, {pair, {}}, plan);
  for (const auto& [key, text] : plan.description()) EXPECT_EQ(origin.at(key), text);
  EXPECT_EQ(origin_of(placer, {pair, {}}, plan), origin);
  EXPECT_EQ(origin.at("pair").substr(0, 11), "6+6 atoms, ");

  std::vector<SampleInput> others(4, sample("formamide-dimer"));
  others[0].atoms[7].position.y += 1e-12;
  others[1].atoms[2].label = "S";
  others[2].n1 = 5;
  std::swap(others[3].atoms[1].position, others[3].atoms[2].position);
  for (const SampleInput& other : others)
    EXPECT_NE(origin_of(placer, {pair_of(other), {}}, plan).at("pair"), origin.at("pair"));
  EXPECT_NE(origin_of(placer, {pair, {}}, plan_of({{"r", "3"}, {"random", "6"}})), origin);
}

TEST(Origin, TellsHowPosesAreMade) {
  const ScanPlan plan = plan_of({{"r", "3"}, {"random", "5"}});
  const Pair pair = pair_of(sample("formamide-dimer"));
  const auto origin = origin_of(PairPlacer(pair), {pair, {}}, plan);
  EXPECT_EQ(origin.at("frame_rule"), "1");
  EXPECT_EQ(origin.at("placing"), "as qn-dravo");
  EXPECT_EQ(origin.count("unique"), 0U);
  EXPECT_EQ(origin.count("like"), 0U);
  const PairPlacer exact(pair, {.placing = Placing::exact});
  EXPECT_EQ(origin_of(exact, {pair, {}}, plan).at("placing"), "exact");
  const ScanPlan unique = plan_of({{"r", "3"}, {"random", "5"}, {"unique", "true"}});
  EXPECT_EQ(origin_of(exact, {pair, {}}, unique).at("unique"), "true");
}

// Totals.

TEST(ScanTotals, AddUp) {
  ScanTotals totals{10, 2, 8, 3, 2.5, 4};
  totals.add({5, 4, 5, 1, 2.0, 12});
  EXPECT_EQ(totals.poses, 15);
  EXPECT_EQ(totals.left_out, 6);
  EXPECT_EQ(totals.written, 13);
  EXPECT_EQ(totals.with_contacts, 4);
  EXPECT_EQ(totals.shortest, 2.0);
  EXPECT_EQ(totals.shortest_index, 12);
}

TEST(ScanTotals, KeepTheFirstOfEquallyNearPoses) {
  ScanTotals totals;
  for (const std::int64_t index : {7, 8, 9}) totals.add({1, 0, 1, 1, 2.0, index});
  EXPECT_EQ(totals.shortest_index, 7);
  totals.add({});
  EXPECT_EQ(totals.shortest, 2.0);
  EXPECT_EQ(totals.shortest_index, 7);
}

TEST(ScanTotals, TakeTheShortestDistanceFromPosesThatWereMade) {
  ScanTotals totals;
  totals.add({.poses = 3, .left_out = 3});
  EXPECT_EQ(totals.shortest_index, 0);
  totals.add({1, 0, 1, 0, 2.0, 4});
  totals.add({.poses = 1, .left_out = 1});
  EXPECT_EQ(totals.poses, 5);
  EXPECT_EQ(totals.shortest, 2.0);
  EXPECT_EQ(totals.shortest_index, 4);
}

TEST(ScanTotals, AreOneSentence) {
  EXPECT_EQ(
      sentence_about({1000, 0, 900, 100, 1.23456, 17}),
      "1000 poses, 100 with short contacts, 900 written; shortest distance 1.2346 Angstrom in "
      "pose 17");
  EXPECT_EQ(sentence_about({1000, 60, 900, 100, 1.23456, 17}),
            "1000 poses, 60 equal to earlier ones, 100 with short contacts, 900 written; shortest "
            "distance 1.2346 Angstrom in pose 17");
  EXPECT_EQ(sentence_about({2, 0, 1, 1, 1.23456, 2}, false),
            "2 poses, 1 with short contacts, 1 to be written; shortest distance 1.2346 Angstrom in "
            "pose 2");
}

TEST(ScanTotals, OfNothingAreTwoWords) { EXPECT_EQ(sentence_about({}), "no poses"); }

TEST(ScanTotals, AreJson) {
  const ScanTotals totals{1000, 50, 900, 100, 1.25, 17};
  const std::string counts =
      "{\"done\":1000,\"left_out\":50,\"written\":900,\"with_contacts\":100,\"shortest\":1.25,"
      "\"shortest_index\":17";
  EXPECT_EQ(json_text_of(totals, true), counts + ",\"placing\":\"exact\",\"frame_rule\":1}");
  EXPECT_EQ(json_text_of(totals, false), counts + ",\"placing\":\"as qn-dravo\",\"frame_rule\":1}");
  ScanRecord scan = record();
  scan.totals = totals;
  EXPECT_EQ(json_text_of(scan), counts + "}") << "as earlier versions recorded it";
  scan.origin["placing"] = "exact";
  scan.origin["frame_rule"] = "7";
  EXPECT_EQ(json_text_of(scan), counts + ",\"placing\":\"exact\",\"frame_rule\":7}");
}

}  // namespace
}  // namespace dravo::test
