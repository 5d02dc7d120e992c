"""How Sphinx makes the manual of the pages in this folder; tools/guide calls it.

The source of the site has the layout of the project, so links between pages lead to the same files as on a disk.
"""

import sys
from pathlib import Path

from pygments.lexers.special import TextLexer
from sphinx.application import Sphinx

sys.path.insert(0, str(Path(__file__).parent))

project = "QN-DRAVO"
author = "QN-DRAVO Developers"
copyright = "QN-DRAVO Developers"
root_doc = "docs/index"
html_title = "QN-DRAVO manual"
language = "en"
# Two hyphens begin an option; they are no dash.
smartquotes = False

extensions = ["breathe", "docstrings", "myst_parser", "sphinx.ext.autodoc", "sphinx_copybutton"]
# What a heading is called in a link, as forges do it.
myst_heading_anchors = 4
exclude_patterns = ["docs/Doxyfile"]

breathe_projects = {"dravo": "../build-guide/doxygen/xml"}
breathe_default_project = "dravo"
autodoc_typehints = "signature"
autodoc_type_aliases = {
    name: name for name in ("FileName", "Floats", "Integers", "Numbers", "Split", "Value", "Values")
}
autodoc_member_order = "bysource"
# Names in docstrings are links.
default_role = "py:obj"

html_theme = "furo"
html_theme_options = {"navigation_with_keys": True}
html_copy_source = False
html_show_sourcelink = False
# The prompt of Python is not copied, and nor is what it prints.
copybutton_prompt_text = r">>> |\.\.\. "
copybutton_prompt_is_regexp = True
copybutton_only_copy_prompt_lines = True
# Blocks without a language are commands and what programs print.
highlight_language = "none"


def setup(app: Sphinx) -> None:
    """The arithmetic of log.md, which a test computes, is no language."""
    app.add_lexer("hand", TextLexer)
