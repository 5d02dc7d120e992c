/// What is kept of a scan by contacts, and what is counted.
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "cli/scanned.hpp"

namespace dravo::test {
namespace {

std::vector<std::size_t> indices(const Scan& scan) {
  std::vector<std::size_t> values;
  for (const Row& row : scan.rows) values.push_back(std::stoul(row.at("index")));
  return values;
}

TEST(ContactRules, DropAndOnlyDivideThePosesAndKeepTheirNumbers) {
  for (const Words& plan : {kGrid, Words{"--r", "3,4", "--random", "200"}}) {
    const Dimer folder;
    const Scan all = scanned(folder, plan + Words{"--contacts", "keep"});
    ASSERT_EQ(scanned(folder, plan).rows, all.rows) << "keep is the rule not given";
    std::map<std::string, std::vector<std::size_t>> expected;
    for (std::size_t k = 0; k < all.rows.size(); ++k) {
      ASSERT_EQ(all.rows[k].at("index"), std::to_string(k + 1));
      expected[all.rows[k].at("contacts") == "0" ? "drop" : "only"].push_back(k + 1);
    }
    for (const char* rule : {"drop", "only"}) {
      const Scan part = scanned(folder, plan + Words{"--contacts", rule});
      EXPECT_FALSE(part.rows.empty()) << rule;
      ASSERT_EQ(indices(part), expected[rule]) << rule;
      for (std::size_t k = 0; k < part.rows.size(); ++k) {
        const std::size_t place = expected[rule][k] - 1;
        EXPECT_EQ(part.rows[k], all.rows[place]);
        EXPECT_EQ(part.frames[k].atoms, all.frames.at(place).atoms);
      }
    }
  }
}

/// Of the rows of a scan that kept every pose.
struct CountedRows {
  std::size_t with_contacts = 0;
  double shortest = std::numeric_limits<double>::infinity();
  std::size_t index = 0;
};

CountedRows count(const std::vector<Row>& rows) {
  CountedRows counted;
  for (const Row& row : rows) {
    if (row.at("contacts") != "0") ++counted.with_contacts;
    if (number(row, "shortest") >= counted.shortest) continue;
    counted.shortest = number(row, "shortest");
    counted.index = std::stoul(row.at("index"));
  }
  return counted;
}

/// "key":number in JSON on one line.
double json_number(const std::string& json, const std::string& key) {
  const std::size_t found = json.find("\"" + key + "\":");
  if (found == std::string::npos) return std::nan("");
  return std::stod(json.substr(found + key.size() + 3));
}

TEST(Totals, AgreeWithTheRowsInSentenceJsonAndFile) {
  const Dimer folder;
  const std::vector<Row> rows = scanned(folder, kGrid).rows;
  const CountedRows counted = count(rows);
  ASSERT_GT(counted.with_contacts, 0U);
  ASSERT_LT(counted.with_contacts, rows.size());
  const std::map<std::string, std::size_t> wanted{{"keep", rows.size()},
                                                  {"drop", rows.size() - counted.with_contacts},
                                                  {"only", counted.with_contacts}};
  for (const auto& [rule, written] : wanted) {
    const Words plan = kGrid + Words{"--contacts", rule};
    const Outcome json = run_scan(folder, plan + Words{"--json", "--overwrite"});
    const std::string& record = json.files.at("scan.json");
    const std::string placing = ",\"placing\":\"as qn-dravo\",\"frame_rule\":1}\n";
    ASSERT_TRUE(json.screen.ends_with(placing)) << json.screen;
    const std::string of_scan = json.screen.substr(0, json.screen.size() - placing.size());
    EXPECT_NE(record.find("\"totals\":" + of_scan + "},"), std::string::npos) << record;
    EXPECT_EQ(json_number(json.screen, "left_out"), 0.0);
    EXPECT_EQ(json.messages, "");
    EXPECT_EQ(json_number(json.screen, "done"), static_cast<double>(rows.size()));
    EXPECT_EQ(json_number(json.screen, "written"), static_cast<double>(written));
    EXPECT_EQ(json_number(json.screen, "with_contacts"),
              static_cast<double>(counted.with_contacts));
    EXPECT_EQ(json_number(json.screen, "shortest_index"), static_cast<double>(counted.index));
    EXPECT_NEAR(json_number(json.screen, "shortest"), counted.shortest, 1e-8);
    EXPECT_EQ(json_number(record, "frame_bytes"),
              static_cast<double>(json.files.at("scan.xyz").size()));
    EXPECT_EQ(json_number(record, "table_bytes"),
              static_cast<double>(json.files.at("scan.csv").size()));

    const auto sentence = [&, written = written](const char* what_becomes) {
      std::ostringstream text;
      text.precision(4);
      text << std::fixed << rows.size() << " poses, " << counted.with_contacts
           << " with short contacts, " << written << what_becomes << "; shortest distance "
           << counted.shortest << " Angstrom in pose " << counted.index << '\n';
      return text.str();
    };
    const Outcome told = run_scan(folder, plan + Words{"--overwrite"});
    EXPECT_EQ(told.screen, "");
    EXPECT_EQ(told.messages,
              "dravo: " + sentence(" written") + "dravo: wrote scan.xyz, .csv and .json\n");

    const TemporaryFolder empty;
    empty.write(kInput, folder.read(kInput));
    const Outcome counting = run_scan(empty, plan + Words{"--count"});
    EXPECT_EQ(counting.status, 0);
    EXPECT_EQ(counting.screen, sentence(" to be written"));
    EXPECT_EQ(counting.messages, "");
    EXPECT_TRUE(counting.files.empty());
    const Outcome counting_json = run_scan(empty, plan + Words{"--count", "--json"});
    EXPECT_EQ(counting_json.screen, json.screen);
    EXPECT_TRUE(counting_json.files.empty());
  }
}

TEST(Totals, NameTheFirstOfEquallyShortPoses) {
  const Dimer folder;
  std::string list = "9,1,2,3,4,5\n";
  for (int k = 0; k < 600; ++k) list += "6,1,2,3,4,5\n";
  folder.write("poses.csv", list);
  const Outcome outcome = run_scan(folder, {"--zip", "poses.csv", "--count", "--json"});
  EXPECT_EQ(json_number(outcome.screen, "done"), 601.0);
  EXPECT_EQ(json_number(outcome.screen, "shortest_index"), 2.0);
}

}  // namespace
}  // namespace dravo::test
