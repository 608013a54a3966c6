"""Values of random type and content are written to a real agent and read with every kind of request, and a dissector
that knows the passwords checks the requests. VNDISCOVER_SEED repeats a run."""

import concurrent.futures
import json
import os
import random
import re
import signal
import subprocess
import time
import unittest

from lab import AGENT, LAB, main, run, start_in

CAPTURE = LAB + "/requests.pcap"
DEFAULT_OID = ".1.3.6.1.4.1.5963.43.5.1.1.1.1"
ROOT = ".1.3.6.1.4.1.5963.77"
AUTH_PASSWORD, PRIV_PASSWORD = "authpass1", "privpass1"
SEED = int(os.environ.get("VNDISCOVER_SEED", time.time_ns() % 10**6))
rolls = random.Random(SEED)

# The module's label, the agent's name, the dissector's name, bytes of the truncated HMAC.
AUTH = (("MD5", "MD5", "MD5", 12), ("SHA1", "SHA", "SHA1", 12), ("SHA-2(224)", "SHA-224", "SHA2-224", 16),
        ("SHA-2(256)", "SHA-256", "SHA2-256", 24), ("SHA-2(384)", "SHA-384", "SHA2-384", 32),
        ("SHA-2(512)", "SHA-512", "SHA2-512", 48))
# The module's name of a type: the host's word, the agent's type with an initial value, the dissector's field.
TYPES = {"INTEGER": ("integer", "integer 0", "int"), "OCTET STRING": ("hex", "octet_str x", "octets"),
         "OBJECT IDENTIFIER": ("oid", "object_id .1.3", "oid"), "Counter32": ("counter", "counter 0", "counter"),
         "Gauge32": ("gauge", "uinteger 0", "g32"), "TimeTicks": ("timeticks", "timeticks 0", "timeticks")}


def random_oid(root, arcs):
    return root + "".join(f".{rolls.choice((0, 1, 127, 128, 16383, rolls.randrange(16384)))}" for _ in range(arcs))


class Variable:
    """The value to set, as JSON shows it, and as the dissector shows it. Keeps every message within 129 bytes, the
    limit of SNMPv1 requests."""

    def __init__(self, number):
        self.oid = random_oid(f"{ROOT}.{number}", rolls.randint(1, 8))
        self.kind = rolls.choice(list(TYPES))
        self.word, self.initially, self.field = TYPES[self.kind]
        self.shown = {"oid": self.oid, "type": self.kind}
        if self.word == "hex":  # with a leading control character, so that it is not text
            content = b"\1" + rolls.randbytes(rolls.randrange(40))
            self.text = content.hex()
            self.shown |= {"value": content.hex(" ").upper(), "encoding": "hex"}
        elif self.word == "oid":
            self.text = self.shown["value"] = random_oid(".1.3.6", rolls.randint(1, 20))
        else:
            edges = (-1, 127, 128, -128, -129, 2**31 - 1, -2**31, rolls.randrange(-2**31, 2**31))
            unsigned_edges = (127, 128, 255, 2**31, 2**32 - 1, rolls.randrange(2**32))
            self.shown["value"] = rolls.choice(edges if self.word == "integer" else unsigned_edges)
            self.text = str(self.shown["value"])
        self.dissected = self.text.removeprefix(".")


class User:
    """One user for each kind of request, so that a datagram's user name determines what it must look like; the first one
    uses a community."""

    def __init__(self, auth=None, priv=None, community=None):
        self.auth, self.priv, self.community = auth, priv, community
        label = "".join("-" + part.lower() for part in (auth[0] if auth else "", priv) if part)
        self.name = "" if community else "user" + re.sub("[()]", "", label)
        self.options = ["-c", community] if community else ["--v3", "-u", self.name]
        self.agent_secrets = self.dissector_line = ""
        if auth:
            self.options += ["-a", auth[0], "-A", AUTH_PASSWORD]
            self.agent_secrets = f"{auth[1]} {AUTH_PASSWORD}"
            self.dissector_line = f'"","{self.name}","{auth[2]}","{AUTH_PASSWORD}","{priv or "DES"}","{PRIV_PASSWORD}"\n'
        if priv:
            self.options += ["-x", priv, "-X", PRIV_PASSWORD]
            self.agent_secrets += f" {priv} {PRIV_PASSWORD}"


COMMUNITY = "c" + "".join(rolls.choices("abcXYZ0189-_", k=rolls.randrange(30)))
VARIABLES = [Variable(number) for number in range(15)]
USERS = [User(community=COMMUNITY), User(), *(User(auth) for auth in AUTH),
         *(User(auth, priv) for auth in AUTH for priv in ("DES", "AES"))]
SWEEPERS = [*USERS[:3], *USERS[-2:]]
FIELDS = ("ip.dst", "snmp.community", "snmp.data", "snmp.msgUserName", "snmp.msgAuthenticationParameters",
          "snmp.encryptedPDU", "snmp.decrypted_pdu", "snmp.name", "_ws.expert.message", "_ws.malformed",
          *("snmp.value." + field for _, _, field in TYPES.values()))
SET, GET, NEXT = "3", "0", "1"  # the dissector's numbers


def agent_conf():
    lines = [f'agentAddress udp:161\nrwcommunity {COMMUNITY}\noverride {DEFAULT_OID} octet_str "Model 1"']
    lines += [f"override -rw {variable.oid} {variable.initially}" for variable in VARIABLES]
    lines += [f"createUser {user.name} {user.agent_secrets}\n"
              f"rouser {user.name} {'priv' if user.priv else 'auth' if user.auth else 'noauth'}" for user in USERS[1:]]
    return "\n".join(lines) + "\n"


def dissected():
    """Every request in the capture except engine discoveries: field name to text."""
    profile = LAB + "/dissector"
    os.mkdir(profile)
    with open(profile + "/snmp_users", "w", encoding="ascii") as file:
        file.writelines(user.dissector_line for user in USERS)
    command = ["tshark", "-r", CAPTURE, "-T", "fields"] + [word for field in FIELDS for word in ("-e", field)]
    text = subprocess.run(command, env={**os.environ, "WIRESHARK_CONFIG_DIR": profile, "HOME": LAB},
                          capture_output=True, check=True, text=True).stdout
    rows = [dict(zip(FIELDS, line.split("\t"))) for line in text.splitlines()]
    for row in rows:
        # It mistakes some of the host's ports for another protocol.
        opinion = re.sub(r"Possible traceroute: hop #\d+, attempt #\d+", "", row["_ws.expert.message"]).strip(",")
        code = row["snmp.msgAuthenticationParameters"].replace("<MISSING>", "")
        row["found"] = (row["snmp.community"], row["_ws.malformed"], len(code) // 2, opinion,
                        bool(row["snmp.encryptedPDU"]), bool(row["snmp.decrypted_pdu"]))
    return [row for row in rows if row["ip.dst"] != "10.77.1.1" and (row["snmp.community"] or row["snmp.name"])]


def as_user(command, *arguments):
    return lambda user: run(command, *arguments, "--format", "json", *user.options)


def ask_and_capture():
    print("seed", SEED, flush=True)
    capture = start_in("neta", "dumpcap", "-q", "-i", "eth0", "-f", "udp port 161", "-w", CAPTURE, stderr=subprocess.PIPE)
    for line in capture.stderr:
        if line.startswith("File:"):  # the capture has begun
            break
    with (concurrent.futures.ThreadPoolExecutor(len(SWEEPERS)) as sweeps,
          concurrent.futures.ThreadPoolExecutor(4) as pool):
        swept = sweeps.map(as_user("sweep"), SWEEPERS)
        RealAgent.written = list(pool.map(lambda variable: run("set", AGENT, variable.oid, variable.word, variable.text,
                                                               "-w", COMMUNITY), VARIABLES))
        got = pool.map(as_user("get", AGENT, *(variable.oid for variable in VARIABLES)), SWEEPERS)
        RealAgent.walked = list(pool.map(as_user("walk", AGENT, ROOT), USERS))
        RealAgent.got, RealAgent.swept = list(got), list(swept)
    time.sleep(1)  # until the capture is written
    capture.send_signal(signal.SIGINT)
    capture.communicate()
    RealAgent.requests = dissected()


class RealAgent(unittest.TestCase):
    maxDiff = None

    def test_what_was_written_is_read_by_every_user(self):
        self.assertEqual([0] * len(VARIABLES), [code for code, _, _ in self.written], self.written)
        shown = [variable.shown for variable in VARIABLES]
        for user, (code, out, err) in [*zip(USERS, self.walked), *zip(SWEEPERS, self.got)]:
            self.assertEqual((0, shown), (code, json.loads(out)), f"{user.name} {SEED} {err}")

    def test_sweeps_find_the_agent(self):
        for user, (code, out, err) in zip(SWEEPERS, self.swept):
            self.assertEqual((0, [{"address": AGENT, "value": "Model 1"}]), (code, json.loads(out)), user.name + err)

    def test_a_dissector_accepts_every_request(self):
        names = [variable.oid[1:] for variable in VARIABLES]
        for user in USERS:
            with self.subTest(user=user.name, seed=SEED):
                sent = [row for row in self.requests if row["snmp.msgUserName"] == user.name]
                gets = [(GET, name) for name in (*names, DEFAULT_OID[1:])] if user in SWEEPERS else []
                self.assertLessEqual({*gets, *((NEXT, name) for name in (ROOT[1:], *names))},
                                     {(row["snmp.data"], row["snmp.name"]) for row in sent})
                authenticated = (user.auth[3], "SNMP Authentication OK") if user.auth else (0, "")
                self.assertEqual({(user.community or "", "", *authenticated, bool(user.priv), bool(user.priv))},
                                 {row["found"] for row in sent})

    def test_a_dissector_reads_the_values_that_are_set(self):
        written = {row["snmp.name"]: row for row in self.requests if row["snmp.data"] == SET}
        self.assertEqual([variable.dissected for variable in VARIABLES],
                         [written[variable.oid[1:]]["snmp.value." + variable.field] for variable in VARIABLES], SEED)


if __name__ == "__main__":
    main(agent_conf(), ask_and_capture)
