"""Installs the kit from the build folder and reads it as a host developer, a debugger and an auditor would.

Environment: BUILD, SOURCE, DEPS (folders), KIT (folder to install to), CMAKE, NM, OBJDUMP (programs).
"""
import binascii
import json
import os
import re
import shutil
import subprocess
import unittest
from pathlib import Path

BUILD, SOURCE, DEPS, KIT = (Path(os.environ[name]) for name in ("BUILD", "SOURCE", "DEPS", "KIT"))

FILES = """
    SHA256SUMS THIRD-PARTY-NOTICES.txt sbom.cdx.json
    bin/VnDiscover.dll bin/VnDiscover.dll.debug bin/vndiscover.exe bin/vndiscover.exe.debug
    docs/architecture.md docs/host-guide.md docs/protocol-behaviours.md
    examples/CMakeLists.txt examples/c/sweep.c examples/cpp/worker_sweep.cpp examples/csharp/VnDiscover.cs
    include/vndiscover.h
    lib/VnDiscover.lib lib/libVnDiscover.dll.a lib/pkgconfig/vndiscover.pc
    lib/cmake/VnDiscover/VnDiscoverConfig.cmake lib/cmake/VnDiscover/VnDiscoverConfigVersion.cmake
    licenses/CLI11.txt licenses/GCC-runtime-libraries.txt licenses/OpenSSL.txt licenses/cJSON.txt
    licenses/mingw-w64.txt licenses/pugixml.txt
    """.split()


def run(*command):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True, text=True).stdout


def setUpModule():
    shutil.rmtree(KIT, ignore_errors=True)
    run(os.environ["CMAKE"], "--install", BUILD, "--prefix", KIT)


def header_version(path, *macros):
    text = (DEPS / "include" / path).read_text(encoding="utf-8")
    return ".".join(re.search(rf"define\s+{macro}\s+(\d+)", text)[1] for macro in macros)


class Kit(unittest.TestCase):
    maxDiff = None

    def test_holds_every_file(self):
        present = {str(path.relative_to(KIT)) for path in KIT.rglob("*") if path.is_file()}
        self.assertEqual([], sorted(set(FILES) - present))
        # Documents and examples may grow; nothing else may slip in.
        others = {name for name in present - set(FILES) if not name.startswith(("docs/", "examples/"))}
        self.assertEqual(set(), others)

    def test_checksums_cover_every_file(self):
        subprocess.run(["sha256sum", "--check", "--quiet", "--strict", "SHA256SUMS"], check=True, cwd=KIT)
        listed = [line.split("  ")[1] for line in (KIT / "SHA256SUMS").read_text().splitlines()]
        present = {str(path.relative_to(KIT)) for path in KIT.rglob("*") if path.is_file()}
        self.assertEqual(present - {"SHA256SUMS"}, set(listed))
        self.assertEqual(sorted(listed), listed)

    def test_both_import_libraries_name_every_export(self):
        text = (SOURCE / "src/interface/vndiscover.def").read_text()
        exports = set(re.findall(r"^\s+(\w+)\s*$", text, flags=re.M))
        for library in ("libVnDiscover.dll.a", "VnDiscover.lib"):
            with self.subTest(library):
                symbols = set(re.findall(r" T (\w+)$", run(os.environ["NM"], KIT / "lib" / library), flags=re.M))
                self.assertEqual(exports, symbols)
                self.assertIn(b"VnDiscover.dll", (KIT / "lib" / library).read_bytes())

    def test_programs_are_stripped_and_point_to_their_symbols(self):
        for name in ("VnDiscover.dll", "vndiscover.exe"):
            with self.subTest(name):
                program, symbols = KIT / "bin" / name, KIT / "bin" / (name + ".debug")
                sections = run(os.environ["OBJDUMP"], "-h", program)
                self.assertNotRegex(sections, r"\.debug_|\.zdebug_")
                self.assertEqual([], re.findall(r" T ", subprocess.run(
                    [os.environ["NM"], program], capture_output=True, text=True, check=False).stdout))
                self.assertIn("vndiscover", run(os.environ["NM"], symbols))
                # The link: the file's name, padded, and its checksum, by which a debugger knows the right one.
                checksum = binascii.crc32(symbols.read_bytes()).to_bytes(4, "little")
                link = symbols.name.encode() + b"\0"
                link += b"\0" * (-len(link) % 4) + checksum
                self.assertIn(link, program.read_bytes())

    def test_no_file_names_a_folder_of_the_build(self):
        folders = [str(path).encode() for path in (BUILD, SOURCE, DEPS)]
        for path in KIT.rglob("*"):
            if path.is_file():
                content = path.read_bytes()
                self.assertEqual([], [folder for folder in folders if folder in content], path)


class ThirdParty(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sbom = json.loads((KIT / "sbom.cdx.json").read_text())
        cls.versions = {c["name"]: c["version"] for c in cls.sbom["components"]}
        cls.notices = (KIT / "THIRD-PARTY-NOTICES.txt").read_text()

    def test_versions_are_those_of_what_was_linked(self):
        linked = {
            "cJSON": header_version("cjson/cJSON.h", *(f"CJSON_VERSION_{n}" for n in ("MAJOR", "MINOR", "PATCH"))),
            "OpenSSL": header_version("openssl/opensslv.h",
                                      *(f"OPENSSL_VERSION_{n}" for n in ("MAJOR", "MINOR", "PATCH"))),
            "CLI11": header_version("CLI/Version.hpp", *(f"CLI11_VERSION_{n}" for n in ("MAJOR", "MINOR", "PATCH"))),
        }
        for name, version in linked.items():
            # The package's version: the library's own, then what the distribution changed.
            self.assertRegex(self.versions[name], rf"^{re.escape(version)}([-+~].*)?$", name)
        built = dict(line.split(" ") for line in (DEPS / "versions.txt").read_text().splitlines())
        for name in ("cJSON", "pugixml", "CLI11"):
            self.assertEqual(built[name], self.versions[name])

    def test_the_bill_is_complete_and_consistent(self):
        self.assertEqual("CycloneDX", self.sbom["bomFormat"])
        self.assertRegex(self.sbom["serialNumber"], r"^urn:uuid:[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$")
        references = [c["bom-ref"] for c in self.sbom["components"]]
        self.assertEqual(len(references), len(set(references)))
        self.assertEqual([{"ref": "VnDiscover", "dependsOn": references}], self.sbom["dependencies"])
        for component in self.sbom["components"]:
            self.assertTrue(component["version"] and component["licenses"] and component["purl"], component)

    def test_each_component_has_its_notice_and_the_package_s_own_text(self):
        for name, version in self.versions.items():
            self.assertIn(f"{name} {version}\n", self.notices)
            text = (KIT / "licenses" / (name.replace(" ", "-") + ".txt")).read_bytes()
            original = DEPS / "licenses" / f"{name}.txt"
            if original.exists():
                self.assertEqual(original.read_bytes(), text)
            self.assertRegex(text.decode().lower(), r"licen[sc]e|permission is hereby granted")


if __name__ == "__main__":
    unittest.main()
