/// The pair of files that a placed pair becomes.
#pragma once

#include <string>

#include "common/atom_table.hpp"
#include "common/record_stream.hpp"
#include "driver/output_names.hpp"
#include "output/placement.hpp"

namespace dravo {

struct PairFiles {
  std::string geometry_name;
  RecordStream geometry;
  std::string drawing_name;
  RecordStream drawing;
};

/// Short contacts choose the names.
PairFiles pair_files(const OutputNames& names, bool short_contacts, const MoleculeSplit& split,
                     const ConstAtomTable& final_coo_and_m, const Placement& placement);

}  // namespace dravo
