"""docs_test.py SOURCE: what repeats the code says the same: every export is explained, every link leads somewhere,
the diagram of includes is the one that the sources make; the C# declarations are the header's in names, order and
types of arguments, results, constants and the record's layout.
"""
import re
import sys
import unittest
from pathlib import Path

SOURCE = Path(sys.argv.pop(1))
FOLDERS = ("support", "net", "snmp", "snmpv3", "wsd", "interface", "delivery")

# A type of the header, and a pattern of the C# types that pass it.
TYPES = {"HWND": "IntPtr", "UINT": "uint", "BYTE": "byte", "int32_t": "int", "uint32_t": "uint", "uint32_t*": "ref uint",
         "const wchar_t*": r"\[MarshalAs\(UnmanagedType.LPWStr\)\] string",
         "const char*": r"(\[MarshalAs\(UnmanagedType.LPStr\)\] string|byte\[\])", "char*": r"\[Out\] byte\[\]",
         "uint8_t*": r"\[In, Out\] byte\[\]", "VnResponseRecord*": "ref VnResponseRecord"}
WIDTHS = {"uint8_t": 1, "char": 1, "uint16_t": 2, "byte[]": 1, "ushort": 2}


def folder_of(path):
    parts = path.relative_to(SOURCE / "src").parts
    return "delivery" if parts[:2] == ("interface", "delivery") else parts[0]


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


def read(path):
    """Without comments, as one line but for the header's directives."""
    text = re.sub(r"/\*.*?\*/", "", (SOURCE / path).read_text(encoding="utf-8"), flags=re.S)
    text = re.sub(r"//[^\n]*", "", text) if path.endswith(".cs") else text
    return re.sub(r"[ \t\n]+(?!#)", " ", text)


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


class CSharp(unittest.TestCase):
    maxDiff = None

    header, csharp = read("include/vndiscover.h"), read("examples/csharp/VnDiscover.cs")

    def test_exports_agree(self):
        declared = re.findall(r"VN_API (\w+) (\w+)\(([^;]*)\);", self.header)
        imported = re.findall(r"\[DllImport\(Dll, ExactSpelling = true\)[^\]]*\] public static extern (\w+ (\w+)\([^;]*\));",
                              self.csharp)
        self.assertGreater(len(declared), 20)
        self.assertEqual([name for _, name, _ in declared], [name for _, name in imported])
        for (result, name, arguments), (actual, _) in zip(declared, imported):
            parameters = [f"{TYPES[kind]} {argument}"
                          for kind, argument in re.findall(r"(\w[\w ]*\*?) (\w+)(?:,|$)", arguments)]
            self.assertRegex(actual.replace("( ", "("), rf"^{TYPES[result]} {name}\({', '.join(parameters)}\)$")

    def test_constants_agree(self):
        defined = {name: value.rstrip("u").lstrip("L") for name, value in
                   re.findall(r'^#define (VN_\w+) (L?"[^"]*"|\w+)', self.header, flags=re.M)
                   if name not in ("VN_EXTERN", "VN_API")}
        constants = dict(re.findall(r"public const \w+ (VN_\w+) = ([^;]+);", self.csharp))
        self.assertGreater(len(defined), 25)
        self.assertEqual(defined, constants)

    def test_the_record_has_the_same_fields_at_the_same_places(self):
        fields = re.search(r"typedef struct VnResponseRecord \{(.*?)\}", self.header, flags=re.S)[1]
        expected = [(name, WIDTHS[kind], count or "1")
                    for kind, name, count in re.findall(r"(\w+) (\w+)(?:\[(\w+)\])?;", fields)]
        fields = re.search(r"struct VnResponseRecord\s*\{(.*?)\}", self.csharp, flags=re.S)[1]
        actual = [(name, WIDTHS[kind], count or "1") for count, kind, name in re.findall(
            r"(?:\[MarshalAs\(UnmanagedType.ByValArray, SizeConst = (\w+)\)\] )?"
            r"public (\S+) (\w+);", fields)]
        self.assertEqual(expected, actual)


if __name__ == "__main__":
    unittest.main()
