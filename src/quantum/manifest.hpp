/// manifest.json: what was exported, so that it can be collected by itself.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "quantum/quantum_job.hpp"

namespace dravo {

inline constexpr auto kManifestFile = "manifest.json";
inline constexpr auto kPosesTable = "poses.csv";
inline constexpr auto kPoseFrame = "pose.xyz";

struct ManifestPose {
  std::int64_t index = 0;
  std::uint64_t geometry = 0;  ///< XXH3 of the atom lines of its pose.xyz
};

struct Manifest {
  QuantumJob job;
  std::string ending;                 ///< of the input files
  std::string source;                 ///< "scan big", "docking pairs", "file dimer.xyz"
  std::uint64_t source_checksum = 0;  ///< XXH3 of its table, or of the file
  std::string selection;              ///< which of its poses
  std::int32_t n1 = 0;
  std::vector<std::string> symbols;
  std::uint64_t table = 0;  ///< XXH3 of poses.csv
  std::vector<ManifestPose> poses;
};

/// "000/000017": a thousand poses share a folder.
std::string folder_of_pose(std::int64_t index);

std::string text_of(const Manifest& manifest);

/// Throws IoFailure for anything else than such a text; `name` is the file's.
Manifest parse_manifest(const std::string& name, const std::string& text);

}  // namespace dravo
