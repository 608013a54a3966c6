"""What VnBrowser.exe offers to copy for a call of the module: each text is compiled or run, and gives the same."""

import os
import re
import shutil
import subprocess
import unittest

from lab import AGENT, AGENT_CONF, BIN, LAB, SECRETS, TREE, at_once, main, run, start_responder

HEADER = os.path.dirname(os.path.abspath(__file__)) + "/../../include/vndiscover.h"
FOLDER = LAB + "/calls"
EXAMPLES = [f"{TREE}/examples/csharp/{name}.cs" for name in ("Sweep", "VnDiscover")]
CXX = os.environ.get("CXX", "x86_64-w64-mingw32-g++-posix")
# What each call finds, and the texts of the answers.
CALLS = {
    "sweep_v1": [AGENT, "hall"],
    "sweep_ipv6": ["fe80::1:", "hall"],
    "sweep_v3": [AGENT, "Model 1"],
    "sweep_v3_name": [AGENT, "hall"],
    "ask_v1": ["Copy room"],
    "ask_v3": ["Copy room"],
    "wsd": [AGENT],
    "ping": ["answered"],
    "stop": [],
}
ENVIRONMENT = {**SECRETS, "VNDISCOVER_COMMUNITY": "other"}
SHARP_TYPES = {
    "HWND": "IntPtr", "UINT": "uint", "uint32_t": "uint", "int32_t": "int", "BYTE": "byte",
    "VnResponseRecord*": "ref VnResponseRecord",
    "const wchar_t*": "[MarshalAs(UnmanagedType.LPWStr)] string",
    "const char*": "[MarshalAs(UnmanagedType.LPStr)] string",
}


def text_of(name):
    with open(f"{FOLDER}/{name}", encoding="utf-8") as file:
        return file.read()


def folded(text):
    return re.sub(r"\s+", " ", text)


def by_program(name):
    subprocess.run([CXX, "-std=c++17", "-Wall", "-Wextra", "-Werror", "-static", "-I", os.path.dirname(HEADER),
                    f"{FOLDER}/{name}.cpp", f"{BIN}/VnDiscover.dll", "-o", f"{FOLDER}/{name}.exe"], check=True)
    return run(program=f"{FOLDER}/{name}.exe", **ENVIRONMENT)


def by_command(name):
    return run("command", f"{FOLDER}/{name}.command", program="window_helper.exe", **ENVIRONMENT)


class Texts(unittest.TestCase):
    def test_programs_and_commands_give_the_same_answers(self):
        ways = [(by_command, name) for name in CALLS if name != "stop"]  # which has none
        ways += [(by_program, name) for name in CALLS]
        for (_, name), (code, out, err) in zip(ways, at_once(lambda way: way[0](way[1]), ways)):
            self.assertEqual(0, code, name + out + err)
            for answer in CALLS[name]:
                self.assertIn(answer, out, name)

    def test_no_text_holds_a_secret(self):
        for name in os.listdir(FOLDER):
            if name.endswith((".cpp", ".cs", ".command")):
                for secret in ENVIRONMENT.values():
                    self.assertNotIn(secret, text_of(name))

    def test_declarations_are_those_of_the_header(self):
        with open(HEADER, encoding="utf-8") as file:
            header = re.sub(r"\b_(In|Out|Inout)_\w*(\([^()]*\))? ", "", folded(file.read()))  # annotations
        shapes = text_of("shapes.txt").splitlines()
        self.assertGreater(len(shapes), 6)
        for shape in shapes:
            self.assertIn(f"VN_API {shape};", header)

    @unittest.skipUnless(shutil.which("mcs"), "no C# compiler")
    def test_csharp_compiles_and_declares_the_same(self):
        for name in CALLS:
            text = text_of(name + ".cs")
            export, sharp = re.search(r"static extern \w+ (\w+)\(([^;]*)\);", text).groups()
            result, shape = next(line.split(" ", 1) for line in text_of("shapes.txt").splitlines() if f" {export}(" in line)
            self.assertIn(f"extern {SHARP_TYPES[result]} {export}(", text)
            expected = []
            for parameter in shape[len(export) + 1:-1].replace("void", "").split(", "):
                if not parameter:
                    continue
                kind, own_name = parameter.rsplit(" ", 1)
                expected.append(("byte[]" if own_name == "probe" else SHARP_TYPES[kind]) + " " + own_name)
            self.assertEqual(", ".join(expected), folded(sharp))
            subprocess.run(["mcs", "-warnaserror", "-r:System.Windows.Forms", f"-out:{FOLDER}/{name}_cs.exe",
                            f"{FOLDER}/{name}.cs"], check=True)
        subprocess.run(["mcs", "-warnaserror", f"-out:{FOLDER}/sweep_cs.exe", *EXAMPLES], check=True)
        # The record has the header's layout.
        with open(FOLDER + "/layout.cs", "w", encoding="utf-8") as file:
            file.write('using System; using System.Runtime.InteropServices; static class Layout { static void Main() {'
                       'Console.Write(Marshal.SizeOf(typeof(VnResponseRecord)) + " " +'
                       'Marshal.OffsetOf(typeof(VnResponseRecord), "oidLength")); } }')
        subprocess.run(["mcs", "-main:Layout", f"-out:{FOLDER}/layout.exe", f"{FOLDER}/layout.cs",
                        f"{FOLDER}/ask_v3.cs"], check=True)
        layout = subprocess.run(["mono", FOLDER + "/layout.exe"], stdout=subprocess.PIPE, check=True).stdout.decode()
        self.assertEqual("4312 4276", layout)


def write_texts():
    subprocess.run(["ip", "-n", "host", "link", "set", "eth1", "down"], check=True)  # sweeps take half the time
    os.mkdir(FOLDER)
    shutil.copy(BIN + "/VnDiscover.dll", FOLDER)
    folder = "Z:" + FOLDER.replace("/", "\\")
    code, _, err = run("texts", folder, program="window_helper.exe", **ENVIRONMENT)
    assert code == 0, err
    start_responder("neta", AGENT)


if __name__ == "__main__":
    main(AGENT_CONF + 'rocommunity other\nrocommunity6 other\npsysName hall\npsysContact Copy room\n'
         'override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"\n', write_texts)
