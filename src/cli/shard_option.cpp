#include "cli/shard_option.hpp"

#include <fmt/format.h>

#include <cstddef>

#include "common/number_text.hpp"
#include "common/shown_text.hpp"

namespace dravo {

Shard parse_shard(const std::string& text) {
  const std::size_t slash = text.find('/');
  const auto number = parse_integer(text.substr(0, slash));
  const auto of = parse_integer(slash == std::string::npos ? "" : text.substr(slash + 1));
  if (!number || !of || *number < 1 || *number > *of)
    throw InvalidInput(
        fmt::format("--shard: expected I/N with I from 1 to N, found {}", dravo::quoted(text)));
  return {*number, *of};
}

}  // namespace dravo
