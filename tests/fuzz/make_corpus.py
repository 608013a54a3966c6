"""make_corpus.py OUT: makes the seeds of the fuzz targets from real traffic, in a lab of its own
(scripts/lab/private-net.sh python3 tests/fuzz/make_corpus.py tests/fuzz/corpus).

A net-snmp agent answers net-snmp's tools on the loopback of the private network; tshark records both.
"""
import os
import subprocess
import sys
import time

OUT = sys.argv[1]
LAB = os.environ["VNDISCOVER_LAB"]
CONF = os.path.join(LAB, "snmpd.conf")
CAPTURE = os.path.join(LAB, "capture.pcap")
AUTH = ["MD5", "SHA", "SHA-224", "SHA-256", "SHA-384", "SHA-512"]
PRIV = ["DES", "AES"]

# snmpd of the lab: one user per choice of protocols.
with open(CONF, "w") as conf:
    conf.write("agentAddress udp:127.0.0.1:161\nrocommunity sesame\nrwcommunity secret\nsysName printer\n")
    conf.write('override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"\n')
    for auth in AUTH:
        for priv in PRIV:
            conf.write(f"createUser {auth}{priv} {auth} maplesyrup {priv} maplesyrup\nrouser {auth}{priv} noauth\n")


def run(*command):
    subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=20, check=False)


def payloads():
    """The recorded UDP payloads, in order, with the source port."""
    out = subprocess.run(["tshark", "-r", CAPTURE, "-T", "fields", "-e", "udp.srcport", "-e", "udp.payload"],
                         capture_output=True, text=True, check=True).stdout
    return [(int(port), bytes.fromhex(data)) for port, data in
            (line.split("\t") for line in out.splitlines() if "\t" in line)]


def save(target, name, data):
    folder = os.path.join(OUT, target)
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), "wb") as file:
        file.write(data)


def header(data, at):
    """Tag, start of the content and its end, of the BER value at `at`."""
    length, start = data[at + 1], at + 2
    if length >= 0x80:
        count = length & 0x7F
        length, start = int.from_bytes(data[start:start + count], "big"), start + count
    return data[at], start, start + length


def scoped_pdu(message):
    """The plain scoped PDU of an SNMPv3 message: the fourth member of the outer SEQUENCE."""
    _, at, _ = header(message, 0)
    for _ in range(3):
        at = header(message, at)[2]
    return message[at:] if message[at] == 0x30 else None


agent = subprocess.Popen(["snmpd", "-f", "-Lf", os.path.join(LAB, "snmpd.log"), "-C", "-c", CONF, "-I", "-smux"])
sniffer = subprocess.Popen(["tshark", "-q", "-i", "lo", "-f", "udp port 161", "-w", CAPTURE],
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
time.sleep(3)
V1 = ["-v1", "-c", "sesame", "-r", "0", "127.0.0.1"]
for oid in [".1.3.6.1.4.1.5963.43.5.1.1.1.1", ".1.3.6.1.2.1.1.1.0", ".1.3.6.1.2.1.1.2.0", ".1.3.6.1.2.1.1.3.0",
            ".1.3.6.1.2.1.1.7.0", ".1.3.6.1.2.1.4.20.1.1.127.0.0.1", ".1.3.6.1.2.1.11.1.0", ".1.3.6.1.9.9.9"]:
    run("snmpget", *V1, oid)
run("snmpgetnext", *V1, ".1.3.6.1.2.1.1")
run("snmpget", *V1, ".1.3.6.1.2.1.1.1.0", ".1.3.6.1.2.1.1.5.0", ".1.3.6.1.2.1.1.7.0")
for auth in AUTH:
    for priv in PRIV:
        for level in ["noAuthNoPriv", "authNoPriv", "authPriv"]:
            run("snmpget", "-v3", "-r", "0", "-u", auth + priv, "-l", level, "-a", auth, "-A", "maplesyrup",
                "-x", priv, "-X", "maplesyrup", "127.0.0.1", ".1.3.6.1.4.1.5963.43.5.1.1.1.1",
                ".1.3.6.1.2.1.1.7.0")
time.sleep(1)
sniffer.terminate()
sniffer.wait()
agent.kill()

seen = set()
number = 0
for port, data in payloads():
    version = data[4] if data[1] < 0x80 else data[2 + (data[1] & 0x7F) + 2]
    kind = "answer" if port == 161 else "request"
    shape = (version, kind, len(data))
    if shape in seen:
        continue
    seen.add(shape)
    number += 1
    name = f"{kind}-{number:03}"
    if version == 0:
        save("response", name, data)
        save("ber", name, data)
        at = header(data, 0)[1]
        for _ in range(2):
            at = header(data, at)[2]
        save("pdu", name, data[at:])
    else:
        save("v3_message", name, bytes([number % 21]) + data)
        plain = scoped_pdu(data)
        if plain:
            save("v3_inner", name, bytes([number % 14]) + plain)
for name, text in [("default", ".1.3.6.1.4.1.5963.43.5.1.1.1.1"), ("system", "1.3.6.1.2.1.1.1.0"),
                   ("large", ".1.3.6.1.4.1.4294967295.16384.128"), ("quoted", "'1.3'.\"6\". 1 .2"), ("empty", "..")]:
    save("oid", name, text.encode())
for name, text in [("request", '{"DiscoverOID": ".1.3.6.1.2.1.1.1.0", "GET": {".1.3.6.1.2.1.1.5.0": "", ".1": "x"}}'),
                   ("array", '{"GET": ["a", "b", {"c": 1}]}'), ("twice", '{"GET": {"a": "1", "A": "2"}, "get": 3}'),
                   ("unicode", '{"DiscoverOID": "\\u00e9\\ud83d\\ude00", "GET": {"\u20ac": null}}')]:
    save("json", name, b"\x09" + text.encode())
