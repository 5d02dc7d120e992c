#include "quantum/collect.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "common/free_format_reader.hpp"
#include "common/number_format.hpp"
#include "common/ordered_chunks.hpp"
#include "dravo/error.hpp"
#include "quantum/output_text.hpp"
#include "quantum/quantum_text.hpp"
#include "results/checksum.hpp"
#include "results/decimals.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, kCollectedStatuses> kStatusNames{
    "ok", "scf_fail", "nonphysical", "unfinished", "other_geometry", "missing"};

constexpr int kHartreeDecimals = 10;

bool exists(const std::string& file) {
  std::error_code ignored;  // what cannot be looked at cannot be read
  return fs::exists(file, ignored);
}

/// Of the lines of an xyz file behind its first two.
std::vector<OutputAtom> atoms_of_xyz(std::string_view text) {
  std::vector<OutputAtom> atoms;
  add_atoms(atoms, text, {"\n", 1, 0, 1});
  return atoms;
}

/// Of a program that shows none. Without its input nobody knows them.
std::vector<OutputAtom> atoms_in_input(const std::string& file) {
  return exists(file) ? atoms_of_xyz(read_file(file)) : std::vector<OutputAtom>{};
}

/// A failed output says more than one that is not there.
class PoseReader {
 public:
  PoseReader(const Manifest& manifest, const UserReading* reading, std::string folder)
      : manifest_(&manifest), reading_(reading), folder_(std::move(folder)) {}

  CollectedPose read(const ManifestPose& pose) {
    found_.index = pose.index;
    found_.status = CollectedStatus::ok;
    const std::string file = folder_ + "/" + kPoseFrame;
    const std::string frame = exists(file) ? read_file(file) : "";
    if (checksum_of(atoms_in_frame(frame.empty() ? "\n" : frame)) != pose.geometry)
      return failed(CollectedStatus::other_geometry, file);
    pair_ = atoms_of_xyz(frame);
    double energy = 0.0;
    bool first = true;  // the pair, if its molecules are behind it
    for (const QuantumSystem& system : systems_of(manifest_->job)) {
      const auto output = output_of(system);
      if (!output) return found_;
      energy += std::exchange(first, false) ? *output->energy : -*output->energy;
      found_.terms = output->terms;
    }
    finish(energy);
    return found_;
  }

 private:
  CollectedPose failed(CollectedStatus status, const std::string& file) {
    found_.status = status;
    found_.file = file;
    return found_;
  }

  std::optional<QuantumOutput> output_of(const QuantumSystem& system) {
    const std::string name = fmt::format("{}/{}", folder_, system.name);
    const std::string file = name + ".out";
    if (!exists(file)) {
      const bool gave_up = exists(name + ".failed");
      failed(gave_up ? CollectedStatus::scf_fail : CollectedStatus::missing,
             gave_up ? name + ".failed" : file);
      return std::nullopt;
    }
    const std::string text = read_file(file);
    QuantumOutput output =
        reading_ != nullptr ? read_by(*reading_, text) : read_output(manifest_->job, text);
    const bool shows_atoms = reading_ == nullptr;
    if (shows_atoms && manifest_->job.program == QuantumProgram::xtb)
      output.atoms = atoms_in_input(name + manifest_->ending);
    if (output.state == OutputState::failed) {
      failed(CollectedStatus::scf_fail, file);
      return std::nullopt;
    }
    if (output.state == OutputState::unfinished || !output.energy) {
      failed(CollectedStatus::unfinished, file);
      return std::nullopt;
    }
    if (shows_atoms && !are_those_of(output.atoms, atoms_in(system))) {
      failed(CollectedStatus::other_geometry, file);
      return std::nullopt;
    }
    return output;
  }

  /// The atoms that the output of a system shows.
  [[nodiscard]] std::vector<OutputAtom> atoms_in(const QuantumSystem& system) const {
    const auto n1 = std::min(static_cast<std::ptrdiff_t>(manifest_->n1), std::ssize(pair_));
    std::vector<OutputAtom> atoms;
    if (system.molecules[0] != Presence::absent)
      atoms.insert(atoms.end(), pair_.begin(), pair_.begin() + n1);
    if (system.molecules[1] != Presence::absent)
      atoms.insert(atoms.end(), pair_.begin() + n1, pair_.end());
    return atoms;
  }

  void finish(double energy) {
    if (manifest_->job.ghost != 0) {
      found_.energy = energy;
      return;
    }
    energy *= kKcalPerMolPerHartree;
    if (!(energy >= kLowestInteraction && energy <= kHighestInteraction)) {
      failed(CollectedStatus::nonphysical, folder_);
      found_.terms.reset();
      return;
    }
    found_.energy = energy;
    if (found_.terms)
      for (double& term : *found_.terms) term *= kKcalPerMolPerHartree;
  }

  const Manifest* manifest_;
  const UserReading* reading_;
  std::string folder_;
  std::vector<OutputAtom> pair_;
  CollectedPose found_{0};
};

}  // namespace

std::string_view name_of(CollectedStatus status) {
  return kStatusNames.at(static_cast<std::size_t>(status));
}

Collection::Collection(std::string folder, std::optional<UserReading> reading)
    : folder_(std::move(folder)), reading_(std::move(reading)) {
  const std::string file = folder_ + "/" + kManifestFile;
  if (!exists(file))
    throw IoFailure(fmt::format("{}: there is no {}; expected a folder that dravo export made",
                                folder_, kManifestFile));
  manifest_ = parse_manifest(file, read_file(file));
  const std::string table = folder_ + "/" + kPosesTable;
  table_ = read_file(table);
  if (checksum_of(table_) != manifest_.table)
    throw IoFailure(table + ": has changed since it was exported");
  if (!reading_ && !is_readable(manifest_.job.program))
    throw InvalidInput(fmt::format(
        "{}: the outputs of {} are read by --read, a regular expression with one group, the energy",
        folder_, name_of(manifest_.job.program)));
}

std::string Collection::energy_column() const {
  const std::string_view program = name_of(manifest_.job.program);
  return manifest_.job.ghost == 0 ? fmt::format("e_int_{}_kcal_mol", program)
                                  : fmt::format("e_{}_hartree", program);
}

std::string Collection::heading() const {
  const std::string_view program = name_of(manifest_.job.program);
  std::string text = table_.substr(0, table_.find('\n')) + "," + energy_column();
  if (manifest_.job.treatment == Treatment::sapt)
    for (const char* const term : kSaptTerms) text += fmt::format(",{}_{}_kcal_mol", term, program);
  return text + fmt::format(",status_{}", program);
}

std::string Collection::row_of(std::string_view exported, const CollectedPose& pose) const {
  std::string row(exported);
  row += ',';
  if (pose.energy)
    append_fixed(row, *pose.energy,
                 manifest_.job.ghost == 0 ? decimals::kEnergy : kHartreeDecimals);
  if (manifest_.job.treatment == Treatment::sapt)
    for (std::size_t k = 0; k < kSaptTerms.size(); ++k) {
      row += ',';
      if (pose.terms) append_fixed(row, pose.terms->at(k), decimals::kEnergy);
    }
  return row.append(",").append(name_of(pose.status));
}

/// What a thread does.
struct Collection::ChunkReader {
  const Collection* collection;

  void make(std::int64_t first, std::int64_t end, std::vector<CollectedPose>& chunk) const {
    chunk.clear();
    for (std::int64_t k = first; k < end; ++k)
      chunk.push_back(
          collection->collected(collection->manifest_.poses[static_cast<std::size_t>(k)]));
  }
};

CollectedPose Collection::collected(const ManifestPose& pose) const {
  return PoseReader(manifest_, reading_ ? &*reading_ : nullptr,
                    fmt::format("{}/{}", folder_, folder_of_pose(pose.index)))
      .read(pose);
}

void Collection::read(const std::function<void(const CollectedPose&, const std::string& row)>& take,
                      int threads) const {
  const auto new_maker = [&] { return ChunkReader{this}; };
  std::size_t begin = table_.find('\n') + 1;
  constexpr std::int64_t kPosesOfAChunk = 16;
  make_chunks<std::vector<CollectedPose>>(
      {0, std::ssize(manifest_.poses), kPosesOfAChunk, threads}, new_maker,
      [&](const std::vector<CollectedPose>& chunk) {
        for (const CollectedPose& pose : chunk) {
          const std::size_t end = std::min(table_.find('\n', begin), table_.size());
          take(pose, row_of(std::string_view(table_).substr(begin, end - begin), pose));
          begin = std::min(end + 1, table_.size());
        }
      });
}

}  // namespace dravo
