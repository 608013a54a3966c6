"""What the tests of vndiscover.exe share: the lab with an agent and a responder, and ways to run the program."""

import concurrent.futures
import io
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

SCRIPTS = os.environ["VNDISCOVER_LAB_SCRIPTS"]
BIN = os.environ["VNDISCOVER_BIN"]
ON_HOST = [SCRIPTS + "/wine-run.sh", "host"]
LAB = os.environ["VNDISCOVER_LAB"]
AGENT = "10.77.1.2"
AGENT6 = "fe80::1:2"
SYSTEM = ".1.3.6.1.2.1.1"
CONTACT = SYSTEM + ".4.0"
WRITABLE = ".1.3.6.1.4.1.5963.9.1.0"
V3 = ["--v3", "-u", "admin", "-a", "sha-256", "-x", "aes128"]

AGENT_CONF = """
agentAddress udp:161,udp6:161
rocommunity sesame
rocommunity6 sesame
rwcommunity secret
rwcommunity6 secret
syslocation Hall "B", 2nd floor
override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"
override -rw .1.3.6.1.4.1.5963.9.1.0 octet_str "ext. 41"
createUser admin SHA-256 authpass1 AES privpass1
rouser admin priv
"""

def run(*arguments, program="vndiscover.exe", **environment):
    """Runs a program without a terminal. Returns exit code, standard output, standard error."""
    # Into files: Wine's own services keep pipes open for two seconds after the program has ended.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        done = subprocess.run([*ON_HOST, f"{BIN}/{program}", *arguments], stdin=subprocess.DEVNULL, stdout=out, stderr=err, timeout=120,
                              env={**os.environ, **environment}, check=False)
        out.seek(0)
        err.seek(0)
        return done.returncode, out.read().decode().replace("\r\n", "\n"), err.read().decode()


def run_on_terminal(steps, *arguments):
    """Runs the program on a terminal and types. `steps`: pairs of a text to wait for and what is typed then.
    Returns exit code, what the screen got without its control sequences, and the seconds since the last key."""
    command, environment = [*ON_HOST, BIN + "/vndiscover.exe", *arguments], {**os.environ, "TERM": "xterm"}
    child, terminal = pty.fork()
    if child == 0:
        os.execve(command[0], command, environment)
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
        # A password only once Wine has taken the terminal over: before, the system itself would show it.
        has_echo = termios.tcgetattr(terminal)[3] & termios.ECHO
        if steps and steps[0][0] in screen[seen:] and not (has_echo and "password" in steps[0][0]):
            seen = len(screen)
            os.write(terminal, steps.pop(0)[1])
            typed = time.time()
    else:
        os.kill(child, signal.SIGKILL)
    _, status = os.waitpid(child, 0)
    return os.waitstatus_to_exitcode(status), screen, time.time() - typed


def start_in(net, *command):
    return subprocess.Popen(["ip", "netns", "exec", net, *command], stdin=subprocess.DEVNULL,
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def run_test(test):
    output = io.StringIO()
    result = unittest.TextTestRunner(output).run(test)
    for skipped, reason in result.skipped:
        print(f"skipped: {skipped.id()}: {reason}", flush=True)
    return result.wasSuccessful(), output.getvalue()


def main(agent_conf="", prepare=lambda: None):
    """Sets the lab up and runs the tests of the calling file at the same time, since they mostly wait."""
    subprocess.run([SCRIPTS + "/test-net.sh"], check=True)
    if agent_conf:
        subprocess.run([SCRIPTS + "/snmp-agent.sh", "neta", "agent"], input=agent_conf, text=True, check=True,
                       stdout=subprocess.DEVNULL)
    prepare()
    suite = unittest.defaultTestLoader.loadTestsFromModule(sys.modules["__main__"])
    tests = [test for case in suite for test in case]
    with concurrent.futures.ThreadPoolExecutor(len(tests)) as pool:  # an error when there are none
        results = list(pool.map(run_test, tests))
    for succeeded, output in results:
        if not succeeded:
            print(output)
    sys.exit(not all(succeeded for succeeded, _ in results))
