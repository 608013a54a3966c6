"""vndiscover.exe printer with a real agent that has a full Printer MIB."""

import json
import re
import subprocess
import unittest

from lab import AGENT, AGENT6, AGENT_CONF, SCRIPTS, SECRETS, TREE, V3, main, run


class Printers(unittest.TestCase):
    def test_all_protocols_give_the_same_report(self):
        reports = []
        for arguments in ([AGENT], [AGENT6], [AGENT, *V3]):
            code, out, err = run("printer", *arguments, "--format", "json", **SECRETS)
            self.assertEqual((0, ""), (code, err))
            report = json.loads(out)
            self.assertEqual(arguments[0], report.pop("host"))
            self.assertGreater(report.pop("upTicks"), 0)
            reports.append(report)
        self.assertEqual(reports[0], reports[1])
        self.assertEqual(reports[0], reports[2])
        report = reports[0]
        links = json.loads(subprocess.run(["ip", "-n", "neta", "-json", "link", "show", "eth0"], check=True,
                                          capture_output=True).stdout)
        self.assertEqual(links[0]["address"].upper(), report["macAddress"])
        self.assertEqual(5, report["deviceIndex"])
        self.assertEqual(("warning", "idle"), (report["deviceStatus"], report["printerStatus"]))
        self.assertEqual([30, 62, None, 100, 80], [supply["percent"] for supply in report["supplies"]])
        self.assertEqual((["lowPaper", "doorOpen"], "88 00"), (report["errors"], report["errorBits"]))
        self.assertEqual([], report["notRead"])

    def test_text_shows_supplies_trays_and_alerts(self):
        code, out, _ = run("printer", AGENT)
        self.assertEqual(0, code)
        self.assertIn("Alerts         critical: Door A is open (cover, cover open), for 0:", out)
        # The README shows the same, except for times and the adapter's name.
        shown = re.search(r"^\$ vndiscover printer .*\n(?s:(.*?))```", (TREE / "README.md").read_text(encoding="utf-8"), re.M)[1]
        shown = re.sub("!!? ", "", shown)  # the marks of a console
        lines = [line for line in shown.splitlines() if not re.search(r"\d:\d\d|^MAC|^Address|, for$", line)]
        self.assertGreater(len(lines), 15)
        self.assertEqual([], [line for line in lines if line + "\n" not in out])

    def test_a_printer_found_in_several_ways_is_one_line(self):
        code, out, _ = run("printers", "-c", "sesame", "-c", "nobody", "--ipv6", *V3, "--format", "json", **SECRETS)
        addresses = [printer["addresses"] for printer in json.loads(out)]
        self.assertEqual((0, 1, 2), (code, len(addresses), len(addresses[0])))
        wrong = {**SECRETS, "VNDISCOVER_AUTH_PASS": "wrongpass"}
        self.assertIn("SNMPv3 user 'admin': wrong authentication password",
                      run("printers", "-c", "sesame", *V3, **wrong)[2])
        code, out, _ = run("printers", "-c", "nobody", *V3, **SECRETS)  # its index is not 1
        self.assertEqual(0, code)
        self.assertIn("critical: low paper, door open", out)

    def test_silence_costs_one_request(self):
        code, out, err = run("printer", AGENT, "--community", "wrong")
        self.assertEqual((1, ""), (code, out))
        self.assertIn("no answer", err)

    def test_a_refusal_costs_one_request(self):
        wrong = {**SECRETS, "VNDISCOVER_AUTH_PASS": "wrongpass"}
        code, out, err = run("printer", AGENT, *V3, "--format", "json", **wrong)
        self.assertEqual(1, code)
        self.assertIn("wrong authentication password", err)
        self.assertIn("wrong authentication password", json.loads(out)["notRead"][0]["reason"])


if __name__ == "__main__":
    with open(SCRIPTS + "/laserpro-410.conf", encoding="utf-8") as file:
        main(AGENT_CONF + file.read(),  # on one network, so that a sweep takes half the time
             lambda: subprocess.run(["ip", "-n", "host", "link", "set", "eth1", "down"], check=True))
