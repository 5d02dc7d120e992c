/// Pages of `dravo view`, taken apart, and where their data put the atoms.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/pose.hpp"
#include "support/atoms.hpp"
#include "support/scan_results.hpp"

namespace dravo::test {

using PageJson = nlohmann::ordered_json;

/// What stands between the first `begin` and the next `end`.
inline std::string text_between(const std::string& text, const std::string& begin,
                                const std::string& end) {
  const std::size_t from = text.find(begin);
  EXPECT_NE(from, std::string::npos) << begin;
  if (from == std::string::npos) return "";
  const std::size_t to = text.find(end, from + begin.size());
  EXPECT_NE(to, std::string::npos) << end;
  return text.substr(from + begin.size(), to - from - begin.size());
}

inline const std::string kDataBegin = R"(<script type="application/json" id="data">)";

/// As a browser takes them out: up to the next end of a script.
inline std::string data_text(const std::string& page) {
  return text_between(page, kDataBegin, "</script");
}

inline PageJson data_of(const std::string& page) { return PageJson::parse(data_text(page)); }

/// RFC 4648, for texts without mistakes.
inline std::string bytes_of(const std::string& base64) {
  constexpr std::string_view kLetters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char c : base64) {
    if (c == '=') break;
    bits = (bits << 6U | static_cast<std::uint32_t>(kLetters.find(c))) & 0xFFFFFFU;
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> static_cast<unsigned>(count) & 0xFFU);
  }
  return bytes;
}

template <class Number>
std::vector<Number> numbers_in(const std::string& base64) {
  const std::string bytes = bytes_of(base64);
  EXPECT_EQ(bytes.size() % sizeof(Number), 0U);
  std::vector<Number> numbers(bytes.size() / sizeof(Number));
  std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(Number));
  return numbers;
}

/// The value of each row; null for an empty cell.
inline std::vector<PageJson> values_of(const PageJson& encoded, std::size_t rows) {
  std::vector<PageJson> values;
  const auto add = [&values](const auto& numbers) {
    for (const auto number : numbers)
      values.push_back(std::isnan(number) ? PageJson() : PageJson(number));
  };
  if (encoded.contains("constant")) values.assign(rows, encoded["constant"]);
  if (encoded.contains("float64")) add(numbers_in<double>(encoded["float64"]));
  if (encoded.contains("float32")) add(numbers_in<float>(encoded["float32"]));
  if (encoded.contains("list")) {
    const std::string at = encoded["at"];
    const auto take = [&](const auto& places) {
      for (const auto place : places) values.push_back(encoded["list"].at(place));
    };
    if (encoded["bits"] == 8)
      take(numbers_in<std::uint8_t>(at));
    else
      take(numbers_in<std::uint16_t>(at));
  }
  EXPECT_EQ(values.size(), rows);
  return values;
}

inline const PageJson& column_named(const PageJson& poses, const std::string& name) {
  for (const PageJson& column : poses["columns"])
    if (column["name"] == name) return column;
  throw std::out_of_range("no column " + name);
}

inline std::vector<std::string> names_of_columns(const PageJson& poses) {
  std::vector<std::string> names;
  for (const PageJson& column : poses["columns"]) names.push_back(column["name"]);
  return names;
}

/// Of the column of this name.
inline std::vector<PageJson> values_in(const PageJson& poses, const std::string& name) {
  return values_of(column_named(poses, name)["values"], poses["shown"]);
}

inline std::vector<Vec3> points_in(const PageJson& positions) {
  std::vector<Vec3> points;
  for (const PageJson& p : positions) points.push_back({p.at(0), p.at(1), p.at(2)});
  return points;
}

/// The formulas of docs/conventions.md, element by element.
inline Vec3 moved(const Vec3& own, const PoseDegrees& pose) {
  const double degree = std::acos(-1.0) / 180.0;
  const double ca = std::cos(pose.alpha * degree), sa = std::sin(pose.alpha * degree);
  const double cb = std::cos(pose.beta * degree), sb = std::sin(pose.beta * degree);
  const double cg = std::cos(pose.gamma * degree), sg = std::sin(pose.gamma * degree);
  const double theta = pose.theta * degree, phi = pose.phi * degree;
  const std::array<std::array<double, 3>, 3> a{
      {{ca * cb * cg - sa * sg, sa * cb * cg + ca * sg, -sb * cg},
       {-ca * cb * sg - sa * cg, ca * cg - sa * cb * sg, sb * sg},
       {ca * sb, sa * sb, cb}}};
  const std::array<double, 3> place{pose.r * std::sin(theta) * std::cos(phi),
                                    pose.r * std::sin(theta) * std::sin(phi),
                                    pose.r * std::cos(theta)};
  const auto component = [&](std::size_t k) {
    return a[k][0] * own.x + a[k][1] * own.y + a[k][2] * own.z + place[k];
  };
  return {component(0), component(1), component(2)};
}

/// Of a frame that a command wrote.
inline std::vector<Vec3> atoms_in(const Frame& frame) {
  std::vector<Vec3> atoms;
  for (const std::string& line : frame.atoms)
    atoms.push_back({std::stod(line.substr(2, 16)), std::stod(line.substr(18, 16)),
                     std::stod(line.substr(34, 16))});
  return atoms;
}

/// All atoms of the page in molecule 2's frame, molecule 1 in this pose.
inline std::vector<Vec3> atoms_of(const PageJson& data, const PoseDegrees& pose) {
  std::vector<Vec3> atoms;
  for (const Vec3& own : points_in(data["molecules"][0]["positions"]))
    atoms.push_back(moved(own, pose));
  for (const Vec3& own : points_in(data["molecules"][1]["positions"])) atoms.push_back(own);
  return atoms;
}

inline double farthest_apart(const std::vector<Vec3>& a, const std::vector<Vec3>& b) {
  if (a.size() != b.size()) return std::numeric_limits<double>::infinity();
  double farthest = 0.0;
  for (std::size_t k = 0; k < a.size(); ++k)
    farthest = std::max(farthest, std::hypot(a[k].x - b[k].x, a[k].y - b[k].y, a[k].z - b[k].z));
  return farthest;
}

inline PoseDegrees pose_in(const PageJson& pose) {
  return {pose["r"], pose["theta"], pose["phi"], pose["alpha"], pose["beta"], pose["gamma"]};
}

}  // namespace dravo::test
