/// Scans and their results, taken apart.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "cli/dimer.hpp"
#include "support/scan_results.hpp"

namespace dravo::test {

inline const Words kOnePose{"--r",     "6.5", "--theta", "84",  "--phi",   "11",
                            "--alpha", "214", "--beta",  "152", "--gamma", "306"};
inline constexpr std::array<const char*, 6> kParameters{"r",     "theta", "phi",
                                                        "alpha", "beta",  "gamma"};

/// The longest short contact: 1.9 in single precision.
inline constexpr double kTouch = static_cast<double>(1.9F);

/// A grid with and without contacts, 288 poses.
inline const Words kGrid{"--r",     "2:5:1",   "--theta", "0:180:60", "--phi",   "0,90,200",
                         "--alpha", "0,100.5", "--beta",  "0,90,180", "--gamma", "0.25"};

struct Scan {
  std::vector<Row> rows;
  std::vector<Frame> frames;
};

/// A scan that must succeed; its frames tell what its rows tell.
inline Scan scanned(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome = run_scan(folder, words + Words{"--quiet", "--overwrite"});
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.screen, "");
  EXPECT_EQ(outcome.messages, "");
  const Scan scan{rows_of(outcome.files.at("scan.csv")), frames_of(outcome.files.at("scan.xyz"))};
  EXPECT_EQ(scan.frames.size(), scan.rows.size());
  for (std::size_t k = 0; k < std::min(scan.rows.size(), scan.frames.size()); ++k) {
    EXPECT_EQ(scan.frames[k].values, scan.rows[k]);
    EXPECT_EQ(scan.frames[k].molecules, scan.frames[0].molecules);
  }
  return scan;
}

inline double number(const Row& row, const std::string& column) {
  return std::stod(row.at(column));
}

/// The six parameters as text.
using PoseText = std::array<std::string, 6>;

inline PoseText asked_in(const Row& row) {
  PoseText pose;
  for (std::size_t k = 0; k < pose.size(); ++k) pose[k] = row.at(kParameters[k]);
  return pose;
}

/// As a list to zip.
inline std::string table_of(const std::vector<PoseText>& poses) {
  std::string table = "r,theta,phi,alpha,beta,gamma\n";
  for (const PoseText& pose : poses)
    for (std::size_t k = 0; k < pose.size(); ++k) table += pose[k] + (k < 5 ? ',' : '\n');
  return table;
}

}  // namespace dravo::test
