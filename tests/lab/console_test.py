"""vndiscover.exe with a real agent (net-snmp's) and real WS-Discovery responders (wsdd, or wsdd2 where Debian has none):
sweeps in every format, values read, walked and written, usage, Ctrl-C, passwords, exit codes."""

import csv
import io
import json
import os
import re
import subprocess
import unittest
from pathlib import Path

from lab import (AGENT, AGENT6, AGENT_CONF, HAS_WSDD, LAB, SECRETS, TREE, V3, at_once, found, main, on_host, run,
                 run_on_terminal, start_responder)

SILENT = "10.77.1.99"
SYSTEM = ".1.3.6.1.2.1.1"
CONTACT, LOCATION = SYSTEM + ".4.0", SYSTEM + ".6.0"
LOCATION_TEXT = 'Hall "B", 2nd floor'
WRITABLE, LETTER, MAC, ZERO, LONG = (f".1.3.6.1.4.1.5963.9.{last}.0" for last in range(1, 6))
RESPONDERS = {"neta": "10.77.1.2", "netb": "10.77.2.2"}
LONG_PASSWORD = 100 * "pqs"
PAGE = TREE / "docs/vndiscover.md"
REPEATS = 2 if HAS_WSDD else 1  # of each reply, as UDP may lose one
CONF = f"""{AGENT_CONF}
rwcommunity secret
rwcommunity6 secret
rocommunity limited default .1.3.6.1.2.1
syslocation {LOCATION_TEXT}
createUser patient SHA-256 {LONG_PASSWORD} AES privpass1
rouser patient priv
override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"
override -rw {WRITABLE} octet_str "ext. 41"
override {LETTER} octet_str "A"
override {MAC} octet_str 0x3c2af400f51b
override {ZERO} octet_str 0x00
override {LONG} octet_str "{243 * 'x'}"
"""


def with_help(page, heading, text):
    """The page with this text in the first block after a heading."""
    before, heading, after = page.partition(f"\n{heading}\n")
    block = "```text\n" + re.sub(r" +$", "", text.strip("\n"), flags=re.MULTILINE) + "\n```"
    return before + heading + re.sub(r"^```text\n.*?^```$", lambda _: block, after, count=1, flags=re.MULTILINE | re.DOTALL)


class Usage(unittest.TestCase):
    def test_mistakes_exit_with_2_and_a_hint(self):
        Path(LAB, "bad.json").write_text("[]", encoding="utf-8")
        long_oid = ".1.3.6.1.4.1" + 92 * ".1"  # 97 bytes; with the community "sesame" the most that a request holds
        for offender, *arguments in (
                ("a command is missing",), ("--bogus:", "sweep", "--bogus"), ("--format:", "sweep", "--format", "xml"),
                ("--oid:", "sweep", "--oid", "sysDesc.0"), ("--json:", "sweep", "--json", LAB + "/bad.json"),
                ("--csv:", "sweep", "--csv", "/missing/x.csv"), ("--community:", "sweep", "--community", "x" * 256),
                ("--user", "sweep", "-u", "admin"), ("-a:", "sweep", "--v3", "-u", "admin", "-x", "AES"),
                ("-A:", "sweep", "--v3", "-u", "admin", "-a", "SHA1"), ("-a:", "sweep", "--v3", "-u", "admin", "-a", "SHA3"),
                ("OID", "get", AGENT), ("OID:", "get", AGENT, long_oid + ".1"), ("ROOT:", "walk", AGENT, long_oid + ".1"),
                ("OID:", "get", AGENT, long_oid, "-c", "longer!"), ("VALUE:", "set", AGENT, CONTACT, "s", "x" * 90),
                ("VALUE:", "set", AGENT, CONTACT, "i", "x"), ("TYPE:", "set", AGENT, CONTACT, "number", "1"),
                ("--timeout:", "wsd", "--timeout", "999"), ("-u:", "printers", "--v3", "-u", "admin", "-u", "guest"),
                ("--save:", "sweep", "--save", LAB + "/bad.json"), ("--community:", "info", AGENT, "-c", "x" * 92),
                ("--community:", "sweep", "--save", LAB + "/new.json", "-c", "x" * 81)):
            code, out, err = run(*arguments)
            self.assertEqual((2, ""), (code, out), err)
            self.assertEqual(f"vndiscover: {offender}", err[:12 + len(offender)], arguments)
            self.assertIn("--help'", err)
        self.assertEqual("[]", Path(LAB, "bad.json").read_text(encoding="utf-8"))

    def test_the_page_of_the_command_line_holds_every_help(self):
        page, overview = PAGE.read_text(encoding="utf-8"), found("--help")
        commands = re.findall(r"^  (\w+) ", overview.split("\nSubcommands:\n")[1], re.MULTILINE)
        self.assertEqual(sorted(commands), sorted(re.findall(r"^### (.+)$", page, re.MULTILINE)))
        fresh = with_help(page, "## What all commands share", overview)
        for command in commands:
            text = found(command, "--help")
            self.assertIn("Exit codes: 0", text, command)
            self.assertLessEqual(max(map(len, text.split("\n"))), 80, command)
            fresh = with_help(fresh, "### " + command, text)
        if os.environ.get("VNDISCOVER_UPDATE_DOCS"):
            PAGE.write_text(fresh, encoding="utf-8")
            self.skipTest(f"{PAGE.name} is written")
        self.assertEqual(page, fresh)

    def test_version(self):
        self.assertRegex(run("--version")[1], r"^VnDiscover \d+\.\d+")


class Terminals(unittest.TestCase):
    def test_ctrl_c_stops_and_prints_what_was_found(self):
        screen = "^C"
        while screen.endswith("^C"):  # typed when the sweep was over already, 2 s later
            code, screen, _ = run_on_terminal([("Model 1", b"\x03")], "sweep")
            self.assertEqual(0, code)
        code, none, _ = run_on_terminal([("s, 0", b"\x03")], "sweep", "-c", "wrong")
        self.assertEqual(1, code)
        self.assertNotIn("no device", none)
        self.assertIn("stopped", screen)
        self.assertRegex(screen, r"\r\d s, 0 devices\s*\r")

    def test_ctrl_c_ends_directed_requests_with_whole_json(self):
        code, screen, _ = run_on_terminal([(": 1 requests", b"\x03")], "get", "10.77.1.99", LOCATION, CONTACT, "--format", "json")
        self.assertEqual(1, code, screen)
        self.assertIn("vndiscover: stopped", screen)
        self.assertNotIn(CONTACT, screen)
        self.assertIn("\r[]\r\r\nvndiscover: stopped", screen)

    def test_a_second_ctrl_c_ends_at_once(self):
        code, screen, seconds = run_on_terminal([("s, 0", b"\x03"), ("stopping", b"\x03")],
                                                "wsd", "--timeout", "20000", "--types", "wsdp:Nothing")
        self.assertNotIn(code, (0, 1, 2))
        self.assertLess(seconds, 15, screen)

    def test_ctrl_c_while_saving_loses_nothing(self):
        path = Path(LAB, "long.json")
        time = "2026-11-25T04:32:23Z"
        answers = [{"sweep": 0, "time": time, "address": f"10.{i >> 8}.{i & 255}.1", "text": ""} for i in range(40000)]
        path.write_text(json.dumps({"format": "vndiscover-scan", "version": 1, "answers": answers, "splits": [], "sweeps": [
            {"kind": "wsd", "form": "reply", "ipv6": False, "time": time}]}), encoding="utf-8")
        # The list is printed just before the answers are saved, which takes a second with so many.
        code, screen, _ = run_on_terminal([("10.77.1.2 ", b"\x03")], "wsd", "--all", "--timeout", "1000", "--save", str(path), "--append")
        self.assertEqual(0, code, screen)
        self.assertIn("saving first", screen)
        self.assertGreater(len(json.loads(path.read_text(encoding="utf-8"))["answers"]), 40000)

    def test_passwords_are_prompted_for_and_not_shown(self):
        code, screen, _ = run_on_terminal(
            [("Authentication password: ", LONG_PASSWORD.encode() + b"\r"), ("Privacy password: ", b"privpass1\r")],
            "get", AGENT, LOCATION, "--v3", "-u", "patient", "-a", "sha-256", "-x", "aes128")
        self.assertEqual(0, code, screen)
        self.assertIn("2nd floor", screen)
        self.assertNotIn("pass1", screen)
        self.assertNotIn("pqs", screen)


class Sweeps(unittest.TestCase):
    def test_every_format_parses(self):
        path = Path(LAB, "devices.csv")
        self.assertEqual((0, "ADDRESS          VALUE\n10.77.1.2        Model 1\n", ""), run("sweep", "--csv", str(path)))
        self.assertEqual(b'"10.77.1.2","Model 1"\r\n', path.read_bytes())
        rows = csv.reader(io.StringIO(run("sweep", "--oid", LOCATION, "--format", "csv")[1]))
        self.assertEqual([[AGENT, LOCATION_TEXT]], list(rows))

    def test_a_json_request_is_filled_in(self):
        path = Path(LAB, "request.json")
        request = {"DiscoverOID": SYSTEM + ".1.0", "GET": {LOCATION: "", ".1.3.9.9": "kept"}}
        named = json.dumps({**request, "GET": {"sysLocation.0": "", ".1.3.9.9": "kept"}}, indent=8)
        path.write_text("\ufeff" + 70000 * " " + named, encoding="utf-16-le")
        device = json.loads(found("sweep", "--ipv6", "--json", str(path), "--format", "json"))[0]
        request["GET"][LOCATION] = LOCATION_TEXT
        self.assertRegex(device["address"], "^fe80::1:[0-9]+$")  # it answers from any of its addresses
        self.assertEqual(request, device["value"])

    def test_wrong_paths_leave_files_alone(self):
        path = Path(LAB, "kept.json")
        path.write_text('{"GET": {}}', encoding="utf-8")
        Path(LAB, "named.json").write_text('{"DiscoverOID": "sysNme.0", "GET": {}}', encoding="utf-8")
        scan = Path(LAB, "monday.json")
        scan.write_text('{"format": "vndiscover-scan", "version": 1, "answers": [], "splits": [], "sweeps": []}', encoding="utf-8")
        for options in (["--save", ""], ["--json", str(path), "--csv", str(path).replace("kept", "KEPT")], ["--csv", str(scan)]):
            self.assertEqual((2, ""), run("sweep", *options)[:2])
        self.assertIn("'sysNme.0' is neither", run("sweep", "--json", str(Path(LAB, "named.json")))[2])
        self.assertEqual('{"GET": {}}', path.read_text(encoding="utf-8"))

    def test_no_answer_is_exit_code_1(self):
        code, out, err = run("sweep", "--community", "wrong", "--format", "json")
        self.assertEqual((1, "[]\n"), (code, out))
        self.assertRegex(err, r"no device answered community 'wrong' for \.1\.3.*'vndiscover printers'.*'vndiscover doctor'")
        err = run("sweep", "-c", "public", "-o", "sysName.0")[2]
        self.assertIn("'vndiscover printers -c COMMUNITY'", err)
        self.assertNotIn("'vndiscover sweep", err)

    def test_a_value_that_is_not_read_is_no_silence(self):
        paths = [Path(LAB, name + ".json") for name in ("too_long", "object_id")]
        for path, oid in zip(paths, (LONG, SYSTEM + ".2.0")):
            path.write_text(json.dumps({"DiscoverOID": oid, "GET": {}}), encoding="utf-8")
        err = run("sweep", "--json", str(paths[0]))[2]
        self.assertIn(f"for {LONG}; or none has a value there that SNMPv1 can carry", err)
        self.assertIn("or has an INTEGER or a text", run("sweep", *V3, "--json", str(paths[1]), **SECRETS)[2])

    def test_v3_takes_passwords_from_the_environment(self):
        path = Path(LAB, "d" * 150, "d" * 150, "v3.csv")  # longer than the module takes
        path.parent.mkdir(parents=True)
        self.assertEqual(f"ADDRESS          VALUE\n10.77.1.2        {LOCATION_TEXT}\n",
                         found("sweep", *V3, "--oid", LOCATION, "--csv", str(path), **SECRETS))
        self.assertEqual(b'"10.77.1.2","Hall ""B"", 2nd floor"\r\n', path.read_bytes())

    def test_printers_are_looked_for_as_several_users(self):
        second = {name + "_2": password for name, password in SECRETS.items()}
        code, out, err = run("printers", "-c", "wrong", "--v3", "-u", "nobody", *V3, **second)
        self.assertEqual((1, ""), (code, out))
        self.assertIn("answered but are no printers: 1", err)
        self.assertIn("community 'wrong' and the SNMPv3 user 'nobody' and the SNMPv3 user 'admin'", err)

    def test_the_example_of_the_readme_finds_the_agent(self):
        self.assertEqual((0, "10.77.1.2\tModel 1\nthe sweep is over\n"), run(program="first_use.exe")[:2])


class Responders(unittest.TestCase):
    def test_devices_on_every_network_are_found(self):
        devices = json.loads(found("wsd", "--all", "--timeout", "2000", "--format", "json"))
        self.assertEqual(list(RESPONDERS.values()), [device["address"] for device in devices])
        for device in devices:
            self.assertEqual(["wsdp:Device", "pub:Computer"], device["types"])
            self.assertRegex(device["endpoint"], r"^urn:uuid:[0-9a-f-]{36}$")
            self.assertEqual(REPEATS, device["replies"])

    def test_computers_are_no_printers(self):
        code, out, err = run("wsd", "--timeout", "1000")
        self.assertEqual((1, ""), (code, out))
        self.assertIn("no printer replied", err)

    @unittest.skipUnless(HAS_WSDD, "wsdd2 answers whatever type is asked for")
    def test_an_unknown_type_finds_no_device(self):
        code, out, err = run("wsd", "--timeout", "1000", "--types", "wsdp:Nothing", "--format", "json")
        self.assertEqual((1, "[]\n"), (code, out), err)
        self.assertIn("'vndiscover doctor'", err)


class DirectedRequests(unittest.TestCase):
    def test_values_are_shown_by_type(self):
        object_id = f"{SYSTEM}.2.0 = OBJECT IDENTIFIER: .1.3.6.1.4.1.8072.3.2.10\n"
        for host in (AGENT, AGENT6):
            self.assertEqual((0, object_id, ""), run("getnext", host, SYSTEM + ".1.0"))
            self.assertEqual((0, "Model 1\n", ""), run("info", host))
            self.assertEqual(f"{object_id}{SYSTEM}.99.0 = no value\n.1.3.6.1.2.1.2.1.0 = INTEGER: 2\n"
                             f"{LOCATION} = OCTET STRING: {LOCATION_TEXT}\n"
                             ".1.3.6.1.2.1.4.20.1.1.10.77.1.2 = IpAddress: 10.77.1.2\n",
                             found("get", host, SYSTEM + ".2.0", SYSTEM + ".99.0", ".1.3.6.1.2.1.2.1.0", LOCATION,
                                   ".1.3.6.1.2.1.4.20.1.1.10.77.1.2"))
        self.assertRegex(found("get", AGENT, SYSTEM + ".2.0", SYSTEM + ".3.0", *V3, **SECRETS),
                         r"8072\.3\.2\.10\n.*TimeTicks: \d+ \(")

    def test_values_with_zero_bytes_are_whole(self):
        shown = f"{MAC} = OCTET STRING: 3C 2A F4 00 F5 1B\n{ZERO} = OCTET STRING: 00\n"
        self.assertEqual((0, shown, ""), run("get", AGENT, MAC, ZERO))
        self.assertEqual((0, shown, ""), run("get", AGENT, MAC, ZERO, *V3, **SECRETS))
        # SNMPv1 cannot read a text of 243 bytes.
        for command in ("get", LONG), ("walk", LONG[:-2]):
            code, _, err = run(command[0], AGENT, command[1])
            self.assertEqual(1, code)
            self.assertIn("no value, or too long", err)
            self.assertIn("SNMPv3 may read it", err)

    def test_object_names_are_read_and_printed(self):
        shown = f"sysLocation.0 = OCTET STRING: {LOCATION_TEXT}\nifType.1 = INTEGER: softwareLoopback(24)\n"
        self.assertEqual((0, shown, ""), run("get", AGENT, "sysLocation.0", "ifType.1", "--names"))
        self.assertIn("sysDescr.0", run("get", AGENT, "sysDesc.0")[2])

    def test_set_writes_and_verify_detects_a_refusal(self):
        for host, value in ((AGENT, "Zo\u00eb, ext. 42"), (AGENT6, "-43")):
            arguments = ["set", host, WRITABLE, "string", value, "--verify"]
            shown = f"{WRITABLE} = OCTET STRING: {value}\n"
            code, out, err = run(*arguments)
            self.assertEqual((1, shown), (code, out))  # a refusal looks like success
            self.assertIn("not set", err)
            self.assertEqual((0, shown, ""), run(*arguments, "--write-community", "secret"))
        code, _, err = run("set", AGENT, LETTER, "i", "65", "--verify")  # it holds the same byte, as text
        self.assertEqual(1, code)
        self.assertIn("not set", err)

    def test_failures_have_their_exit_codes(self):
        requests = (["get", SILENT, CONTACT], ["set", SILENT, CONTACT, "s", "x"], ["walk", SILENT],
                    ["info", SILENT, "--format", "json"])
        for code, out, err in at_once(lambda request: run(*request), requests):  # each waits for 10 s
            self.assertEqual(1, code)
            self.assertIn("no answer", err)
        self.assertEqual({"host": SILENT, "information": None}, json.loads(out))
        subprocess.run(["ip", "-n", "host", "route", "add", "unreachable", "10.99.0.1"], check=True)
        code, out, err = run("get", "10.99.0.1", CONTACT)
        self.assertEqual((3, ""), (code, out))
        self.assertIn("could not be sent", err)
        code, _, err = run("get", AGENT, CONTACT, *V3, VNDISCOVER_AUTH_PASS="wrongpass", VNDISCOVER_PRIV_PASS="x")
        self.assertEqual(1, code)
        self.assertIn("wrong authentication password", err)
        self.assertEqual((1, ""), run("walk", AGENT, ".1.3.6.1.9")[:2])
        self.assertIn("answered, without this object", run("info", AGENT, "-c", "limited")[2])

    def test_ping_and_ipv6_answer_by_exit_code(self):
        self.assertEqual((0, "10.77.1.2 answered\n"), run("ping", AGENT)[:2])
        self.assertEqual((1, ""), run("ping", SILENT, "--timeout", "300")[::2])
        self.assertIn("not an address", run("ping", "no-such-name.invalid", "--timeout", "300")[2])
        found("ipv6")

    def test_output_that_cannot_be_written_is_told(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run(on_host("ipv6"), stdin=subprocess.DEVNULL, stdout=full, stderr=subprocess.PIPE, check=False)
        self.assertEqual(1, done.returncode)
        self.assertIn(b"the disk is full", done.stderr)
        code, _, err = run("sweep", *V3, "--csv", "/dev/full", **SECRETS)
        self.assertEqual(1, code)
        self.assertIn("'/dev/full' is incomplete (the disk is full", err)


def start_responders():
    for net, address in RESPONDERS.items():
        start_responder(net, address)


if __name__ == "__main__":
    main(CONF, start_responders)
