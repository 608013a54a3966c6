"""normalise_zip.py ZIP: rewrites a ZIP so that its bytes depend only on the names and contents of its files.

Entries are sorted, folders and the owner's numbers left out, and every file gets the time of the commit
(SOURCE_DATE_EPOCH, seconds; without it the first time that a ZIP can hold).
"""
import os
import sys
import time
import zipfile

FIRST_TIME = (1980, 1, 1, 0, 0, 0)
UNIX = 3
RUNNABLE = (".exe", ".dll")


def entry_time():
    epoch = os.environ.get("SOURCE_DATE_EPOCH")
    return max(time.gmtime(int(epoch))[:6], FIRST_TIME) if epoch else FIRST_TIME


def rewrite(path):
    with zipfile.ZipFile(path) as archive:
        files = {name: archive.read(name) for name in archive.namelist() if not name.endswith("/")}
    with zipfile.ZipFile(path + ".new", "w") as archive:
        for name in sorted(files):
            entry = zipfile.ZipInfo(name, entry_time())
            entry.create_system = UNIX
            entry.external_attr = (0o100755 if name.endswith(RUNNABLE) else 0o100644) << 16
            archive.writestr(entry, files[name], zipfile.ZIP_DEFLATED, 9)
    os.replace(path + ".new", path)


if __name__ == "__main__":
    rewrite(sys.argv[1])
