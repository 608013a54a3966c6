"""docs_test.py SOURCE: what repeats the code says the same. Documents: every export is explained; links, pictures, files,
commands with their options, names and figures are the tree's. The header's annotations cover every parameter. The C#
declarations are the header's in names, order and types of arguments, results, constants and the record's layout.
"""
import json
import re
import shlex
import sys
import unittest
from pathlib import Path

SOURCE = Path(sys.argv.pop(1))
DOCUMENTS = [*sorted(SOURCE.glob("*.md")), *sorted((SOURCE / "docs").glob("*.md"))]

# A type of the header, and a pattern for the C# types that marshal to it.
TYPES = {"HWND": "IntPtr", "UINT": "uint", "BYTE": "byte", "int32_t": "int", "uint32_t": "uint", "uint32_t*": "ref uint",
         "const wchar_t*": r"\[MarshalAs\(UnmanagedType.LPWStr\)\] string",
         "const char*": r"(\[MarshalAs\(UnmanagedType.LPStr\)\] string|byte\[\])", "char*": r"\[Out\] byte\[\]",
         "uint8_t*": r"\[In, Out\] byte\[\]", "VnResponseRecord*": "ref VnResponseRecord"}
ANNOTATION = re.compile(r"\b(_[A-Z]\w*_)\b(?:\(([^()]*)\))? ")
WIDTHS = {"uint8_t": 1, "char": 1, "uint16_t": 2, "byte[]": 1, "ushort": 2}

TREE = "include|src|host|check|tests|scripts|cmake|docs|examples|bench"

# What a document says, and where the code says it.
FIGURES = [
    ("docs/security.md", r"Datagram \| ([\d,]+) bytes", "src/net/sckraw.h", r"kMaxDatagram = (\d+);"),
    ("docs/security.md", r"Answers held per local address \| ([\d,]+)", "src/snmp/device_table.h", r"kTableCapacity = (\d+);"),
    ("docs/security.md", r"SNMP sweep per local address \| (\d+) s", "src/snmp/sweep.h", r"kReceiveWaitMs, (\d+)000, "),
    ("docs/security.md", r"plus one wait of (\d+) s", "src/snmp/exchange.h", r"kReceiveWaitMs = (\d+)000;"),
    ("docs/security.md", r"pauses of (\d+) ms", "src/net/datagram_collector.cpp", r"kErrorPauseMs = (\d+);"),
    ("docs/security.md", r"WS-Discovery sweep per local address \| (\d+) s", "src/wsd/vx_soap_mgr.h", r"kSoapCollectionMs = (\d+)000;"),
    ("docs/security.md", r"Directed request \| (\d+) waits", "src/snmp/exchange.h", r"kRequestAttempts = (\d+);"),
    ("docs/security.md", r"Value, OID, .* \| \d+ \(SNMPv3: \d+\), (\d+), ", "include/vndiscover.h", r"VN_REQUEST_OID_MAX (\d+)"),
    ("docs/security.md", r"(\d+) threads that each", "tests/hardening/host_test.cpp", r"after = run\((\d+)\)"),
    ("docs/security.md", r"unload, (\d+) times in one process", "tests/hardening/host_test.cpp", r"std::atoi\(setting\) : (\d+);"),
    ("docs/host-guide.md", r"Request: fewer than ([\d,]+) bytes", "include/vndiscover.h", r"VN_JSON_REQUEST_SIZE (\d+)"),
    ("docs/host-guide.md", r"`userName` \| fewer than (\d+) bytes", "src/snmpv3/codec/message_builder.cpp", r"kSavedNameSize = (\d+);"),
    ("docs/host-guide.md", r"assumes (\d+) \(", "include/vndiscover.h", r"VN_INFORMATION_SIZE (\d+)"),
    ("docs/protocol-behaviours.md", r"Every message carries message identifier (\d+)", "src/snmpv3/codec/message_builder.cpp", r"kDefaultMsgId = (\d+);"),
]


def texts(*patterns):
    return "".join(path.read_text(encoding="utf-8") for pattern in patterns for path in sorted(SOURCE.rglob(pattern))
                   if "build" not in path.relative_to(SOURCE).parts[:1])


def prose(document):
    """A document without its code."""
    return re.sub(r"^ *```.*?^ *```|`[^`\n]*`", "", document.read_text(encoding="utf-8"), flags=re.S | re.M)


def anchors(document):
    """What a forge makes of the headings."""
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
            for heading in re.findall(r"^#+ (.+)$", document.read_text(encoding="utf-8"), flags=re.M)}


def commands():
    """(document, words) of each command in a document, without environment, pipes and comments."""
    for document in DOCUMENTS:
        text = document.read_text(encoding="utf-8")
        lines = re.findall(r"`((?:scripts/[\w/.-]+|vndiscover|ctest|cmake|VNDISCOVER_\w+=\S+) [^`\n]+)`", text)
        for block in re.findall(r"^ *```sh\n(.*?)^ *```", text, flags=re.S | re.M):
            lines += block.replace("\\\n", " ").splitlines()
        for line in lines:
            words = shlex.split(line, comments=True)
            while words and re.fullmatch(r"[A-Z_]+=.*", words[0]):
                words.pop(0)
            if words:
                yield document, words


def read(path):
    """The text without comments, as one line except for the header's directives."""
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
        for document in DOCUMENTS:
            for target, anchor in re.findall(r"\]\(([^)#:]*)(?:#([^)]*))?\)", prose(document)):
                path = document.parent / target if target else document
                self.assertTrue(path.exists(), f"{document.name}: {target}")
                if anchor:
                    self.assertIn(anchor, anchors(path), f"{document.name}: {target}")

    def test_each_picture_is_in_one_document_and_described(self):
        shown = [(document.parent / path).resolve() for document in DOCUMENTS
                 for path in re.findall(r"!\[[^\]]{20,}\]\(([^)]+)\)", prose(document))]
        self.assertEqual(sorted(SOURCE.glob("docs/*.png")), sorted(shown))

    def test_files_that_are_named_exist(self):
        roots = [SOURCE, SOURCE / "src", SOURCE / "host"]
        for document in DOCUMENTS:
            for name in re.findall(r"(?:(?<=`)|(?<=\s))(?:\./)?((?:%s)/[\w./*-]*|[\w-]+(?:/[\w-]+)+\.\w+)(?=[`\s])" % TREE,
                                   document.read_text(encoding="utf-8")):
                if not re.match(r"(build|lib|licenses|bin)/|.*[A-Z]{4}", name):
                    self.assertTrue(any(list(root.glob(name)) for root in roots), f"{document.name}: {name}")

    def test_commands_and_their_options_exist(self):
        presets = [preset["name"] for file in ("CMakePresets.json", "cmake/presets/windows.json")
                   for preset in json.loads((SOURCE / file).read_text())["configurePresets"]]
        cmake = texts("CMakeLists.txt")
        tests = [path.stem[:-5] for path in SOURCE.glob("tests/lab/*_test.py")]
        fuzzed = [path.stem[5:] for path in SOURCE.glob("tests/fuzz/fuzz_*.cpp")]
        known = {"--preset": presets,
                 "--target": re.findall(r"add_(?:executable|library|custom_target)\((\w+)", cmake),
                 "-R": re.findall(r"vn_test\(([\w.]+) ", cmake) + ["lab." + name for name in tests] +
                       ["fuzz." + name for name in fuzzed]}
        # lab.console compares this page with the program.
        page = (SOURCE / "docs/vndiscover.md").read_text(encoding="utf-8")
        console = {name: re.findall(r"(?<![\w-])--?[A-Za-z][\w-]*", text) for name, text in
                   re.findall(r"^### (\w+)\n.*?^```text\n(.*?)^```", page, flags=re.S | re.M)}
        used = 0
        for document, words in commands():
            line = f"{document.name}: {' '.join(words)}"
            for option, value in zip(words, words[1:]):
                if option in known:
                    self.assertTrue([name for name in known[option] if re.search(value, name)], line)
                elif option.endswith("_test.py"):
                    self.assertIn(value, (SOURCE / option).read_text(encoding="utf-8"), line)
            script = next((word for word in words if word.startswith("scripts/")), None)
            if script:
                self.assertTrue((SOURCE / script).stat().st_mode & 0o100, line)
            if script == words[0]:
                text = (SOURCE / script).read_text(encoding="utf-8")
                self.assertEqual([], [word for word in words if re.fullmatch(r"--[\w-]+", word) and word not in text], line)
            if words[0] == "vndiscover" and words[1] in console:
                self.assertEqual([], [word for word in words[2:] if re.fullmatch(r"--?[A-Za-z][\w-]*", word)
                                      and word not in console[words[1]]], line)
            elif words[0] == "vndiscover":
                self.assertRegex(" ".join(words[1:]), r"^(COMMAND|--help|--version)", line)
            used += 1
        self.assertGreater(used, 40)

    def test_tests_and_settings_that_are_named_exist(self):
        tests, header = texts("tests/**/*.cpp"), texts("include/*.h")
        everything = header + tests + texts("*.txt", "cmake/*.cmake", "scripts/**/*.sh", "tests/**/*.py", "bench/*.sh", "host/**/*.cpp")
        for document in DOCUMENTS:
            text = document.read_text(encoding="utf-8")
            names = [rf"TEST(_F|_P)?\({suite}, {test}" for suite, test in
                     re.findall(r"(?:suites? |gtest_filter='?)([A-Z]\w+)(?:\.(\w+))?", text)]
            self.assertEqual([], [name for name in names if not re.search(name, tests)], document.name)
            names = re.findall(r"\b(?:VNDISCOVER|BENCH|VN)_[A-Z0-9_]*[A-Z0-9]\b", text)
            self.assertEqual([], [name for name in names if name not in everything], document.name)

    def test_the_page_names_the_windows_menus_and_options(self):
        page = (SOURCE / "docs/vnbrowser.md").read_text(encoding="utf-8")
        texts_of = {text.replace("&", "").split("\\t")[0] for text in re.findall(r'^VN_TEXT\(ID\w+, \d+, "(.*)"\)$', texts("host/window/texts.inc"), re.M)}
        named = re.findall(r"\*\*(\w+) > ([^*]+)\*\*", page)
        self.assertGreater(len(named), 10)
        self.assertEqual([], [words for words in named if not set(words) <= texts_of])
        usage = re.search(r"^VnBrowser.exe \[.*$", page, re.M)[0]
        self.assertIn(usage + "\\n", texts("host/window/texts.inc"))

    def test_figures_are_the_code_s(self):
        for document, said, file, defined in FIGURES:
            figure = re.search(said, (SOURCE / document).read_text(encoding="utf-8"))
            value = re.search(defined, (SOURCE / file).read_text(encoding="utf-8"))
            self.assertTrue(figure and value, said)
            self.assertEqual(int(value[1]), int(figure[1].replace(",", "")), said)


class Header(unittest.TestCase):
    header = read("include/vndiscover.h")

    def test_every_parameter_is_annotated(self):
        for name, parameters in re.findall(r"VN_API \w+ (\w+)\(([^;]*)\);", self.header):
            known = re.findall(r" (\w+)(?:,|$)", parameters) + re.findall(r"^#define (VN_\w+)", self.header, flags=re.M)
            for _, size in ANNOTATION.findall(parameters):
                self.assertIn(size, ["", *known], name)
            for parameter in re.sub(r"\([^()]*\)", "", parameters).split(", "):
                self.assertRegex(parameter, r"^_(In|Out|Inout)_\w*opt_\w* " if "*" in parameter else r"^_In_\w* |^void$", name)


class CSharp(unittest.TestCase):
    maxDiff = None

    header, csharp = ANNOTATION.sub("", read("include/vndiscover.h")), read("examples/csharp/VnDiscover.cs")

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
                   if name != "VN_API"}
        constants = dict(re.findall(r"public const \w+ (VN_\w+) = ([^;]+);", self.csharp))
        self.assertGreater(len(defined), 25)
        self.assertEqual(defined, constants)

    def test_the_record_has_the_same_layout(self):
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
