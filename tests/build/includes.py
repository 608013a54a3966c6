"""includes.py ROOT: checks that includes point as the diagrams of docs/architecture.md say: from a folder of src/ to exactly
those to which an arrow leads, from one of host/ to those that arrows reach; and that portable folders do not need Windows."""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
PUBLIC = "vndiscover.h"


def arrows(diagram):
    labels = dict(re.findall(r'(\w+)\["(?:include/)?([\w/.]+)"\]', diagram))
    pairs = re.findall(r"^    (\w+)\S* --> (\w+)", diagram, re.MULTILINE)
    return {(labels.get(a, a), labels.get(b, b)) for a, b in pairs}


def reached(folder):
    direct = {b for a, b in ARROWS["host"] if a == folder}
    return direct.union(*map(reached, direct))


DIAGRAMS = re.findall(r"```mermaid\n(.*?)```", (ROOT / "docs/architecture.md").read_text(encoding="utf-8"), re.DOTALL)
ARROWS = dict(zip(("src", "host"), map(arrows, DIAGRAMS)))
NAMES = {top: {name for arrow in pairs for name in arrow if (ROOT / top / name).is_dir()} for top, pairs in ARROWS.items()}
# Folder: the folders that its files may include besides their own.
FOLDERS = {
    "src": {folder: {"support"} | {b for a, b in ARROWS["src"] if a == folder} for folder in NAMES["src"]},
    "host": {folder: reached(folder) for folder in NAMES["host"]},
}
FOLDERS["src"]["snmpv3/crypto/windows"] = FOLDERS["src"]["snmpv3/crypto"] | {"snmpv3/crypto"}
PORTABLE_FOLDERS = {"src": ("snmp/codec", "snmpv3/crypto", "snmpv3/codec"),
                    "host": {"model/scan"} | reached("model/scan")}
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
            folder = PUBLIC if name == PUBLIC else name.rpartition("/")[0]
            if bracket == '"' or name == PUBLIC or folder in allowed:
                known = folder or "."
                used.add((top, here, known))
                if known not in allowed[here] | {here}:
                    problems.append(f"{place} may not include {name}")
            elif here in PORTABLE_FOLDERS[top] and not PORTABLE.fullmatch(name):
                problems.append(f"{place} is portable and may not include <{name}>")
            elif name.startswith("CLI/") and here != "cli":
                problems.append(f"{place} may not include the command line's library")
for top, pairs in ARROWS.items():
    for source, target in pairs:
        if source in NAMES[top] and (top, source, target) not in used:
            problems.append(f"no file in {source} includes {target}, as the diagram says")
sys.exit("\n".join(problems) or 0)
