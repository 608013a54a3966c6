"""Values of random type and content, written to a real agent and read from it by every way to ask, and what a
dissector that knows the passwords makes of the requests. VNDISCOVER_SEED repeats a run."""

import concurrent.futures
import itertools
import json
import os
import random
import re
import signal
import subprocess
import time
import unittest

from console_host import AGENT, LAB, main, run

CAPTURE = LAB + "/requests.pcap"
DEFAULT_OID = ".1.3.6.1.4.1.5963.43.5.1.1.1.1"
ROOT = ".1.3.6.1.4.1.5963.77"
AUTH_PASSWORD, PRIV_PASSWORD = "authpass1", "privpass1"
SEED = int(os.environ.get("VNDISCOVER_SEED", time.time_ns() % 10**6))
rolls = random.Random(SEED)

# Label of the module, the agent's name, the dissector's name, bytes of the authentication code.
AUTH = (("MD5", "MD5", "MD5", 12), ("SHA1", "SHA", "SHA1", 12), ("SHA-2(224)", "SHA-224", "SHA2-224", 16),
        ("SHA-2(256)", "SHA-256", "SHA2-256", 24), ("SHA-2(384)", "SHA-384", "SHA2-384", 32),
        ("SHA-2(512)", "SHA-512", "SHA2-512", 48))
PRIV = (("DES", "DES"), ("AES", "AES"))

# The module's name of a type: the agent's, a first value for it, the dissector's field.
TYPES = {"INTEGER": ("integer", "0", "int"), "OCTET STRING": ("octet_str", "x", "octets"),
         "OBJECT IDENTIFIER": ("object_id", ".1.3", "oid"), "Counter32": ("counter", "0", "counter"),
         "Gauge32": ("uinteger", "0", "g32"), "TimeTicks": ("timeticks", "0", "timeticks")}


def random_oid(root, arcs):
    return root + "".join(f".{rolls.choice((0, 1, 127, 128, 16383, rolls.randrange(16384)))}" for _ in range(arcs))


class Variable:
    """What it is set to, as JSON shows it, and as the dissector does. No message gets longer than 129 bytes, as long
    as requests by community can be."""

    def __init__(self, number):
        self.oid = random_oid(f"{ROOT}.{number}", rolls.randint(1, 8))
        self.kind = rolls.choice(list(TYPES))
        self.word = self.kind.split()[-1].lower().removesuffix("32")
        self.shown = {"oid": self.oid, "type": self.kind}
        if self.kind == "OCTET STRING":  # a control character in front: no text
            content = b"\1" + rolls.randbytes(rolls.randrange(40))
            self.word, self.text, self.dissected = "hex", content.hex(), content.hex()
            self.shown |= {"value": content.hex(" ").upper(), "encoding": "hex"}
            return
        if self.kind == "OBJECT IDENTIFIER":
            self.word, self.text = "oid", random_oid(".1.3.6", rolls.randint(1, 20))
        elif self.kind == "INTEGER":
            self.text = str(rolls.choice((-1, 127, 128, -128, -129, 2**31 - 1, -2**31, rolls.randrange(-2**31, 2**31))))
        else:
            self.text = str(rolls.choice((127, 128, 255, 2**31, 2**32 - 1, rolls.randrange(2**32))))
        self.shown["value"] = self.text if self.word == "oid" else int(self.text)
        self.dissected = self.text.removeprefix(".")


class User:
    """One user for each way to ask, so that a datagram tells by its user name what it must look like."""

    def __init__(self, auth=None, priv=None):
        self.auth, self.priv = auth, priv
        self.name = "user" + "".join("-" + part[0].lower().strip(")").replace("(", "") for part in (auth, priv) if part)
        self.options = ["--v3", "-u", self.name]
        if auth:
            self.options += ["-a", auth[0], "-A", AUTH_PASSWORD]
        if priv:
            self.options += ["-x", priv[0], "-X", PRIV_PASSWORD]

    def agent_lines(self):
        secrets = f" {self.auth[1]} {AUTH_PASSWORD}" if self.auth else ""
        secrets += f" {self.priv[1]} {PRIV_PASSWORD}" if self.priv else ""
        level = "priv" if self.priv else "auth" if self.auth else "noauth"
        return f"createUser {self.name}{secrets}\nrouser {self.name} {level}\n"

    def dissector_line(self):
        return f'"","{self.name}","{self.auth[2]}","{AUTH_PASSWORD}","{self.priv[1] if self.priv else "DES"}",' \
               f'"{PRIV_PASSWORD}"\n'


VARIABLES = [Variable(number) for number in range(15)]
USERS = [User()] + [User(auth) for auth in AUTH] + [User(auth, priv) for auth in AUTH for priv in PRIV]
SWEEPERS = [None, USERS[0], USERS[1], *USERS[-2:]]
FIELDS = ("ip.dst", "snmp.community", "snmp.data", "snmp.msgUserName", "snmp.msgAuthenticationParameters",
          "snmp.encryptedPDU", "snmp.decrypted_pdu", "snmp.name", "_ws.expert.message", "_ws.malformed",
          *("snmp.value." + field for _, _, field in TYPES.values()))
COMMUNITY = "c" + "".join(rolls.choices("abcXYZ0189-_", k=rolls.randrange(30)))
SET, GET, NEXT = "3", "0", "1"  # as the dissector numbers them


def ask(user, asked):
    """What a user gets; None asks by community."""
    options = user.options if user else ["-c", COMMUNITY]
    return (asked, run("get", AGENT, asked.oid, "--format", "json", *options),
            run("walk", AGENT, ROOT, "--format", "json", *options))


def sweep(user):
    return run("sweep", "--format", "json", *(user.options if user else ["-c", COMMUNITY]))


def dissected():
    """Every request of the capture but for probes: field name to text."""
    profile = LAB + "/dissector"
    os.mkdir(profile)
    with open(profile + "/snmp_users", "w", encoding="ascii") as file:
        file.writelines(user.dissector_line() for user in USERS if user.auth)
    command = ["tshark", "-r", CAPTURE, "-T", "fields"] + [word for field in FIELDS for word in ("-e", field)]
    text = subprocess.run(command, env={**os.environ, "WIRESHARK_CONFIG_DIR": profile, "HOME": LAB},
                          capture_output=True, check=True, text=True).stdout
    rows = [dict(zip(FIELDS, line.split("\t"))) for line in text.splitlines()]
    for row in rows:  # it takes some of the host's ports for something else
        row["opinion"] = re.sub(r"Possible traceroute: hop #\d+, attempt #\d+", "", row["_ws.expert.message"]).strip(",")
    return [row for row in rows if row["ip.dst"] != "10.77.1.1" and (row["snmp.community"] or row["snmp.name"])]


def ask_and_capture():
    print("seed", SEED, flush=True)
    capture = subprocess.Popen(["ip", "netns", "exec", "neta", "dumpcap", "-q", "-i", "eth0", "-f", "udp port 161",
                                "-w", CAPTURE], stderr=subprocess.PIPE, text=True)
    for line in capture.stderr:
        if line.startswith("File:"):  # the capture has begun
            break
    with (concurrent.futures.ThreadPoolExecutor(len(SWEEPERS)) as sweeps,
          concurrent.futures.ThreadPoolExecutor(4) as pool):
        swept = sweeps.map(sweep, SWEEPERS)
        RealAgent.written = list(pool.map(lambda variable: run("set", AGENT, variable.oid, variable.word, variable.text,
                                                               "-w", COMMUNITY), VARIABLES))
        RealAgent.results = list(pool.map(ask, [None, *USERS], itertools.cycle(VARIABLES)))
        RealAgent.swept = list(swept)
    time.sleep(1)  # for what is still on its way to the file
    capture.send_signal(signal.SIGINT)
    capture.communicate()
    RealAgent.requests = dissected()


class RealAgent(unittest.TestCase):
    maxDiff = None

    def test_what_was_written_is_read_by_every_user(self):
        self.assertEqual([0] * len(VARIABLES), [code for code, _, _ in self.written], self.written)
        for user, (asked, get, walk) in zip([None, *USERS], self.results):
            with self.subTest(user=user.name if user else "community", seed=SEED):
                self.assertEqual([0, 0], [get[0], walk[0]], get[2] + walk[2])
                shown = dict(asked.shown)
                if user and "encoding" in shown:  # SNMPv3 gets are texts, which a zero byte ends
                    shown["value"] = shown["value"].split(" 00")[0]
                self.assertEqual([shown], json.loads(get[1]))
                self.assertEqual([variable.shown for variable in VARIABLES], json.loads(walk[1]))

    def test_sweeps_find_the_agent(self):
        for user, (code, out, err) in zip(SWEEPERS, self.swept):
            with self.subTest(user=user.name if user else "community"):
                self.assertEqual((0, [{"address": AGENT, "value": "Model 1"}]), (code, json.loads(out)), err)

    def test_a_dissector_reads_every_request(self):
        for user, (asked, *_) in zip([None, *USERS], self.results):
            with self.subTest(user=user.name if user else "community", seed=SEED):
                sent = [row for row in self.requests if row["snmp.msgUserName"] == (user.name if user else "")]
                names = [(NEXT, variable.oid[1:]) for variable in VARIABLES]
                swept = [(GET, DEFAULT_OID[1:])] if user in SWEEPERS else []
                self.assertLessEqual({(GET, asked.oid[1:]), (NEXT, ROOT[1:]), *names, *swept},
                                     {(row["snmp.data"], row["snmp.name"]) for row in sent})
                for row in sent:
                    self.assertEqual(COMMUNITY if not user else "", row["snmp.community"])
                    self.assertEqual("", row["_ws.malformed"])
                    length = len(row["snmp.msgAuthenticationParameters"].replace("<MISSING>", "")) // 2
                    self.assertEqual(user.auth[3] if user and user.auth else 0, length)
                    self.assertEqual("SNMP Authentication OK" if user and user.auth else "", row["opinion"])
                    self.assertEqual(bool(user and user.priv), bool(row["snmp.encryptedPDU"]))
                    self.assertEqual(bool(user and user.priv), bool(row["snmp.decrypted_pdu"]))

    def test_a_dissector_reads_what_is_written(self):
        written = {row["snmp.name"]: row for row in self.requests if row["snmp.data"] == SET}
        for variable in VARIABLES:
            with self.subTest(oid=variable.oid, seed=SEED):
                field = "snmp.value." + TYPES[variable.kind][2]
                self.assertEqual(variable.dissected, written[variable.oid[1:]][field])


if __name__ == "__main__":
    main(f"agentAddress udp:161\nrwcommunity {COMMUNITY}\noverride {DEFAULT_OID} octet_str \"Model 1\"\n" +
         "".join(f"override -rw {variable.oid} {TYPES[variable.kind][0]} {TYPES[variable.kind][1]}\n"
                 for variable in VARIABLES) + "".join(user.agent_lines() for user in USERS), ask_and_capture)
