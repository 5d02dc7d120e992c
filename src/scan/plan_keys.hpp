/// The plan of a scan as somebody wrote it: keys and words, each with its place for messages.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace dravo {

/// A file of a plan, or the value of an option.
struct PlanSource {
  std::string name;  ///< of the file, or of the option with its hyphens
  std::string text;  ///< the whole of it
  bool is_file;
};

struct PlanWord {
  std::string text;
  std::shared_ptr<const PlanSource> source;
  std::size_t begin;  ///< where the text stands in the source

  /// Throws InvalidInput: what is wrong with a part of the text, with the place. `part` is a view
  /// into `text`.
  [[noreturn]] void refuse(std::string_view part, const std::string& what_is_wrong) const;
  [[noreturn]] void refuse(const std::string& what_is_wrong) const { refuse(text, what_is_wrong); }

  /// The text as the name of a file, which in a file of a plan is seen from that file's folder.
  /// Throws InvalidInput where such a file has characters that a terminal obeys.
  [[nodiscard]] std::string path() const;
};

/// A single value is a list of one word.
using PlanKeys = std::map<std::string, std::vector<PlanWord>, std::less<>>;

/// A key by its option, "--" and the key.
void set_plan_key(PlanKeys& keys, const std::string& key, const std::string& value);

}  // namespace dravo
