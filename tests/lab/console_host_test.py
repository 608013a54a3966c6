"""vndiscover.exe on the command line and on a terminal: usage, help, Ctrl-C, passwords, hostile replies."""

import sys
import unittest

from console_host import AGENT, AGENT_CONF, CONTACT, LAB, SYSTEM, V3, main, run, run_on_terminal, start_in

# Answers every WS-Discovery probe, with escape sequences and with a reply that fills the buffer.
RESPONDER = """
import socket, struct
sock = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
sock.bind(("", 3702))
group = socket.inet_aton("239.255.255.250")
sock.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP, group + socket.inet_aton("10.77.1.2"))
match = ('<e:Envelope xmlns:e="http://www.w3.org/2003/05/soap-envelope"><e:Body><d:ProbeMatches '
         'xmlns:d="http://schemas.xmlsoap.org/ws/2005/04/discovery"><d:ProbeMatch><d:XAddrs>http://a/&#27;[2J'
         '</d:XAddrs></d:ProbeMatch></d:ProbeMatches></e:Body></e:Envelope>').encode()
while True:
    _, sender = sock.recvfrom(4096)
    for reply in (match, match.ljust(2048, b" "), b"\\x1b]0;x\\x07\\x9b2J", b"A" * 2048):
        sock.sendto(reply, sender)
"""


class Usage(unittest.TestCase):
    def test_mistakes_exit_with_2_and_a_hint(self):
        bad_json = LAB + "/bad.json"
        with open(bad_json, "w", encoding="utf-8") as file:
            file.write("[]")
        for arguments in (
                [], ["bogus"], ["sweep", "--bogus"], ["sweep", "--format", "xml"], ["sweep", "--oid", "sysDescr.0"],
                ["sweep", "--json", bad_json], ["sweep", "--csv", "/missing/x.csv"],
                ["sweep", "--community", "x" * 256], ["sweep", "-u", "admin"],
                ["sweep", "--v3", "-u", "admin", "-x", "AES"], ["sweep", "--v3", "-u", "admin", "-a", "SHA1"],
                ["get", AGENT], ["set", AGENT, CONTACT, "i", "x"], ["wsd", "--timeout", "999"]):
            with self.subTest(arguments=" ".join(arguments)):
                code, out, err = run(*arguments)
                self.assertEqual((2, ""), (code, out), err)
                self.assertIn("--help'", err)

    def test_help_names_examples_and_exit_codes(self):
        for command in ("sweep", "set", "walk", "wsd"):
            code, out, _ = run(command, "--help")
            self.assertEqual(0, code)
            self.assertIn("Exit codes: 0", out)
            self.assertLessEqual(max(map(len, out.split("\n"))), 80, command)
        self.assertRegex(run("--version")[1], r"^VnDiscover \d+\.\d+")


class Terminals(unittest.TestCase):
    def test_ctrl_c_stops_and_keeps_what_was_found(self):
        code, screen, _ = run_on_terminal([("Model 1", b"\x03")], "sweep")
        self.assertEqual(0, code)
        self.assertIn("stopped", screen)
        self.assertRegex(screen, r"\r\d s, 0 devices\s*\r")

    def test_a_second_ctrl_c_ends_at_once(self):
        code, _, seconds = run_on_terminal([("s, 0", b"\x03"), ("stopping", b"\x03")], "wsd", "--timeout", "20000")
        self.assertNotIn(code, (0, 1, 2))
        self.assertLess(seconds, 15)

    def test_passwords_are_asked_for_and_not_shown(self):
        code, screen, _ = run_on_terminal(
            [("Authentication password: ", b"authpass1\r"), ("Privacy password: ", b"privpass1\r")],
            "get", AGENT, SYSTEM + ".6.0", *V3)
        self.assertEqual(0, code, screen)
        self.assertIn("2nd floor", screen)
        self.assertNotIn("pass1", screen)


class OtherCommands(unittest.TestCase):
    def test_wsd_lists_devices_and_lets_no_control_character_through(self):
        for options in ([], ["--format", "json"], ["--raw", "--types", ""]):
            code, out, _ = run("wsd", "--timeout", "1000", *options)
            self.assertEqual(0, code)
            self.assertIn("http://a/", out)
            self.assertNotRegex(out, "[\x00-\x08\x0b-\x1f\x7f-\x9f]")
        self.assertIn("A" * 2048, out)

    def test_ping_and_ipv6_answer_by_exit_code(self):
        self.assertEqual((0, "10.77.1.2 answered\n"), run("ping", AGENT)[:2])
        self.assertEqual(1, run("ping", "10.77.1.99", "--timeout", "300")[0])
        self.assertEqual(0, run("ipv6")[0])


if __name__ == "__main__":
    main(AGENT_CONF, lambda: start_in("neta", sys.executable, "-c", RESPONDER))
