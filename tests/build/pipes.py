"""pipes.py ROOT: checks that no pipe ends in a command that leaves before it has read everything. What writes to it is then
ended by SIGPIPE if it still writes, and under `set -o pipefail` the pipe fails, now and then. Read the whole output into a
variable instead. Covers the shell in scripts, hooks, workflows, CMake files and Python."""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
WORD = r"""(?:[^|;&\n'"]|'[^']*'|"[^"]*")*?"""  # of the same command, as few as possible
LEAVES = rf"""(?:[A-Z_]+=\S*\s+|!\s+|[{{(]\s*|command\s+|exec\s+)*(?:
    [ef]?grep\b{WORD}\s(?:-\w*[qmlL]|--quiet|--silent|--max-count|--files-with) |
    head\b | cmp\b | read\b(?!\() |
    [gm]?awk\b{WORD}\s['"](?:(?!\bEND\b)[^'])*\bexit\b |
    sed\b[^|&\n]*?[\s'"{{;/\d$][qQ]\d*(?=['"\s;}}]|\Z) |
    while\s[^|;&\n]*?\bread\b(?:(?!\bdone\b).)*?\b(?:break|return|exit)\b )"""
PIPE = r"(?<![|>])(?<!:\ )\|(?!\|)&?\s*"  # and not a block of YAML

# Is found or not: a search that finds nothing must not look like a tree without faults.
SAMPLES = {True: ("a | grep -q b", "a |\n    LC_ALL=C grep -v 'x|y' -m1 z", "a | head -n 1", "a |& read -r b",
                  "a | awk -v b=1 '\n /c/ { print; exit }'", "a | sed -n '/b/{p;q}'", "a | sed 5q", "a | \\\n cmp - b",
                  "a | while read -r b; do\n  [ $b != c ] || break\ndone", "First() { sed q; }\nb | First"),
           False: ("a || grep -q b", "grep -q b <<<\"$a\"", "a | grep b; grep -q c d", "a | awk '{ n++ } END { exit !n }'",
                   "run: |\n head b", "a | sed 's/quick/q/'", "a | while read -r b; do c; done; exit 1", "a | tail -n 1",
                   "case $a in b | ubsan) ;; esac", "First() { head -n 1 a; }\nFirst")}


def faults(text):
    """Number and text of each line where such a pipe begins."""
    text = text.replace("\\\n", "  ")  # as long as before
    functions = re.findall(rf"(\w+)\(\)\s*[{{(]\s*{LEAVES}", text, re.VERBOSE | re.DOTALL)
    readers = "|".join([LEAVES, *(rf"{name}\b" for name in functions)])
    for match in re.finditer(rf"{PIPE}(?:{readers})", text, re.VERBOSE | re.DOTALL):
        yield match.start(), match[0]


problems = [f"in this script: {sample!r} is {'not ' if fault else ''}found" for fault, samples in SAMPLES.items()
            for sample in samples if bool(list(faults(sample))) != fault]
read = []
for path in sorted(path for path in ROOT.rglob("*") if path.is_file()):
    place = path.relative_to(ROOT)
    if place.parts[0] in (".git", "build") or path.samefile(__file__):
        continue
    content = path.read_bytes()
    if path.suffix in (".sh", ".py", ".yml", ".cmake") or path.name == "CMakeLists.txt" or content.startswith(b"#!"):
        read.append(str(place))
        original = content.decode("utf-8")
        for position, found in faults(original):
            line = original.count("\n", 0, position) + 1
            problems.append(f"{place}:{line}: leaves early: {' '.join(found.split())}")
wanted = {"scripts/test.sh", ".ci/run", ".github/workflows/build.yml", "tests/lab/lab.py", "cmake/Package.cmake"}
problems += [f"{place} is not looked at" for place in sorted(wanted - set(read))]
sys.exit("\n".join(problems) or 0)
