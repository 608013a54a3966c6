"""What the tests of vndiscover.exe share: the lab with an agent and a responder, and ways to run the program."""

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
PROGRAM = [SCRIPTS + "/wine-run.sh", "host", os.environ["VNDISCOVER_BIN"] + "/vndiscover.exe"]
LAB = os.environ["VNDISCOVER_LAB"]
AGENT = "10.77.1.2"
AGENT6 = "fe80::1:2"
SYSTEM = ".1.3.6.1.2.1.1"
CONTACT = SYSTEM + ".4.0"
V3 = ["--v3", "-u", "admin", "-a", "sha-256", "-x", "aes128"]

AGENT_CONF = """
agentAddress udp:161,udp6:161
rocommunity sesame
rocommunity6 sesame
rwcommunity secret
rwcommunity6 secret
syslocation Hall "B", 2nd floor
override .1.3.6.1.4.1.5963.43.5.1.1.1.1 octet_str "Model 1"
override .1.3.6.1.4.1.5963.9.1.0 octet_str 0x3c2af400f51b
override .1.3.6.1.4.1.5963.9.2.0 octet_str 0x00
override .1.3.6.1.4.1.5963.9.3.0 octet_str "LONG"
createUser admin SHA-256 authpass1 AES privpass1
rouser admin priv
""".replace("LONG", 243 * "x")

# Answers every WS-Discovery probe, with escape sequences and with a reply that fills the buffer.
RESPONDER = """
import socket, struct
sock = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
sock.bind(("", 3702))
group = socket.inet_aton("239.255.255.250")
sock.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP, group + socket.inet_aton("10.77.1.2"))
match = ('<e:Envelope xmlns:e="http://www.w3.org/2003/05/soap-envelope"><e:Body><d:ProbeMatches '
         'xmlns:d="http://schemas.xmlsoap.org/ws/2005/04/discovery"><d:ProbeMatch><d:XAddrs>http://a/&#27;[2J'
         '</d:XAddrs></d:ProbeMatch></d:ProbeMatches></e:Body></e:Envelope>').encode()
while True:
    _, sender = sock.recvfrom(4096)
    for reply in (match, match.ljust(2048, b" "), b"\\x1b]0;x\\x07\\x9b2J", b"A" * 2048):
        sock.sendto(reply, sender)
"""


def run(*arguments, **environment):
    """Runs the program without a terminal. Returns exit code, standard output, standard error."""
    # Into files: Wine's own services keep pipes open for two seconds after the program has ended.
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        done = subprocess.run(PROGRAM + list(arguments), stdin=subprocess.DEVNULL, stdout=out, stderr=err, timeout=120,
                              env={**os.environ, **environment}, check=False)
        out.seek(0)
        err.seek(0)
        return done.returncode, out.read().decode().replace("\r\n", "\n"), err.read().decode()


def run_on_terminal(steps, *arguments):
    """Runs the program on a terminal and types. `steps`: pairs of a text to wait for and what is typed then.
    Returns exit code, what the screen got without its control sequences, and the seconds since the last key."""
    child, terminal = pty.fork()
    if child == 0:
        os.environ["TERM"] = "xterm"
        os.execv(PROGRAM[0], PROGRAM + list(arguments))
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


def main(conf=AGENT_CONF):
    """Sets the lab up, with this agent, and runs the tests of the calling file."""
    subprocess.run([SCRIPTS + "/test-net.sh"], check=True)
    subprocess.run([SCRIPTS + "/snmp-agent.sh", "neta", "agent"], input=conf, text=True, check=True,
                   stdout=subprocess.DEVNULL)
    responder = subprocess.Popen(["ip", "netns", "exec", "neta", sys.executable, "-c", RESPONDER])
    result = unittest.main(module="__main__", exit=False).result
    responder.kill()
    sys.exit(not result.wasSuccessful())
