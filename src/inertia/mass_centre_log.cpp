#include "inertia/mass_centre_log.hpp"

#include <cstddef>

namespace dravo {

void write_mass_centre(RecordStream& log, int molecule, const MassCentre& centre) {
  log.record(" ################################# ");
  log.blank();
  log.record(" center of mass data ");
  log.blank();
  log.record(molecule == 1 ? " molecule 1 " : " molecule 2 ");
  log.blank();
  log.record(" xcm ycm zcm ", centre.cm);
  log.blank();
  log.record(" center of mass table ");
  log.blank();
  for (std::size_t entry = 0; entry < centre.elements.size(); ++entry) {
    const ElementCentre& element = centre.elements[entry];
    if (!element.present()) continue;
    log.record("atomic number", static_cast<std::int32_t>(entry + 1), element.centroid);
    log.record("number of Z atoms=", element.atoms);
    log.record(" distance from CM ", element.distance);
  }
  log.blank(3);
}

}  // namespace dravo
