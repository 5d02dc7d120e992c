/// The results of a scan, taken apart: rows of the table and frames of the extended xyz file.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "support/text_lines.hpp"

namespace dravo::test {

/// Texts by the names of their columns.
using Row = std::map<std::string, std::string>;

/// Of a table whose first line names the columns. A row of another length fails the test.
inline std::vector<Row> rows_of(const std::string& table) {
  const Lines lines = lines_of(table);
  const Lines names = parts_of(lines.at(0), ',');
  std::vector<Row> rows;
  for (std::size_t k = 1; k < lines.size(); ++k) {
    const Lines values = parts_of(lines[k], ',');
    EXPECT_EQ(values.size(), names.size()) << lines[k];
    Row row;
    for (std::size_t n = 0; n < names.size(); ++n) row[names[n]] = values.at(n);
    rows.push_back(row);
  }
  return rows;
}

struct Frame {
  Row values;             ///< what the comment line tells
  Lines atoms;            ///< symbols and coordinates, as the lines have them
  std::string molecules;  ///< a digit for each atom
};

/// The comment must tell where symbol and coordinates stand, as every frame of a scan does.
inline Row values_in(const std::string& comment) {
  Row values;
  for (const std::string& part : parts_of(comment, ' ')) {
    const std::size_t equals = part.find('=');
    values[part.substr(0, equals)] = part.substr(equals + 1);
  }
  EXPECT_EQ(values["Properties"], "species:S:1:pos:R:3:molecule:I:1");
  values.erase("Properties");
  return values;
}

inline std::vector<Frame> frames_of(const std::string& text) {
  const Lines lines = lines_of(text);
  std::vector<Frame> frames;
  for (std::size_t k = 0; k < lines.size();) {
    const auto atoms = static_cast<std::ptrdiff_t>(std::stoul(lines[k]));
    const auto first = lines.begin() + static_cast<std::ptrdiff_t>(k) + 2;
    frames.push_back({values_in(lines.at(k + 1)), Lines(first, first + atoms), ""});
    for (std::string& line : frames.back().atoms) {
      frames.back().molecules += line.substr(51);
      line.resize(50);
    }
    k += 2 + static_cast<std::size_t>(atoms);
  }
  return frames;
}

}  // namespace dravo::test
