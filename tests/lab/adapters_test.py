"""Sweeps of every kind from both adapters of the host: what devices on both sides receive, byte for byte, and that their
answers are found. And WS-Discovery replies: a burst while the program is suspended, and hostile ones."""

import json
import re
import signal
import socket
import subprocess
import threading
import unittest

from lab import at_once, found, main, on_host, socket_in

NETS = {"neta": "1", "netb": "2"}
BURST = 400  # the kernel queues about 280 for a socket with the default receive buffer
MATCH = ('<e:Envelope xmlns:e="http://www.w3.org/2003/05/soap-envelope"><e:Body><d:ProbeMatches '
         'xmlns:d="http://schemas.xmlsoap.org/ws/2005/04/discovery"><d:ProbeMatch><d:XAddrs>http://a/&#27;[2J'
         '</d:XAddrs></d:ProbeMatch></d:ProbeMatches></e:Body></e:Envelope>').encode()
RELATED = MATCH.replace(b"<e:Body>", b'<e:Header><a:RelatesTo xmlns:a="http://schemas.xmlsoap.org/ws/2004/08/addressing">%s'
                        b'</a:RelatesTo></e:Header><e:Body>')
GROUP = socket.inet_aton("239.255.255.250")
IP_PKTINFO = 8
OID = bytes.fromhex("2b06010401ae4b2b0501010101")
ENGINE = bytes.fromhex("8000174b0501020304")
seen = []  # "NET: SENDER > RECEIVER:PORT DATA"
flooded = {}  # "program": the one to be suspended


def tlv(tag, *parts):
    content = b"".join(parts)
    return bytes((tag, len(content))) + content


def pdu(tag, request_id, oid, value):
    bindings = [tlv(0x30, tlv(6, oid), value)] if oid else []
    return tlv(tag, tlv(2, request_id), b"\2\1\0\2\1\0", tlv(0x30, *bindings))


def v1(tag, value):
    return tlv(0x30, b"\2\1\0", tlv(4, b"sesame"), pdu(tag, b"\1", OID, value))


def v3(flags, tag, value, oid=OID, engine=ENGINE, boots=b"\7", user=b"user", max_size=b"\0\xff\xff", context=b""):
    return tlv(0x30, b"\2\1\3", tlv(0x30, b"\2\2\1\0", tlv(2, max_size), tlv(4, bytes((flags,))), b"\2\1\3"),
               tlv(4, tlv(0x30, tlv(4, engine), tlv(2, boots), tlv(2, boots), tlv(4, user), b"\4\0\4\0")),
               tlv(0x30, tlv(4, context), b"\4\0", pdu(tag, b"\1\1", oid, value)))


V1_REQUEST = v1(0xA0, b"\5\0")
V3_PROBE = v3(4, 0xA0, b"", oid=b"", engine=b"", boots=b"\0", user=b"", max_size=b"\1\0\0")
V3_REQUEST = v3(4, 0xA0, b"\5\0", max_size=b"\1\0\0")


class Device(threading.Thread):
    """One port of one network."""

    def __init__(self, net, family, port):
        super().__init__(daemon=True)
        self.net, self.port, self.family = net, port, family
        self.text = b"on " + net.encode()
        self.socket = socket_in(net, family)
        if family == socket.AF_INET:
            self.socket.setsockopt(socket.IPPROTO_IP, IP_PKTINFO, 1)
        else:
            self.socket.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_V6ONLY, 1)
            self.socket.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_RECVPKTINFO, 1)
        self.socket.bind(("", port))
        if port == 3702:
            own = socket.inet_aton(f"10.77.{NETS[net]}.2")
            self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP, GROUP + own)
        self.start()

    def answers(self, data):
        if b"hostile" in data:
            return [MATCH, MATCH.ljust(2048, b" "), b"\x1b]0;x\x07\x9b2J", b"A" * 2048]
        if b"capitals" in data:
            return [RELATED % re.search(rb"MessageID>([^<]+)", data)[1].upper()]
        if b"flood" in data:
            return [b"reply %03d" % i for i in range(BURST)] if self.net == "neta" else []
        return [{V1_REQUEST: v1(0xA2, tlv(4, self.text)), V3_PROBE: v3(0, 0xA8, b"\x41\1\1", user=b"", context=ENGINE),
                 V3_REQUEST: v3(0, 0xA2, tlv(4, self.text))}.get(data, self.text)]

    def run(self):
        while True:
            data, ancillary, _, sender = self.socket.recvmsg(65535, 256)
            info = ancillary[0][2]
            receiver = socket.inet_ntop(self.family, info[8:12] if self.family == socket.AF_INET else info[:16])
            seen.append(f"{self.net}: {sender[0].partition('%')[0]} > {receiver}:{self.port} {data.hex()}")
            answers = self.answers(data)
            if len(answers) == BURST:
                flooded["program"].send_signal(signal.SIGSTOP)
            for answer in answers:
                self.socket.sendto(answer, sender)
            if len(answers) == BURST:
                flooded["program"].send_signal(signal.SIGCONT)


class BothAdapters(unittest.TestCase):
    def find(self, *options):
        return [(device["address"], device["value"])
                for device in json.loads(found("sweep", "--format", "json", *options))]

    def assert_seen(self, expected, data, receiver):
        self.assertEqual([f"{line} {data.hex()}" for line in expected],
                         sorted(line for line in seen if line.endswith(data.hex()) and receiver in line))

    def test_v1(self):
        self.assertEqual([("10.77.1.2", "on neta"), ("10.77.2.2", "on netb")], self.find())
        self.assert_seen(["neta: 10.77.1.1 > 255.255.255.255:161", "netb: 10.77.2.1 > 255.255.255.255:161"],
                         V1_REQUEST, "255")

    def test_v1_over_ipv6(self):
        (first, on_first), second = self.find("--ipv6")
        self.assertRegex(first, "^fe80::1:[0-9]+$")  # a device answers from any of its addresses
        self.assertEqual(("on neta", ("fe80::2:2", "on netb")), (on_first, second))
        self.assert_seen(["neta: fe80::1:1 > ff02::1:161", "netb: fe80::2:1 > ff02::1:161"], V1_REQUEST, "ff02")

    def test_v3(self):
        self.assertEqual([("10.77.1.2", "on neta"), ("10.77.2.2", "on netb")], self.find("--v3", "-u", "user"))
        self.assert_seen(["neta: 10.77.1.1 > 255.255.255.255:161", "netb: 10.77.2.1 > 255.255.255.255:161"],
                         V3_PROBE, "255")
        self.assert_seen(["neta: 10.77.1.1 > 10.77.1.2:161", "netb: 10.77.2.1 > 10.77.2.2:161"], V3_REQUEST, "10.77")

    def test_a_suspended_program_loses_no_replies(self):
        flooded["program"] = subprocess.Popen(
            on_host("wsd", "--timeout", "2000", "--raw", "--types", "wsdp:flood"),
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        out, _ = flooded["program"].communicate(timeout=60)
        self.assertEqual([f"reply {i:03}" for i in range(BURST)], re.findall("reply [0-9]{3}", out))
        probes = [line.split(":3702 ")[0] for line in seen if b"flood".hex() in line]
        self.assertEqual(["neta: 10.77.1.1 > 239.255.255.250", "netb: 10.77.2.1 > 239.255.255.250"], sorted(probes))

    def test_identifiers_are_compared_without_case(self):
        self.assertIn("http://a/", found("wsd", "--timeout", "1000", "--types", "wsdp:capitals"))

    def test_hostile_replies_print_no_control_characters(self):
        outs = at_once(lambda options: found("wsd", "--timeout", "1000", "--types", "wsdp:hostile", *options),
                       ([], ["--format", "json"], ["--raw"]))
        for out in outs:
            self.assertIn("http://a/", out)
            self.assertNotRegex(out, "[\x00-\x08\x0b-\x1f\x7f-\x9f]")
        self.assertIn("== 10.77.1.2, 2048 bytes\n" + "A" * 2048, outs[-1])


def start_devices():
    for net in NETS:
        Device(net, socket.AF_INET, 161)
        Device(net, socket.AF_INET6, 161)
        Device(net, socket.AF_INET, 3702)


if __name__ == "__main__":
    main(prepare=start_devices)
