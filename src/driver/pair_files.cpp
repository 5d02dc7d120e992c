#include "driver/pair_files.hpp"

#include "output/bild_writer.hpp"
#include "output/xyz_writer.hpp"

namespace dravo {

PairFiles pair_files(const OutputNames& names, bool short_contacts, const MoleculeSplit& split,
                     const ConstAtomTable& final_coo_and_m, const Placement& placement) {
  PairFiles files;
  files.geometry_name = short_contacts ? names.short_contact_geometry : names.geometry;
  files.drawing_name = short_contacts ? names.short_contact_drawing : names.drawing;
  write_geometry(files.geometry, split.N, final_coo_and_m, final_coo_and_m);
  write_bild(files.drawing, placement.drawn_centre, placement.molecule1);
  return files;
}

}  // namespace dravo
