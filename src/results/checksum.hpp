#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct XXH3_state_s;

namespace dravo {

/// XXH3, 64 bits, of bytes that come piece by piece: what `xxhsum -H3` prints. Against mistakes,
/// not against malice.
class Checksum {
 public:
  Checksum();

  void add(std::string_view bytes);

  /// Of all bytes so far.
  [[nodiscard]] std::uint64_t value() const;

 private:
  struct Release {
    void operator()(XXH3_state_s* state) const;
  };
  std::unique_ptr<XXH3_state_s, Release> state_;
};

/// Of a whole text.
std::uint64_t checksum_of(std::string_view text);

/// Sixteen hexadecimal digits, as files have it.
std::string text_of_checksum(std::uint64_t checksum);

/// Empty for any other text.
std::optional<std::uint64_t> checksum_of_text(std::string_view text);

/// Of the first bytes of an open file, which messages call `name`; empty when it has fewer. Throws
/// IoFailure.
std::optional<Checksum> checksum_of_first(std::int64_t bytes, int descriptor,
                                          const std::string& name);

/// The same for a file that is not open.
std::optional<std::uint64_t> checksum_of_first(std::int64_t bytes, const std::string& name);

}  // namespace dravo
