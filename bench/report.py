#!/usr/bin/env python3
"""report.py FOLDER: reads what lab.sh measured there, prints the table, writes results.json and growth.svg."""
import collections
import json
import pathlib
import statistics
import sys

SILENCE_S = 2.0  # a sweep's last wait
MIB = 1024 * 1024
AUTH = {1: "MD5", 2: "SHA-1", 3: "SHA-224", 4: "SHA-256", 5: "SHA-384", 6: "SHA-512"}
PLATFORM_FOR = {(3, 4): "SHA-224 against the platform's SHA-256"}


class Report:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.rows = []
        self.runs = collections.defaultdict(list)
        for path in sorted(self.folder.glob("bench-*.json")):
            try:
                benchmarks = json.loads(path.read_text())["benchmarks"]
            except ValueError:  # the run was interrupted
                continue
            for run in benchmarks:
                if run.get("run_type") == "iteration" and not run.get("error_occurred"):
                    self.runs[run["run_name"].split("/")[0] + self.arguments(run)].append(run)
        self.sweeps = []
        sweeps = self.folder / "sweeps.jsonl"
        if sweeps.exists():
            self.sweeps = [json.loads(line) for line in sweeps.read_text().splitlines() if line.startswith("{")]

    @staticmethod
    def arguments(run):
        words = [word for word in run["run_name"].split("/")[1:] if word.split(":")[0] in
                 ("auth", "hash", "server", "authPriv", "decrypt", "bytes")]
        return "".join("/" + word for word in words)

    def counter(self, name, counter):
        values = [run[counter] for run in self.runs.get(name, []) if counter in run]
        return statistics.median(values) if values else None

    def nanoseconds(self, name, field="real_time"):
        units = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
        values = [run[field] * units[run["time_unit"]] for run in self.runs.get(name, [])]
        return statistics.median(values) if values else None

    def ratio(self, name, of="us"):
        """Median of the ratios of the repetitions."""
        values = [run["ours_" + of] / run["bare_" + of] for run in self.runs.get(name, []) if run.get("bare_" + of)]
        return statistics.median(values) if values else None

    def sweep(self, field, devices, keys=-1):
        values = [p[field] for p in self.sweeps if p["devices"] == devices and p["keys"] == keys]
        return statistics.median(values) if values else None

    def row(self, what, measured, unit="", target="", met=None):
        """met=None makes a row without a mark; measured=None makes one that says so."""
        if measured is None:
            self.rows.append({"what": what, "measured": None, "unit": unit, "target": target, "met": None})
            return
        self.rows.append({"what": what, "measured": round(measured, 3), "unit": unit, "target": target, "met": met})

    def most(self, what, measured, limit, unit=""):
        self.row(what, measured, unit, f"<= {limit:g}", None if measured is None else measured <= limit)

    def least(self, what, measured, limit, unit=""):
        self.row(what, measured, unit, f">= {limit:g}", None if measured is None else measured >= limit)

    # ------------------------------------------------------------ the groups
    def directed(self):
        self.row("directed get: time", self.counter("DirectedTime", "ours_us"), "us")
        self.row("bare loop: time", self.counter("DirectedTime", "bare_us"), "us")
        self.most("directed get / bare loop", self.ratio("DirectedTime"), 1.15)
        self.row("    the same by lower quartiles, which other work on the machine touches less",
                 self.ratio("DirectedTime", "quartile_us"))

    def library(self):
        path = self.folder / "netsnmp.json"
        library = json.loads(path.read_text()) if path.exists() and path.read_text().strip() else {}
        ours, bare = (self.counter("DirectedCpu/server:0", c) for c in ("ours_us", "bare_us"))
        self.row("CPU per exchange: directed get", ours, "us")
        self.row("CPU per exchange: bare loop under Wine", bare, "us")
        self.row("the same with Wine's server: directed get", self.counter("DirectedCpu/server:1", "ours_us"), "us")
        self.row("the same with Wine's server: bare loop", self.counter("DirectedCpu/server:1", "bare_us"), "us")
        self.row("CPU per exchange: net-snmp's library, native", library.get("library_cpu_us"), "us")
        self.row("CPU per exchange: bare loop, native", library.get("bare_cpu_us"), "us")
        if not library or None in (ours, bare):
            return
        # Both as multiples of the bare calls on the same system, which removes the cost of Wine.
        theirs = library["library_cpu_us"] / library["bare_cpu_us"]
        self.row("net-snmp's library / native bare loop, CPU", theirs)
        self.most("directed get / Wine's bare loop, CPU: no more than net-snmp's", ours / bare, round(theirs, 3))
        more = library["library_cpu_us"] - library["bare_cpu_us"]
        self.row("CPU beyond the bare loop: net-snmp's library", more, "us")
        self.row("CPU beyond the bare loop: directed get", ours - bare, "us")

    def collection(self):
        name = "SteadyRate/bytes:1472"
        ours, bare = self.counter(name, "ours"), self.counter(name, "bare")
        self.row("steady rate without loss: sweep", ours, "/s")
        self.row("steady rate without loss: bare loop", bare, "/s")
        self.least("sweep / bare loop", ours / bare if ours and bare else None, 0.8)
        kept, bare = self.counter("Burst", "ours"), self.counter("Burst", "bare")
        self.least("kept of a burst of 8,192: sweep (bare loop's is the mark)", kept, bare or 0)
        self.row("kept: bare loop, raised buffer", bare)
        self.row("kept: bare loop, the system's buffer", self.counter("Burst", "bare_unraised"))
        self.row("rate of the burst", self.counter("Burst", "sent_per_s"), "/s")
        self.row("CPU per collected answer: sweep", self.counter("CollectionCost", "ours_us"), "us")
        self.row("CPU per collected answer: bare loop", self.counter("CollectionCost", "bare_us"), "us")
        self.row("the same with Wine's server: sweep", self.counter("CollectionCost", "ours_with_server_us"), "us")
        self.row("the same with Wine's server: bare", self.counter("CollectionCost", "bare_with_server_us"), "us")

    def devices(self):
        idle, many = self.sweep("cpu_us", 0), self.sweep("cpu_us", 8000)
        if None in (idle, many):
            return
        self.row("CPU per delivered device, collected and delivered", (many - idle) / 8000, "us")
        for keys in (0, 1):
            cpu = self.sweep("cpu_us", 8000, keys)
            if cpu is not None:
                self.row(f"CPU per delivered device, JSON with {keys} OIDs", (cpu - idle) / 8000, "us")

    def keys(self):
        for name in sorted(self.runs):
            if not name.startswith("LocalisedKey"):
                continue
            auth, plain = (int(part.split(":")[1]) for part in name.split("/")[1:3])
            title = PLATFORM_FOR.get((auth, plain), AUTH[auth])
            self.row(f"localised key, CPU: {AUTH[auth]}", self.counter(name, "ours_us"), "us")
            self.most(f"localised key / plain hash of 1 MiB: {title}", self.ratio(name), 1.05)

    def codec(self):
        cpu = lambda name: self.nanoseconds(name, "cpu_time")
        for name, title in (("EncodeV1", "v1: build a request"), ("DecodeV1", "v1: read an answer"),
                            ("EncodeV3/authPriv:0", "v3: build, no security"),
                            ("DecodeV3/authPriv:0", "v3: read, no security"),
                            ("EncodeV3/authPriv:1", "v3: build, authPriv (SHA-1, AES)"),
                            ("DecodeV3/authPriv:1", "v3: read, authPriv (SHA-1, AES)")):
            self.row(title, cpu(name), "ns")
        whole = self.nanoseconds("AuthPrivExchange")
        self.row("authPriv exchange, whole (elapsed)", whole and whole / 1e3, "us")
        parts = ((1, "OneLoading", "loading the platform's library"),
                 (2, "OneOpening", "2 openings of its provider"), (2, "OneKey", "2 keys from passwords"),
                 (2, "OneMac", "2 MACs"), (1, "OneCipher/decrypt:0", "encryption"),
                 (1, "OneCipher/decrypt:1", "decryption"), (1, "EncodeV3/authPriv:0", "BER, building"),
                 (1, "DecodeV3/authPriv:0", "BER, reading"))
        for count, name, title in parts:
            part = self.nanoseconds(name)
            self.row(f"    of it: {title}", part and part * count / 1e3, "us")
        bare = self.counter("DirectedTime", "bare_us")
        self.row("    of it: 2 bare exchanges", bare and bare * 2, "us")

    def lines(self, name):
        path = self.folder / name
        return [json.loads(line) for line in path.read_text().splitlines() if line.startswith("{")] if path.exists() else []

    def v3(self):
        sweeps = self.lines("sweeps-v3.jsonl")
        beyond = lambda p: (p["elapsed_us"] / 1e6 - SILENCE_S) / max(p["delivered"], 1) * 1e3
        exchanges = {}
        for p in sweeps:
            if p["auth"] == "-":
                exchanges[p["keys"]] = beyond(p)
                continue
            name, marked = f"v3 sweep, {p['auth']}/{p['priv']}", p["priv"] == "AES"
            if marked:
                exchanges["v3"] = beyond(p)
                self.least(f"{name}: found of {p['devices']:,}", float(p["delivered"]), p["devices"])
                self.row("    so many reports of one burst were kept while each sender was asked", float(p["delivered"]))
            else:
                self.row(f"{name}: found of {p['devices']:,}", float(p["delivered"]))
            self.row(f"{name}: time", p["elapsed_us"] / 1e6, "s")
            if marked:
                self.most(f"{name}: a device", beyond(p), 4, "ms")
            else:
                self.row(f"{name}: a device", beyond(p), "ms")
            self.row("    CPU a device", p["cpu_us"] / max(p["delivered"], 1), "us")
            self.row("    the same with Wine's server", (p["cpu_us"] + p["server_cpu_us"]) / max(p["delivered"], 1), "us")
            self.row("    resident: more afterwards", p["swept_bytes"] / MIB, "MiB")
        v1 = exchanges[1] - exchanges[0] if 0 in exchanges and 1 in exchanges else None
        v3 = exchanges.get("v3")
        self.row("v1 exchange in a sweep, same agent", v1, "ms")
        self.most("authPriv exchange / v1 exchange", v3 / v1 if v1 and v3 else None, 4)
        peer = (self.lines("netsnmp-v3.json") or [{}])[0]
        self.row("the same exchange by net-snmp's library, native", peer.get("us") and peer["us"] / 1e3, "ms")
        self.row("    CPU", peer.get("cpu_us"), "us")

    def window(self):
        watched = self.lines("window.jsonl")
        self.least("VnBrowser, 8,192 devices at once: shown, in the worst of the runs",
                   min((run["devices"] for run in watched), default=None), 8192)
        self.most("VnBrowser, 8,192 devices at once: longest time until it answers a message",
                  max((run["worst_ms"] for run in watched), default=None), 200, "ms")

    def memory(self):
        def over(field):
            values = [p[field] for p in self.sweeps]
            return statistics.median(values) if values else None
        loaded = over("loaded_bytes")
        self.row("load, first in the process", over("first_load_us"), "us")
        self.row("load, again", over("load_us"), "us")
        self.row("unload", over("unload_us"), "us")
        bare = over("bare_bytes")
        self.row("resident: host without the module", bare and bare / MIB, "MiB")
        self.most("resident: more with the module loaded", loaded and loaded / MIB, 2, "MiB")
        for devices in (1, 100, 8192):
            swept = self.sweep("swept_bytes", devices)
            self.row(f"resident: more after a sweep of {devices:,}", None if swept is None else swept / MIB, "MiB")

    # ------------------------------------------------------------ growth
    def points(self, field, keys=None, devices=None):
        chosen = collections.defaultdict(list)
        for p in self.sweeps:
            if keys is not None and p["keys"] == keys and p["devices"] not in (0, 8192):
                chosen[p["devices"]].append(field(p))
            if devices is not None and p["devices"] == devices and p["keys"] >= 0:
                chosen[p["keys"]].append(field(p))
        return sorted((x, statistics.median(values)) for x, values in chosen.items())

    def plots(self):
        fields = (("time beyond the silent wait, s", lambda p: p["elapsed_us"] / 1e6 - SILENCE_S),
                  ("CPU, s", lambda p: p["cpu_us"] / 1e6),
                  ("memory more than before, MiB", lambda p: p["swept_bytes"] / MIB))
        plots = []
        for title, field in fields:
            plots.append(("devices", title, {"sweep": self.points(field, keys=-1),
                                             "JSON, no OID": self.points(field, keys=0),
                                             "JSON, 1 OID": self.points(field, keys=1)}))
        for title, field in fields:
            plots.append(("OIDs asked of each of 100 devices", title, {"JSON": self.points(field, devices=100)}))
        return plots

    def svg(self):
        width, height, pad = 360, 260, 48
        colours = ("#1f6fb4", "#d2691e", "#2e8b57")
        out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{3 * width}" height="{2 * height}" '
               'font-family="sans-serif" font-size="11"><rect width="100%" height="100%" fill="white"/>']
        for index, (axis, title, series) in enumerate(self.plots()):
            left, top = index % 3 * width, index // 3 * height
            every = [point for points in series.values() for point in points]
            if not every:
                continue
            most_x = max(x for x, _ in every) or 1
            most_y = max(max(y for _, y in every), 1e-9)
            place = lambda x, y: (left + pad + x / most_x * (width - pad - 16),
                                  top + height - 36 - max(y, 0) / most_y * (height - 76))
            zero, corner = place(0, 0), place(most_x, most_y)
            out.append(f'<path d="M{zero[0]:.1f} {corner[1]:.1f}V{zero[1]:.1f}H{corner[0]:.1f}" fill="none" '
                       'stroke="black"/>')
            out.append(f'<text x="{left + pad}" y="{top + 16}">{title}</text>'
                       f'<text x="{left + pad}" y="{top + height - 8}">{axis}</text>'
                       f'<text x="{corner[0]:.1f}" y="{zero[1] + 13:.1f}" text-anchor="end">{most_x:,}</text>'
                       f'<text x="{zero[0] - 4:.1f}" y="{corner[1] + 4:.1f}" text-anchor="end">{most_y:.3g}</text>')
            for number, (name, points) in enumerate(series.items()):
                path = " ".join("%.1f,%.1f" % place(x, y) for x, y in points)
                colour = colours[number]
                out.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="1.5"/>')
                out += ['<circle cx="%.1f" cy="%.1f" r="2.5" fill="%s"/>' % (*place(x, y), colour) for x, y in points]
                if len(series) > 1:
                    out.append(f'<text x="{left + pad + 8}" y="{top + 32 + 13 * number}" fill="{colour}">{name}</text>')
        out.append("</svg>")
        return "\n".join(out)

    def growth_rows(self):
        lost = [p for p in self.sweeps if p["delivered"] != p["devices"]]
        self.row("growth: sweeps that lost answers", float(len(lost)), f"of {len(self.sweeps)}")

    def run(self):
        self.directed()
        self.library()
        self.collection()
        self.devices()
        self.keys()
        self.codec()
        self.v3()
        self.window()
        self.memory()
        self.growth_rows()
        (self.folder / "results.json").write_text(json.dumps(
            {"table": self.rows,
             "growth": [{"x": axis, "y": title, "series": series} for axis, title, series in self.plots()]}, indent=1))
        (self.folder / "growth.svg").write_text(self.svg())
        print(f"{'':72}{'measured':>14} {'':6}{'target':>10}  mark")
        for row in self.rows:
            value = "not measured" if row["measured"] is None else f"{row['measured']:,.3f}".rstrip("0").rstrip(".")
            mark = {None: "", True: "met", False: "NOT MET"}[row["met"]]
            print(f"{row['what']:72}{value:>14} {row['unit']:6}{row['target']:>10}  {mark}".rstrip())
        print(f"\n{self.folder}/results.json, {self.folder}/growth.svg")


if __name__ == "__main__":
    Report(sys.argv[1]).run()
