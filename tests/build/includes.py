"""includes.py ROOT: checks that each folder of src/ and host/ includes only the folders that it may, so that includes point
one way, and that portable folders do not need Windows."""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
PUBLIC = "vndiscover.h"
CODEC = "support snmp/codec"
MANAGERS = "support net interface/delivery " + PUBLIC
# Folder: the folders that its files may include besides their own. "*" marks a portable folder.
FOLDERS = {
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
# Headers in brackets in a portable folder: of C++, or of a library that every system has. Others are the system's.
PORTABLE = re.compile(r"[a-z_0-9]+|cjson/cJSON\.h|openssl/aes\.h|pugixml\.hpp")

problems = []
for top, folders in FOLDERS.items():
    allowed = {name.rstrip("*"): set(may.split()) for name, may in folders.items()}
    for path in sorted(path for path in (ROOT / top).rglob("*") if path.suffix in (".cpp", ".h")):
        place, here = path.relative_to(ROOT), path.parent.relative_to(ROOT / top).as_posix()
        if here not in allowed:
            problems.append(f"{place} is in an unknown folder: list in {sys.argv[0]} what it may include")
            continue
        for bracket, name in re.findall(r'^#include ([<"])([^>"]+)', path.read_text(encoding="utf-8"), re.MULTILINE):
            folder, _, file = name.rpartition("/")
            if bracket == '"' or name == PUBLIC:
                known = folder or (PUBLIC if file == PUBLIC else ".")
                if known not in allowed[here] | {here}:
                    problems.append(f"{place} may not include {name}")
            elif here + "*" in folders and not PORTABLE.fullmatch(name):
                problems.append(f"{place} is portable and may not include <{name}>")
            elif name.startswith("CLI/") and here != "cli":
                problems.append(f"{place} may not include the command line's library")
sys.exit("\n".join(problems) or 0)
