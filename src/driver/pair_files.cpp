#include "driver/pair_files.hpp"

#include "output/bild_writer.hpp"
#include "output/xyz_writer.hpp"

namespace dravo {

PairFileNames pair_file_names(const OutputNames& names, bool short_contacts) {
  if (short_contacts) return {names.short_contact_geometry, names.short_contact_drawing};
  return {names.geometry, names.drawing};
}

PairFiles pair_files(const OutputNames& names, bool short_contacts, const MoleculeSplit& split,
                     const ConstAtomTable& final_coo_and_m, const Placement& placement) {
  PairFiles files{pair_file_names(names, short_contacts), {}, {}};
  write_geometry(files.geometry, split.N, final_coo_and_m, final_coo_and_m);
  write_bild(files.drawing, placement.drawn_centre, placement.molecule1);
  return files;
}

}  // namespace dravo
