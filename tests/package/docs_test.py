"""docs_test.py SOURCE: the documents against the code: every export is explained, every link leads somewhere, the
diagram of includes is the one that the sources make.
"""
import re
import sys
import unittest
from pathlib import Path

SOURCE = Path(sys.argv.pop(1))
ROOMS = {"snmp/codec": "codec", "snmpv3/codec": "v3codec", "snmpv3/crypto": "crypto", "interface/delivery": "delivery"}
FOLDERS = ("support", "net", "snmp", "snmpv3", "wsd", "interface", *ROOMS.values())


def folder_of(path):
    parts = path.relative_to(SOURCE / "src").parts
    return ROOMS.get("/".join(parts[:2]), parts[0])


def includes():
    """(folder, folder) for every include across folders, support/ as a target left out."""
    found = set()
    for path in (SOURCE / "src").rglob("*"):
        if path.suffix not in (".h", ".cpp"):
            continue
        for name in re.findall(r'#include [<"]([\w/]+\.h)[>"]', path.read_text(encoding="utf-8")):
            target = "header" if name == "vndiscover.h" else None
            if (SOURCE / "src" / name).exists():
                target = folder_of(SOURCE / "src" / name)
            if target and target not in (folder_of(path), "support"):
                found.add((folder_of(path), target))
    return found


class Documents(unittest.TestCase):
    maxDiff = None

    def test_the_guide_names_every_export(self):
        header = (SOURCE / "include/vndiscover.h").read_text(encoding="utf-8")
        guide = (SOURCE / "docs/host-guide.md").read_text(encoding="utf-8")
        exports = re.findall(r"^VN_API \w+ (\w+)\(", header, flags=re.M)
        self.assertGreater(len(exports), 20)
        self.assertEqual([], [name for name in exports if not re.search(rf"\b{name}\b", guide)])

    def test_links_lead_somewhere(self):
        for document in [SOURCE / "README.md", *(SOURCE / "docs").glob("*.md")]:
            for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", document.read_text(encoding="utf-8")):
                self.assertTrue((document.parent / target).exists(), f"{document.name}: {target}")

    def test_the_diagram_of_includes_is_true(self):
        text = (SOURCE / "docs/architecture.md").read_text(encoding="utf-8")
        drawn = set(re.findall(r"^    (\w+) --> (\w+)", text, flags=re.M))
        drawn = {(a, b) for a, b in drawn if a in FOLDERS and b != "support"}
        self.assertEqual(drawn, includes())


if __name__ == "__main__":
    unittest.main()
