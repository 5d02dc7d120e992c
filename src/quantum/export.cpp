#include "quantum/export.hpp"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <optional>
#include <unordered_set>

#include "common/atom_table.hpp"
#include "dravo/error.hpp"
#include "quantum/input_files.hpp"
#include "quantum/job_scripts.hpp"
#include "quantum/manifest.hpp"
#include "quantum/new_folder.hpp"
#include "quantum/quantum_text.hpp"
#include "quantum/user_template.hpp"
#include "results/checksum.hpp"

namespace dravo {
namespace {

using Input = std::string (*)(const QuantumJob&, const QuantumSystem&, const NumberedPair&);

/// By `QuantumProgram`, but for the user's.
constexpr std::array<Input, 9> kInputs{psi4_input,   orca_input,  gaussian_input,
                                       nwchem_input, qchem_input, cp2k_input,
                                       gamess_input, xtb_input,   qcschema_input};

/// Writes one pose after the other.
class Exporter {
 public:
  Exporter(const ExportRequest& request, const ExportedPoses& poses)
      : request_(&request), poses_(&poses) {
    if (request.job.program == QuantumProgram::user)
      template_.emplace(request.template_file, poses.heading());
    manifest_.job = request.job;
    manifest_.ending = template_ ? template_->ending() : input_ending(request.job.program);
    table_ = poses.heading() + "\n";
    const std::string script = pose_script(scripts());  // refuses methods that xtb does not have
    folder_.emplace(request.folder);
    folder_->write("run-pose.sh", script, true);
  }

  void add_pose() {
    const Pair& pair = poses_->pair();
    if (manifest_.poses.empty()) begin(pair);
    const NumberedPair pose{poses_->index(), pair};
    const std::string folder = made_folder(pose.index);
    for (const QuantumSystem& system : systems_of(request_->job))
      folder_->write(fmt::format("{}/{}{}", folder, system.name, manifest_.ending),
                     input(system, pose));
    const std::string frame = frame_text(pose);
    folder_->write(fmt::format("{}/{}", folder, kPoseFrame), frame);
    manifest_.poses.push_back({pose.index, checksum_of(atoms_in_frame(frame))});
    table_.append(poses_->row()).append("\n");
    folders_.append(folder).append("\n");
  }

  std::int64_t finish() {
    folder_->write("run.sh", machine_script(scripts()), true);
    folder_->write("run.sbatch", slurm_script(scripts()), true);
    folder_->write("folders.txt", folders_);
    folder_->write(kPosesTable, table_);
    const PoseOrigin origin = poses_->origin();
    manifest_.source = origin.words;
    manifest_.source_checksum = origin.checksum;
    manifest_.selection = origin.selection;
    manifest_.table = checksum_of(table_);
    folder_->write(kManifestFile, text_of(manifest_));
    folder_->finish();
    return std::ssize(manifest_.poses);
  }

 private:
  [[nodiscard]] ScriptRequest scripts() const {
    return {request_->job, manifest_.ending, request_->line, std::ssize(manifest_.poses),
            request_->block};
  }

  void begin(const Pair& pair) {
    require_possible(request_->job, pair);
    manifest_.n1 = pair.n1();
    for (const Label& label : pair.labels()) manifest_.symbols.emplace_back(symbol_of(label));
  }

  [[nodiscard]] std::string input(const QuantumSystem& system, const NumberedPair& pose) const {
    if (template_) return template_->text(request_->job, pose, poses_->row());
    return kInputs.at(static_cast<std::size_t>(request_->job.program))(request_->job, system, pose);
  }

  std::string made_folder(std::int64_t index) {
    std::string folder = folder_of_pose(index);
    const std::string thousand = folder.substr(0, folder.find('/'));
    if (thousands_.insert(thousand).second) folder_->make_folder(thousand);
    folder_->make_folder(folder);
    return folder;
  }

  const ExportRequest* request_;
  const ExportedPoses* poses_;
  std::optional<UserTemplate> template_;
  std::optional<NewFolder> folder_;
  Manifest manifest_;
  std::string table_;
  std::string folders_;
  std::unordered_set<std::string> thousands_;
};

}  // namespace

std::int64_t export_poses(const ExportRequest& request, ExportedPoses& poses,
                          const std::function<void()>& go_on) {
  Exporter exporter(request, poses);
  while (poses.next()) {
    go_on();
    exporter.add_pose();
  }
  return exporter.finish();
}

}  // namespace dravo
