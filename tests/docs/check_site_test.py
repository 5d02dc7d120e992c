"""tools/check_site on made sites: one without a fault, and one with each."""

import subprocess
import sys
from pathlib import Path
from tempfile import TemporaryDirectory

CHECK = Path(__file__).resolve().parents[2] / "tools" / "check_site"

GOOD = {
    "index.html": '<title>One</title><h1 id="top">One</h1><img src="a%20b.svg" alt="a drawing">'
    '<a href="two.html#part">two</a> <a href="#top">up</a> <a href="https://example.org/x">there</a>',
    "two.html": '<title>Two</title><link rel="stylesheet" href="s/style.css"><p id="part">',
    "a b.svg": "<svg/>",
    "s/style.css": "p { background: url(../a%20b.svg), url(data:image/png;base64,AA) }",
}
#: a file in place of a good one, and what is said of it
FAULTS = [
    ("two.html", '<title>t</title><p id="part"><a href="../out.html">', "two.html: leads to ../out.html, which is outside"),
    ("two.html", '<title>t</title><p id="part"><img srcset="//h/p 2x" alt="p">', "two.html: loads //h/p"),
    ("two.html", '<title>t</title><p id="part"><video src="//h/v">', "two.html: loads //h/v"),
    ("two.html", '<title>t</title><p id="part"><link rel="stylesheet preload" href="//h/s">', "two.html: loads //h/s"),
    ("two.html", "<title>Two</title>", "index.html: leads to two.html#part, of which the anchor is not there"),
    ("two.html", '<p id="part">', "two.html: has no title"),
    ("two.html", '<title> </title><p id="part">', "two.html: has no title"),
    ("two.html", '<title>Two</title><p id="part" style="background: url(//a.b/c)">', "two.html: loads //a.b/c"),
    ("two.html", '<title>Two</title><style>@import "//a.b/c";</style><p id="part">', "two.html: loads //a.b/c"),
    ("two.html", '<title>Two</title><p id="part"><a href="three.html">', "two.html: leads to three.html, which is not there"),
    ("two.html", '<title>Two</title><p id="part"><img src="a b.svg">', "two.html: has a picture without a text: a b.svg"),
    ("two.html", '<title>Two</title><p id="part"><img src="b.svg" alt="b">', "two.html: leads to b.svg, which is not there"),
    ("two.html", '<title>Two</title><p id="part"><script src="//cdn.example/x.js">', "two.html: loads //cdn.example/x.js"),
    ("two.html", '<title>Two</title><p id="part"><link rel="stylesheet" href="http://a.b/c">', "two.html: loads http://a.b/c"),
    ("s/style.css", "@import 'https://a.b/f.css';", "s/style.css: loads https://a.b/f.css"),
    ("s/style.css", "p { src: url('http://a.b/font') }", "s/style.css: loads http://a.b/font"),
    ("large.bin", "x" * 20_000_000, "takes 20000"),
]


def said_of(files: dict[str, str]) -> tuple[int, str]:
    with TemporaryDirectory() as folder:
        for name, text in files.items():
            file = Path(folder) / name
            file.parent.mkdir(exist_ok=True)
            file.write_text(text)
        done = subprocess.run([sys.executable, CHECK, folder], capture_output=True, text=True)
        return done.returncode, done.stdout + done.stderr


assert said_of(GOOD) == (0, ""), said_of(GOOD)
assert said_of({"a.txt": ""}) == (1, "has no page\n")
for name, text, expected in FAULTS:
    status, said = said_of(GOOD | {name: text})
    assert status == 1 and said.startswith(expected) and said.count("\n") == 1, (name, text, said)
