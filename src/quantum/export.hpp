/// Poses as input files for a program of quantum chemistry.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "quantum/exported_poses.hpp"
#include "quantum/quantum_job.hpp"

namespace dravo {

struct ExportRequest {
  QuantumJob job;             ///< complete
  std::string template_file;  ///< of QuantumProgram::user
  std::string line;           ///< how the program is run; empty for its own way
  std::int64_t block = 0;     ///< poses of a task of Slurm; 0 for the usual number
  std::string folder;
};

/// Writes the folder: INDEX/1000/INDEX/ with the input files of each pose and pose.xyz, poses.csv
/// with their rows, scripts that run them, and manifest.json. `go_on` is called before each pose
/// and may throw; then, and after any failure, nothing is left. Returns the number of poses.
///
/// Throws InvalidInput for molecules that cannot have the charges and multiplicities; IoFailure
/// also for a folder that exists.
std::int64_t export_poses(const ExportRequest& request, ExportedPoses& poses,
                          const std::function<void()>& go_on);

}  // namespace dravo
