#include "energy/frame_energies.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "common/atom_table.hpp"
#include "common/ordered_chunks.hpp"
#include "common/text.hpp"
#include "common/vector.hpp"
#include "dravo/error.hpp"
#include "energy/pose_energy.hpp"
#include "energy/system_engine.hpp"
#include "molecules/fragments.hpp"

namespace dravo {
namespace {

/// Whether no distance within these atoms differs by more than `kSameMolecules`.
bool is_same_molecule(std::span<const Vec3> a, std::span<const Vec3> b) {
  for (std::size_t i = 1; i < a.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (std::abs(modulus(a[i] - a[j]) - modulus(b[i] - b[j])) > kSameMolecules) return false;
  return true;
}

bool has_same_molecules(const Pair& a, const Pair& b) {
  const std::span<const Vec3> atoms_a(a.positions()), atoms_b(b.positions());
  const auto n1 = static_cast<std::size_t>(a.n1());
  return is_same_molecule(atoms_a.first(n1), atoms_b.first(n1)) &&
         is_same_molecule(atoms_a.subspan(n1), atoms_b.subspan(n1));
}

/// By a model of its own, whose process ends with it.
PoseEnergy energy_of_other_molecules(const Pair& pair, const EnergyOptions& options,
                                     double clearance) {
  try {
    EnergyEngine engine = EnergyModel(pair, options).start();
    return energy_unless_clash(engine, pair.positions(), clearance);
  } catch (const NoEngine&) {
    throw;  // the next frame would fare no better
  } catch (const EngineFailure&) {
    return {EnergyStatus::scf_fail};
  }
}

}  // namespace

/// One per thread.
class FrameEnergies::Computer {
 public:
  explicit Computer(const FrameEnergies& job) : job_(&job), engine_(job.model_->start()) {}

  void make(Batch& batch) {
    batch.found.clear();
    for (const FrameBatch::Frame& lines : batch.lines.frames) {
      try {
        const CheckedPair read =
            pair_in(batch.lines, lines, job_->stream_->name(), job_->request_.pair);
        require_same_atoms(read.pair, *job_->first_);
        batch.found.push_back(computed(lines.number, read.pair));
      } catch (const InvalidInput& fault) {
        throw InvalidInput(fmt::format("frame {}: {}", lines.number, fault.what()));
      }
    }
  }

  FrameEnergy computed(std::int64_t number, const Pair& pair) {
    FrameEnergy frame{number, survey_contacts(pair, job_->request_.criterion)};
    const double clearance = frame.survey.clearance;
    const bool is_of_model = clearance < kClash || has_same_molecules(pair, *job_->first_);
    frame.energy = is_of_model ? energy_unless_clash(engine_, pair.positions(), clearance)
                               : energy_of_other_molecules(pair, job_->request_.options, clearance);
    return frame;
  }

 private:
  const FrameEnergies* job_;
  EnergyEngine engine_;
};

FrameEnergies::FrameEnergies(FrameStream& stream, FrameEnergyRequest request)
    : stream_(&stream), request_(std::move(request)), frames_(stream, request_.selection) {
  read_first();
  model_.emplace(*first_, request_.options);
}

void FrameEnergies::read_first() {
  only_ = holds_qn_input(*stream_);
  if (only_) {
    PairFile file = only_pair(*stream_, request_.selection, request_.pair);
    first_ = std::move(file.pair);
    remarks_ = std::move(file.remarks);
    return;
  }
  refuse_foreign_format(*stream_, request_.pair.file);
  if (!frames_.fill(first_batch_, 1)) frames_.require_named();
  const FrameBatch::Frame& lines = first_batch_.frames.front();
  auto [pair, check] = pair_in(first_batch_, lines, stream_->name(), request_.pair);
  if (!check.refusals.empty()) throw InvalidInput(check.refusals[0]);
  first_ = std::move(pair);
  remarks_ = std::move(check.warnings);
}

std::int64_t FrameEnergies::compute(const Take& take) {
  if (only_) {
    const FrameEnergy frame = Computer(*this).computed(1, *first_);
    take({&frame, 1}, stream_->bytes());
    return 1;
  }
  // References of its own take a frame a hundred times as long with GFN-FF.
  constexpr std::int64_t kMost = 64;
  const std::int64_t most =
      std::min(kMost, poses_of_a_moment(request_.options.method, first_->size()));
  const auto fill = [&](Batch& batch) {
    if (first_batch_.frames.empty()) return frames_.fill(batch.lines, most);
    batch.lines = first_batch_;
    first_batch_.frames.clear();
    return true;
  };
  make_chunks_of_stream<Batch>(
      request_.threads, fill, [&] { return Computer(*this); },
      [&](const Batch& batch) { take(batch.found, batch.lines.bytes); });
  frames_.require_named();
  return frames_.seen();
}

}  // namespace dravo
