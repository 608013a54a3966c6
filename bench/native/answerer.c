// answerer HOST_IP: simulates devices in the network for the measurements. On HOST_IP it answers
//   port 161, broadcast  the first request after a plan, with the plan's answers
//   port 161, unicast    each request at once, with one answer
//   port 9161            "plan COUNT PER_SECOND SIZE", and "time" (microseconds of the last plan)
// Prints "ready" when all sockets are open.
#define _GNU_SOURCE
#include <arpa/inet.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <time.h>

enum { kNumberDigits = 5, kLargest = 2048 };

// An SNMPv1 answer to the default discovery OID: OCTET STRING "Model 00000"; the number counts the
// answers.
static const unsigned char kAnswer[] = {
    0x30, 0x36, 2,    1,   0,   4,   6,   's',  'e',  's',  'a',  'm',  'e',  0xA2,
    0x29, 2,    1,    1,   2,   1,   0,   2,    1,    0,    0x30, 0x1E, 0x30, 0x1C,
    6,    13,   0x2B, 6,   1,   4,   1,   0xAE, 0x4B, 0x2B, 5,    1,    1,    1,
    1,    4,    11,   'M', 'o', 'd', 'e', 'l',  ' ',  '0',  '0',  '0',  '0',  '0'};

static struct {
    int count;
    int perSecond;
    int size;
} plan;
static long long lastPlanUs;

static long long NowNs(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000LL + now.tv_nsec;
}

static int Open(const char* ip, int port) {
    int handle = socket(AF_INET, SOCK_DGRAM, 0);
    int on = 1;
    struct sockaddr_in local = {.sin_family = AF_INET, .sin_port = htons((unsigned short)port)};
    inet_pton(AF_INET, ip, &local.sin_addr);
    setsockopt(handle, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (bind(handle, (struct sockaddr*)&local, sizeof local) != 0) {
        perror(ip);
        exit(1);
    }
    return handle;
}

static void SendAnswers(int handle, const struct sockaddr_in* to) {
    unsigned char datagram[kLargest] = {0};
    const int size = plan.size > (int)sizeof kAnswer ? plan.size : (int)sizeof kAnswer;
    const long long began = NowNs();
    memcpy(datagram, kAnswer, sizeof kAnswer);
    for (int sent = 0; sent < plan.count; ++sent) {
        if (plan.perSecond > 0) {
            const long long due = began + sent * 1000000000LL / plan.perSecond;
            const struct timespec nap = {0, 20000};
            while (NowNs() < due) nanosleep(&nap, NULL);
        }
        char number[kNumberDigits + 1];
        snprintf(number, sizeof number, "%05d", sent % 100000);
        memcpy(datagram + sizeof kAnswer - kNumberDigits, number, kNumberDigits);
        sendto(handle, datagram, (size_t)size, 0, (const struct sockaddr*)to, sizeof *to);
    }
    lastPlanUs = (NowNs() - began) / 1000;
    plan.count = 0;
}

static void Obey(int handle, const char* words, const struct sockaddr_in* from) {
    char reply[32] = "ok";
    if (sscanf(words, "plan %d %d %d", &plan.count, &plan.perSecond, &plan.size) == 3) {
        if (plan.size > kLargest) plan.size = kLargest;
    } else {
        snprintf(reply, sizeof reply, "%lld", lastPlanUs);
    }
    sendto(handle, reply, strlen(reply), 0, (const struct sockaddr*)from, sizeof *from);
}

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const int broadcast = Open("255.255.255.255", 161);
    const int unicast = Open(argv[1], 161);
    const int control = Open(argv[1], 9161);
    struct pollfd sockets[] = {{broadcast, POLLIN, 0}, {unicast, POLLIN, 0}, {control, POLLIN, 0}};
    puts("ready");
    fflush(stdout);
    for (;;) {
        poll(sockets, 3, -1);
        for (int i = 0; i < 3; ++i) {
            char request[kLargest];
            struct sockaddr_in from;
            socklen_t fromLength = sizeof from;
            if (!(sockets[i].revents & POLLIN)) continue;
            const ssize_t length = recvfrom(sockets[i].fd, request, sizeof request - 1, 0,
                                            (struct sockaddr*)&from, &fromLength);
            if (length < 0) continue;
            request[length] = '\0';
            if (sockets[i].fd == broadcast) SendAnswers(unicast, &from);
            if (sockets[i].fd == unicast) {
                sendto(unicast, kAnswer, sizeof kAnswer, 0, (struct sockaddr*)&from, fromLength);
            }
            if (sockets[i].fd == control) Obey(control, request, &from);
        }
    }
}
