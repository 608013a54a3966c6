#!/usr/bin/env python3
"""Devices that answer every request in the network neta with a malformed answer, at native speed.

It prints "ready" once it listens. Requests to everybody get a burst of answers, others get one. In namespace
`host`, 127.0.0.1 UDP port 47163 obeys the test: "seed N" starts the mutations again, "burst N" sets their number,
each answered by "ok COUNT", the answers sent so far.
"""
import ctypes
import random
import select
import socket

CONTROL_PORT = 47163
SNMP_PORT = 161
WSD_PORT = 3702
WSD_GROUP = "239.255.255.250"
IP_PKTINFO = 8
CLONE_NEWNET = 0x40000000
LIES = (0x00, 0x01, 0x7F, 0x80, 0x81, 0x82, 0x84, 0x88, 0xFE, 0xFF)
TAGS = (0x02, 0x04, 0x05, 0x06, 0x24, 0x30, 0x40, 0x41, 0x43, 0x46, 0x80, 0xA0, 0xA2, 0xA3, 0xA8, 0xFF)
ENGINE = bytes.fromhex("8000174b0501020304")
OID = bytes.fromhex("2b06010401ae4b2b0501010101")
LARGEST = 2048  # of what a receiver takes

libc = ctypes.CDLL(None, use_errno=True)


def enter(net):
    with open(f"/run/netns/{net}", "rb") as namespace:
        if libc.setns(namespace.fileno(), CLONE_NEWNET) != 0:
            raise OSError(ctypes.get_errno(), f"cannot enter namespace {net}")


def tlv(tag, *contents):
    content = b"".join(contents)
    size = len(content)
    if size < 0x80:
        return bytes((tag, size)) + content
    return bytes((tag, 0x82, size >> 8, size & 0xFF)) + content


def integer(value):
    return tlv(0x02, value.to_bytes(max(1, value.bit_length() // 8 + 1), "big"))


def pdu(tag, value):
    return tlv(tag, integer(1), integer(0), integer(0), tlv(0x30, tlv(0x30, tlv(0x06, OID), value)))


def answer_v1(value):
    return tlv(0x30, integer(0), tlv(0x04, b"sesame"), pdu(0xA2, value))


def message_v3(flags, scoped, mac=b"", salt=b""):
    header = tlv(0x30, integer(256), integer(65507), tlv(0x04, bytes((flags,))), integer(3))
    usm = tlv(0x30, tlv(0x04, ENGINE), integer(3), integer(4711), tlv(0x04, b"user"), tlv(0x04, mac), tlv(0x04, salt))
    return tlv(0x30, integer(3), header, tlv(0x04, usm), scoped)


def scoped_pdu(tag, value):
    return tlv(0x30, tlv(0x04, ENGINE), tlv(0x04), pdu(tag, value))


def answers_of(request):
    """The good answers to a request: those to an engine discovery are reports."""
    text = tlv(0x04, b"Model 1")
    if request[:1] != b"\x30":
        return [b"<s:Envelope><s:Body><d:ProbeMatches/></s:Body></s:Envelope>" * 30]
    if b"\x02\x01\x03\x30" not in request[:8]:
        return [answer_v1(text), answer_v1(tlv(0x02, b"\x7f")), answer_v1(tlv(0x04, b"x" * 127))]
    if b"\x30\x10\x04\x00\x02\x01\x00" in request:  # no engine ID, boots 0
        return [message_v3(0, scoped_pdu(0xA8, tlv(0x41, b"\x05")))]
    return [message_v3(0, scoped_pdu(0xA2, text)), message_v3(1, scoped_pdu(0xA2, text), bytes(12)),
            message_v3(3, tlv(0x04, bytes(range(64))), bytes(24), bytes(8))]


class Mutator:
    def __init__(self, seed):
        self.random = random.Random(seed)

    def mutate(self, data, mayVanish):
        """One malformed relative of a good answer."""
        rolls = self.random
        out = bytearray(data)
        for _ in range(rolls.choice((1, 1, 2, 4))):
            at = rolls.randrange(len(out))
            kind = rolls.randrange(8)
            if kind == 0:
                out[at] ^= 1 << rolls.randrange(8)
            elif kind == 1:
                del out[at + 1:]
            elif kind == 2:  # a length lies somewhere: behind what looks like a tag
                places = [i + 1 for i in range(len(out) - 1) if out[i] in TAGS]
                if places:
                    out[rolls.choice(places)] = rolls.choice(LIES)
            elif kind == 3:
                out[at] = rolls.choice(TAGS)
            elif kind == 4:
                out[at:at] = rolls.choice((b"\x30\x80", b"\x30\x02", b"\xa2\x7f")) * rolls.choice((1, 10, 100, 900))
            elif kind == 5:
                out[at:at] = bytes((rolls.choice((0x82, 0x84, 0x88)),)) + rolls.randbytes(8)
            elif kind == 6:
                out += rolls.randbytes(rolls.choice((1, 100, 2048, 9000)) if mayVanish else 100)
            else:
                out[at:at + 8] = rolls.randbytes(rolls.randrange(16))
            if not out:
                out = bytearray(b"\x30")
        # An oversized datagram costs a directed request a wait.
        return bytes(out if mayVanish else out[:LARGEST])


class Responder:
    def __init__(self):
        enter("neta")
        self.sockets = [self.open(SNMP_PORT), self.open(WSD_PORT)]
        self.sockets[1].setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP,
                                   socket.inet_aton(WSD_GROUP) + socket.inet_aton("10.77.1.2"))
        enter("host")
        self.control = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.control.bind(("127.0.0.1", CONTROL_PORT))
        self.burst, self.count, self.mutator = 1, 0, Mutator(0)

    @staticmethod
    def open(port):
        opened = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        opened.setsockopt(socket.IPPROTO_IP, IP_PKTINFO, 1)
        opened.bind(("", port))
        return opened

    def answer(self, opened):
        request, ancillary, _, sender = opened.recvmsg(65535, 128)
        to = ancillary[0][2][8:12]
        toEverybody = to == b"\xff\xff\xff\xff" or to[0] == 239
        good = answers_of(request)
        for _ in range(self.burst if toEverybody else 1):
            base = self.mutator.random.choice(good)
            # Good reports let the exchange go on to its second half.
            keeps = good[0][:1] == b"\x30" and len(good) == 1 and self.mutator.random.random() < 0.7
            data = base if keeps else self.mutator.mutate(base, toEverybody)
            opened.sendto(data[:65000], sender)
            self.count += 1

    def obey(self):
        text, sender = self.control.recvfrom(100)
        word, number = text.decode().split()
        if word == "seed":
            self.mutator = Mutator(int(number))
        else:
            self.burst = int(number)
        self.control.sendto(b"ok %d" % self.count, sender)

    def run(self):
        while True:
            for readable in select.select([*self.sockets, self.control], [], [])[0]:
                if readable is self.control:
                    self.obey()
                else:
                    self.answer(readable)


if __name__ == "__main__":
    responder = Responder()
    print("ready", flush=True)
    responder.run()
