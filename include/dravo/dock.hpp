/// @file
/// The minima of a pair of rigid molecules: random starts at contact, each minimised in the six
/// parameters of a pose, gathered where they are one, and scored by a better method.
///
/// @code
/// const dravo::Docking docking(dravo::read_pair({.file = "dimer.xyz", .split = 6}).pair, {});
/// dravo::DockSearch search(docking);
/// dravo::Docking::Starter starter = docking.starter();
/// std::vector<dravo::DockStart> starts;
/// while (!search.nothing_new() && starts.size() < 500) {
///   starts.push_back(starter.run(static_cast<std::int64_t>(starts.size()) + 1));
///   search.add(starts.back());
/// }
/// for (const dravo::DockMinimum& minimum : docking.minima(starts, 2, nullptr))
///   std::cout << minimum.score_energy << " kcal/mol at " << minimum.pose.r << " Angstrom\n";
/// @endcode
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "dravo/energy.hpp"
#include "dravo/molecule.hpp"
#include "dravo/place.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// How minima are searched for, and what is searched.
struct DockOptions {
  EnergyMethod search = EnergyMethod::gfnff;  ///< of every start; GFN2 for two ions
  EnergyMethod score = EnergyMethod::gfn2;    ///< of every minimum, and of the second minimisation
  std::array<int, 2> charges{};               ///< net charges of molecule 1 and molecule 2, e
  std::array<int, 2> unpaired{};              ///< their unpaired electrons
  std::uint64_t seed = 0;                     ///< of the random starts
  int refined = 30;                           ///< minima that are minimised again with `score`
};

/// How a start ended.
enum class DockEnd : std::uint8_t {
  minimum,        ///< no force is left
  drifted_apart,  ///< no two atoms are near each other any more
  not_converged,  ///< a force was left
  failed,         ///< the engine found no energy where it began
};

/// All of them.
inline constexpr std::array<DockEnd, 4> kDockEnds{DockEnd::minimum, DockEnd::drifted_apart,
                                                  DockEnd::not_converged, DockEnd::failed};

/// "minimum", "drifted_apart", "not_converged", "failed": as tables have it.
std::string_view name_of(DockEnd end);

/// By its name; empty for anything else.
std::optional<DockEnd> dock_end(std::string_view name);

/// Where one start ended. Depends on the pair, the options and the number alone.
struct DockStart {
  std::int64_t number = 0;        ///< from 1
  DockEnd end = DockEnd::failed;  ///< how it ended
  /// Of `DockOptions::search`, kcal/mol, in this very pose; not a number for a start that failed.
  double energy = std::numeric_limits<double>::quiet_NaN();
  /// The parameters that `identify` tells, rounded to 8 decimals. Of a start that failed where it
  /// began.
  PoseDegrees pose;
  std::int64_t evaluations = 0;  ///< energies with forces that it took
};

/// One of the minima of a pair.
struct DockMinimum {
  PoseDegrees pose;  ///< as that of a start
  /// Of `DockOptions::score` in this very pose, kcal/mol; not a number where the engine found none.
  double score_energy = std::numeric_limits<double>::quiet_NaN();
  /// The same of `DockOptions::search`.
  double search_energy = std::numeric_limits<double>::quiet_NaN();
  std::int64_t starts = 0;  ///< how many led there; the same in a minimum kept beside another
  /// Minimised with `DockOptions::score`. Otherwise it is as `search` left it: others are better,
  /// or the second minimisation led more than 1 Angstrom away (RMSD of all atoms), to another
  /// minimum, beside which this one is kept.
  bool refined = false;
};

class DockInside;

/// A pair that is docked. Immutable, cheap to copy, and usable from several threads at once.
class Docking {
 public:
  /// Throws what an `EnergyModel` throws, and InvalidInput for a method without forces
  /// (EnergyMethod::command).
  Docking(const Pair& pair, const DockOptions& options);

  /// As they were given.
  [[nodiscard]] const DockOptions& options() const;

  /// Of exact poses; those found here are its own.
  [[nodiscard]] const Placer& placer() const;

  /// Of `DockOptions::search`.
  [[nodiscard]] const EnergyModel& search_model() const;

  /// Of `DockOptions::score`.
  [[nodiscard]] const EnergyModel& score_model() const;

  /// Minimises starts with an engine of its own. For one thread.
  class Starter {
   public:
    /// For the library itself; Docking::starter makes them.
    explicit Starter(std::shared_ptr<const DockInside> docking);

    /// `number` counts from 1. Throws EngineFailure when an engine that died cannot be replaced,
    /// and InvalidInput where the method has no forces, as GFN-FF for a hydrogen bond to CO2.
    [[nodiscard]] DockStart run(std::int64_t number);

   private:
    std::shared_ptr<const DockInside> docking_;
    EnergyEngine engine_;
  };

  /// Another one for each thread. Throws EngineFailure.
  [[nodiscard]] Starter starter() const;

  /// The minima that the starts found, lowest `score_energy` first. Those within 0.25 Angstrom
  /// (RMSD of all atoms, with equivalent atoms and equal molecules exchanged) and 0.5 kcal/mol are
  /// one; mirror images are two. All are scored, the best `DockOptions::refined` are minimised
  /// again, and gathered again where they have become one. The result does not depend on the number
  /// of threads (0 for as many as the machine has cores) or the order of the starts.
  /// `progress(done, of)` may be null; it is called from the threads that work, never twice at a
  /// time, and what it throws ends the work and is thrown here. Throws EngineFailure.
  [[nodiscard]] std::vector<DockMinimum> minima(
      std::span<const DockStart> starts, int threads,
      const std::function<void(std::int64_t done, std::int64_t of)>& progress) const;

  /// For the library itself.
  [[nodiscard]] const std::shared_ptr<const DockInside>& inside() const { return inside_; }

 private:
  std::shared_ptr<const DockInside> inside_;
};

/// What has been found so far, and whether to go on.
class DockSearch {
 public:
  static constexpr std::int64_t kFewestStarts = 150;  ///< before a search ends by itself
  static constexpr std::int64_t kIdleStarts = 50;     ///< that found nothing new, at its end
  static constexpr std::size_t kLowest = 30;          ///< minima among which something would be new

  /// Nothing is found yet.
  explicit DockSearch(const Docking& docking);

  /// What is left of the other one may only be assigned to or destroyed.
  DockSearch(DockSearch&&) noexcept;

  /// As the constructor above.
  DockSearch& operator=(DockSearch&&) noexcept;
  ~DockSearch();

  /// Starts are taken in the order of their numbers.
  void add(const DockStart& start);

  /// How many different ones there are.
  [[nodiscard]] std::int64_t minima() const;

  /// Of `DockOptions::search`, kcal/mol; not a number without a minimum.
  [[nodiscard]] double lowest() const;

  /// At least `kFewestStarts` are done, and the last `kIdleStarts` of them brought nothing new
  /// among the `kLowest` lowest minima.
  [[nodiscard]] bool nothing_new() const;

 private:
  struct Inside;
  std::unique_ptr<Inside> inside_;
};

}  // namespace dravo
