"""screenshots-many.py SCAN FILE COUNT: writes a scan of COUNT devices, made of those that screenshots-fleet.py shows and that
SCAN has. More than a thousand have only what tells their state and lowest supply, since a scan has a limit."""

import json
import re
import sys
from collections import defaultdict
from pathlib import Path

scan = json.loads(Path(sys.argv[1]).read_text(encoding="utf-8"))
count = int(sys.argv[3])
needed = re.compile(r"\.1\.3\.6\.1\.2\.1\.(1\.[56]|25\.3\.[25]|43\.(5\.1\.1\.17|11\.1\.1\.[3689]|12))\..*")
devices = defaultdict(list)
for answer in scan["answers"]:
    if answer["address"].startswith("10.77.3.") and (count < 1000 or needed.fullmatch(answer.get("oid", ""))):
        devices[answer["address"]].append(answer)
kinds = list(devices.values())
scan["answers"], scan["splits"] = [], []
for device in range(count):
    for answer in kinds[device % len(kinds)]:
        one = answer | {"address": f"10.{80 + (device >> 16)}.{device >> 8 & 255}.{device & 255}"}
        if "text" in one:
            one["text"] = re.sub("VN410-[0-9]*", f"VN410-{device:06}", one["text"])
        scan["answers"].append(one)
Path(sys.argv[2]).write_text(json.dumps(scan), encoding="utf-8")
