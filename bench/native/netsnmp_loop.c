// netsnmp_loop AGENT: one SNMPv1 get as open-get-close with the net-snmp library, alternating with
// a bare loop of system calls. Prints the medians of CPU and elapsed time per exchange in
// microseconds, as JSON.
#define _GNU_SOURCE
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <arpa/inet.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/select.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

enum { kBatches = 25, kBatch = 200 };

static const oid kSysName[] = {1, 3, 6, 1, 2, 1, 1, 5, 0};
static const unsigned char kRequest[] = {
    0x30, 0x26, 2, 1, 0,    4,    6,    's',  'e', 's', 'a',  'm', 'e', 0xA0, 0x19, 2, 1, 1, 2, 1,
    0,    2,    1, 0, 0x30, 0x0E, 0x30, 0x0C, 6,   8,   0x2B, 6,   1,   2,    1,    1, 5, 0, 5, 0};

static void Fail(const char* what) {
    fprintf(stderr, "netsnmp_loop: %s\n", what);
    exit(1);
}

static void LibraryGet(const char* agent) {
    netsnmp_session settings, *session;
    netsnmp_pdu* answer = NULL;
    snmp_sess_init(&settings);
    settings.peername = (char*)agent;
    settings.version = SNMP_VERSION_1;
    settings.community = (u_char*)"sesame";
    settings.community_len = 6;
    session = snmp_open(&settings);
    if (!session) Fail("no session");
    netsnmp_pdu* request = snmp_pdu_create(SNMP_MSG_GET);
    snmp_add_null_var(request, kSysName, sizeof kSysName / sizeof *kSysName);
    if (snmp_synch_response(session, request, &answer) != STAT_SUCCESS) Fail("no answer");
    snmp_free_pdu(answer);
    snmp_close(session);
}

static void BareGet(const char* agent) {
    const int handle = socket(AF_INET, SOCK_DGRAM, 0);
    struct sockaddr_in local = {.sin_family = AF_INET};
    struct sockaddr_in to = {.sin_family = AF_INET, .sin_port = htons(161)};
    struct timeval wait = {2, 0};
    char answer[2048];
    fd_set readable;
    inet_pton(AF_INET, agent, &to.sin_addr);
    bind(handle, (struct sockaddr*)&local, sizeof local);
    sendto(handle, kRequest, sizeof kRequest, 0, (struct sockaddr*)&to, sizeof to);
    FD_ZERO(&readable);
    FD_SET(handle, &readable);
    if (select(handle + 1, &readable, NULL, NULL, &wait) != 1) Fail("no answer");
    socklen_t length = sizeof to;
    recvfrom(handle, answer, sizeof answer, 0, (struct sockaddr*)&to, &length);
    close(handle);
}

static double Now(clockid_t clock) {
    struct timespec now;
    clock_gettime(clock, &now);
    return now.tv_sec * 1e6 + now.tv_nsec / 1e3;
}

static void MeasureBatch(void (*get)(const char*), const char* agent, double* cpu,
                         double* elapsed) {
    const double cpuBegan = Now(CLOCK_PROCESS_CPUTIME_ID), began = Now(CLOCK_MONOTONIC);
    for (int i = 0; i < kBatch; ++i) get(agent);
    *cpu = (Now(CLOCK_PROCESS_CPUTIME_ID) - cpuBegan) / kBatch;
    *elapsed = (Now(CLOCK_MONOTONIC) - began) / kBatch;
}

static int Compare(const void* a, const void* b) {
    const double x = *(const double*)a, y = *(const double*)b;
    return (x > y) - (x < y);
}

static double Median(double* values) {
    qsort(values, kBatches, sizeof *values, Compare);
    return values[kBatches / 2];
}

int main(int argc, char** argv) {
    static double cpu[2][kBatches], elapsed[2][kBatches];
    if (argc != 2) return 2;
    init_snmp("netsnmp_loop");
    LibraryGet(argv[1]);
    for (int i = 0; i < kBatches; ++i) {
        MeasureBatch(LibraryGet, argv[1], &cpu[0][i], &elapsed[0][i]);
        MeasureBatch(BareGet, argv[1], &cpu[1][i], &elapsed[1][i]);
    }
    printf(
        "{\"library_cpu_us\": %.2f, \"bare_cpu_us\": %.2f, \"library_us\": %.2f, \"bare_us\": "
        "%.2f}\n",
        Median(cpu[0]), Median(cpu[1]), Median(elapsed[0]), Median(elapsed[1]));
    return 0;
}
