"""VnBrowser.exe while thousands of devices answer at once: all are shown, and the window keeps answering messages. How fast
is printed here and judged by scripts/bench.sh."""

import json
import socket
import subprocess
import threading
import unittest

from lab import main, run, socket_in

DEVICES = 8192
FIRST = int.from_bytes(socket.inet_aton("10.80.0.1"), "big")
IP_PKTINFO = 8
# A request of the lab and an answer differ in the tag of the PDU, the value, and the lengths of what encloses it.
HEAD, TAIL = bytes.fromhex("020100 0406") + b"sesame", bytes.fromhex("020101 020100 020100")
OID = bytes.fromhex("060d 2b06010401ae4b2b0501010101")


def tlv(tag, content):
    return bytes((tag, len(content))) + content


def answer(device):
    binding = tlv(0x30, OID + tlv(4, b"Model %05d" % device))
    return tlv(0x30, HEAD + tlv(0xA2, TAIL + tlv(0x30, binding)))


def answer_each_request(devices):
    while True:
        _, sender = devices.recvfrom(2048)
        for device in range(DEVICES):
            own = (FIRST + device).to_bytes(4, "big")
            info = bytes(4) + own + bytes(4)
            devices.sendmsg([answer(device)], [(socket.IPPROTO_IP, IP_PKTINFO, info)], 0, sender)


class Burst(unittest.TestCase):
    def test_a_window_that_shows_all_still_answers(self):
        code, out, err = run(str(DEVICES), program="window_watch.exe")
        print(out, end="")
        self.assertEqual(0, code, out + err)
        watched = json.loads(out)
        self.assertEqual(DEVICES, watched["devices"])
        self.assertLess(9, watched["asked_when_empty"])  # a window that waits for the sweep answers only after it


def prepare():
    for command in (["-n", "neta", "route", "add", "local", "10.80.0.0/16", "dev", "lo"],
                    ["-n", "host", "route", "add", "10.80.0.0/16", "via", "10.77.1.2"],
                    ["-n", "host", "link", "set", "eth1", "down"]):  # so that a sweep takes half the time
        subprocess.run(["ip", *command], check=True)
    devices = socket_in("neta", socket.AF_INET)
    devices.bind(("255.255.255.255", 161))
    threading.Thread(target=answer_each_request, args=[devices], daemon=True).start()


if __name__ == "__main__":
    main(prepare=prepare)
