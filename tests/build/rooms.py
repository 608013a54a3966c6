"""rooms.py ROOT: each folder of src/ and host/ includes only what it may know, so that includes point one way, and
portable folders need no Windows."""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
PUBLIC = "vndiscover.h"
CODEC = "support snmp/codec"
MANAGERS = "support net interface/delivery " + PUBLIC
# Folder: what its files may include beside their own folder. With "*" it is portable.
ROOMS = {
    "src": {
        "support": "",
        "net": "support",
        "interface/delivery": "support",
        "snmp/codec*": "support",
        "snmp": CODEC + " " + MANAGERS,
        "snmpv3/crypto*": CODEC,
        "snmpv3/crypto/windows": CODEC + " snmpv3/crypto",
        "snmpv3/codec*": CODEC + " snmpv3/crypto",
        "snmpv3": CODEC + " snmpv3/crypto snmpv3/codec snmp " + MANAGERS,
        "wsd": MANAGERS,
        "interface": CODEC + " snmpv3/codec snmp snmpv3 wsd " + MANAGERS,
    },
    "host": {
        "values*": "",
        "model*": "values wsd",
        "wsd*": "values",
        "device": "values model " + PUBLIC,
        "platform": "values model " + PUBLIC,
        "cli": "values model wsd device platform " + PUBLIC,
        "window": "values model wsd device platform " + PUBLIC,
    },
}
# In a portable folder: a C++ header, or a library's that every system has. All else in brackets is the system's.
PORTABLE = re.compile(r"[a-z_0-9]+|cjson/cJSON\.h|openssl/aes\.h|pugixml\.hpp")

problems = []
for top, rooms in ROOMS.items():
    allowed = {name.rstrip("*"): set(may.split()) for name, may in rooms.items()}
    for path in sorted(path for path in (ROOT / top).rglob("*") if path.suffix in (".cpp", ".h")):
        place, room = path.relative_to(ROOT), path.parent.relative_to(ROOT / top).as_posix()
        if room not in allowed:
            problems.append(f"{place} is in no room: say in {sys.argv[0]} what it may include")
            continue
        for bracket, name in re.findall(r'^#include ([<"])([^>"]+)', path.read_text(encoding="utf-8"), re.MULTILINE):
            folder, _, file = name.rpartition("/")
            if bracket == '"' or name == PUBLIC:
                known = folder or (PUBLIC if file == PUBLIC else ".")
                if known not in allowed[room] | {room}:
                    problems.append(f"{place} may not include {name}")
            elif room + "*" in rooms and not PORTABLE.fullmatch(name):
                problems.append(f"{place} is portable and may not include <{name}>")
            elif name.startswith("CLI/") and room != "cli":
                problems.append(f"{place} may not know the command line's library")
sys.exit("\n".join(problems) or 0)
