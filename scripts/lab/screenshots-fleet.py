"""screenshots-fleet.py: twenty printers in mixed states, as agents in the namespace neta of a lab. After SIGUSR1, most of
them are off and some have another state."""

import signal
import sys
import threading
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tests/lab"))
import printers_test  # noqa: E402 (its folder was not known before)

# Name, model, error bits, cyan level.
PRINTERS = [
    ("Shipping", "VN LabelJet 8", 0x04, 61), ("Copy room", "VN MultiStation C9", 0x20, 2), ("Reception", "VN LaserPro 410", 0, 4),
    ("Stores", "VN LaserPro 410", 0x08, 70), ("Accounts", "VN LaserPro 410", 0x40, 33), ("Library", "VN InkLine 70", 0x10, 0),
    ("Workshop", "VN LabelJet 8", 0x02, 55), ("Canteen", "VN InkLine 70", 0x01, 81), ("Drawing office", "VN PlotLine 900", 0x80, 48),
] + [(f"Desk {desk}", "VN LaserPro 300", 0, 95 - 7 * desk) for desk in range(1, 12)]
LATER = {1: ("Copy room", "VN MultiStation C9", 0, 98), 2: ("Reception", "VN LaserPro 410", 0x10, 0), 3: ("Stores", "VN LaserPro 410", 0x04, 70)}

plain = printers_test.variables_of


def with_colours(device):
    printer, index = "1.3.6.1.2.1.43.", 1 if device % 3 else 4
    values = plain(device)
    for row, colour in ((1, "black"), (2, "cyan")):
        values |= {printer + f"11.1.1.3.{index}.{row}": printers_test.number(row),
                   printer + f"12.1.1.4.{index}.{row}": printers_test.text(colour)}
    return values


printers_test.variables_of = with_colours
printers_test.COUNT, printers_test.FIRST = len(PRINTERS), PRINTERS
printers_test.SLOW = printers_test.COMPUTER = printers_test.OFFICE = -1
fleet = printers_test.Fleet()
signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGUSR1})  # before there are threads, which would get it
threading.Thread(target=fleet.serve, daemon=True).start()
signal.sigwait({signal.SIGUSR1})
for device, printer in LATER.items():
    PRINTERS[device] = printer
    fleet.devices[device] = fleet.load(device)
fleet.off = set(range(8, len(PRINTERS)))
signal.pause()
