"""The rooms of the hosts: includes point one way, and the portable rooms need no Windows."""

import pathlib
import re
import sys

HOST = pathlib.Path(sys.argv[1])
MAY_INCLUDE = {
    "values": set(),
    "model": {"wsd", "values"},
    "wsd": {"values"},
    "device": {"model", "values"},
    "platform": {"model", "values"},
    "cli": {"platform", "device", "wsd", "model", "values"},
    "window": {"platform", "device", "wsd", "model", "values"},
}
PORTABLE = ("values", "model", "wsd")
# A C++ header, cJSON or pugixml: all else that stands in angle brackets is the system's.
PORTABLE_HEADER = re.compile(r"[a-z_0-9]+|cjson/cJSON\.h|pugixml\.hpp")

problems = [f"{path.name} is in no room" for path in HOST.glob("*.*") if path.suffix in (".h", ".cpp")]
for path in sorted(path for suffix in ("h", "cpp") for path in HOST.glob(f"*/*.{suffix}")):
    room = path.parent.name
    for bracket, name in re.findall(r'^#include ([<"])([^>"]+)', path.read_text(encoding="utf-8"), re.MULTILINE):
        if bracket == '"':
            if name.split("/")[0] not in MAY_INCLUDE[room] | {room}:
                problems.append(f"{room}/{path.name} includes {name}")
        elif room in PORTABLE and not PORTABLE_HEADER.fullmatch(name):
            problems.append(f"{room}/{path.name} is portable and includes <{name}>")
        elif room != "cli" and name.startswith("CLI/"):
            problems.append(f"{room}/{path.name} includes the command line's library")
sys.exit("\n".join(problems) or 0)
