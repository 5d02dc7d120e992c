"""How a run of qn-dravo ended, told from its outcome. Every entry must be reached by some case."""
import re

# (ending, where it shows, pattern): the first that fits.
ENDINGS = [
    ("comment line after the count", "messages", r"note: line \d+ looks like a comment line"),
    ("line too short", "messages", r"note: line \d+ (has too few items|is blank)"),
    ("byte-order mark", "messages", r"note: the file begins with a UTF-8 byte-order mark"),
    ("end of the file too early", "messages", r"xyz:\d+: expected .*, found the end of the file"),
    ("item that cannot be read", "messages", r"QN-input-GEOMETRY\.xyz:\d+: expected .*, found \""),
    ("no input file", "messages", r"QN-input-GEOMETRY\.xyz: cannot read: "),
    ("output that cannot be written", "messages", r"qn-dravo: .*: cannot (open|write|put)"),
    ("too few atoms of molecule 1", "screen", r"  ERROR \t\n\Z"),
    ("too few atoms", "screen", r"  with more than 2 atoms \n  ERROR \n\Z"),
    ("too many atoms", "screen", r"max number of atoms -150000 -exceeded \n\Z"),
    ("r below its range", "screen", r"negative r not allowed"),
    ("theta below its range", "screen", r"polar angle out of range!"),
    ("theta above its range", "screen", r"polar angle out of range\."),
    ("phi below its range", "screen", r"azimuth angle out of range!"),
    ("phi above its range", "screen", r"azimuth angle out of range\."),
    ("alpha below its range", "screen", r"ALPHA Euler angle out of range!(.*\n){2}.*(-|  0\n)"),
    ("alpha above its range", "screen", r"ALPHA Euler angle out of range!"),
    ("beta below its range", "screen", r"BETA Euler angle out of range!"),
    ("beta above its range", "screen", r"Beta Euler angle out of range!"),
    ("gamma below its range", "screen", r"GAMMA Euler angle out of range!(.*\n){2}.*(-|  0\n)"),
    ("gamma above its range", "screen", r"GAMMA Euler angle out of range!"),
    ("r above 9999.9", "screen", r"  name file error \n\Z"),
    ("both molecules symmetric", "screen",
     r"Molecule 1 is symmetric(.*\n)*.*Molecule 2 is symmetric(.*\n)*  program stopped\n"),
    ("molecule 1 symmetric", "screen", r"Molecule 1 is symmetric(.*\n)*  program stopped\n"),
    ("molecule 2 symmetric", "screen", r"Molecule 2 is symmetric(.*\n)*  program stopped\n"),
    ("second alignment without a rotation", "screen",
     r"  ERROR - NO GUESS ANGLE FOUND IN FIT PROCEDURE - \n(.*\n){5}   \n\Z"),
    ("Euler angles not found", "screen", r"  ERROR - EULER ANGLES NOT FOUND \n\Z"),
    ("pair with short contacts", "screen", r"CHECK THE SUPRAMOLECULAR(.*\n)*  ROTATION: "),
    ("pair without short contacts", "screen", r"  ROTATION: .*\n   \n.*\n(   \n){3}\Z"),
]

# What some of these runs show besides, and some case must show.
REMARKS = [
    ("unknown labels", "messages", r"warning: unknown element labels"),
    ("alignment without a rotation", "screen", r"WARNING - NO GUESS ANGLE FOUND"),
    ("no azimuth", "screen", r"Undefined azimuth angle"),
    ("no direction", "screen", r"No Defined Angle"),
    ("beta zero", "QN-LOG-PARAM.txt", r"WARNING:  for beta = zero, gamma = 0"),
    ("NaN in the pair", "input-GEOMETRY.xyz", r"NaN"),
    ("asterisks in the pair", "input-GEOMETRY.xyz", r"\*{15}"),
]


def shows(outcome, place, pattern):
    streams = {"screen": outcome.screen, "messages": outcome.messages}
    text = streams.get(place, outcome.files.get(place, b""))
    return re.search(pattern, text.decode("latin-1")) is not None


def ending(outcome):
    return next((label for label, *where in ENDINGS if shows(outcome, *where)), "unknown ending")


def remarks(outcome):
    return [label for label, *where in REMARKS if shows(outcome, *where)]
