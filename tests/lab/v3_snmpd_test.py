"""SNMPv3 against a real agent, for every protocol, and what a dissector that knows the passwords makes of it."""

import concurrent.futures
import json
import os
import re
import signal
import subprocess
import time
import unittest

SCRIPTS = os.environ["VNDISCOVER_LAB_SCRIPTS"]
PROGRAM = [SCRIPTS + "/wine-run.sh", "host", os.environ["VNDISCOVER_BIN"] + "/vndiscover.exe"]
LAB = os.environ["VNDISCOVER_LAB"]
CAPTURE = LAB + "/v3.pcap"
AGENT = "10.77.1.2"
DEFAULT_OID = ".1.3.6.1.4.1.5963.43.5.1.1.1.1"
LOCATION = ".1.3.6.1.2.1.1.6.0"
CONTACT = ".1.3.6.1.2.1.1.4.0"  # printer1, the name, follows it
AUTH_PASSWORD, PRIV_PASSWORD = "authpass1", "privpass1"

# Label of the module, the agent's name, the dissector's name, bytes of the authentication code.
AUTH = (("MD5", "MD5", "MD5", 12), ("SHA1", "SHA", "SHA1", 12), ("SHA-2(224)", "SHA-224", "SHA2-224", 16),
        ("SHA-2(256)", "SHA-256", "SHA2-256", 24), ("SHA-2(384)", "SHA-384", "SHA2-384", 32),
        ("SHA-2(512)", "SHA-512", "SHA2-512", 48))
PRIV = (("DES", "DES"), ("AES", "AES"))


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


USERS = [User()] + [User(auth) for auth in AUTH] + [User(auth, priv) for auth in AUTH for priv in PRIV]
FIELDS = ("ip.src", "ip.dst", "snmp.msgUserName", "snmp.msgAuthenticationParameters", "snmp.encryptedPDU",
          "snmp.decrypted_pdu", "snmp.data", "snmp.name", "_ws.expert.message", "_ws.malformed")


def run(*arguments):
    done = subprocess.run(PROGRAM + list(arguments), stdin=subprocess.DEVNULL, capture_output=True, timeout=120,
                          check=False)
    return done.returncode, done.stdout.decode().replace("\r\n", "\n"), done.stderr.decode()


def ask(user):
    """What the three ways to ask give for a user."""
    return (run("get", AGENT, LOCATION, *user.options), run("getnext", AGENT, CONTACT, *user.options),
            run("sweep", "--format", "json", *user.options))


def dissected():
    """Every datagram of the capture that names a user: field name to text."""
    profile = LAB + "/dissector"
    os.mkdir(profile)
    with open(profile + "/snmp_users", "w", encoding="ascii") as file:
        file.writelines(user.dissector_line() for user in USERS if user.auth)
    command = ["tshark", "-r", CAPTURE, "-T", "fields"] + [word for field in FIELDS for word in ("-e", field)]
    text = subprocess.run(command, env={**os.environ, "WIRESHARK_CONFIG_DIR": profile, "HOME": LAB},
                          capture_output=True, check=True, text=True).stdout
    rows = [dict(zip(FIELDS, line.split("\t"))) for line in text.splitlines()]
    return [row for row in rows if row["snmp.msgUserName"].startswith("user")]


def opinion(row):
    """What the dissector notes on a datagram, but for what it takes some of the host's ports for."""
    notes = re.sub(r"Possible traceroute: hop #\d+, attempt #\d+", "", row["_ws.expert.message"])
    return notes.strip(",")


class RealAgent(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        capture = subprocess.Popen(["ip", "netns", "exec", "neta", "dumpcap", "-q", "-i", "eth0", "-f", "udp port 161",
                                    "-w", CAPTURE], stderr=subprocess.PIPE, text=True)
        for line in capture.stderr:
            if line.startswith("File:"):  # the capture has begun
                break
        with concurrent.futures.ThreadPoolExecutor(4) as pool:
            cls.results = dict(zip((user.name for user in USERS), pool.map(ask, USERS)))
        time.sleep(1)  # for what is still on its way to the file
        capture.send_signal(signal.SIGINT)
        capture.communicate()
        cls.datagrams = dissected()

    def test_every_user_gets_its_values(self):
        for user in USERS:
            with self.subTest(user=user.name):
                get, get_next, sweep = self.results[user.name]
                self.assertEqual((0, f"{LOCATION} = OCTET STRING: Hall B\n"), get[:2], get[2])
                self.assertEqual((0, f"{CONTACT[:-3]}5.0 = OCTET STRING: printer1\n"), get_next[:2], get_next[2])
                self.assertEqual(0, sweep[0], sweep[2])
                self.assertEqual([{"address": AGENT, "value": "Model 1"}], json.loads(sweep[1]))

    def test_a_dissector_reads_every_request(self):
        for user in USERS:
            with self.subTest(user=user.name):
                sent = [row for row in self.datagrams
                        if row["snmp.msgUserName"] == user.name and row["ip.dst"] == AGENT]
                self.assertLessEqual({LOCATION[1:], CONTACT[1:], DEFAULT_OID[1:]},
                                     {row["snmp.name"] for row in sent})
                for row in sent:
                    self.assertEqual("", row["_ws.malformed"])
                    length = len(row["snmp.msgAuthenticationParameters"].replace("<MISSING>", "")) // 2
                    self.assertEqual(user.auth[3] if user.auth else 0, length)
                    self.assertEqual("SNMP Authentication OK" if user.auth else "", opinion(row))
                    self.assertEqual(bool(user.priv), bool(row["snmp.encryptedPDU"]))
                    self.assertEqual(bool(user.priv), bool(row["snmp.decrypted_pdu"]))


if __name__ == "__main__":
    subprocess.run([SCRIPTS + "/test-net.sh"], check=True)
    conf = f"""agentAddress udp:161
override {DEFAULT_OID} octet_str "Model 1"
syslocation Hall B
psysName printer1
""" + "".join(user.agent_lines() for user in USERS)
    subprocess.run([SCRIPTS + "/snmp-agent.sh", "neta", "agent"], input=conf, text=True, check=True,
                   stdout=subprocess.DEVNULL)
    unittest.main()
