"""csharp_test.py HEADER CSHARP: the C# declarations say what the header says: names, order and types of arguments,
results, constants, the record's layout.
"""
import re
import sys
import unittest

HEADER, CSHARP = sys.argv.pop(1), sys.argv.pop(1)

# A type of the header, and the C# types that pass it.
TYPES = {
    "HWND": {"IntPtr"},
    "UINT": {"uint"},
    "BYTE": {"byte"},
    "int32_t": {"int"},
    "uint32_t": {"uint"},
    "uint32_t*": {"ref uint"},
    "const wchar_t*": {"[MarshalAs(UnmanagedType.LPWStr)] string"},
    "const char*": {"[MarshalAs(UnmanagedType.LPStr)] string", "byte[]"},
    "char*": {"[Out] byte[]"},
    "uint8_t*": {"[In, Out] byte[]"},
    "VnResponseRecord*": {"ref VnResponseRecord"},
}
WIDTHS = {"uint8_t": 1, "char": 1, "uint16_t": 2, "byte[]": 1, "ushort": 2}


def read(path):
    with open(path, encoding="utf-8") as file:
        text = re.sub(r"/\*.*?\*/", "", file.read(), flags=re.S)
    return re.sub(r"//[^\n]*", "", text) if path.endswith(".cs") else text


def parameters(text):
    """(type, name) of each parameter; commas within brackets do not divide."""
    text = " ".join(text.split())
    pieces = re.split(r",\s*(?![^\[(]*[\])])", text) if text not in ("", "void") else []
    split = (re.match(r"(.*?)\s*(\w+)$", piece).groups() for piece in pieces)
    return [(kind.replace(" *", "*"), name) for kind, name in split]


def functions(text, pattern):
    return {m["name"]: (m["result"], parameters(m["args"])) for m in re.finditer(pattern, text)}


class CSharp(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.header, cls.csharp = read(HEADER), read(CSHARP)
        cls.declared = functions(cls.header, r"VN_API (?P<result>\w+) (?P<name>\w+)\((?P<args>[^;]*)\);")
        cls.imported = functions(
            cls.csharp, r"\[DllImport\(Dll, ExactSpelling = true\)[^\]]*\]\s*public static extern "
            r"(?P<result>\w+) (?P<name>\w+)\((?P<args>[^;]*)\);")

    def test_exports_agree(self):
        self.assertGreater(len(self.declared), 20)
        self.assertEqual(list(self.declared), list(self.imported))
        for name, (result, arguments) in self.declared.items():
            with self.subTest(name):
                importedResult, importedArguments = self.imported[name]
                self.assertIn(importedResult, TYPES[result])
                self.assertEqual([n for _, n in arguments], [n for _, n in importedArguments])
                for (kind, argument), (importedKind, _) in zip(arguments, importedArguments):
                    self.assertIn(importedKind, TYPES[kind], argument)

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
