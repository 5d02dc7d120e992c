#include "results/checksum.hpp"

#include <fcntl.h>
#include <unistd.h>
#ifdef DRAVO_XXHASH_DISPATCHES
#include <xxh_x86dispatch.h>  // takes the widest registers that the processor has
#else
#include <xxhash.h>
#endif

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <new>

#include "common/descriptor.hpp"
#include "common/errors.hpp"

namespace dravo {

Checksum::Checksum() : state_(XXH3_createState()) {
  if (!state_) throw std::bad_alloc();
  XXH3_64bits_reset(state_.get());
}

void Checksum::add(std::string_view bytes) {
  XXH3_64bits_update(state_.get(), bytes.data(), bytes.size());
}

std::uint64_t Checksum::value() const { return XXH3_64bits_digest(state_.get()); }

void Checksum::Release::operator()(XXH3_state_s* state) const { XXH3_freeState(state); }

std::uint64_t checksum_of(std::string_view text) { return XXH3_64bits(text.data(), text.size()); }

std::string text_of_checksum(std::uint64_t checksum) { return fmt::format("{:016x}", checksum); }

std::optional<std::uint64_t> checksum_of_text(std::string_view text) {
  constexpr int kHexadecimal = 16;
  std::uint64_t checksum = 0;
  std::from_chars(text.data(), text.data() + text.size(), checksum, kHexadecimal);
  return text_of_checksum(checksum) == text ? std::optional(checksum) : std::nullopt;
}

std::optional<Checksum> checksum_of_first(std::int64_t bytes, int descriptor,
                                          const std::string& name) {
  constexpr std::int64_t kBlock = 1 << 20;
  std::string block(kBlock, '\0');
  Checksum checksum;
  std::int64_t done = 0;
  while (done < bytes) {
    const auto wanted = static_cast<std::size_t>(std::min(kBlock, bytes - done));
    const ssize_t got = ::pread(descriptor, block.data(), wanted, done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw_system_failure(name, "read");
    if (got == 0) return std::nullopt;
    checksum.add(std::string_view(block).substr(0, static_cast<std::size_t>(got)));
    done += got;
  }
  return checksum;
}

std::optional<std::uint64_t> checksum_of_first(std::int64_t bytes, const std::string& name) {
  const Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.get() < 0) throw_system_failure(name, "read");
  const auto checksum = checksum_of_first(bytes, file.get(), name);
  return checksum ? std::optional(checksum->value()) : std::nullopt;
}

}  // namespace dravo
