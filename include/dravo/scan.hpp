/// @file
/// Many poses of one pair: which poses, and what is found in each, in numbers.
///
/// @code
/// const auto poses = dravo::Poses::grid({.r = "0:2:0.1", .theta = "0:180:10", .phi = "0:350:10",
///                                        .alpha = 0, .beta = 90, .gamma = 0});
/// dravo::scan(placer, poses, {.contacts = dravo::ContactRule::drop, .above_contact = true},
///             [](const dravo::ScanBatch& batch) {
///               for (const dravo::ScannedPose& pose : batch.poses)
///                 std::cout << pose.index << ' ' << pose.applied.r << ' ' << pose.shortest <<
///                 '\n';
///             });
/// @endcode
#pragma once

#include <concepts>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "dravo/energy.hpp"
#include "dravo/pose.hpp"

namespace dravo {

class Axis;
class Placer;
class PoseSource;

/// The values that one parameter takes: Angstrom for r, degrees for angles. Immutable and cheap to
/// copy. Whether the values are in range is seen by whoever knows the parameter.
class PoseAxis {
 public:
  /// One value. Throws InvalidInput for one that is not finite.
  PoseAxis(double value);

  /// These values, in this order. Throws InvalidInput without any, or when one is not finite.
  PoseAxis(const std::vector<double>& values);

  /// Values as the plan of a scan has them: "45", "0,45,90", "3:7:0.1" (start:stop:step), or
  /// several of these with commas between. The stop belongs to a range when a step ends on it, and
  /// the values of a range are the doubles nearest to its decimal numbers. Throws InvalidInput with
  /// the place in the text.
  template <std::convertible_to<std::string_view> Text>
  PoseAxis(const Text& text) : PoseAxis(of_text(text)) {}

  /// Number of values, 1 or more.
  [[nodiscard]] std::int64_t size() const;

  /// Value `i`, from 0 to before `size()`.
  [[nodiscard]] double at(std::int64_t i) const;

  /// For the library itself.
  [[nodiscard]] const Axis& axis() const { return *axis_; }

 private:
  explicit PoseAxis(std::shared_ptr<const Axis> axis) : axis_(std::move(axis)) {}
  static PoseAxis of_text(std::string_view text);

  std::shared_ptr<const Axis> axis_;
};

/// An axis for each parameter.
struct PoseAxes {
  PoseAxis r;      ///< Angstrom
  PoseAxis theta;  ///< degrees, as all below
  PoseAxis phi;    ///< with any number of full turns
  PoseAxis alpha;  ///< with any number of full turns
  PoseAxis beta;   ///< 0 to 180, as theta
  PoseAxis gamma;  ///< with any number of full turns
};

/// Poses in an order, numbered from 0. Immutable, cheap to copy, and usable from several threads.
class Poses {
 public:
  /// Every combination; r varies slowest, gamma fastest. Takes no memory for the poses. phi, alpha
  /// and gamma may have any number of full turns. Throws OutOfRange for other values that no pose
  /// may have (`dravo/pose.hpp`), InvalidInput for more than 1e15 poses.
  static Poses grid(const PoseAxes& axes);

  /// These poses, with the same values allowed. Throws OutOfRange, and InvalidInput for a number
  /// that is not finite.
  static Poses list(std::vector<PoseDegrees> poses);

  /// For each r the same `count` directions, uniform on the sphere, with orientations uniform over
  /// all rotations. Pose k of them depends on `seed` and k alone. Throws OutOfRange for a distance
  /// out of range, InvalidInput for less than one direction and for more than 1e15 poses.
  static Poses random(std::int64_t count, const PoseAxis& r, std::uint64_t seed = 0);

  /// For the library itself.
  explicit Poses(std::shared_ptr<const PoseSource> source);

  /// Number of poses.
  [[nodiscard]] std::int64_t size() const;

  /// Poses `first` and following, as many as `poses` has room for. Throws InvalidInput when there
  /// are not so many.
  void fill(std::int64_t first, std::span<PoseDegrees> poses) const;

  /// For the library itself.
  [[nodiscard]] const PoseSource& source() const { return *source_; }

 private:
  std::shared_ptr<const PoseSource> source_;
};

/// Which poses are handed on, by their short contacts. What a short contact is, the placer knows
/// (`PlacerOptions::criterion`).
enum class ContactRule {
  keep,  ///< all
  drop,  ///< those without
  only,  ///< those with one or more
};

/// What is found in a pose.
struct ScannedPose {
  std::int64_t index = 0;      ///< place among the poses, from 1
  double above_contact = 0.0;  ///< the r of the poses, where it counts from the first contact
  PoseDegrees asked;           ///< as given; r is the whole distance, wherever it counts from
  PoseDegrees applied;         ///< as `Placed::applied`; phi, alpha and gamma from 0 to 360
  double shortest = 0.0;       ///< distance of the closest atoms of different molecules, Angstrom
  std::int64_t contacts = 0;   ///< how many pairs of them are in short contact
  /// As ContactSurvey has it. Infinite, and no atoms, unless asked for.
  double clearance = std::numeric_limits<double>::infinity();
  std::int32_t clearance_atom1 = -1;  ///< of molecule 1, from 0
  std::int32_t clearance_atom2 = -1;  ///< of molecule 2, from 0 at the first atom of molecule 1
  /// How many of the poses it stands for, when equal ones are left out.
  std::int64_t equivalents = 1;
  /// What became of its energy, when energies are computed.
  std::optional<EnergyStatus> energy_status = std::nullopt;
  /// kcal/mol, rounded to six decimals: beyond them, poses that symmetry makes equal differ by the
  /// rounding of the engine. Not a number unless the status is ok.
  double interaction = std::numeric_limits<double>::quiet_NaN();
};

/// Poses that follow each other. The spans end with the call that got the batch.
struct ScanBatch {
  std::int64_t first_index = 0;  ///< of the first pose that was looked at for the batch, from 1
  std::int64_t looked_at = 0;    ///< how many poses, those that were not wanted among them
  std::span<const ScannedPose> poses;  ///< the wanted ones
  /// Angstrom; `poses.size()` x atoms x 3, atoms as in the pair; empty unless asked for.
  std::span<const double> positions;
};

/// What a scan looks for, and which poses it hands on.
struct ScanOptions {
  ContactRule contacts = ContactRule::keep;  ///< which poses are wanted
  int threads = 0;             ///< that place poses; 0 for as many as the machine has cores
  bool above_contact = false;  ///< the r of the poses counts from the first contact, see below
  bool positions = false;      ///< batches hold the positions of the atoms
  bool clearance = true;       ///< poses have it; without it small pairs take a tenth less time
  /// Of poses that rotations of the molecules make equal, within 0.002 Angstrom for every atom,
  /// only the first of a grid is handed on. A random pose takes the parameters that `identify`
  /// tells.
  bool unique = false;
  /// Computes the energies of the poses that the rule about contacts wants, in one process for each
  /// thread. A model of the same pair, which is not owned; null for no energies.
  const EnergyModel* energy = nullptr;
  /// Then only poses with an energy below it are handed on, kcal/mol.
  std::optional<double> keep_below = std::nullopt;
};

/// Places the pair in every pose and hands what it finds to `take`, batch after batch in the order
/// of the poses. Memory does not grow with their number.
///
/// `take` is called from the threads that place, never twice at a time. What it throws ends the
/// scan and is thrown here. Throws InvalidInput for a negative number of threads, for unique poses
/// of a list or of a placer that is not exact, and for a bound of energies that are not computed;
/// EngineFailure when the process of an engine cannot be had.
///
/// With `above_contact` the distances count from that at which, coming from afar in this direction
/// and orientation, the first pair of atoms is in short contact (1.9 Angstrom apart, unless the
/// placer has another criterion), rounded up to a millionth of an Angstrom; from 0 where none comes
/// so close on the way. Such a distance may be longer than any that may be asked.
void scan(const Placer& placer, const Poses& poses, const ScanOptions& options,
          const std::function<void(const ScanBatch&)>& take);

}  // namespace dravo
