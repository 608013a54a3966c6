"""includes.py ROOT: checks that includes point one way: from a folder of src/ to exactly those to which docs/architecture.md
draws an arrow, from one of host/ only to those that it may include; and that portable folders do not need Windows."""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
PUBLIC = "vndiscover.h"

DIAGRAM = (ROOT / "docs/architecture.md").read_text(encoding="utf-8")
LABELS = dict(re.findall(r'(\w+)\["(?:include/)?([\w/.]+)"\]', DIAGRAM))
ARROWS = {(LABELS.get(a, a), LABELS.get(b, b)) for a, b in re.findall(r"^    (\w+) --> (\w+)", DIAGRAM, re.MULTILINE)}

# What the programs are made of, but for their user interfaces.
PARTS = {"values", "wsd", "model/asking", "model/printer", "model/computer", "model/scan", "device", "platform"}
# Folder: the folders that its files may include besides their own.
FOLDERS = {
    "src": {folder: {"support"} | {b for a, b in ARROWS if a == folder}
            for folder in {name for arrow in ARROWS for name in arrow} if (ROOT / "src" / folder).is_dir()},
    "host": {
        "values": set(),
        "wsd": {"values"},
        "model/asking": {"values"},
        "model/printer": {"values", "model/asking"},
        "model/computer": {"values", "model/asking", "model/printer"},
        "model/scan": {"values", "wsd", *(f"model/{part}" for part in ("asking", "printer", "computer"))},
        "device": {"values", "model/asking", "model/printer", "model/computer", "platform", PUBLIC},
        "platform": {"values", "model/computer", "model/scan", PUBLIC},
        "cli": {*PARTS, PUBLIC},
        "window": {"values", "platform"},
        "window/controls": {"window", "values", "model/printer", "platform"},
        "window/store": {"window", "values", "model/scan", "device", "platform"},
        "window/work": {"window/store", *PARTS, PUBLIC},
        "window/dialogs": {"window", "window/controls", "window/store", "window/work", *PARTS, PUBLIC},
        "window/pages": {"window", *(f"window/{part}" for part in ("controls", "work", "dialogs")), *PARTS},
        "window/main": {"window", *(f"window/{part}" for part in ("controls", "store", "work", "dialogs", "pages")), *PARTS},
    },
}
FOLDERS["src"]["snmpv3/crypto/windows"] = FOLDERS["src"]["snmpv3/crypto"] | {"snmpv3/crypto"}
PORTABLE_FOLDERS = {"src": ("snmp/codec", "snmpv3/crypto", "snmpv3/codec"), "host": [part for part in PARTS if part not in ("device", "platform")]}
# Headers in brackets there: of C++, of a library that every system has, or for inet_pton. Others are the system's.
PORTABLE = re.compile(r"[a-z_0-9]+|cjson/cJSON\.h|openssl/aes\.h|pugixml\.hpp|winsock2\.h|ws2tcpip\.h|arpa/inet\.h")

problems, used = [], set()
for top, allowed in FOLDERS.items():
    for path in sorted(path for path in (ROOT / top).rglob("*") if path.suffix in (".cpp", ".h")):
        place, here = path.relative_to(ROOT), path.parent.relative_to(ROOT / top).as_posix()
        if here not in allowed:
            problems.append(f"neither the diagram nor {sys.argv[0]} says what {place} may include")
            continue
        for bracket, name in re.findall(r'^#include ([<"])([^>"]+)', path.read_text(encoding="utf-8"), re.MULTILINE):
            folder, _, file = name.rpartition("/")
            if bracket == '"' or name == PUBLIC or folder in allowed:
                known = folder or (PUBLIC if file == PUBLIC else ".")
                used.add((here, known))
                if known not in allowed[here] | {here}:
                    problems.append(f"{place} may not include {name}")
            elif here in PORTABLE_FOLDERS[top] and not PORTABLE.fullmatch(name):
                problems.append(f"{place} is portable and may not include <{name}>")
            elif name.startswith("CLI/") and here != "cli":
                problems.append(f"{place} may not include the command line's library")
for source, target in ARROWS - used:
    if source in FOLDERS["src"]:
        problems.append(f"no file in {source} includes {target}, as the diagram says")
sys.exit("\n".join(problems) or 0)
