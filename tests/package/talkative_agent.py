"""talkative_agent.py: answers the first SNMPv1 request that it hears on UDP port 161 again and again, every 300 ms,
so that a sweep goes on until it is stopped. Prints "ready" when it listens.
"""
import socket
import time

VALUE = b"Talkative"


def tlv(tag, content):
    return bytes([tag, len(content)]) + content


def answer_to(request):
    """The request's community and OID with a value; every length of such a request is one byte."""
    community = request[7:7 + request[6]]
    name = request[7 + len(community) + 15:]
    name = name[:2 + name[1]]
    binding = tlv(0x30, name + tlv(0x04, VALUE))
    pdu = tlv(0xA2, b"\x02\x01\x01\x02\x01\x00\x02\x01\x00" + tlv(0x30, binding))
    return tlv(0x30, b"\x02\x01\x00" + tlv(0x04, community) + pdu)


with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as agent:
    agent.bind(("", 161))
    print("ready", flush=True)
    request, sender = agent.recvfrom(2048)
    while True:
        agent.sendto(answer_to(request), sender)
        time.sleep(0.3)
