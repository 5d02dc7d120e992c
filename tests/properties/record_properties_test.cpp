/// Numbers in the output mean the values that were written.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "common/record_format.hpp"
#include "properties/molecules.hpp"

namespace dravo {
namespace {

/// Any sign, exponent and digits.
double any_finite() {
  const auto bits = *rc::gen::resize(rc::kNominalSize, rc::gen::arbitrary<std::uint64_t>());
  const auto value = std::bit_cast<double>(bits);
  RC_PRE(std::isfinite(value));
  return value;
}

/// Of the size that geometries and moments hold.
double any_of_daily_size() {
  const int exponent = *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(-10, 20));
  return *test::uniform(-10.0, 10.0) * std::pow(10.0, exponent);
}

double any_value() { return *rc::gen::arbitrary<bool>() ? any_finite() : any_of_daily_size(); }

RC_GTEST_PROP(FreeReal, ReadsBackToTheSameBits, ()) {
  const double value = any_value();
  std::string record;
  append_free_real(record, value);
  RC_ASSERT(record.size() == 25U);
  char* end = nullptr;
  const double back = std::strtod(record.c_str(), &end);
  RC_ASSERT(std::string(end).find_first_not_of(' ') == std::string::npos);
  RC_ASSERT(std::bit_cast<std::uint64_t>(back) == std::bit_cast<std::uint64_t>(value));
}

RC_GTEST_PROP(FreeRealCache, GivesTheTextOfTheValueWhateverItHeldBefore, ()) {
  std::array<double, 4> values{};
  for (double& value : values) value = any_value();
  FreeRealCache cache;
  for (int i = 0; i < 200; ++i) {
    const double value = i % 2 == 0 ? values.at(static_cast<std::size_t>(i / 2 % 4)) : any_value();
    std::string cached, plain;
    cache.append(cached, value);
    append_free_real(plain, value);
    RC_ASSERT(cached == plain);
  }
}

struct FieldShape {
  int width;
  int decimals;
};
constexpr std::array<FieldShape, 7> kShapes{
    {{7, 1}, {7, 2}, {7, 3}, {8, 3}, {15, 8}, {4, 3}, {12, 0}}};

/// The digits of a field as one integer, its point left out.
std::int64_t digits_of(std::string field) {
  field.erase(std::remove(field.begin(), field.end(), '.'), field.end());
  return std::stoll(field);
}

RC_GTEST_PROP(FixedField, IsOffByHalfAUnitOfItsLastPlaceAtMostAndAsterisksWhereItDoesNotFit, ()) {
  const double value = any_of_daily_size();
  for (const auto& [width, decimals] : kShapes) {
    std::string field;
    append_fixed_field(field, value, width, decimals);
    RC_ASSERT(field.size() == static_cast<std::size_t>(width));

    const auto scale = static_cast<long double>(std::llround(std::pow(10.0, decimals)));
    const long double units = static_cast<long double>(value) * scale;
    const int columns = width - 1 - (std::signbit(value) ? 1 : 0);  // for digits
    const long double too_many = columns < decimals ? 0.0L : std::pow(10.0L, columns);
    // A product in extended precision is good to 2^-63 of itself.
    const long double doubt = std::abs(units) * 0x1p-63L;
    if (field == std::string(field.size(), '*')) {
      RC_ASSERT(std::abs(units) + 0.5L + doubt >= too_many);
    } else {
      RC_ASSERT(std::abs(units) - 0.5L - doubt <= too_many);
      RC_ASSERT(std::abs(units - static_cast<long double>(digits_of(field))) <= 0.5L + doubt);
    }
  }
}

}  // namespace
}  // namespace dravo
