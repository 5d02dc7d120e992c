/// Shell scripts that run the exported computations.
#pragma once

#include <cstdint>
#include <string>

#include "quantum/quantum_job.hpp"

namespace dravo {

/// The ending of a program's input files: ".inp". A template has its own.
std::string input_ending(QuantumProgram program);

struct ScriptRequest {
  const QuantumJob& job;
  std::string ending;     ///< of the input files
  std::string line = {};  ///< the user's command line; empty for that of the program
  std::int64_t poses = 0;
  std::int64_t block = 0;  ///< poses of a task of Slurm; 0 for what makes at most 1000 tasks
};

/// Command lines may hold {input}, {output}, {cores}, {charge} and {unpaired}. Throws InvalidInput
/// for one without {input}.
void require_usable_line(const std::string& line);

/// `run-pose.sh FOLDER...`: what has finished is left alone, what was stopped starts again.
std::string pose_script(const ScriptRequest& request);

/// `run.sh [JOBS]`: all poses, several at once.
std::string machine_script(const ScriptRequest& request);

/// `sbatch run.sbatch`: a task for each block of poses.
std::string slurm_script(const ScriptRequest& request);

}  // namespace dravo
