"""vndiscover.exe and an agent that is reached over its IPv6 link-local address."""

import json
import subprocess
import unittest

from console_host import CONTACT, SYSTEM, main, run

AGENT6 = "fe80::1:2"
INTERFACES = ".1.3.6.1.2.1.2.1.0"  # lo and eth0


class LinkLocalAgent(unittest.TestCase):
    def test_a_walk_finds_what_net_snmp_finds(self):
        tool = subprocess.run(["ip", "netns", "exec", "host", "snmpwalk", "-v1", "-c", "sesame", "-m", "", "-Onq",
                               f"udp6:[{AGENT6}%eth0]", SYSTEM], capture_output=True, check=True, text=True).stdout
        code, out, err = run("walk", AGENT6, SYSTEM, "--format", "json")
        self.assertEqual((0, ""), (code, err))
        self.assertEqual([line.split(" ", 1)[0] for line in tool.splitlines()],
                         [row["oid"] for row in json.loads(out)])

    def test_information_and_single_values(self):
        self.assertEqual((0, "Model 1\n", ""), run("info", AGENT6))
        self.assertEqual((0, f"{INTERFACES} = INTEGER: 2\n", ""), run("get", AGENT6, INTERFACES))
        self.assertEqual((0, f"{SYSTEM}.2.0 = OBJECT IDENTIFIER: .1.3.6.1.4.1.8072.3.2.10\n", ""),
                         run("getnext", AGENT6, SYSTEM + ".1.0"))

    def test_a_community_without_the_right_to_write_is_refused(self):
        self.assertEqual(1, run("set", AGENT6, CONTACT, "string", "x", "--verify", "-w", "sesame")[0])


if __name__ == "__main__":
    main()
