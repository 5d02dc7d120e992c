"""How docstrings of the package become a page: an extension of Sphinx for the Python reference.

Docstrings are written to be read in a terminal. Their lists of parameters become those of the page, and the comments
of attributes, which stand in the modules of the package, are found from the package.
"""

from __future__ import annotations

import re
import sys
from typing import Any

from sphinx.application import Sphinx
from sphinx.pycode import ModuleAnalyzer

PARAMETER = re.compile(r"(\w+(?:, \w+)*) : (.*)")


def lists_of_parameters(lines: list[str]) -> list[str]:
    """`Parameters`, a line below it, and `name : what it is` up to the next empty line."""
    made: list[str] = []
    inside = False
    for line in lines:
        if set(line) == {"-"} and made and made[-1] == "Parameters":
            made.pop()
            inside = True
        elif inside and (found := PARAMETER.fullmatch(line)):
            made.append(f":param {found[1]}: {found[2]}")
        else:
            inside = inside and line != ""
            made.append(line)
    return made


def made_for_a_page(
    app: Sphinx, what: str, name: str, thing: Any, options: Any, lines: list[str]
) -> None:
    lines[:] = lists_of_parameters(lines)


def gather_comments() -> None:
    """Those of all modules belong to the package, which everything public names as its own."""
    package = ModuleAnalyzer.for_module("dravo")
    package.analyze()
    for name in [name for name in sys.modules if re.fullmatch(r"dravo\._[a-z]+", name)]:
        if name == "dravo._core":
            continue  # compiled
        module = ModuleAnalyzer.for_module(name)
        module.analyze()
        package.attr_docs.update(module.attr_docs)
        package.annotations.update(module.annotations)
        package.tagorder.update(module.tagorder)


def setup(app: Sphinx) -> dict[str, Any]:
    import dravo  # noqa: F401, so that its modules are there

    gather_comments()
    app.setup_extension("sphinx.ext.autodoc")
    app.connect("autodoc-process-docstring", made_for_a_page)
    return {"parallel_read_safe": True}
