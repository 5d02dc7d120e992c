// What a picture shows, and the rules of contacts, from the data of the page.

export const SHOWN = ['frames', 'angles', 'contacts', 'labels'];

export function optionsOf(data) {
  const options = {
    criterion: data.criterion,
    hydrogenBond: {
      longest: data.hydrogen_bond.longest,
      smallestAngle: data.hydrogen_bond.smallest_angle,
      bondTolerance: data.bond_tolerance,
    },
  };
  for (const name of SHOWN) options[name] = data.options[name];
  return options;
}
