"""Shared by the tests in labs: the network, an agent in it, and ways to run the console host."""

import concurrent.futures
import ctypes
import os
import pty
import re
import select
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import termios
import time
import unittest
from pathlib import Path

TREE = Path(__file__).resolve().parents[2]
SCRIPTS = os.environ.get("VNDISCOVER_LAB_SCRIPTS", f"{TREE}/scripts/lab")
BIN = os.environ.get("VNDISCOVER_BIN", f"{TREE}/build/release/bin")
LAB = os.environ["VNDISCOVER_LAB"]
AGENT, AGENT6 = "10.77.1.2", "fe80::1:2"
V3 = ["--v3", "-u", "admin", "-a", "sha-256", "-x", "aes128"]
CLONE_NEWNET = 0x40000000
LIBC = ctypes.CDLL(None, use_errno=True)
HAS_WSDD = shutil.which("wsdd")  # otherwise wsdd2
SECRETS = {"VNDISCOVER_AUTH_PASS": "authpass1", "VNDISCOVER_PRIV_PASS": "privpass1"}
# An agent whose user is that of V3 and SECRETS.
AGENT_CONF = """
agentAddress udp:161,udp6:161
rocommunity sesame
rocommunity6 sesame
createUser admin SHA-256 authpass1 AES privpass1
rouser admin priv
"""


def start_in(net, *command, **options):
    return subprocess.Popen(["ip", "netns", "exec", net, *command], stdin=subprocess.DEVNULL, text=True,
                            **{"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, **options})


def socket_in(net, family):
    """A datagram socket in the namespace `net`."""
    with open("/proc/self/ns/net", "rb") as own, open(f"/run/netns/{net}", "rb") as other:
        LIBC.setns(other.fileno(), CLONE_NEWNET)
        made = socket.socket(family, socket.SOCK_DGRAM)
        LIBC.setns(own.fileno(), CLONE_NEWNET)
    return made


def start_agent(net, conf):
    subprocess.run([SCRIPTS + "/snmp-agent.sh", net, "agent-" + net], input=conf, text=True, check=True,
                   stdout=subprocess.DEVNULL)


def start_responder(net, address):
    """Starts a real WS-Discovery responder and waits for its web server, which it opens last."""
    if HAS_WSDD:
        start_in(net, "wsdd", "-4", "-i", address, "-n", "PRINTER")
    else:
        start_in(net, "wsdd2", "-4", "-w", "-i", "eth0", "-N", "PRINTER", "-G", "GROUP")
    subprocess.run(["timeout", "30", "ip", "netns", "exec", net, "bash", "-c",
                    "until [ -n \"$(ss -Hltn 'sport = 5357 or sport = 3702')\" ]; do sleep 0.05; done"], check=True)


def on_host(*arguments, program="vndiscover.exe"):
    return [SCRIPTS + "/wine-run.sh", "host", os.path.join(BIN, program), *arguments]


def run(*arguments, program="vndiscover.exe", **environment):
    """Runs a program without a terminal. Returns exit code, standard output, standard error."""
    # Into files: Wine's services keep pipes open for two seconds after the program has ended.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        # Python itself would wait for a limited time by asking again and again, in each of many tests.
        done = subprocess.run(["timeout", "120", *on_host(*arguments, program=program)], stdin=subprocess.DEVNULL,
                              stdout=out, stderr=err, env={**os.environ, **environment}, check=False)
        out.seek(0)
        err.seek(0)
        return done.returncode, out.read().decode().replace("\r\n", "\n"), err.read().decode()


def found(*arguments, **environment):
    """Runs the program, which must end with 0, and returns its output."""
    code, out, err = run(*arguments, **environment)
    assert code == 0, (arguments, code, out, err)
    return out


def run_on_terminal(steps, *arguments, program="vndiscover.exe", folder=".", limit=60):
    """Runs the program on a terminal and types. `steps`: pairs of a text to wait for and what is typed then.
    Returns exit code, what the screen got without its control sequences, and the seconds since the last key."""
    command = on_host(*arguments, program=program)
    child, terminal = pty.fork()
    if child == 0:
        os.chdir(folder)
        os.execve(command[0], command, {**os.environ, "TERM": "xterm"})
    screen, raw, seen, steps = "", b"", 0, list(steps)
    typed = start = time.time()
    while time.time() - start < limit:
        if select.select([terminal], [], [], 0.5)[0]:
            try:
                raw += os.read(terminal, 4096)
            except OSError:  # the program has ended
                break
            text = raw.decode("utf-8", "replace").replace("\x1b[K\x1b[1C", " ")
            screen = re.sub(r"\x1b(\[[?0-9;]*([A-Za-z]|$)|$)", "", text)  # also one of which the rest is still to come
        # A password only once Wine has taken over the terminal: before that, the system would echo it.
        has_echo = termios.tcgetattr(terminal)[3] & termios.ECHO
        if steps and steps[0][0] in screen[seen:] and not (has_echo and "password" in steps[0][0]):
            seen = len(screen)
            os.write(terminal, steps.pop(0)[1])
            typed = time.time()
    else:
        os.kill(child, signal.SIGKILL)
    _, status = os.waitpid(child, 0)
    return os.waitstatus_to_exitcode(status), screen, time.time() - typed


def at_once(work, *arguments):
    """The results of `work` for each of the arguments, called at the same time: it mostly waits."""
    with concurrent.futures.ThreadPoolExecutor(len(arguments[0])) as pool:
        return list(pool.map(work, *arguments))


def main(agent_conf="", prepare=lambda: None, in_turn=(), alone=()):
    """Sets the lab up and runs the tests of the calling file, or those with one of the arguments in their names, at the
    same time; but one after another those that end with one of `in_turn`, which change or read the network's settings, and
    after all others those that end with one of `alone`, which leave the network changed."""
    subprocess.run([SCRIPTS + "/test-net.sh"], check=True)
    if agent_conf:
        start_agent("neta", agent_conf)
    prepare()
    suite = unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"])
    tests = [test for case in suite for test in case if any(word in test.id() for word in sys.argv[1:] or [""])]
    row = [test for test in tests if test.id().endswith(tuple(in_turn))]
    rest = [test for test in tests if test.id().endswith(tuple(alone))]
    groups = [row] + [[test] for test in tests if test not in [*row, *rest]]

    def all_of_them(result):
        at_once(lambda group: [test(result) for test in group], groups)
        for test in rest:
            test(result)

    result = unittest.TextTestRunner().run(all_of_them)
    for skipped, reason in result.skipped:
        print(f"skipped: {skipped.id()}: {reason}")
    sys.exit(not (tests and result.wasSuccessful()))
