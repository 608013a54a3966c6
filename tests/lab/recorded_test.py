"""Devices that answer late, lose datagrams, keep a variable to themselves or send what SNMPv1 cannot carry here, as
recorded printers do: an agent that plays a table, and what the console says of it."""

import json
import random
import socket
import subprocess
import threading
import time
import unittest

from lab import AGENT_CONF, SECRETS, at_once, main, run, socket_in, start_agent

LONG = "VN LaserPro 410; firmware 2.14; " * 6
MIB2 = "1.3.6.1.2.1."
PRINTER = {"1.1.0": LONG, "1.2.0": (6, "1.3.6.1.4.1.9999.1"), "1.3.0": (0x43, 4711), "1.5.0": "hall", "1.6.0": "2nd floor",
           "2.1.0": 1, "2.2.1.1.1": 1, "2.2.1.2.1": "Embedded Ethernet", "2.2.1.3.1": 117, "2.2.1.6.1": b"\x02\x00\x5e\x10\x00\x07",
           "2.2.1.8.1": 1, "25.3.2.1.1.1": 1, "25.3.2.1.2.1": (6, "1.3.6.1.2.1.25.3.1.5"), "25.3.2.1.3.1": "VN LaserPro 410",
           "25.3.2.1.5.1": 2, "25.3.5.1.1.1": 3, "25.3.5.1.2.1": b"\x00", "43.5.1.1.17.1": "VN1234",
           "43.10.2.1.3.1.1": 7, "43.10.2.1.4.1.1": (0x41, 54321),
           **{f"43.11.1.1.{column}.1.{row}": value for row in (1, 2) for column, value in
              ((3, row), (4, 3), (5, 3), (6, f"Toner {row}"), (7, 19), (8, 100), (9, 40))},
           "43.18.1.1.2.1.1": 3, "43.18.1.1.4.1.1": 8, "43.18.1.1.7.1.1": 801, "43.18.1.1.8.1.1": LONG, "43.18.1.1.9.1.1": (0x43, 10)}


def tlv(tag, content):
    size = len(content)
    head = bytes((size,)) if size < 128 else bytes((0x81, size)) if size < 256 else b"\x82" + size.to_bytes(2, "big")
    return bytes((tag,)) + head + content


def arcs(oid):
    first, second, *rest = map(int, oid.split("."))
    parts = [[arc >> shift & 127 | 128 * (shift > 0) for shift in (21, 14, 7, 0) if arc >> shift or not shift] for arc in rest]
    return bytes((first * 40 + second, *(byte for part in parts for byte in part)))


def number(value):
    return value.to_bytes(max(1, (value.bit_length() + 8) // 8), "big", signed=True)


def encoded(value):
    tag, value = value if isinstance(value, tuple) else (2 if isinstance(value, int) else 4, value)
    if tag == 6:
        return tlv(6, arcs(value))
    return tlv(tag, number(value) if isinstance(value, int) else value if isinstance(value, bytes) else value.encode())


def split(data):
    """Tag, content and rest; what a request has is never longer than 127 bytes."""
    return data[0], data[2:2 + data[1]], data[2 + data[1]:]


class Agent(threading.Thread):
    """Plays a table on a port of its own. `loss`: of requests; `delay` in seconds; `silent`: what it never answers with."""

    def __init__(self, address, table=PRINTER, loss=0.0, delay=0.0, silent=(), sender=""):
        super().__init__(daemon=True)
        table = {arcs(MIB2 + oid): encoded(value) for oid, value in table.items()}
        self.rows = sorted(table.items(), key=lambda row: self.order(row[0]))
        self.loss, self.delay, self.silent = loss, delay, {arcs(MIB2 + oid) for oid in silent}
        self.random = random.Random(7)
        subprocess.run(["ip", "-n", "neta", "addr", "add", address + "/24", "dev", "eth0"], check=True)
        self.socket, self.sender = socket_in("neta", socket.AF_INET), socket_in("neta", socket.AF_INET)
        self.socket.bind((address, 161))
        self.sender.bind((sender or address, 0))
        if not sender:
            self.sender = self.socket
        self.start()

    @staticmethod
    def order(oid):
        result, arc = [oid[0]], 0
        for byte in oid[1:]:
            arc = arc << 7 | byte & 127
            if byte < 128:
                result, arc = [*result, arc], 0
        return result

    def run(self):
        while True:
            request, peer = self.socket.recvfrom(2048)
            if self.random.random() >= self.loss:
                threading.Timer(self.delay, self.answer, (request, peer)).start()

    def answer(self, request, peer):
        body = split(request)[1]
        if body[2] != 0:  # not SNMPv1
            return
        community, pdu = split(split(body)[2])[1:]
        tag, pdu, _ = split(pdu)
        head, bindings = pdu[:9], split(split(pdu[9:])[1])[1]
        oid = split(bindings)[1]
        following = [row for row in self.rows if self.order(row[0]) > self.order(oid) or tag == 0xA0 and row[0] == oid]
        found = following[0] if following and (tag == 0xA1 or following[0][0] == oid) else (oid, b"\5\0")
        if found[0] in self.silent:
            return
        status = b"\2\1\2\2\1\1" if found[1] == b"\5\0" else head[3:]
        answer = tlv(0xA2, head[:3] + status + tlv(0x30, tlv(0x30, tlv(6, found[0]) + found[1])))
        self.sender.sendto(tlv(0x30, b"\2\1\0" + tlv(4, community) + answer), peer)


class Recorded(unittest.TestCase):
    def walk(self, address, *arguments):
        code, out, err = run("walk", address, "-c", "public", "--names", *arguments)
        return code, [line.split(" = ")[0] for line in out.splitlines()], err

    def test_a_walk_passes_what_snmpv1_cannot_carry(self):
        Agent("10.77.1.31")
        code, seen, err = self.walk("10.77.1.31")
        self.assertEqual((0, len(PRINTER) - 2), (code, len(seen)), err)
        self.assertNotIn("sysDescr.0", seen)
        self.assertIn("skipped what follows .1.3.6.1.2.1: no value, or too long for SNMPv1", err)
        self.assertIn("2 variables were skipped", err)
        code, out, err = run("get", "10.77.1.31", "sysDescr.0", "-c", "public")
        self.assertEqual((1, ""), (code, out))
        self.assertIn("no value, or too long for SNMPv1", err)

    def test_one_silent_variable_costs_nothing_else(self):
        Agent("10.77.1.32", loss=0.05)
        Agent("10.77.1.33", silent=["43.11.1.1.6.1.2"])
        lossy, silent = at_once(lambda address: run("printer", address, "-c", "public", "--format", "json"),
                                ["10.77.1.32", "10.77.1.33"])
        self.assertEqual((0, ""), (lossy[0], lossy[2]))
        report = json.loads(lossy[1])
        self.assertEqual(["Toner 1", "Toner 2"], [supply["description"] for supply in report["supplies"]])
        self.assertEqual({"prtAlertDescription", "sysDescr"}, {gap["object"] for gap in report["notRead"]})
        self.assertEqual(0, silent[0])
        gaps = {gap["object"]: gap["reason"] for gap in json.loads(silent[1])["notRead"]}
        self.assertIn("although the device answers", gaps.pop("prtMarkerSuppliesDescription"))
        self.assertEqual({"prtAlertDescription", "sysDescr"}, set(gaps))

    def test_a_value_that_was_set_is_read_again(self):
        Agent("10.77.1.36", loss=0.2)  # of the first three requests, the second
        code, _, err = run("set", "10.77.1.36", "sysName.0", "s", "hall", "--verify")
        self.assertEqual((0, ""), (code, err))

    def test_doctor_says_why_an_answer_is_no_use(self):
        Agent("10.77.1.34", delay=2.5)
        Agent("10.77.1.35", sender="10.77.1.2")
        (late_code, late, _), (other_code, other, _) = at_once(lambda address: run("doctor", address, "-c", "public"),
                                                               ["10.77.1.34", "10.77.1.35"])
        self.assertEqual((1, 1), (late_code, other_code))
        self.assertRegex(" ".join(late.split()), r"answers after [2-9]\.\d\d s, but sweeps and SNMPv3 wait 2 s")
        self.assertIn("from another address, 10.77.1.2", " ".join(other.split()))
        started = time.time()
        code, out, _ = run("doctor", "printer.invalid")
        self.assertEqual(1, code)
        self.assertIn("this name has no address", out)
        self.assertLess(time.time() - started, 30)

    def test_a_user_with_too_low_a_level_is_refused(self):
        low = ["--v3", "-u", "admin", "-a", "sha-256"]
        for command in (["get", "10.77.2.2", "sysName.0"], ["walk", "10.77.2.2"], ["printer", "10.77.2.2"], ["doctor", "10.77.2.2"]):
            code, out, err = run(*command, *low, **SECRETS)
            self.assertEqual(1, code, (command, out, err))
            self.assertIn("this user may not read it at this security level", " ".join((out + err).split()))

    def test_a_device_on_the_second_adapter_is_asked_there(self):
        code, out, err = run("get", "fe80::2:2", "sysName.0")
        self.assertEqual(0, code, (out, err))


if __name__ == "__main__":
    main(prepare=lambda: start_agent("netb", AGENT_CONF))
