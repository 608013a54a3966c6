"""vndiscover.exe doctor: this computer with two adapters, and a real agent with right and wrong credentials."""

import json
import subprocess
import unittest

from lab import AGENT, AGENT_CONF, SECRETS, V3, at_once, main, run


class Doctor(unittest.TestCase):
    def verdict(self, *arguments, **environment):
        code, out, _ = run("doctor", *arguments, "--format", "json", **{**SECRETS, **environment})
        report = json.loads(out)
        asked = ("wrong", ".1.3.6.1.2.1.1.1.0") if "wrong" in arguments else (None, None)
        self.assertEqual(asked, (report.get("community"), report.get("object")))
        return code, report["verdict"]

    def test_adapters_are_listed_in_the_order_of_a_sweep(self):
        code, out, err = run("doctor")
        self.assertEqual((0, ""), (code, err))
        for line in ("IPv4 sweep     from 2 addresses, takes 4 s at least\n", "10.77.1.1  eth0: Ethernet, up, 2 s\n",
                     "10.77.2.1  eth1: Ethernet, up, 2 s\n", "fe80::2:1  eth1: Ethernet, up, 2 s\n",
                     "255.255.255.255  by eth0, 10.77.1.1\n", "Firewall       not known here\n",
                     'vndiscover.exe" protocol=udp remoteport=161,3702 profile=domain,private\n', "Log            off\n",
                     "Asked          'vndiscover sweep' asks community 'sesame' for"):
            self.assertIn(line, out)

    def test_a_missing_address_or_route_is_reported(self):
        ip = ["ip", "-n", "host"]
        subprocess.run([*ip, "-4", "addr", "flush", "dev", "eth1"], check=True)
        subprocess.run([*ip, "route", "del", "default"], check=True)
        try:
            code, out, _ = run("doctor", "--format", "json")
            sweep_code, _, err = run("sweep", "--community", "wrong")
        finally:
            subprocess.run([*ip, "addr", "add", "10.77.2.1/24", "dev", "eth1"], check=True)
            subprocess.run([*ip, "route", "add", "default", "dev", "eth0"], check=True)
        report = json.loads(out)
        rows = [(row["address"], row["state"], row["seconds"]) for row in report["ipv4"]["addresses"]]
        self.assertEqual([("10.77.1.1", "up", 2), ("0.0.0.0", "no address", 2)], rows)
        self.assertEqual((1, ["no route for the broadcast: requests may not be sent",
                              "no route for the multicast: WS-Discovery Probes may not be sent"]),
                         (code, report["causes"]))
        self.assertEqual(1, sweep_code)
        self.assertIn("'vndiscover doctor'", err)

    def test_on_a_computer_with_automatic_addresses_alone(self):
        for index in (1, 2):
            address = ["ip", "-n", "host", "addr"]
            subprocess.run([*address, "del", f"10.77.{index}.1/24", "dev", f"eth{index - 1}"], check=True)
            subprocess.run([*address, "add", f"169.254.{index}.1/24", "dev", f"eth{index - 1}"], check=True)
        code, out, _ = run("doctor", "--format", "json")
        self.assertEqual(1, code)
        self.assertIn("only automatic addresses (169.254)", json.loads(out)["causes"][0])

    def test_on_a_computer_without_a_network(self):
        for adapter in ("eth0", "eth1"):
            subprocess.run(["ip", "-n", "host", "link", "set", adapter, "down"], check=True)
        for result in at_once(lambda command: run(command), ("sweep", "printers", "wsd")):
            self.assertEqual((3, "", "vndiscover: no request could be sent: 'vndiscover doctor' looks for the cause\r\n"), result)

    def test_a_blocked_port_is_no_missing_route(self):
        rule = ["ip", "-n", "host", "rule"]  # UDP by its number: a bare system has no list of names
        subprocess.run([*rule, "add", "to", "10.77.1.98", "ipproto", "17", "dport", "161", "prohibit"], check=True)
        code, verdict = self.verdict("10.77.1.98")
        self.assertEqual(3, code)
        self.assertIn("a firewall on this computer blocks outgoing UDP port 161", verdict)

    def test_one_device_is_checked_in_steps(self):
        nobody = [word.replace("admin", "nobody") for word in V3]
        good, wrong_community, unknown_user, wrong_password = at_once(lambda check: check(), (
            lambda: self.verdict(AGENT, *V3),
            lambda: self.verdict(AGENT, "--community", "wrong"),
            lambda: self.verdict(AGENT, *nobody),
            lambda: self.verdict(AGENT, *V3, VNDISCOVER_PRIV_PASS="wrongpass")))
        self.assertEqual((0, "ping, SNMPv1 and SNMPv3 answer"), good)
        self.assertEqual((1, "ping and SNMPv3 answer, SNMPv1 does not: community wrong, or SNMPv1 switched off"),
                         wrong_community)
        self.assertEqual(
            (1, "ping, SNMPv1 and SNMPv3 answer; SNMPv3 refuses this user: the device does not know this user"),
            unknown_user)
        self.assertEqual(1, wrong_password[0])
        self.assertIn("wrong privacy password", wrong_password[1])

    def test_silence_is_distinguished_from_a_missing_route(self):
        subprocess.run(["ip", "-n", "host", "route", "add", "unreachable", "10.99.0.0/16"], check=True)
        (silent_code, silent, _), (code, out, _) = at_once(lambda address: run("doctor", address),
                                                           ("10.77.1.99", "10.99.1.1"))
        self.assertEqual(1, silent_code)
        self.assertIn("neither ping, SNMPv1 nor SNMPv3 answers", silent)
        self.assertRegex(silent, "Asked +SNMPv1 with community 'sesame' for")
        self.assertEqual(3, code)
        self.assertIn("nothing could be sent", out)
        self.assertIn("on none of this computer's networks", out)


if __name__ == "__main__":
    main(AGENT_CONF, in_turn=["route_is_reported", "the_order_of_a_sweep"],
         alone=["automatic_addresses_alone", "without_a_network"])
