/// Scans of two waters with energies by libxtb.
#pragma once

#include <cstdlib>
#include <string>

#include "cli/scanned.hpp"
#include "cli/stopped_scans.hpp"

namespace dravo::test {

inline const std::string kEnergy = "e_int_kcal_mol";

/// Whichever build of dravo is tested, the worker is that of this build. `temporary` is the folder
/// of the processes' folders.
inline Preparation with_worker(const std::string& temporary = "") {
  return [temporary] {
    ::setenv("DRAVO_XTB_WORKER", DRAVO_BUILT_XTB_WORKER, 0);
    if (!temporary.empty()) ::setenv("TMPDIR", temporary.c_str(), 1);
  };
}

/// An engine cannot be had.
inline void without_worker() { ::setenv("DRAVO_XTB_WORKER", "/none", 1); }

class Waters : public Dimer {
 public:
  Waters() : Dimer("water-dimer") {}

  [[nodiscard]] Outcome scan(const Words& words, const Preparation& prepare = with_worker()) const {
    return run_scan(*this, words + Words{"--quiet"}, prepare);
  }

  /// The files of a scan that must succeed.
  [[nodiscard]] Files made(const Words& words) const {
    const Outcome outcome = scan(words);
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(outcome.messages, "");
    return outcome.files;
  }
};

inline Files made_of_waters(const Words& words) { return Waters().made(words); }

inline std::size_t count_of(const std::vector<Row>& rows, const std::string& status) {
  std::size_t count = 0;
  for (const Row& row : rows) count += row.at("status") == status ? 1 : 0;
  return count;
}

}  // namespace dravo::test
