"""version.py VERSION VCPKG_JSON DLL: checks that the project's version is that of the vcpkg manifest and, with a fourth
part 0, of the DLL's version resource."""
import json
import struct
import sys

version, manifest, dll = sys.argv[1:]
with open(manifest) as file:
    found = [("vcpkg.json", json.load(file)["version"])]
with open(dll, "rb") as file:
    content = file.read()
# VS_FIXEDFILEINFO: the signature, the version of the structure, then those of the file and the product.
at = content.index(struct.pack("<II", 0xFEEF04BD, 0x00010000))
numbers = struct.unpack_from("<4I", content, at + 8)
for name, high, low in (("file", *numbers[:2]), ("product", *numbers[2:])):
    found.append((f"{name} version", f"{high >> 16}.{high & 0xFFFF}.{low >> 16}"))
for name in ("FileVersion", "ProductVersion"):
    text = content[content.index(name.encode("utf-16-le")):][len(name) * 2:][:64].decode("utf-16-le", "ignore")
    found.append((name, text.lstrip("\0").split("\0")[0].removesuffix(".0")))
wrong = [f"{name} is {value}" for name, value in found if value != version]
sys.exit(f"the project's version is {version}, but " + ", ".join(wrong) if wrong else 0)
