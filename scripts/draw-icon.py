"""draw-icon.py FILE: draws the programs' icon, a printer that answers, in the sizes that Windows asks for, and writes the
.ico file, which is kept in the repository: a build needs no Python.
"""
import struct
import sys
import zlib

SIZES = (16, 20, 24, 32, 48, 256)
SAMPLES = 4  # for each pixel and axis

BLUE, WHITE, PAPER, GREY, GREEN = (28, 78, 128), (245, 248, 250), (255, 255, 255), (70, 84, 98), (96, 208, 128)


def box(left, top, right, bottom, radius):
    def holds(x, y):
        dx = max(left + radius - x, x - (right - radius), 0)
        dy = max(top + radius - y, y - (bottom - radius), 0)
        return left <= x <= right and top <= y <= bottom and dx * dx + dy * dy <= radius * radius + 1e-9
    return holds


def arc(x0, y0, inner, outer):
    """A quarter of a ring, up and to the right."""
    def holds(x, y):
        return x >= x0 and y <= y0 and inner ** 2 <= (x - x0) ** 2 + (y - y0) ** 2 <= outer ** 2
    return holds


# From the back to the front, in a square of side 1.
SHAPES = [(box(0, 0, 1, 1, .18), BLUE),
          (arc(.55, .40, .16, .23), GREEN), (arc(.55, .40, .30, .37), GREEN),
          (box(.25, .22, .55, .5, .02), PAPER),
          (box(.13, .42, .87, .76, .07), WHITE),
          (box(.25, .62, .75, .90, .03), GREY), (box(.29, .62, .71, .86, .02), PAPER),
          (box(.70, .49, .79, .55, .03), GREEN)]


def pixels(size):
    """Rows of (red, green, blue, alpha), the first at the top."""
    def sample(x, y):
        return next((colour for holds, colour in reversed(SHAPES) if holds(x, y)), None)

    def pixel(column, row):
        seen = [sample((column + (i + .5) / SAMPLES) / size, (row + (j + .5) / SAMPLES) / size)
                for i in range(SAMPLES) for j in range(SAMPLES)]
        inside = [colour for colour in seen if colour]
        mean = [sum(part) // len(inside) for part in zip(*inside)] if inside else [0, 0, 0]
        return (*mean, 255 * len(inside) // len(seen))
    return [[pixel(column, row) for column in range(size)] for row in range(size)]


def png(rows):
    def chunk(name, data):
        return struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))
    raw = b"".join(b"\0" + bytes(part for pixel in row for part in pixel) for row in rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", len(rows), len(rows), 8, 6, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


def bitmap(rows):
    """Twice the height is declared: an empty mask of one bit a pixel follows, since alpha has its place."""
    size = len(rows)
    colours = b"".join(bytes((blue, green, red, alpha)) for row in reversed(rows) for red, green, blue, alpha in row)
    mask = bytes((size + 31) // 32 * 4 * size)
    return struct.pack("<IiiHHIIiiII", 40, size, 2 * size, 1, 32, 0, len(colours) + len(mask), 0, 0, 0, 0) + colours + mask


def icon():
    images = [(png if size == 256 else bitmap)(pixels(size)) for size in SIZES]
    at = 6 + 16 * len(images)
    directory = struct.pack("<HHH", 0, 1, len(images))
    for size, image in zip(SIZES, images):
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(image), at)
        at += len(image)
    return directory + b"".join(images)


if __name__ == "__main__":
    with open(sys.argv[1], "wb") as out:
        out.write(icon())
