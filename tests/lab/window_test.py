"""VnBrowser.exe for scripts, with a real agent."""

import json
import os
import subprocess
import unittest

from lab import AGENT, AGENT_CONF, LAB, SCRIPTS, SECRETS, found, main, run

SCAN = LAB + "/scan.json"
FULL = LAB + "/full"  # a disk with an older scan and no space left


def browse(*arguments):
    return run(*arguments, program="VnBrowser.exe")[0]


class Scripts(unittest.TestCase):
    def test_keeps_what_the_console_prints(self):
        printed = [(device["address"], device["value"]) for device in json.loads(found("sweep", "--format", "json"))]
        self.assertEqual(0, browse("--sweep", "--save", SCAN, "--exit"))
        with open(SCAN, encoding="utf-8") as file:
            scan = json.load(file)
        kept = [(answer["address"], answer["text"]) for answer in scan["answers"]
                if scan["sweeps"][answer["sweep"]]["kind"] == "snmpv1"]
        self.assertEqual([(AGENT, "Model 1")], kept)
        self.assertEqual(printed, kept)

    def test_sweeps_over_snmpv3_with_a_kept_profile(self):
        self.assertEqual(0, run("profile", "Office", program="window_helper.exe", **SECRETS)[0])
        self.assertEqual(0, browse("--profile", "Office", "--sweep", "--save", SCAN, "--exit"))
        with open(SCAN, encoding="utf-8") as file:
            scan = json.load(file)
        self.assertEqual([(AGENT, "Model 1")], [
            (answer["address"], answer["text"]) for answer in scan["answers"]
            if scan["sweeps"][answer["sweep"]]["kind"] == "snmpv3"])
        self.assertEqual(2, browse("--profile", "Hall", "--sweep", "--save", SCAN, "--exit"))

    def test_tells_of_a_file_that_cannot_be_written(self):
        self.assertEqual(2, browse("--sweep", "--save", LAB + "/none/scan.json", "--exit"))

    def test_keeps_the_older_scan_when_the_disk_is_full(self):
        with open(FULL + "/scan.json", "wb") as file:
            file.write(b"older" * 100)
        with open(FULL + "/rest", "wb", buffering=0) as file, self.assertRaises(OSError):
            while True:
                file.write(bytes(4096))
        self.assertEqual(2, browse("--sweep", "--save", FULL + "/scan.json", "--exit"))
        with open(FULL + "/scan.json", "rb") as file:
            self.assertEqual(b"older" * 100, file.read())
        self.assertEqual({"rest", "scan.json"}, set(os.listdir(FULL)))

    def test_tells_of_wrong_usage(self):
        self.assertEqual(2, browse("--save", SCAN))


def prepare():
    os.mkdir(FULL)
    subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", FULL], check=True)
    wine = SCRIPTS + "/wine-run.sh"
    subprocess.run([wine, "host", "reg", "add", r"HKCU\Software\Wine\Drivers", "/v", "Graphics", "/d", "null", "/f"],
                   check=True, stdout=subprocess.DEVNULL)
    # The programs that ran so far have a desktop without a driver, and do not see the disk.
    subprocess.run([wine, "--stop", "host"], check=True)


if __name__ == "__main__":
    # One at a time: another sweep's answers would come to this one's port.
    main(AGENT_CONF + 'override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"\n', prepare,
         alone=("prints", "written", "profile", "full"))
