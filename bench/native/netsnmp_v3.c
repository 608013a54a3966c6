// netsnmp_v3 FIRST_IP COUNT: asks COUNT devices of v3_devices.c (SHA-256, AES) for one value each
// with the net-snmp library, like a sweep: engine discovery and one authPriv request, with the
// user's keys derived once. Prints CPU and elapsed microseconds per device, as JSON.
#define _GNU_SOURCE
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>

#include <arpa/inet.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

static const oid kModel[] = {1, 3, 6, 1, 4, 1, 5963, 43, 5, 1, 1, 1, 1};
static oid kAuth[] = {1, 3, 6, 1, 6, 3, 10, 1, 1, 5};  // usmHMAC192SHA256AuthProtocol
static oid kPriv[] = {1, 3, 6, 1, 6, 3, 10, 1, 2, 4};  // usmAESPrivProtocol

static void Fail(const char* what) {
    fprintf(stderr, "netsnmp_v3: %s\n", what);
    exit(1);
}

static double Now(clockid_t clock) {
    struct timespec now;
    clock_gettime(clock, &now);
    return now.tv_sec * 1e6 + now.tv_nsec / 1e3;
}

static void DeriveKeys(netsnmp_session* settings) {
    settings->securityAuthProto = kAuth;
    settings->securityAuthProtoLen = sizeof kAuth / sizeof *kAuth;
    settings->securityPrivProto = kPriv;
    settings->securityPrivProtoLen = sizeof kPriv / sizeof *kPriv;
    settings->securityAuthKeyLen = USM_AUTH_KU_LEN;
    settings->securityPrivKeyLen = USM_PRIV_KU_LEN;
    if (generate_Ku(kAuth, settings->securityAuthProtoLen, (const u_char*)"authpass1", 9,
                    settings->securityAuthKey, &settings->securityAuthKeyLen) != SNMPERR_SUCCESS ||
        generate_Ku(kAuth, settings->securityAuthProtoLen, (const u_char*)"privpass1", 9,
                    settings->securityPrivKey, &settings->securityPrivKeyLen) != SNMPERR_SUCCESS) {
        Fail("no keys");
    }
}

static void Ask(netsnmp_session* settings, const char* address) {
    netsnmp_pdu* answer = NULL;
    settings->peername = (char*)address;
    netsnmp_session* session = snmp_open(settings);
    if (!session) Fail("no session");
    netsnmp_pdu* request = snmp_pdu_create(SNMP_MSG_GET);
    snmp_add_null_var(request, kModel, sizeof kModel / sizeof *kModel);
    if (snmp_synch_response(session, request, &answer) != STAT_SUCCESS || !answer->variables ||
        answer->variables->type != ASN_OCTET_STR) {
        Fail("no answer");
    }
    snmp_free_pdu(answer);
    snmp_close(session);
}

int main(int argc, char** argv) {
    struct in_addr first;
    netsnmp_session settings;
    if (argc != 3 || inet_pton(AF_INET, argv[1], &first) != 1) return 2;
    const int count = atoi(argv[2]);
    init_snmp("netsnmp_v3");
    snmp_sess_init(&settings);
    settings.version = SNMP_VERSION_3;
    settings.securityName = (char*)"bench";
    settings.securityNameLen = 5;
    settings.securityLevel = SNMP_SEC_LEVEL_AUTHPRIV;
    settings.securityModel = SNMP_SEC_MODEL_USM;
    const double cpuBegan = Now(CLOCK_PROCESS_CPUTIME_ID), began = Now(CLOCK_MONOTONIC);
    DeriveKeys(&settings);
    for (int i = 0; i < count; ++i) {
        struct in_addr address = {htonl(ntohl(first.s_addr) + (uint32_t)i)};
        char text[INET_ADDRSTRLEN];
        Ask(&settings, inet_ntop(AF_INET, &address, text, sizeof text));
    }
    printf("{\"devices\": %d, \"cpu_us\": %.1f, \"us\": %.1f}\n", count,
           (Now(CLOCK_PROCESS_CPUTIME_ID) - cpuBegan) / count,
           (Now(CLOCK_MONOTONIC) - began) / count);
    return 0;
}
