#include "cli/run_options.hpp"

#include <fmt/format.h>

#include <cstddef>

#include "cli/commands.hpp"
#include "common/errors.hpp"
#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "results/interruption.hpp"

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

void telling_how_to_go_on(Earlier earlier, const std::function<void()>& work) {
  const char* const how = earlier == Earlier::overwrite
                              ? "the same command with --resume instead of --overwrite goes on"
                              : "the same command with --resume goes on";
  try {
    work();
  } catch (const Interrupted& end) {
    throw EndedBySignal(fmt::format("{}; {}", end.what(), how), end.signal());
  } catch (const NoRoom& end) {
    throw IoFailure(fmt::format("{}; {} when there is room", end.what(), how));
  }
}

}  // namespace dravo
