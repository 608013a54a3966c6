#!/usr/bin/env python3
"""The devices of the test network (scripts/lab/test-net.sh), moved by a test that runs under Wine.

Wine's sockets belong to the namespace `host`, so a test cannot open the devices' sockets itself. This program
opens them, forwards every datagram to the test and sends what the test tells it. It prints "ready" once all
sockets are open, serves one test at a time on 127.0.0.1, namespace `host`, and runs until it is ended.

Lines to the test:
    got NET LOCAL_IP LOCAL_PORT SENDER_IP SENDER_PORT HEX
    synced                                      every datagram that had arrived before `sync` has been forwarded
Lines from the test:
    send NET SOURCE_IP SOURCE_PORT IP PORT HEX [delay=MS] [repeat=N] [gap=US] [number=OFFSET]
        number: the five bytes at OFFSET become the decimal number of the repetition, "00000" first
    auto NET PORT HEX                           answers each datagram there by itself, at native speed; "-": ends it
    sync
"""
import ctypes
import heapq
import itertools
import select
import socket
import struct
import sys
import time

RELAY_PORT = 47161
SNMP_PORT = 161
WSD_PORT = 3702
WSD_GROUP = "239.255.255.250"
NETS = ("neta", "netb")
IP_PKTINFO = 8
SO_TIMESTAMPNS = 35
CLONE_NEWNET = 0x40000000
LARGEST = 65535

libc = ctypes.CDLL(None, use_errno=True)


def enter(net):
    with open(f"/run/netns/{net}", "rb") as namespace:
        if libc.setns(namespace.fileno(), CLONE_NEWNET) != 0:
            raise OSError(ctypes.get_errno(), f"cannot enter namespace {net}")


class Port:
    """One port of one network: it receives whatever is sent there and sends from any address of the network."""

    def __init__(self, net, family, port):
        self.net, self.family, self.port = net, family, port
        self.auto = None
        self.socket = socket.socket(family, socket.SOCK_DGRAM)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
        self.socket.setsockopt(socket.SOL_SOCKET, SO_TIMESTAMPNS, 1)
        if family == socket.AF_INET:
            self.socket.setsockopt(socket.IPPROTO_IP, IP_PKTINFO, 1)
            self.socket.bind(("", port))
        else:
            self.index = socket.if_nametoindex("eth0")
            self.socket.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_V6ONLY, 1)
            self.socket.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_RECVPKTINFO, 1)
            self.socket.bind(("::", port))

    def join(self, group, interface):
        self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP,
                               socket.inet_aton(group) + socket.inet_aton(interface))

    def receive(self):
        """One queued datagram as (arrival, local ip, sender, bytes), or None."""
        try:
            data, ancillary, _, sender = self.socket.recvmsg(LARGEST, 256, socket.MSG_DONTWAIT)
        except BlockingIOError:
            return None
        for level, _, info in ancillary:
            if level == socket.SOL_SOCKET:
                arrival = struct.unpack("=qq", info)
            else:
                local = info[8:12] if self.family == socket.AF_INET else info[:16]
        return arrival, socket.inet_ntop(self.family, local), sender, data

    def send(self, source, ip, port, data):
        if self.family == socket.AF_INET:
            info = (socket.IPPROTO_IP, IP_PKTINFO, struct.pack("=I4s4s", 0, socket.inet_aton(source), bytes(4)))
            to = (ip, port)
        else:
            info = (socket.IPPROTO_IPV6, socket.IPV6_PKTINFO,
                    socket.inet_pton(self.family, source) + struct.pack("=I", self.index))
            to = (ip, port, 0, self.index)
        try:
            self.socket.sendmsg([data], [info], 0, to)
        except OSError as error:  # a test that asks for what its network does not have
            print(f"cannot send from {source} in {self.net} to {ip}: {error}", flush=True)


class Burst:
    """The datagrams of one `send` line."""

    def __init__(self, port, source, ip, to, data, options):
        self.port, self.source, self.ip, self.to, self.data = port, source, ip, to, bytearray(data)
        self.left = options.get("repeat", 1)
        self.gap = options.get("gap", 0) / 1e6
        self.number = options.get("number")
        self.sent = 0
        self.due = time.monotonic() + options.get("delay", 0) / 1e3

    def run(self):
        """Sends what is due now. False: that was the last one."""
        while self.left > 0:
            if self.number is not None:
                self.data[self.number:self.number + 5] = b"%05d" % self.sent
            self.port.send(self.source, self.ip, self.to, self.data)
            self.sent += 1
            self.left -= 1
            if self.gap > 0:
                self.due += self.gap
                break
        return self.left > 0


class Relay:
    def __init__(self):
        self.ports = {}
        for net in NETS:
            enter(net)
            for family in (socket.AF_INET, socket.AF_INET6):
                self.open(net, family, SNMP_PORT)
            own = "10.77.1.2" if net == "neta" else "10.77.2.2"
            self.open(net, socket.AF_INET, WSD_PORT).join(WSD_GROUP, own)
        enter("host")
        self.open("host", socket.AF_INET6, SNMP_PORT)  # would hear multicasts that are looped back
        # What leaves from the loopback address stays on the host.
        self.open("host", socket.AF_INET, WSD_PORT).join(WSD_GROUP, "127.0.0.1")
        self.sockets = [port.socket for port in self.ports.values()]
        self.listener = socket.create_server(("127.0.0.1", RELAY_PORT))
        self.test = None
        self.text = b""
        self.bursts = []
        self.order = itertools.count()

    def open(self, net, family, port):
        return self.ports.setdefault((net, family, port), Port(net, family, port))

    def accept(self):
        """A new test: nothing of the one before reaches it."""
        if self.test:
            self.test.close()
        self.test, _ = self.listener.accept()
        self.test.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self.text = b""
        self.bursts.clear()
        for port in self.ports.values():
            port.auto = None
            while port.receive():
                pass

    def tell(self, line):
        try:
            self.test.sendall(line.encode() + b"\n")
        except (AttributeError, OSError):
            pass  # no test, or one that has ended

    def take(self, port):
        """The next datagram of a port as (arrival, line for the test), or None."""
        received = port.receive()
        if not received:
            return None
        arrival, local, sender, data = received
        ip = sender[0].partition("%")[0]
        if port.auto:
            port.send(local, ip, sender[1], port.auto)
        return arrival, None if port.auto else f"got {port.net} {local} {port.port} {ip} {sender[1]} {data.hex() or '-'}"

    def forward(self):
        """Tells the test what has arrived, in the order of arrival on whatever network. What arrives meanwhile
        may be older than what another port has given already, so all ports have to be empty first."""
        taken = []
        while True:
            batch = [datagram for datagram in map(self.take, self.ports.values()) if datagram]
            if not batch:
                break
            taken += batch
        for _, line in sorted(taken, key=lambda datagram: datagram[0]):
            if line:
                self.tell(line)

    def obey(self, line):
        words = line.split()
        if words[0] == "sync":
            self.forward()
            self.tell("synced")
        elif words[0] == "auto":
            answer = None if words[3] == "-" else bytes.fromhex(words[3])
            for (net, _, number), port in self.ports.items():
                if net == words[1] and number == int(words[2]):
                    port.auto = answer
        else:
            net, source, source_port, ip, to, data = words[1:7]
            family = socket.AF_INET6 if ":" in ip else socket.AF_INET
            options = {name: int(value) for name, value in (word.split("=") for word in words[7:])}
            self.add(Burst(self.ports[net, family, int(source_port)], source, ip, int(to),
                           b"" if data == "-" else bytes.fromhex(data), options))

    def add(self, burst):
        heapq.heappush(self.bursts, (burst.due, next(self.order), burst))

    def hear(self):
        try:
            text = self.test.recv(1 << 16)
        except OSError:
            text = b""
        if not text:
            self.test.close()
            self.test = None
            self.bursts.clear()
            return
        *lines, self.text = (self.text + text).split(b"\n")
        for line in lines:
            self.obey(line.decode())

    def run(self):
        while True:
            wait = max(0, self.bursts[0][0] - time.monotonic()) if self.bursts else None
            sources = [self.listener, *self.sockets] + ([self.test] if self.test else [])
            readable = select.select(sources, [], [], wait)[0]
            if self.listener in readable:
                self.accept()
                continue
            if any(source in self.sockets for source in readable):
                self.forward()
            if self.test in readable:
                self.hear()
            while self.bursts and self.bursts[0][0] <= time.monotonic():
                burst = heapq.heappop(self.bursts)[2]
                if burst.run():
                    self.add(burst)


if __name__ == "__main__":
    relay = Relay()
    print("ready", flush=True)
    sys.exit(relay.run())
