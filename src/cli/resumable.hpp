/// Work whose results grow on the disk, and which a later run can take up.
#pragma once

#include <fmt/format.h>

#include "cli/commands.hpp"
#include "common/errors.hpp"
#include "dravo/energy.hpp"
#include "results/interruption.hpp"
#include "results/scan_files.hpp"

namespace dravo {

/// What `work()` returns. Where it ends early, the message says how to go on; Interrupted becomes
/// EndedBySignal.
template <class Work>
auto resumable(Earlier earlier, const Work& work) {
  const char* const how = earlier == Earlier::overwrite
                              ? "the same command with --resume instead of --overwrite goes on"
                              : "the same command with --resume goes on";
  try {
    return work();
  } catch (const Interrupted& end) {
    throw EndedBySignal(fmt::format("{}; {}", end.what(), how), end.signal());
  } catch (const NoRoom& end) {
    throw IoFailure(fmt::format("{}; {} when there is room", end.what(), how));
  } catch (const EngineFailure& end) {
    throw EngineFailure(fmt::format("{}; {}", end.what(), how));
  }
}

}  // namespace dravo
