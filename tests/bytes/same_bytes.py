"""Compares two builds of qn-dravo and dravo, byte for byte.

    same_bytes.py REFERENCE PRESENT [--seed N] [--inputs N]

runs every case with the programs in both folders and prints what differs, how many cases of each
kind there were and how they ended. Exit status 1 when something differs, when an ending was never
reached, or when a deliberate change is not noticed.
"""
import argparse
import os
import sys
import tempfile
import time
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from fnmatch import fnmatchcase

from calls import calls
from endings import ENDINGS, REMARKS, ending, remarks
from placements import EXAMPLES, placements
from running import Case, Comparison
from self_test import CHANGES, failures

# Differences that newer work is meant to make: {pattern of case names: reason}. Names are printed
# with every difference; a pattern may hold * and ?.
EXPECTED_DIFFERENCES = {
}

SHOWN_DIFFERENCES = 10


@dataclass
class Result:
    case: Case
    difference: str | None
    status: int  # of the reference, like what follows
    ending: str  # of qn-dravo
    remarks: list[str]


def reason_for(name):
    """The pattern that expects this case to differ, if any."""
    return next((p for p in EXPECTED_DIFFERENCES if fnmatchcase(name, p)), None)


def examine(compare, numbered_case):
    number, case = numbered_case
    outcome, difference = compare(number, case)
    return Result(case, difference, outcome.status, ending(outcome), remarks(outcome))


def examine_all(compare, cases):
    names = Counter(case.name for case in cases)
    assert len(names) == len(cases), [name for name, count in names.items() if count > 1]
    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(lambda numbered: examine(compare, numbered), enumerate(cases)))


# --- what is printed ----------------------------------------------------------------------------

def print_table(title, rows):
    print(f"\n{title}")
    for label, *numbers in rows:
        print(f"  {label:<38}" + "".join(f"{number:>8}" for number in numbers))


def print_placements(results):
    kinds = Counter(result.case.kind for result in results)
    complete = Counter(result.case.kind for result in results if result.ending.startswith("pair "))
    print_table("qn-dravo: cases of each kind, and how many of them gave a pair",
                [(kind, count, complete[kind]) for kind, count in kinds.items()])
    ends = Counter(result.ending for result in results)
    rows = [(label, ends.pop(label, 0)) for label, *_ in ENDINGS]
    print_table("qn-dravo: how they ended", rows + list(ends.items()))
    shown = Counter(remark for result in results for remark in result.remarks)
    print_table("qn-dravo: what they showed besides",
                [(label, shown[label]) for label, *_ in REMARKS])


def print_calls(results):
    kinds = Counter(result.case.kind for result in results)
    statuses = Counter((result.case.kind, result.status) for result in results)
    print_table("dravo: cases of each kind, and those with exit status 0, 1 and 2",
                [(kind, count, *(statuses[kind, status] for status in (0, 1, 2)))
                 for kind, count in kinds.items()])


def print_differences(different):
    for result in different[:SHOWN_DIFFERENCES]:
        print(f"\nDIFFERS: {result.case.name}\n  {result.difference}")
    if len(different) > SHOWN_DIFFERENCES:
        print(f"\n... and {len(different) - SHOWN_DIFFERENCES} more")


def print_intended(results):
    """Returns the patterns that no difference needs."""
    needed = Counter(reason_for(result.case.name) for result in results if result.difference)
    for pattern, reason in EXPECTED_DIFFERENCES.items():
        if needed[pattern]:
            print(f"\n{pattern}: {needed[pattern]} differ as intended: {reason}")
    return [pattern for pattern in EXPECTED_DIFFERENCES if not needed[pattern]]


def never_reached(results):
    reached = {label for result in results for label in (result.ending, *result.remarks)}
    return [label for label, *_ in ENDINGS + REMARKS if label not in reached]


# --- all of it ----------------------------------------------------------------------------------

def arguments():
    parser = argparse.ArgumentParser(prog="same_bytes")
    parser.add_argument("reference")
    parser.add_argument("present")
    parser.add_argument("--seed", type=int, default=1, help="of the inputs that are drawn (1)")
    parser.add_argument("--inputs", type=int, default=300, help="how many are drawn (300)")
    return parser.parse_args()


def main():
    given = arguments()
    began = time.monotonic()
    faults = [f"self-test: {fault}" for fault in
              failures(given.reference, EXAMPLES["formamide-dimer"])]
    print(f"Self-test: {len(CHANGES) - len(faults)} of {len(CHANGES)} changed programs told apart")

    of_qn_dravo, of_dravo = list(placements(given.seed, given.inputs)), list(calls(given.seed))
    with tempfile.TemporaryDirectory() as scratch:
        compare = Comparison(given.reference, given.present, scratch)
        results = examine_all(compare, of_qn_dravo + of_dravo)
    placed, called = results[:len(of_qn_dravo)], results[len(of_qn_dravo):]
    print_placements(placed)
    print_calls(called)

    different = [result for result in results
                 if result.difference and not reason_for(result.case.name)]
    print_differences(different)
    faults += [f"no longer differs: {pattern}" for pattern in print_intended(results)]
    faults += [f"never reached: {label}" for label in never_reached(placed)]
    print()
    for fault in faults:
        print(fault)
    print(f"{len(results) - len(different)} passed, {len(different) + len(faults)} failed, "
          f"in {time.monotonic() - began:.0f} s")
    return 1 if different or faults else 0


if __name__ == "__main__":
    sys.exit(main())
