/// The list of short contacts is that of a loop over all pairs.
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "output/short_contacts.hpp"
#include "properties/molecules.hpp"

namespace dravo {
namespace {

constexpr auto kShortDistance = static_cast<double>(1.9F);

/// Positions in a box, or on a lattice where many pairs are exactly as far apart as the distance
/// that counts as short, or as 1.9, which is a little more.
std::vector<Vec3> any_cloud() {
  const int count = *rc::gen::resize(rc::kNominalSize, rc::gen::inRange(2, 120));
  const double half_box = *rc::gen::element(1.0, 4.0, 12.0);
  const bool on_lattice = *rc::gen::weightedElement<bool>({{2, false}, {1, true}});
  const double spacing = *rc::gen::element(kShortDistance, 1.9) / 2.0;
  const auto coordinate = [&] {
    const double value = *test::uniform(-half_box, half_box);
    return on_lattice ? spacing * std::round(value / spacing) : value;
  };
  std::vector<Vec3> cloud(static_cast<std::size_t>(count));
  for (Vec3& p : cloud) {
    p.x = coordinate();
    p.y = coordinate();
    p.z = coordinate();
  }
  return cloud;
}

RC_GTEST_PROP(ShortContacts, AreThoseOfALoopOverAllPairsInItsOrder, ()) {
  const std::vector<Vec3> cloud = any_cloud();
  const auto N = static_cast<std::int32_t>(cloud.size());
  const std::int32_t n1 = *rc::gen::inRange(0, N + 1);
  std::vector<double> storage(kColumns * cloud.size());
  AtomTable atoms(storage, N);
  for (std::int32_t i = 0; i < N; ++i) atoms.set_position(i, cloud[static_cast<std::size_t>(i)]);

  std::vector<ShortContact> expected;
  for (std::int32_t i = 0; i < n1; ++i)
    for (std::int32_t j = n1; j < N; ++j) {
      const Vec3 d = cloud[static_cast<std::size_t>(i)] - cloud[static_cast<std::size_t>(j)];
      const double distance = std::pow(d.x * d.x + d.y * d.y + d.z * d.z, 0.5);
      if (distance <= kShortDistance) expected.push_back({i, j, distance});
    }

  const auto found = find_short_contacts(atoms, {N, n1});
  RC_ASSERT(found.size() == expected.size());
  for (std::size_t k = 0; k < found.size(); ++k) {
    RC_ASSERT(found[k].atom1 == expected[k].atom1);
    RC_ASSERT(found[k].atom2 == expected[k].atom2);
    RC_ASSERT(found[k].distance == expected[k].distance);
  }
  RC_CLASSIFY(expected.empty(), "no contact");
}

}  // namespace
}  // namespace dravo
