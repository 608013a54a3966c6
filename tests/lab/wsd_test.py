"""A real WS-Discovery responder (wsdd, or wsdd2 where Debian has no wsdd), found by vndiscover.exe."""

import json
import re
import shutil
import subprocess
import time
import unittest
from xml.etree import ElementTree

from console_host import main, run, start_in

NAMES = {"neta": ("10.77.1.2", "PRINTER1"), "netb": ("10.77.2.2", "PRINTER2")}
HAS_WSDD = shutil.which("wsdd")
# 3702 and, opened last, 5357 or 3702, as the system lists them
PORTS = ((":0E76 ", "udp"), (":14ED " if HAS_WSDD else ":0E76 ", "tcp"))
REPEATS = 2 if HAS_WSDD else 1  # of each reply, as UDP may lose one


def listed(net, protocol):
    return subprocess.run(["nsenter", f"--net=/run/netns/{net}", "cat", f"/proc/net/{protocol}"], capture_output=True,
                          check=True, text=True).stdout


def start_responder(net):
    responder = ["wsdd", "-n"] if HAS_WSDD else ["wsdd2", "-w", "-G", "GROUP", "-N"]
    start_in(net, *responder, NAMES[net][1], "-4", "-i", "eth0")
    for _ in range(400):
        if all(port in listed(net, protocol) for port, protocol in PORTS):
            return
        time.sleep(0.05)
    raise RuntimeError(f"{responder[0]} does not start")


class RealResponder(unittest.TestCase):
    def test_devices_on_every_network_are_found(self):
        code, out, err = run("wsd", "--timeout", "2000", "--format", "json")
        self.assertEqual(0, code, err)
        devices = json.loads(out)
        self.assertEqual([address for address, _ in NAMES.values()], [device["address"] for device in devices])
        for device in devices:
            self.assertEqual(["wsdp:Device", "pub:Computer"], device["types"])
            self.assertRegex(device["endpoint"], r"^urn:uuid:[0-9a-f-]{36}$")
            self.assertEqual(REPEATS, device["replies"])

    def test_raw_replies_come_as_the_responder_sent_them(self):
        code, out, err = run("wsd", "--timeout", "2000", "--raw")
        self.assertEqual(0, code, out + err)
        replies = re.findall(r"^== (\S+), (\d+) bytes\n(.*)$", out, re.M)
        self.assertEqual(["10.77.1.2"] * REPEATS + ["10.77.2.2"] * REPEATS, [address for address, _, _ in replies])
        for _, size, reply in replies:
            self.assertEqual(int(size), len(reply.encode()))
            self.assertEqual("Envelope", ElementTree.fromstring(reply.encode()).tag.rpartition("}")[2])

    @unittest.skipUnless(HAS_WSDD, "wsdd2 answers whatever type is asked for")
    def test_a_type_that_nobody_has_finds_nobody(self):
        code, out, err = run("wsd", "--timeout", "1000", "--types", "wsdp:Nothing", "--format", "json")
        self.assertEqual((1, "[]\n"), (code, out), err)


def start_responders():
    for last in range(11, 16):  # one address for each responder
        subprocess.run(["ip", "-n", "neta", "addr", "del", f"10.77.1.{last}/24", "dev", "eth0"], check=True)
    for network in NAMES:
        start_responder(network)


if __name__ == "__main__":
    main(prepare=start_responders)
