#include "cli/words.hpp"

#include <algorithm>
#include <cstddef>

namespace dravo {
namespace {

/// Damerau's distance of two words (with Levenshtein's three changes and the exchange of
/// neighbours, none of them in a place that was changed before).
std::size_t distance_between(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i)
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        d[i][j] = i + j;
        continue;
      }
      const std::size_t replaced = d[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      d[i][j] = std::min({replaced, d[i - 1][j] + 1, d[i][j - 1] + 1});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
    }
  return d[a.size()][b.size()];
}

}  // namespace

std::string enumerated(const std::vector<std::string>& words, std::string_view last) {
  std::string text;
  for (std::size_t k = 0; k < words.size(); ++k) {
    if (k > 0 && k + 1 < words.size()) text += ", ";
    if (k > 0 && k + 1 == words.size()) text.append(" ").append(last).append(" ");
    text += words[k];
  }
  return text;
}

std::optional<std::string> nearest_to(std::string_view word,
                                      const std::vector<std::string>& names) {
  constexpr std::size_t kLettersOfAChange = 3;
  std::size_t least = std::max<std::size_t>(word.size() / kLettersOfAChange, 1) + 1;
  std::optional<std::string> nearest;
  for (const std::string& name : names) {
    const bool is_beginning = word.size() > 1 && name.starts_with(word);
    const std::size_t distance = is_beginning ? 1 : distance_between(word, name);
    if (distance >= std::min(least, word.size())) continue;
    least = distance;
    nearest = name;
  }
  return nearest;
}

}  // namespace dravo
