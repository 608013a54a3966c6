"""vndiscover.exe ping with an IP helper library in the system directory that tells what it is asked for
(scripted_iphlpapi.cpp): Wine's own has no IPv6 echo."""

import os
import subprocess
import unittest

from console_host import LAB, SCRIPTS, run

BUILT = os.environ["VNDISCOVER_BIN"] + "/scripted_iphlpapi.dll"
INSTALLED = LAB + "/wine/host/prefix/drive_c/windows/system32/iphlpapi.dll"
FUNCTIONS = ("IcmpCreateFile", "IcmpCloseHandle", "IcmpSendEcho", "Icmp6CreateFile", "Icmp6SendEcho2")

ANYBODY = "1700" + 26 * "00"  # family AF_INET6 and nothing else
DEVICE = "1700" + 6 * "00" + "fe80" + 10 * "00" + "00010002" + 4 * "00"  # fe80::1:2
V6 = ["Icmp6CreateFile",
      f"Icmp6SendEcho2 7 from {ANYBODY} to {DEVICE} data  options ff000000 reply 1072 timeout 1234",
      "IcmpCloseHandle 7"]
V4 = ["IcmpCreateFile",
      f"IcmpSendEcho 7 to 0a4d0102 data {b'Data Buf'.hex()} options none reply 48 timeout 1234",
      "IcmpCloseHandle 7"]


def install(missing=""):
    """A function is missing when the name that the library exports has another last letter."""
    with open(BUILT, "rb") as built, open(INSTALLED, "wb") as installed:
        library, name = built.read(), missing.encode()
        installed.write(library.replace(name + b"\0", name[:-1] + b"_\0") if missing else library)


class Echo(unittest.TestCase):
    def ping(self, host, expected, calls, **script):
        with self.subTest(host=host, **script):
            code, out, err = run("ping", host, "--timeout", "1234", WINEDLLOVERRIDES="iphlpapi=n", **script)
            self.assertEqual((0, f"{host} answered\n") if expected else (1, f"{host}: no answer\n"), (code, out), err)
            self.assertEqual(calls, err.splitlines())

    def test_an_ipv6_host_answers_by_any_reply_whatever_its_status(self):
        install()
        self.ping("fe80::1:2", True, V6)
        self.ping("fe80::1:2", False, V6, SCRIPTED_REPLIES="0")
        self.ping("fe80::1:2", False, V6[:1], SCRIPTED_HANDLE="0")

    def test_an_ipv4_host_answers_by_a_reply_without_an_error(self):
        install()
        self.ping("10.77.1.2", True, V4)
        self.ping("10.77.1.2", False, V4, SCRIPTED_REPLIES="0")
        self.ping("10.77.1.2", False, V4, SCRIPTED_STATUS="11003")  # a router's: the host is unreachable
        self.ping("10.77.1.2", False, V4[:1], SCRIPTED_HANDLE="0")

    def test_names_and_the_broadcast_address_take_the_ipv6_way(self):
        install()
        self.ping("printer6", True, V6)
        for host in ("printer4", "255.255.255.255", "nobody"):  # without an IPv6 address
            self.ping(host, False, [])

    def test_every_function_is_needed(self):
        for function in FUNCTIONS:
            with self.subTest(missing=function):
                install(missing=function)
                self.ping("fe80::1:2", False, [])


if __name__ == "__main__":
    subprocess.run([SCRIPTS + "/test-net.sh"], check=True)
    with open("/etc/hosts", "a", encoding="ascii") as hosts:
        hosts.write("fe80::1:2 printer6\n10.77.1.2 printer4\n")
    run("ipv6")  # the first program makes the system directory
    unittest.main()
