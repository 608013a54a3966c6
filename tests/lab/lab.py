"""Shared by the tests in labs: the network, an agent in it, and ways to run the console host."""

import concurrent.futures
import os
import pty
import re
import select
import signal
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


def on_host(*arguments, program="vndiscover.exe"):
    return [SCRIPTS + "/wine-run.sh", "host", os.path.join(BIN, program), *arguments]


def run(*arguments, program="vndiscover.exe", **environment):
    """Runs a program without a terminal. Returns exit code, standard output, standard error."""
    # Into files: Wine's services keep pipes open for two seconds after the program has ended.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        done = subprocess.run(on_host(*arguments, program=program), stdin=subprocess.DEVNULL, stdout=out, stderr=err,
                              timeout=120, env={**os.environ, **environment}, check=False)
        out.seek(0)
        err.seek(0)
        return done.returncode, out.read().decode().replace("\r\n", "\n"), err.read().decode()


def found(*arguments, **environment):
    """Runs the program, which must end with 0, and returns its output."""
    code, out, err = run(*arguments, **environment)
    assert code == 0, (arguments, code, out, err)
    return out


def run_on_terminal(steps, *arguments):
    """Runs the program on a terminal and types. `steps`: pairs of a text to wait for and what is typed then.
    Returns exit code, what the screen got without its control sequences, and the seconds since the last key."""
    command = on_host(*arguments)
    child, terminal = pty.fork()
    if child == 0:
        os.execve(command[0], command, {**os.environ, "TERM": "xterm"})
    screen, raw, seen, steps = "", b"", 0, list(steps)
    typed = start = time.time()
    while time.time() - start < 60:
        if select.select([terminal], [], [], 0.05)[0]:
            try:
                raw += os.read(terminal, 4096)
            except OSError:  # the program has ended
                break
            text = raw.decode("utf-8", "replace").replace("\x1b[K\x1b[1C", " ")
            screen = re.sub(r"\x1b\[[?0-9;]*[A-Za-z]", "", text)
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


def main(agent_conf="", prepare=lambda: None, alone=()):
    """Sets the lab up and runs the tests of the calling file, or those with one of the arguments in their names: first
    those named in `alone`, which change the network, then the others at the same time, since they mostly wait."""
    subprocess.run([SCRIPTS + "/test-net.sh"], check=True)
    if agent_conf:
        subprocess.run([SCRIPTS + "/snmp-agent.sh", "neta", "agent"], input=agent_conf, text=True, check=True,
                       stdout=subprocess.DEVNULL)
    prepare()
    suite = unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"])
    tests = [test for case in suite for test in case if any(word in test.id() for word in sys.argv[1:] or [""])]
    by_themselves = [test for test in tests if test.id().endswith(tuple(alone))]
    others = [test for test in tests if test not in by_themselves]

    def all_of_them(result):
        for test in by_themselves:
            test(result)
        with concurrent.futures.ThreadPoolExecutor(len(others) or 1) as pool:
            list(pool.map(lambda test: test(result), others))

    result = unittest.TextTestRunner().run(all_of_them)
    for skipped, reason in result.skipped:
        print(f"skipped: {skipped.id()}: {reason}")
    sys.exit(not (tests and result.wasSuccessful()))
