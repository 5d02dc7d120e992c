/// The pair of files that a placed pair becomes.
#pragma once

#include <string>

#include "common/atom_table.hpp"
#include "common/record_stream.hpp"
#include "driver/output_names.hpp"
#include "output/placement.hpp"

namespace dravo {

struct PairFileNames {
  std::string geometry;
  std::string drawing;
};

/// Short contacts choose the names.
PairFileNames pair_file_names(const OutputNames& names, bool short_contacts);

struct PairFiles {
  PairFileNames names;
  RecordStream geometry;
  RecordStream drawing;
};

PairFiles pair_files(const OutputNames& names, bool short_contacts, const MoleculeSplit& split,
                     const ConstAtomTable& final_coo_and_m, const Placement& placement);

}  // namespace dravo
