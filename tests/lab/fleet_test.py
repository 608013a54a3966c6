"""What VnBrowser's list shows while devices come, stay away and are slow. FLEET=400 tells how long hundreds take."""

import collections
import json
import subprocess
import unittest

import printers_test
from lab import main, on_host
from printers_test import COMPUTER, COUNT, OFFICE, SLOW, address_of

READERS = 6  # processes that ask at the same time
PRINTERS = {address_of(device) for device in range(COUNT) if device not in (COMPUTER, OFFICE)}


class Follower:
    """VnBrowser with a list that is watched. Each line: milliseconds, and for each address its state and lowest supply."""

    def __init__(self, case):
        self.program = subprocess.Popen(on_host("--sweep", "--read", program="window_follow.exe"), stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        case.addCleanup(self.close)

    def lines(self):
        """Until nothing is sent any more."""
        while (line := self.program.stdout.readline()).strip():
            yield json.loads(line)
        assert line, "the program has ended"

    def rows(self):
        return list(self.lines())[-1]["rows"]

    def seconds_until(self, has_come):
        return next(line["ms"] for line in self.lines() if has_come(line["rows"])) / 1000

    def rows_after_find(self):
        self.program.stdin.write("find\n")
        self.program.stdin.flush()
        return self.rows()

    def close(self):
        self.program.stdin.close()
        self.program.stdout.close()
        self.program.wait(120)


def known(rows):
    return {address for address, (state, _) in rows.items() if state not in ("", "never read", "being read")}


def whole(rows):
    return {address for address in known(rows) if rows[address][1]}


class Fleets(unittest.TestCase):
    fleet = None

    def setUp(self):
        self.fleet.off, self.fleet.seconds = set(), {}
        self.window = Follower(self)

    def test_nothing_silent_stays_alive(self):
        before = self.window.rows()
        self.assertEqual(PRINTERS, whole(before))
        on = {address_of(device) for device in (1, 2, 3)}
        self.fleet.off = {device for device in range(COUNT) if address_of(device) not in on}
        after = self.window.rows_after_find()
        self.assertEqual({address: address not in on for address in before},
                         {address: "no answer since " in state for address, (state, _) in after.items()})
        self.fleet.off = set()
        back = self.window.rows_after_find()  # they come back by themselves
        self.assertEqual(before, {address: [" ".join(state.split()), level] for address, (state, level) in back.items()})

    def test_slow_device_holds_up_no_other(self):
        self.hold_up(1)

    def test_slow_devices_hold_up_no_other(self):
        self.hold_up(READERS)

    def hold_up(self, count):
        """A few devices need 5 s for each of two dozen requests, and are asked again only when the others have been read."""
        self.fleet.seconds, self.fleet.asked = dict.fromkeys(range(count), 5), collections.Counter()
        others = PRINTERS - {address_of(device) for device in range(count)}
        seconds = self.window.seconds_until(lambda rows: others <= whole(rows))
        asked = [self.fleet.asked[device] for device in range(count)]
        print(f"{COUNT} devices, {count} of them need 5 s a request: the others are read after {seconds} s, these are asked {asked}")
        self.assertLess(max(asked), 5)
        self.assertLess(seconds, 60)  # one of them alone needs two minutes

    def test_states_come_first(self):
        states = self.window.seconds_until(lambda rows: PRINTERS - {address_of(SLOW)} <= known(rows))
        rest = self.window.seconds_until(lambda rows: PRINTERS <= whole(rows))
        print(f"{COUNT} devices: states after {states} s, everything after {rest} s")


if __name__ == "__main__":
    def prepare():
        Fleets.fleet = printers_test.prepare()

    main(prepare=prepare, in_turn=[name for name in dir(Fleets) if name.startswith("test")])  # there is one window
