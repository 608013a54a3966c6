"""Installs the kit from the build folder and inspects it like a host developer, a debugger and an auditor.

Environment: BUILD, SOURCE, DEPS (folders), KIT (folder to install to), VERSION, CMAKE, NM, OBJDUMP (programs).
"""
import binascii
import json
import os
import re
import shutil
import struct
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

BUILD, SOURCE, DEPS, KIT = (Path(os.environ[name]) for name in ("BUILD", "SOURCE", "DEPS", "KIT"))
NM, OBJDUMP = os.environ["NM"], os.environ["OBJDUMP"]

PROGRAMS = ("vndiscover.exe", "VnBrowser.exe", "windows_check.exe")
FILES = """
    CHANGELOG.md CONTRIBUTING.md README.md SHA256SUMS THIRD-PARTY-NOTICES.txt sbom.cdx.json
    bin/VnDiscover.dll bin/VnDiscover.dll.debug bin/vndiscover.exe bin/vndiscover.exe.debug
    bin/VnBrowser.exe bin/VnBrowser.exe.debug
    bin/windows_check.exe bin/windows_check.exe.debug
    docs/architecture.md docs/host-guide.md docs/protocol-behaviours.md docs/vndiscover.md docs/vnbrowser.md
    examples/CMakeLists.txt examples/c/sweep.c examples/cpp/worker_sweep.cpp examples/csharp/VnDiscover.cs
    examples/csharp/Sweep.cs
    include/vndiscover.h
    lib/VnDiscover.lib lib/libVnDiscover.dll.a lib/pkgconfig/vndiscover.pc
    lib/cmake/VnDiscover/VnDiscoverConfig.cmake lib/cmake/VnDiscover/VnDiscoverConfigVersion.cmake
    licenses/CLI11.txt licenses/GCC-runtime-libraries.txt licenses/OpenSSL.txt licenses/cJSON.txt
    licenses/mingw-w64.txt licenses/pugixml.txt
    """.split()
# A pattern of symbols that only the component has.
MARKS = {"cJSON": "cJSON_", "OpenSSL": r"AES_\w*crypt", "pugixml": "pugi", "CLI11": "3CLI",
         "GCC runtime libraries": r"__gxx_personality|__register_frame_info|_Unwind_", "mingw-w64": "mainCRTStartup|DllMainCRTStartup"}


def run(*command):
    return subprocess.run([str(word) for word in command], check=True, capture_output=True, text=True).stdout


def setUpModule():
    shutil.rmtree(KIT, ignore_errors=True)
    run(os.environ["CMAKE"], "--install", BUILD, "--prefix", KIT)


def files():
    return {str(path.relative_to(KIT)) for path in KIT.rglob("*") if path.is_file()}


class Kit(unittest.TestCase):
    maxDiff = None

    def test_holds_every_file_with_its_checksum(self):
        # Documents and examples may be added, but nothing else.
        others = {name for name in files() - set(FILES) if name.startswith(("docs/", "examples/"))}
        self.assertEqual(sorted(FILES), sorted(files() - others))
        run("sh", "-c", f"cd '{KIT}' && sha256sum --check --quiet --strict SHA256SUMS")
        listed = [line.split("  ")[1] for line in (KIT / "SHA256SUMS").read_text().splitlines()]
        self.assertEqual(sorted(files() - {"SHA256SUMS"}), listed)

    def test_links_of_its_documents_lead_into_it(self):
        for document in KIT.rglob("*.md"):
            for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", document.read_text(encoding="utf-8")):
                inside = os.path.relpath(document.parent / target, KIT)
                self.assertTrue((KIT / inside).exists(), f"{document.name}: {target}")

    def test_all_name_the_same_functions(self):
        declared = set(re.findall(r"^VN_API \w+ (\w+)\(", (KIT / "include/vndiscover.h").read_text(), flags=re.M))
        self.assertGreater(len(declared), 20)
        dump = run(OBJDUMP, "-p", KIT / "bin/VnDiscover.dll")
        table = re.search(r"\[Ordinal/Name Pointer\] Table.*\n((?:\s+\[.*\n|\s+Ordinal .*\n)+)", dump)[1]
        # DllMain is exported, but hosts must not call it.
        self.assertEqual(declared | {"DllMain"}, set(re.findall(r"\].* (\w+)$", table, flags=re.M)))
        for library in (KIT / "lib/libVnDiscover.dll.a", KIT / "lib/VnDiscover.lib"):
            self.assertEqual(declared, set(re.findall(r" T (\w+)$", run(NM, library), flags=re.M)), library)
            self.assertIn(b"VnDiscover.dll", library.read_bytes())

    def test_programs_need_no_dll_that_a_windows_may_lack(self):
        # iphlpapi, icmp and bcrypt are loaded at run time.
        system = "kernel32|msvcrt|ucrtbase|api-ms-win-crt-.*|ws2_32|advapi32|user32"
        for name, allowed in (("VnDiscover.dll", system), ("vndiscover.exe", system + "|shell32|ole32|oleaut32|vndiscover"),
                              ("VnBrowser.exe", system + "|comctl32|comdlg32|crypt32|gdi32|shell32|ole32|oleaut32|vndiscover"),
                              ("windows_check.exe", system + "|iphlpapi|bcrypt|psapi|comctl32|crypt32|gdi32|ole32|oleaut32")):
            imported = re.findall(r"dll name: (.*)\.dll", run(OBJDUMP, "-p", KIT / "bin" / name).lower())
            self.assertTrue(imported)
            self.assertEqual([], [dll for dll in imported if not re.fullmatch(allowed, dll)], name)

    def test_version_is_the_project_s_everywhere(self):
        version = os.environ["VERSION"]
        self.assertEqual(version, json.loads((SOURCE / "vcpkg.json").read_text())["version"])
        for name in ("VnDiscover.dll", *PROGRAMS):
            content = (KIT / "bin" / name).read_bytes()
            # VS_FIXEDFILEINFO: the signature, the version of the structure, then those of the file and the product.
            at = content.index(struct.pack("<II", 0xFEEF04BD, 0x00010000)) + 8
            for minor, major, last, patch in struct.iter_unpack("<4H", content[at:at + 16]):
                self.assertEqual(f"{version}.0", f"{major}.{minor}.{patch}.{last}")
            for key, value in (("FileVersion", f"{version}.0"), ("ProductVersion", f"{version}.0"), ("OriginalFilename", name)):
                wanted = key.encode("utf-16-le") + rb"\0+" + re.escape(f"{value}\0".encode("utf-16-le"))
                self.assertTrue(re.search(wanted, content), (name, key))

    def test_programs_say_what_windows_must_know_of_them(self):
        icon = (SOURCE / "cmake/program/program.ico").read_bytes()
        for name in PROGRAMS:
            content = (KIT / "bin" / name).read_bytes()
            # The firewall's question shows it.
            self.assertTrue(re.search("FileDescription".encode("utf-16-le") + rb"\0+V\0n\0", content), name)
            manifest = content[content.index(b'<?xml version="1.0" encoding="UTF-8" standalone="yes"?>'):]
            manifest = ElementTree.fromstring(manifest[:manifest.index(b"</assembly>") + len(b"</assembly>")])
            said = {element.tag.rpartition("}")[2]: element.text for element in manifest.iter()}
            # In this order: the first that a system knows holds.
            self.assertEqual("PerMonitorV2, PerMonitor", said["dpiAwareness"], name)
            self.assertEqual("true", said["longPathAware"], name)
            self.assertEqual("asInvoker", manifest.find(".//{*}requestedExecutionLevel").get("level"), name)
            self.assertEqual(4, len(manifest.findall(".//{*}supportedOS")), name)
            self.assertIn("Microsoft.Windows.Common-Controls",
                          [element.get("name") for element in manifest.findall(".//{*}assemblyIdentity")], name)
            for at in range(6, 6 + 16 * icon[4], 16):
                size, where = struct.unpack("<II", icon[at + 8:at + 16])
                self.assertIn(icon[where:where + size], content, name)

    def test_the_window_is_small(self):
        if "VNDISCOVER_SANITIZE:STRING=trap" in (BUILD / "CMakeCache.txt").read_text(encoding="utf-8"):
            self.skipTest("the checks of a sanitizer take room")
        self.assertLess((KIT / "bin/VnBrowser.exe").stat().st_size, 2 << 20)

    def test_stripped_programs_point_to_their_symbols(self):
        for name in ("VnDiscover.dll", "vndiscover.exe"):
            program, symbols = KIT / "bin" / name, KIT / "bin" / (name + ".debug")
            self.assertNotRegex(run(OBJDUMP, "-h", program), r"\.debug_|\.zdebug_")
            self.assertNotRegex(run(NM, program), r" T ")
            self.assertIn("vndiscover", run(NM, symbols))
            # The link: the padded name of the file, and its checksum, by which a debugger verifies it.
            link = symbols.name.encode() + b"\0"
            link += b"\0" * (-len(link) % 4) + binascii.crc32(symbols.read_bytes()).to_bytes(4, "little")
            self.assertIn(link, program.read_bytes())

    def test_no_file_names_a_folder_of_the_build(self):
        # Not a part of a longer path: "./src/name.cpp" does not name a clone in "/src".
        folders = b"|".join(re.escape(str(folder).encode()) for folder in (BUILD, SOURCE, DEPS))
        named = re.compile(rb"(?<![a-z0-9_.])(?:" + folders + rb")(?![\w.])")
        for name in files():
            self.assertEqual([], named.findall((KIT / name).read_bytes()), name)


class ThirdParty(unittest.TestCase):
    def setUp(self):
        self.sbom = json.loads((KIT / "sbom.cdx.json").read_text())

    def test_versions_are_those_of_what_was_linked(self):
        versions = {component["name"]: component["version"] for component in self.sbom["components"]}
        headers = {"cJSON": "cjson/cJSON.h", "CLI11": "CLI/Version.hpp", "OpenSSL": "openssl/opensslv.h"}
        for name, header in headers.items():
            text = (DEPS / "include" / header).read_text(encoding="utf-8")
            linked = ".".join(re.search(rf"define\s+{name.upper()}_VERSION_{part}\s+(\d+)", text)[1]
                              for part in ("MAJOR", "MINOR", "PATCH"))
            # The package's version: the library's, followed by the distribution's revision.
            self.assertRegex(versions[name], rf"^{re.escape(linked)}([-+~].*)?$", name)

    def test_the_bill_names_every_components_programs(self):
        programs = ("VnDiscover.dll", *PROGRAMS)
        symbols = {program: run(NM, KIT / "bin" / f"{program}.debug") for program in programs}
        for component in self.sbom["components"]:
            holders = component["properties"][0]["value"]
            self.assertEqual([program for program in programs if re.search(MARKS[component["name"]], symbols[program])],
                             [program for program in programs if program in holders], component["name"])
            row = next(line for line in (KIT / "README.md").read_text(encoding="utf-8").splitlines()
                       if line.startswith("| " + component["name"].split(" runtime")[0]))
            self.assertEqual([program in holders for program in programs],
                             [" all |" in row or f"`{program}`" in row for program in programs], row)

    def test_each_component_has_its_notice(self):
        self.assertEqual("CycloneDX", self.sbom["bomFormat"])
        self.assertRegex(self.sbom["serialNumber"], r"^urn:uuid:[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}$")
        references = [c["bom-ref"] for c in self.sbom["components"]]
        self.assertEqual(len(references), len(set(references)))
        self.assertEqual([{"ref": "VnDiscover", "dependsOn": references}], self.sbom["dependencies"])
        notices = (KIT / "THIRD-PARTY-NOTICES.txt").read_text()
        for component in self.sbom["components"]:
            name = component["name"]
            self.assertTrue(component["version"] and component["licenses"] and component["purl"], name)
            self.assertIn(f"{name} {component['version']}\n", notices)
            text = (KIT / "licenses" / (name.replace(" ", "-") + ".txt")).read_bytes()
            original = DEPS / "licenses" / f"{name}.txt"
            if original.exists():
                self.assertEqual(original.read_bytes(), text)
            self.assertRegex(text.decode().lower(), r"licen[sc]e|permission is hereby granted")


if __name__ == "__main__":
    unittest.main()
