"""Pairs of many atoms, as xyz files."""

from page import FOLDER


def large_pair(atoms):
    """Two boxes of water molecules, 3.1 Angstrom apart as in water, with at least so many atoms in all.

    Returns the words of a command for it.
    """
    molecules = -(-atoms // 6)
    side = next(k for k in range(1, 100) if k ** 3 >= molecules)
    lines = []
    for box in (0, 1):
        for k in range(molecules):
            x, y, z = (3.1 * (k // side ** power % side) for power in range(3))
            x += box * (3.1 * side + 3)
            # Turned by turns, so that no box is symmetric.
            a, b = (0.757, 0.586) if k % 3 else (-0.586, 0.757)
            lines += [f"O {x:.4f} {y:.4f} {z:.4f}", f"H {x + a:.4f} {y + b:.4f} {z:.4f}",
                      f"H {x - a:.4f} {y + b:.4f} {z + 0.1 * (k % 5):.4f}"]
    file = FOLDER / f"large-{atoms}.xyz"
    file.write_text(f"{len(lines)}\n\n" + "\n".join(lines) + "\n")
    return [file, "--split", 3 * molecules, "--no-check"]
