"""vndiscover.exe with a real agent: sweeps in every format, and values read, walked and written."""

import concurrent.futures
import csv
import io
import json
import subprocess
import unittest

from console_host import AGENT, AGENT6, AGENT_CONF, CONTACT, LAB, SYSTEM, V3, WRITABLE, main, run

LOCATION = SYSTEM + ".6.0"
LOCATION_TEXT = 'Hall "B", 2nd floor'
SECRETS = {"VNDISCOVER_AUTH_PASS": "authpass1", "VNDISCOVER_PRIV_PASS": "privpass1"}


class Sweeps(unittest.TestCase):
    def test_every_format_can_be_read(self):
        path = LAB + "/devices.csv"
        self.assertEqual((0, "ADDRESS          VALUE\n10.77.1.2        Model 1\n", ""), run("sweep", "--csv", path))
        with open(path, "rb") as file:
            self.assertEqual(b'"10.77.1.2","Model 1"\r\n', file.read())
        self.assertEqual([{"address": AGENT, "value": LOCATION_TEXT}],
                         json.loads(run("sweep", "--oid", LOCATION, "--format", "json")[1]))
        rows = csv.reader(io.StringIO(run("sweep", "--oid", LOCATION, "--format", "csv")[1]))
        self.assertEqual([[AGENT, LOCATION_TEXT]], list(rows))

    def test_a_json_request_is_filled_in(self):
        path = LAB + "/request.json"
        request = {"DiscoverOID": SYSTEM + ".1.0", "GET": {LOCATION: "", ".1.3.9.9": "kept"}}
        with open(path, "w", encoding="utf-8") as file:
            json.dump(request, file, indent=8)
        code, out, _ = run("sweep", "--ipv6", "--json", path, "--format", "json")
        self.assertEqual(0, code)
        request["GET"][LOCATION] = LOCATION_TEXT
        device = json.loads(out)[0]
        self.assertRegex(device["address"], "^fe80::1:[0-9]+$")  # it answers from any of its addresses
        self.assertEqual(request, device["value"])

    def test_nobody_there_is_exit_code_1(self):
        code, out, err = run("sweep", "--community", "wrong", "--format", "json")
        self.assertEqual((1, "[]\n"), (code, out))
        self.assertIn("no device answered", err)

    def test_v3_takes_passwords_from_the_environment_and_any_oid(self):
        path = LAB + "/v3.csv"
        code, out, _ = run("sweep", *V3, "--oid", LOCATION, "--csv", path, **SECRETS)
        self.assertEqual((0, f"ADDRESS          VALUE\n10.77.1.2        {LOCATION_TEXT}\n"), (code, out))
        with open(path, "rb") as file:
            self.assertEqual(b'"10.77.1.2","Hall ""B"", 2nd floor"\r\n', file.read())


    def test_the_example_of_the_readme_finds_the_agent(self):
        self.assertEqual((0, "10.77.1.2\tModel 1\nthe sweep is over\n"), run(program="first_use.exe")[:2])


class DirectedRequests(unittest.TestCase):
    def test_a_walk_finds_what_net_snmp_finds(self):
        tool = subprocess.run(["ip", "netns", "exec", "host", "snmpwalk", "-v1", "-c", "sesame", "-m", "", "-Onq",
                               AGENT, SYSTEM], capture_output=True, check=True, text=True).stdout
        # Times go on between two walks.
        expected = {oid: value.replace('\\"', '"') for oid, value in
                    (line.split(" ", 1) for line in tool.splitlines())}
        for options in ([AGENT], [AGENT6], [AGENT, *V3]):
            code, out, err = run("walk", options[0], SYSTEM, "--format", "json", *options[1:], **SECRETS)
            self.assertEqual((0, ""), (code, err))
            rows = json.loads(out)
            self.assertEqual(list(expected), [row["oid"] for row in rows])
            for row in rows:
                if row["type"] != "TimeTicks":
                    self.assertIn(expected[row["oid"]], (str(row["value"]), f'"{row["value"]}"'))

    def test_values_are_shown_by_type(self):
        object_id = f"{SYSTEM}.2.0 = OBJECT IDENTIFIER: .1.3.6.1.4.1.8072.3.2.10\n"
        for host in (AGENT, AGENT6):
            self.assertEqual((0, object_id, ""), run("getnext", host, SYSTEM + ".1.0"))
            self.assertEqual((0, "Model 1\n", ""), run("info", host))
            code, out, _ = run("get", host, SYSTEM + ".2.0", SYSTEM + ".99.0", ".1.3.6.1.2.1.2.1.0", LOCATION,
                               ".1.3.6.1.2.1.4.20.1.1.10.77.1.2")
            self.assertEqual(0, code)
            self.assertEqual(f"{object_id}{SYSTEM}.99.0 = no value\n.1.3.6.1.2.1.2.1.0 = INTEGER: 2\n"
                             f"{LOCATION} = OCTET STRING: {LOCATION_TEXT}\n"
                             ".1.3.6.1.2.1.4.20.1.1.10.77.1.2 = IpAddress: 10.77.1.2\n", out)
        code, out, _ = run("get", AGENT, SYSTEM + ".2.0", SYSTEM + ".3.0", *V3, **SECRETS)
        self.assertEqual(0, code)
        self.assertRegex(out, r"8072\.3\.2\.10\n.*TimeTicks: \d+ \(")

    def test_set_writes_and_verify_tells_a_refusal(self):
        for host, value in ((AGENT, "Zo\u00eb, ext. 42"), (AGENT6, "ext. 43")):
            arguments = ["set", host, WRITABLE, "string", value, "--verify"]
            shown = f"{WRITABLE} = OCTET STRING: {value}\n"
            code, out, err = run(*arguments)
            self.assertEqual((1, shown), (code, out))  # a refusal is an answer like any other
            self.assertIn("not set", err)
            self.assertEqual((0, shown, ""), run(*arguments, "--write-community", "secret"))
        self.assertEqual(1, run("set", AGENT, SYSTEM + ".7.0", "i", "-5", "--verify", "-w", "secret")[0])

    def test_failures_have_their_exit_codes(self):
        silent = "10.77.1.99"
        with concurrent.futures.ThreadPoolExecutor() as pool:  # each waits for 10 s
            for code, _, err in pool.map(lambda request: run(*request), (
                    ["get", silent, CONTACT], ["set", silent, CONTACT, "s", "x"], ["info", silent],
                    ["walk", silent])):
                self.assertEqual(1, code)
                self.assertIn("no answer", err)
        subprocess.run(["ip", "-n", "host", "route", "add", "unreachable", "10.99.0.1"], check=True)
        code, out, err = run("get", "10.99.0.1", CONTACT)
        self.assertEqual((3, ""), (code, out))
        self.assertIn("could not be sent", err)
        code, _, err = run("get", AGENT, CONTACT, *V3, VNDISCOVER_AUTH_PASS="wrongpass", VNDISCOVER_PRIV_PASS="x")
        self.assertEqual(1, code)
        self.assertIn("wrong authentication password", err)
        self.assertEqual((1, ""), run("walk", AGENT, ".1.3.6.1.9")[:2])


if __name__ == "__main__":
    main(AGENT_CONF)
