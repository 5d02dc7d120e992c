/// @file
/// Everything that this library throws on purpose, by its reason.
///
/// @code
/// try {
///   const dravo::Placer placer(dravo::read_pair({.file = "dimer.xyz"}).pair);
/// } catch (const dravo::NoUniqueFrame& symmetric) {
///   for (const std::string& reason : symmetric.reasons()) std::cerr << reason << '\n';
/// } catch (const dravo::Error& failure) {
///   std::cerr << failure.what() << '\n';
/// }
/// @endcode
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace dravo {

/// Base of all. `what()` is a message for people, without an end of line.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Place in a text; lines and columns count from 1, and 0 stands for "not known".
struct InputPlace {
  std::string file;         ///< as it was named; empty for input that came from no file
  std::int64_t line = 0;    ///< of the file
  std::int64_t column = 0;  ///< in characters
};

/// A file or a value that cannot be what it should be. The message says what stood there and what
/// was expected, and shows the line with a caret where there is one.
class InvalidInput : public Error {
 public:
  /// A message for people, and the place that it is about.
  explicit InvalidInput(const std::string& message, InputPlace place = {});

  /// As it was named; empty for input that came from no file.
  [[nodiscard]] const std::string& file() const { return place_.file; }
  [[nodiscard]] std::int64_t line() const { return place_.line; }      ///< 0 if not known
  [[nodiscard]] std::int64_t column() const { return place_.column; }  ///< 0 if not known

 private:
  InputPlace place_;
};

/// A parameter outside its range.
class OutOfRange : public Error {
 public:
  /// A message for people, the parameter, its value, and the ends of its range.
  OutOfRange(const std::string& message, std::string name, double value, double lowest,
             double highest);

  [[nodiscard]] const std::string& name() const { return name_; }  ///< r, theta, phi, ...
  [[nodiscard]] double value() const { return value_; }            ///< that was refused
  [[nodiscard]] double lowest() const { return lowest_; }          ///< that is allowed
  [[nodiscard]] double highest() const { return highest_; }        ///< that is allowed

 private:
  std::string name_;
  double value_;  ///< Angstrom or degrees, like the bounds
  double lowest_;
  double highest_;
};

/// Molecules with fewer than two principal axes that have a direction.
class NoUniqueFrame : public Error {
 public:
  /// One reason for each molecule, a sentence without full stop. The message shows each on a line
  /// of its own, and `advice` behind them.
  NoUniqueFrame(std::vector<int> molecules, std::vector<std::string> reasons,
                const std::string& advice);

  [[nodiscard]] const std::vector<int>& molecules() const { return molecules_; }  ///< 1, 2

  /// One for each of these molecules, a sentence without full stop.
  [[nodiscard]] const std::vector<std::string>& reasons() const { return reasons_; }

 private:
  std::vector<int> molecules_;
  std::vector<std::string> reasons_;
};

/// Both molecules have frames, but a search found no rotation between two of them.
class NoRotationFound : public Error {
 public:
  /// The two searches of `qn-dravo`.
  enum class Search {
    alignment,  ///< of molecule 2's frame with the laboratory axes
    euler,      ///< of molecule 1's frame with molecule 2's
  };
  /// The message says what helps.
  explicit NoRotationFound(Search search);

  /// Which one found nothing.
  [[nodiscard]] Search search() const { return search_; }

 private:
  Search search_;
};

/// The system refused to read or write a file. The message names it and the system's reason.
class IoFailure : public Error {
 public:
  using Error::Error;
};

}  // namespace dravo
