/// Interaction energies of the pair in each frame of a trajectory, as it stands there.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "common/index_selection.hpp"
#include "dravo/contacts.hpp"
#include "dravo/energy.hpp"
#include "dravo/molecule.hpp"
#include "molecules/wanted_frames.hpp"

namespace dravo {

struct FrameEnergy {
  std::int64_t number = 0;  ///< from 1
  ContactSurvey survey = {};
  PoseEnergy energy = {};  ///< as results have it
};

/// Which frames, and how they are read and computed.
struct FrameEnergyRequest {
  PairRequest pair;  ///< its file is that of the stream; its frame is not looked at
  IndexSelection selection = IndexSelection::parse("frames", "all");
  EnergyOptions options = {};
  ContactCriterion criterion = {};
  int threads = 0;  ///< and engines; 0 for as many as the machine has cores
};

/// Molecules are those of the model as long as no distance within them differs by more than this,
/// Angstrom: frames with four decimals or more tell rigid molecules so. Reference energies may be
/// wrong by some 0.02 kcal/mol then; a distance that differs by 0.01 costs up to 0.5 kcal/mol.
inline constexpr double kSameMolecules = 3e-4;

/// Energies of frames of one pair: the same elements in the same order, and molecules that may have
/// another geometry in each frame.
class FrameEnergies {
 public:
  /// Gets some of the frames, and how many bytes of the file lie behind them.
  using Take = std::function<void(std::span<const FrameEnergy>, std::int64_t bytes)>;

  /// Reads the first frame that is selected and computes the reference energies of its molecules.
  /// Throws InvalidInput and IoFailure for what cannot be read, and what an `EnergyModel` throws.
  /// The stream must live as long.
  FrameEnergies(FrameStream& stream, FrameEnergyRequest request);

  /// The pair of the first frame that is selected, and the model of its molecules.
  [[nodiscard]] const Pair& first() const { return *first_; }
  [[nodiscard]] const EnergyModel& model() const { return *model_; }

  /// What the user should know about the reading of the first frame.
  [[nodiscard]] const std::vector<std::string>& remarks() const { return remarks_; }

  /// Hands on the selected frames in their order, once. Memory does not grow with their number.
  /// `take` is called by one thread at a time; what it throws ends the work and is thrown here.
  /// Returns the number of frames that were looked through.
  ///
  /// A frame whose molecules are not those of the first one gets references of its own; scf_fail
  /// where they cannot be computed. Throws InvalidInput for a frame that cannot be read or has
  /// other atoms than the first, and when the file lacks one that was selected alone;
  /// EngineFailure.
  std::int64_t compute(const Take& take);

 private:
  struct Batch {
    FrameBatch lines;
    std::vector<FrameEnergy> found;
  };
  class Computer;

  void read_first();

  FrameStream* stream_;
  FrameEnergyRequest request_;
  WantedFrames frames_;
  FrameBatch first_batch_;
  std::optional<Pair> first_;
  bool only_ = false;  ///< a file that holds one pair and no frames
  std::optional<EnergyModel> model_;
  std::vector<std::string> remarks_;
};

}  // namespace dravo
