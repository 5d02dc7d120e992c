/// Energies from what programs of quantum chemistry wrote of exported poses.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "quantum/manifest.hpp"
#include "quantum/output_files.hpp"

namespace dravo {

/// What became of a pose.
enum class CollectedStatus : std::uint8_t {
  ok,
  scf_fail,        ///< the program says that it found no energy
  nonphysical,     ///< below `kLowestInteraction` or above `kHighestInteraction`
  unfinished,      ///< an output ends before its program did
  other_geometry,  ///< an output, or the pose, is of other atoms than were exported
  missing,         ///< there is no output
};
inline constexpr std::size_t kCollectedStatuses = 6;

/// "ok", "scf_fail", ...
std::string_view name_of(CollectedStatus status);

struct CollectedPose {
  std::int64_t index;
  CollectedStatus status = CollectedStatus::missing;
  /// kcal/mol where the job is about an interaction, else the total energy in Hartree.
  std::optional<double> energy = std::nullopt;
  std::optional<SaptTerms> terms = std::nullopt;  ///< kcal/mol
  std::string file = {};                          ///< whose fault the status is; empty without one
};

/// An exported folder.
class Collection {
 public:
  /// `reading`: by what other outputs than those of readable programs are read. Throws IoFailure
  /// for a folder that is none, or was changed; InvalidInput where a reading is needed.
  Collection(std::string folder, std::optional<UserReading> reading);

  [[nodiscard]] const Manifest& manifest() const { return manifest_; }

  /// That of the exported rows, with the columns of the energies, without an end of line.
  [[nodiscard]] std::string heading() const;

  /// "e_int_psi4_kcal_mol", or "e_psi4_hartree" for one molecule.
  [[nodiscard]] std::string energy_column() const;

  /// Hands on every pose with its row, without an end of line, in the order of poses.csv.
  /// `threads`: 0 for as many as the machine has cores. Throws IoFailure.
  void read(const std::function<void(const CollectedPose&, const std::string& row)>& take,
            int threads = 0) const;

 private:
  struct ChunkReader;

  [[nodiscard]] CollectedPose collected(const ManifestPose& pose) const;
  [[nodiscard]] std::string row_of(std::string_view exported, const CollectedPose& pose) const;

  std::string folder_;
  std::optional<UserReading> reading_;
  Manifest manifest_;
  std::string table_;  ///< poses.csv
};

}  // namespace dravo
