/// Evaluates a line of arithmetic as a reader with a pocket calculator does.
#pragma once

#include <cctype>
#include <cmath>
#include <functional>
#include <map>
#include <numbers>
#include <stdexcept>
#include <string>

namespace dravo::test {

/// Numbers, + - * / ^, brackets, and sqrt, sin, cos, acos of angles in degrees. Throws
/// std::runtime_error for anything else.
class HandArithmetic {
 public:
  static double value_of(const std::string& text) {
    HandArithmetic reader(text);
    const double value = reader.sum();
    if (reader.next() != '\0') reader.fail();
    return value;
  }

 private:
  explicit HandArithmetic(const std::string& text) : text_(text) {}

  [[noreturn]] void fail() const {
    throw std::runtime_error("no arithmetic: " + text_.substr(at_) + " in " + text_);
  }
  /// The next character that is no blank; a zero at the end.
  char next() {
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
    return at_ < text_.size() ? text_[at_] : '\0';
  }
  bool takes(char c) {
    if (next() != c) return false;
    ++at_;
    return true;
  }

  double sum() {
    double value = product();
    while (true) {
      if (takes('+'))
        value += product();
      else if (takes('-'))
        value -= product();
      else
        return value;
    }
  }
  double product() {
    double value = power();
    while (true) {
      if (takes('*'))
        value *= power();
      else if (takes('/'))
        value /= power();
      else
        return value;
    }
  }
  double power() {
    const double base = factor();
    return takes('^') ? std::pow(base, factor()) : base;
  }
  double factor() {
    if (takes('-')) return -factor();
    if (takes('(')) {
      const double value = sum();
      if (!takes(')')) fail();
      return value;
    }
    return std::isalpha(static_cast<unsigned char>(next())) != 0 ? function() : number();
  }
  double number() {
    std::size_t length = 0;
    if (next() == '\0') fail();
    const double value = std::stod(text_.substr(at_), &length);
    at_ += length;
    return value;
  }
  double function() {
    static const double degree = std::numbers::pi / 180.0;
    static const std::map<std::string, std::function<double(double)>> functions{
        {"sqrt", [](double x) { return std::sqrt(x); }},
        {"sin", [](double x) { return std::sin(x * degree); }},
        {"cos", [](double x) { return std::cos(x * degree); }},
        {"acos", [](double x) { return std::acos(x) / degree; }}};
    const std::size_t end = text_.find('(', at_);
    const auto found = functions.find(text_.substr(at_, end - at_));
    if (end == std::string::npos || found == functions.end()) fail();
    at_ = end;
    return found->second(factor());
  }

  std::string text_;
  std::size_t at_ = 0;
};

}  // namespace dravo::test
