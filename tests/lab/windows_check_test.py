"""windows_check.exe under this Wine: every row of its report is the one in docs/platforms.md."""

import os
import re
import shutil
import subprocess
import unittest
from pathlib import Path

import lab

LAB, BIN = Path(lab.LAB), Path(lab.BIN)
LONG_PATHS = r"HKLM\System\CurrentControlSet\Control\FileSystem"
DOCUMENT = Path(lab.SCRIPTS).parent.parent / "docs/platforms.md"

# Counts the UDP datagrams and echo requests that are sent on an adapter.
SNIFFER = """
import signal, socket
sock = socket.socket(socket.AF_PACKET, socket.SOCK_DGRAM, socket.htons(3))  # every protocol
print(flush=True)
left = 0
def stop(*_):
    print(left, flush=True)
    raise SystemExit
signal.signal(signal.SIGTERM, stop)
while True:
    packet, (link, kind, direction, _, _) = sock.recvfrom(4096)
    protocol = packet[9] if kind == 0x0800 else packet[6] if kind == 0x86DD else 0
    left += link != "lo" and direction == socket.PACKET_OUTGOING and protocol in (17, 1)
"""


def cells(line):
    return [cell.strip() for cell in line.strip().strip("|").split(" | ")]


def table(text):
    """(section, name) -> the other cells, for every row of every table."""
    rows, section = {}, ""
    for line in text.splitlines():
        if line.startswith("##"):
            section = line.lstrip("# ")
        elif line.startswith("| ") and not line.startswith("| |"):
            name, *others = cells(line)
            rows[section, name] = others
    return rows


def python(net, script):
    """Starts a program in a namespace and returns once it has printed a line."""
    program = subprocess.Popen(["ip", "netns", "exec", net, "python3", "-c", script], stdin=subprocess.PIPE,
                               stdout=subprocess.PIPE, text=True)
    program.stdout.readline()
    return program


def run(net, *options, program=BIN / "windows_check.exe"):
    """Exit code, report or None, the output, and the number of datagrams that left the namespace."""
    folder = LAB / f"check-{net}"
    folder.mkdir(exist_ok=True)
    sniffer = python(net, SNIFFER)
    if net == "host":  # which has a console, and paths of any length
        subprocess.run([lab.SCRIPTS + "/wine-run.sh", net, "reg", "add", LONG_PATHS, "/v", "LongPathsEnabled",
                        "/t", "REG_DWORD", "/d", "1", "/f"], check=True)
        code, printed, _ = lab.run_on_terminal([("Press a key", b"\n")], *options, program=str(program),
                                               folder=folder, limit=250)
    else:
        done = subprocess.run([lab.SCRIPTS + "/wine-run.sh", net, str(program), *options], cwd=folder, check=False,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=250)
        code, printed = done.returncode, done.stdout + done.stderr
    sniffer.terminate()
    left = int(sniffer.communicate()[0])
    report = folder / "windows_check.md"
    return code, report.read_text(encoding="ascii") if report.is_file() else None, printed, left


class Check(unittest.TestCase):
    maxDiff = None

    def test_every_row_is_the_documented_one(self):
        code, report, printed, left = run("host", "--network")
        self.assertIsNotNone(report, printed)
        wine = "Wine " + re.search(r"that is Wine (\d+)", report)[1]
        document = DOCUMENT.read_text(encoding="utf-8")
        columns = cells(re.search(r"^\| \| expected .*$", document, re.M)[0])
        if wine not in columns:
            print(f"skipped: the rows, since {DOCUMENT.name} has no column for {wine}")
            self.skipTest(wine)
        column = columns.index(wine) - 1
        documented = {key: (row[0], row[0] if row[column] == "ok" else row[column])
                      for key, row in table(document).items() if len(row) == len(columns) - 1}
        rows = table(report)
        self.assertEqual(documented, {key: (row[0], row[1]) for key, row in rows.items()})
        different = [name for (_, name), row in rows.items() if row[2] == "DIFFERENT"]
        self.assertEqual([name for (_, name), row in rows.items()
                          if row[0] != row[1] and not row[1].startswith("not seen")], different)
        self.assertEqual((1 if different else 0), code)
        self.assertIn(f", {len(different)} different, ", report)
        self.assertGreater(left, 4)  # the sweeps: the counter counts
        for secret in (os.uname().nodename, "root", "10.77.", "fe80", "check-auth", "check-priv", str(LAB)):
            self.assertNotIn(secret.lower(), report.lower())

    def test_nothing_leaves_the_loopback(self):
        holder = python("neta", "import socket; s = socket.socket(type=socket.SOCK_DGRAM); s.bind(('', 161)); "
                                "print(flush=True); input()")
        code, report, printed, left = run("neta")
        holder.communicate("\n")
        self.assertEqual((1, 0), (code, left), printed)
        self.assertRegex(report, r"leaves, address 1 \| by its own adapter \| not seen: needs --network")
        self.assertNotIn("Sweeps in every network", report)
        self.assertIn("| directed requests | an agent of ours on port 161 | not seen: port 161 is taken", report)
        self.assertIn("| directed v3 requests | an agent of ours on port 161 | not seen: port 161 is taken", report)
        self.assertNotRegex(report, r"\| (get|v3 get, MD5, DES) \|")
        self.assertIn("| unloading after a sweep |", report)

    def test_without_the_module_the_rest_is_reported(self):
        alone = shutil.copy(BIN / "windows_check.exe", LAB)
        code, report, printed, _ = run("netb", "--netwrok", program=alone)
        self.assertEqual((2, None), (code, report))
        self.assertIn("windows_check [--network] [--report FILE]", printed)
        code, report, printed, _ = run("netb", "--report", "nowhere/report.md", program=alone)
        self.assertEqual((2, None), (code, report))
        self.assertIn("nowhere/report.md cannot be written", printed)
        code, report, printed, _ = run("netb", program=alone)
        self.assertRegex(report, r"\nSeconds: .*The firewall's policy \d+\.\d, .*\d\.\d\n$")
        self.assertEqual(1, code, printed)
        self.assertIn("| VnDiscover.dll beside this program | loads (0) | does not load (126) | DIFFERENT |", report)
        self.assertIn("| SHA-256 | ba7816bf8f01cfea | ba7816bf8f01cfea | ok |", report)
        # Where it may not write, it writes into the temporary folder and tells the whole path.
        (LAB / "check-netb/windows_check.md").unlink()
        (LAB / "check-netb/windows_check.md").mkdir()
        self.assertRegex(run("netb", program=alone)[2], r"Please send back [A-Z]:\\.*[Tt]e?mp\\windows_check\.md")


if __name__ == "__main__":
    lab.main()
