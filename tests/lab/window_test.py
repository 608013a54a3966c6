"""VnBrowser.exe for scripts, with real agents and a real WS-Discovery responder."""

import collections
import json
import os
import re
import subprocess
import unittest

from lab import AGENT, AGENT_CONF, HAS_WSDD, LAB, SECRETS, V3, at_once, found, main, run, start_agent, start_responder

PRIVATE = "10.77.2.2"  # refuses communities
SCAN = LAB + "/scan.json"
MODEL = 'override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model {}"\n'
FULL = LAB + "/full"  # a disk with an older scan and no space left
OLDER = b'{"format":"vndiscover-scan","version":1,"sweeps":[],"answers":[],"splits":[]}' + b" " * 500


def browse(*arguments):
    return run(*arguments, program="VnBrowser.exe")[0]


def json_of(*arguments):
    return json.loads(found(*arguments, "--format", "json", **SECRETS))


class Scripts(unittest.TestCase):
    def test_keeps_what_the_console_prints(self):
        self.assertEqual(0, run("profile", "Office", program="window_helper.exe", **SECRETS)[0])
        code, _, v1, v3, wsd = at_once(lambda look: look(), (
            lambda: browse("--profile", "Office", "--look-for", "module", "--sweep", "--save", SCAN, "--exit"),
            lambda: browse("--look-for", "everything", "--sweep", "--save", SCAN + "2", "--exit"),
            lambda: json_of("sweep"), lambda: json_of("sweep", *V3), lambda: json_of("wsd", "--types", "wsdp:Device")))
        self.assertEqual(0, code)
        with open(SCAN, encoding="utf-8") as file, open(SCAN + "2", encoding="utf-8") as other:
            scan, everything = json.load(file), json.load(other)

        def kept(kind, scan=scan):
            return [{"address": answer["address"], "value": answer["text"]} for answer in scan["answers"]
                    if scan["sweeps"][answer["sweep"]]["kind"] == kind]

        self.assertEqual([{"address": AGENT, "value": "Model 1"}], v1)
        self.assertEqual([*v1, {"address": PRIVATE, "value": "Model 2"}], v3)
        self.assertEqual((v1, v3), (kept("snmpv1"), kept("snmpv3")))
        self.assertEqual([(device["address"], device["replies"]) for device in wsd],
                         [*collections.Counter(answer["address"] for answer in kept("wsd", everything)).items()])
        endpoints = {device["address"]: [device["endpoint"]] for device in wsd}
        self.assertEqual([PRIVATE], list(endpoints))
        if HAS_WSDD:  # wsdd2 answers a probe for printers too, as the computer that it is
            self.assertEqual([], kept("wsd"))
        self.assertEqual({AGENT: "Model 1", PRIVATE: "Model 2"},
                         {device["addresses"][0]: device["model"] for device in scan["devices"]})
        self.assertEqual(endpoints, {device["addresses"][0]: device["endpoints"] for device in everything["devices"] if device["endpoints"]})

    def test_reads_and_walks_as_the_console_does(self):
        for host, options, secrets, name in ((PRIVATE, V3, SECRETS, "GetNextSnmpRequestV3"), (AGENT, [], {}, "GetNextSnmpRequestRaw")):
            walked = found("walk", host, "ifDescr", *options, **secrets).replace("OCTET STRING: ", "").splitlines()
            self.assertLess(1, len(walked))
            _, shown, _ = run("read", host, program="window_helper.exe", **secrets)
            calls = f"1{name}" * (len(walked) + 1)
            self.assertEqual([*(line.split(" = ")[1] for line in walked), *walked, calls], shown.splitlines())

    def test_diagnoses_a_device_as_doctor_does(self):
        for host, options, secrets in ((PRIVATE, V3, SECRETS), (AGENT, [], {})):
            out, (_, shown, _) = at_once(lambda look: look(), (
                lambda: json_of("doctor", host, *options) if options else json.loads(found("doctor", host, "--format", "json")),
                lambda: run("diagnose", host, program="window_helper.exe", **secrets)))
            steps = [": ".join(filter(None, (out[name]["outcome"], out[name].get("detail"))))
                     for name in ("ping", "snmpV1", "snmpV3Engine", "snmpV3User")]
            shown = re.sub(r" after (under )?[\d.]+ s", "", shown).splitlines()
            calls = dict.fromkeys(shown[5:])  # a silent protocol is asked twice
            self.assertEqual([*steps, out["verdict"]], shown[:5])
            self.assertEqual(["VxPing", "GetNextSnmpRequestRaw", "GetNextSnmpRequestV3"], [*calls])

    def test_needs_a_kept_profile(self):
        code, _, told = run("--profile", "Hall", "--sweep", "--save", SCAN, "--exit", program="VnBrowser.exe")
        self.assertEqual((2, "VnBrowser: The profile Hall does not exist or cannot be opened. "
                             "Choose another in the SNMP settings.\n"), (code, told))

    def test_tells_of_a_file_that_cannot_be_written(self):
        for option in ("--save", "--csv"):
            self.assertEqual(1, browse("--sweep", option, LAB + "/none/scan.json", "--exit"))

    def test_replaces_no_file_that_is_not_a_scan(self):
        with open(LAB + "/letter.txt", "w", encoding="ascii") as file:
            file.write("Dear")
        code, _, told = run("--sweep", "--save", LAB + "/letter.txt", "--exit", program="VnBrowser.exe")
        self.assertEqual(1, code)
        self.assertIn("is there already, and is not a scan", told)
        with open(LAB + "/letter.txt", encoding="ascii") as file:
            self.assertEqual("Dear", file.read())
        with open(LAB + "/kept.json", "w", encoding="ascii") as file:
            file.write('{"format": "vndiscover-scan", "version": 1, "answers": [], "splits": [], "sweeps": []}')
        code, _, told = run("--sweep", "--csv", LAB + "/kept.json", "--exit", program="VnBrowser.exe")
        self.assertEqual(1, code)
        self.assertIn("is a scan, and would be replaced", told)

    def test_keeps_the_older_scan_when_the_disk_is_full(self):
        with open(FULL + "/scan.json", "wb") as file:
            file.write(OLDER)
        with open(FULL + "/rest", "wb", buffering=0) as file, self.assertRaises(OSError):
            while True:
                file.write(bytes(4096))
        self.assertEqual(1, browse("--sweep", "--save", FULL + "/scan.json", "--exit"))
        with open(FULL + "/scan.json", "rb") as file:
            self.assertEqual(OLDER, file.read())
        self.assertEqual({"rest", "scan.json"}, set(os.listdir(FULL)))

    def test_tells_of_wrong_usage(self):
        for words, problem in ((["--sweep", "--save", ""], "--save needs a value."), (["--save", SCAN], "--read, --save, --csv and --exit need --sweep."),
                               (["--help"], "There is no option --help."),
                               (["--profile", "--sweep"], "--profile needs a value."), (["--look-for", "x"], "--look-for does not take x."),
                               (["--sweep", "--save", "a", "--csv", "A"], "--save and --csv both name A. Give each a file of its own.")):
            code, _, told = run(*words, "--exit", program="VnBrowser.exe")
            self.assertEqual((2, f"VnBrowser: {problem}\n\nUsage:\nVnBrowser.exe ["), (code, told[:told.find("[") + 1]))
        code, _, told = run("--help", program="VnBrowser.exe")  # no message that nobody answers
        self.assertEqual((2, "VnBrowser: There is no option --help."), (code, told.splitlines()[0]))


def prepare():
    os.mkdir(FULL)
    subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "tmpfs", FULL], check=True)
    start_agent("netb", re.sub("rocommunity6? .*", "", AGENT_CONF) + MODEL.format(2))
    start_responder("netb", PRIVATE)


if __name__ == "__main__":
    main(AGENT_CONF + MODEL.format(1), prepare)
