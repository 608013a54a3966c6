#!/usr/bin/env python3
"""Our codec against independent ones: every request that it builds is decoded by tshark; values and requests go
both ways between the module and net-snmp's agent and tools. Inside private-net.sh; VNDISCOVER_BIN and
VNDISCOVER_LAB_SCRIPTS as for the other lab tests; VNDISCOVER_SEED starts another set of random values.
"""
import os
import random
import socket
import struct
import subprocess
import sys

BIN = os.environ["VNDISCOVER_BIN"]
SCRIPTS = os.environ["VNDISCOVER_LAB_SCRIPTS"]
LAB = os.environ["VNDISCOVER_LAB"]
SEED = int(os.environ.get("VNDISCOVER_SEED", "1"))
HOST = "10.77.1.2"
AUTHS = (None, "MD5", "SHA", "SHA-224", "SHA-256", "SHA-384", "SHA-512")  # by protocol code
SHARK_AUTHS = (None, "MD5", "SHA1", "SHA2-224", "SHA2-256", "SHA2-384", "SHA2-512")
PRIVS = (None, "DES", "AES")
ENGINE = "8000174b0501020304"
INTEGER, OCTETS, NULL, OID, COUNTER, GAUGE, TICKS = 2, 4, 5, 6, 0x41, 0x42, 0x43
AGENT_TYPES = {INTEGER: "integer", OCTETS: "octet_str", COUNTER: "counter", GAUGE: "uinteger", TICKS: "timeticks"}
TOOL_TYPES = {INTEGER: "i", OCTETS: "x"}
rolls = random.Random(SEED)
failures = []
counts = {}


def check(what, expected, got):
    counts[what] = counts.get(what, 0) + 1
    if expected != got:
        failures.append(f"{what}: expected {expected!r}, got {got!r}")


def random_oid(base=".1.3.6.1.4.1.5963", longest=10):
    return base + "".join(f".{rolls.choice((0, 1, 127, 128, 5963, 16383, rolls.randrange(16384)))}"
                          for _ in range(rolls.randint(1, longest)))


def oid_content(dotted):
    arcs = [int(arc) for arc in dotted.strip(".").split(".")]
    content = bytearray()
    for arc in [arcs[0] * 40 + arcs[1]] + arcs[2:]:
        groups = [arc & 0x7F]
        while arc > 0x7F:
            arc >>= 7
            groups.append((arc & 0x7F) | 0x80)
        content += bytes(reversed(groups))
    return bytes(content).hex()


def number_content(value):
    bits = (value if value >= 0 else ~value).bit_length()
    return value.to_bytes(bits // 8 + 1, "big", signed=True)


def random_value(tag):
    """A value as (what net-snmp is told, content octets)."""
    if tag == OCTETS:
        value = rolls.randbytes(rolls.randint(1, 40))
        return value.hex(), value
    if tag == INTEGER:
        value = rolls.choice((0, 1, -1, 127, 128, -128, -129, 2**31 - 1, -2**31, rolls.randrange(-2**31, 2**31)))
    else:
        value = rolls.choice((0, 127, 128, 255, 2**31, 2**32 - 1, rolls.randrange(2**32)))
    return str(value), number_content(value)


def in_net(net, *command):
    return subprocess.run(["nsenter", f"--net=/run/netns/{net}", *command], capture_output=True, text=True,
                          env={**os.environ, "MIBS": ""}, check=False)


class Peer:
    """codec_peer.exe, which answers a line for a line."""

    def __init__(self):
        self.process = subprocess.Popen([f"{SCRIPTS}/wine-run.sh", "host", f"{BIN}/codec_peer.exe"],
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)

    def ask(self, *words):
        self.process.stdin.write(" ".join(str(word) for word in words) + "\n")
        self.process.stdin.flush()
        return self.process.stdout.readline().strip()


def write_capture(path, datagrams):
    with open(path, "wb") as capture:
        capture.write(struct.pack("=IHHIIII", 0xA1B2C3D4, 2, 4, 0, 0, 65535, 101))  # packets begin with IPv4
        for number, data in enumerate(datagrams):
            udp = struct.pack("!HHHH", 40000, 161, 8 + len(data), 0) + data
            ip = struct.pack("!BBHHHBBH4s4s", 0x45, 0, 20 + len(udp), number, 0, 64, 17, 0, bytes((10, 77, 1, 1)),
                             bytes((10, 77, 1, 2))) + udp
            capture.write(struct.pack("=IIII", number, 0, len(ip), len(ip)) + ip)


def dissect(datagrams):
    """What tshark reads in each."""
    path = f"{LAB}/requests.pcap"
    write_capture(path, datagrams)
    users = [["-o", f'uat:snmp_users:"","u{auth}p{priv}","{SHARK_AUTHS[auth]}","authpass1","{PRIVS[priv]}",'
                    '"privpass1"'] for auth in range(1, 7) for priv in (1, 2)]
    fields = ["snmp.version", "snmp.msgVersion", "snmp.community", "snmp.msgUserName", "snmp.data", "snmp.name", "snmp.value.int",
              "snmp.value.octets", "snmp.value.null", "snmp.v3.auth", "_ws.malformed", "_ws.expert.severity"]
    command = ["tshark", "-r", path, "-T", "fields", "-E", "separator=|"]
    for field in fields:
        command += ["-e", field]
    for user in users:
        command += user
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode != 0:
        sys.exit(f"tshark: {done.stderr}")
    return [dict(zip(fields, line.split("|"))) for line in done.stdout.splitlines()]


def requests_by_tshark(peer):
    asked, datagrams = [], []
    for _ in range(80):
        tag = rolls.choice((NULL, INTEGER, OCTETS))
        content = b"" if tag == NULL else random_value(tag)[1]
        pdu = 3 if tag != NULL else rolls.choice((0, 1))
        community = "".join(rolls.choice("abcXYZ0189-_") for _ in range(rolls.randint(1, 16)))
        oid = random_oid()
        asked.append({"snmp.version": "0", "snmp.community": community, "snmp.data": str(pdu), "snmp.name": oid[1:],
                      "snmp.value.int": str(int.from_bytes(content, "big", signed=True)) if tag == INTEGER else "",
                      "snmp.value.octets": content.hex() if tag == OCTETS else "", "snmp.v3.auth": ""})
        datagrams.append(peer.ask("v1", 0xA0 + pdu, community, oid, tag, content.hex() or "-"))
    for auth in range(1, 7):
        for priv in (0, 1, 2, 1, 2):
            oid, pdu = random_oid(), rolls.choice((0, 1))
            user = f"u{auth}p{priv or 1}"
            asked.append({"snmp.msgVersion": "3", "snmp.msgUserName": user, "snmp.data": str(pdu),
                          "snmp.name": oid[1:], "snmp.v3.auth": "1"})
            datagrams.append(peer.ask("v3", 0xA0 + pdu, user, auth, priv, ENGINE, oid))
    seen = dissect([bytes.fromhex(datagram) for datagram in datagrams])
    check("packets", len(asked), len(seen))
    for expected, got in zip(asked, seen):
        check("requests read by tshark", {**expected, "_ws.malformed": ""},
              {name: got.get(name, "") for name in {**expected, "_ws.malformed": ""}})


def start_agent(variables):
    lines = ["agentAddress udp:161", "rwcommunity secret"]
    lines += [f"createUser u{auth}p{priv} {AUTHS[auth]} authpass1 {PRIVS[priv]} privpass1"
              for auth in range(1, 7) for priv in (1, 2)]
    lines += [f"rouser u{auth}p{priv} auth" for auth in range(1, 7) for priv in (1, 2)]
    for oid, tag, told in variables:
        lines.append(f"override -rw {oid} {AGENT_TYPES[tag]} {'0x' if tag == OCTETS else ''}{told}")
    done = subprocess.run([f"{SCRIPTS}/snmp-agent.sh", "neta", "agent"], input="\n".join(lines) + "\n", text=True,
                          stdout=subprocess.DEVNULL, check=False)
    if done.returncode != 0:
        sys.exit("no agent")


def tool_value(oid):
    """What snmpget reads, as (type word, text)."""
    out = in_net("host", "snmpget", "-v1", "-c", "secret", "-Onx", "-Ih", HOST, oid).stdout.strip()
    return " ".join(out.partition(" = ")[2].split())  # long strings come in lines


def tool_text(tag, content):
    if tag == OCTETS:
        return "Hex-STRING: " + " ".join(f"{byte:02X}" for byte in content)
    return f"INTEGER: {int.from_bytes(content, 'big', signed=True)}"


def values_both_ways(peer):
    variables, contents = [], {}
    while len(variables) < 40:
        oid = f".1.3.6.1.4.1.5963.43.{len(variables) + 1}.{rolls.randrange(1, 16384)}.1"
        tag = rolls.choice(tuple(AGENT_TYPES))
        told, content = random_value(tag)
        variables.append((oid, tag, told))
        contents[oid] = content
    start_agent(variables)
    previous = ".1.3.6.1.4.1.5963.43.0"
    for oid, tag, told in variables:
        content = contents[oid].hex()
        check("values read", f"{tag} {content}", peer.ask("get", HOST, oid))
        check("next values read", f"{oid_content(oid)} {tag} {content}", peer.ask("next", HOST, previous))
        auth, priv = rolls.randint(1, 6), rolls.choice((1, 2))
        check("next values read over version 3", f"{oid_content(oid)} {tag} {content}",
              peer.ask("nextv3", HOST, previous, f"u{auth}p{priv}", auth, rolls.choice((0, priv))))
        if tag == INTEGER:
            check("numbers read over version 3", f"{tag} {told}",
                  peer.ask("getv3", HOST, oid, f"u{auth}p{priv}", auth, priv))
        previous = oid
    for oid, tag, _ in variables:
        if tag not in TOOL_TYPES:
            continue
        _, content = random_value(tag)
        check("values set by the module: its answer", f"{tag} {content.hex()}",
              peer.ask("set", HOST, oid, tag, content.hex()))
        check("values set by the module, read by snmpget", tool_text(tag, content), tool_value(oid))
        told, content = random_value(tag)
        in_net("host", "snmpset", "-v1", "-c", "secret", HOST, oid, TOOL_TYPES[tag], told)
        check("values set by snmpset, read by the module", f"{tag} {content.hex()}", peer.ask("get", HOST, oid))


def requests_of_the_tools(peer):
    """Messages of net-snmp's own codec, secured in every way, read by ours."""
    subprocess.run(["ip", "-n", "host", "link", "set", "lo", "up"], check=True)
    for auth in range(1, 7):
        for priv in (0, 1, 2):
            bindings, expected = [], []
            for _ in range(rolls.randint(1, 4)):
                oid, tag = random_oid(longest=6), rolls.choice(tuple(TOOL_TYPES))
                told, content = random_value(tag)
                bindings += [oid, TOOL_TYPES[tag], told]
                expected.append(f"{oid_content(oid)} {tag} {content.hex()}")
            receiver = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
            receiver.settimeout(10)
            receiver.bind(("127.0.0.1", 0))
            security = ["-l", "authPriv", "-x", PRIVS[priv], "-X", "privpass1"] if priv else ["-l", "authNoPriv"]
            # With engine ID, boots and time given, no discovery comes first; nobody answers the request.
            subprocess.run(["snmpset", "-v3", "-u", "user", *security, "-a", AUTHS[auth], "-A", "authpass1", "-e",
                            "0x" + ENGINE, "-E", "0x" + ENGINE, "-Z", "3,4711", "-r", "0", "-t", "0.2",
                            f"127.0.0.1:{receiver.getsockname()[1]}", *bindings],
                           capture_output=True, env={**os.environ, "MIBS": ""}, check=False)
            datagram = receiver.recv(65535)
            check("requests of snmpset read", " ".join(expected),
                  peer.ask("decode", auth, priv, ENGINE, datagram.hex()))


def main():
    subprocess.run([f"{SCRIPTS}/test-net.sh"], check=True)
    peer = Peer()
    requests_by_tshark(peer)
    values_both_ways(peer)
    requests_of_the_tools(peer)
    peer.process.stdin.close()
    for what, count in counts.items():
        print(f"{what}: {count}")
    print("\n".join(failures[:20]))
    sys.exit(f"{len(failures)} differences, seed {SEED}" if failures else 0)


main()
