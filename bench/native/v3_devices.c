// v3_devices FIRST_IP COUNT AUTH PRIV: simulates COUNT devices with one address each from FIRST_IP
// on, all of them this machine's own (`ip route add local`). AUTH: md5, sha1, sha256; PRIV: des,
// aes; user "bench", passwords "authpass1" and "privpass1". On port 161
//
//   an SNMPv3 engine discovery is answered with a report, a broadcast one by every device at full
//   speed;
//
//   an SNMPv3 request is checked, decrypted and answered by its device, or ignored if it is wrong;
//
//   an SNMPv1 request is answered by its device, a broadcast one by every device.
//
// The value is always an OCTET STRING "Model 00000" with the number of the device. Prints "ready".
#define _GNU_SOURCE
#define OPENSSL_SUPPRESS_DEPRECATED
#include <arpa/inet.h>
#include <openssl/aes.h>
#include <openssl/des.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>

enum {
    kLargest = 2048,
    kEngineSize = 9,
    kBoots = 1,
    kTime = 1000,
    kSaltSize = 8,
    kMebibyte = 1 << 20
};

typedef struct {
    const unsigned char* at;
    size_t length;
} Bytes;

static uint32_t firstIp;
static int count;
static const EVP_MD* hash;
static size_t macSize, keySize;
static int usesDes;
static unsigned char authKu[64], privKu[64];

// ---------------------------------------------------------------- BER, read

// Takes the next element from `rest` and returns its content; tag 0: there is none.
static Bytes Take(Bytes* rest, unsigned char* tag) {
    Bytes content = {rest->at, 0};
    *tag = 0;
    if (rest->length < 2) return content;
    size_t header = 2, length = rest->at[1];
    if (length >= 0x80) {
        const size_t more = length & 0x7F;
        if (more > 2 || rest->length < 2 + more) return content;
        for (length = 0; header < 2 + more; ++header) length = length << 8 | rest->at[header];
    }
    if (length > rest->length - header) return content;
    *tag = rest->at[0];
    content.at = rest->at + header;
    content.length = length;
    rest->at = content.at + length;
    rest->length -= header + length;
    return content;
}

static Bytes Element(Bytes* rest) {
    unsigned char tag;
    return Take(rest, &tag);
}

static long Number(Bytes* rest) {
    const Bytes content = Element(rest);
    long value = 0;
    for (size_t i = 0; i < content.length; ++i) value = value << 8 | content.at[i];
    return value;
}

// ---------------------------------------------------------------- BER, written from the end

static unsigned char out[kLargest];
static size_t start;

static void Put(const void* bytes, size_t length) {
    start -= length;
    memcpy(out + start, bytes, length);
}

// Writes tag and length before what was written since the mark, an earlier value of `start`.
static void Wrap(unsigned char tag, size_t mark) {
    const size_t length = mark - start;
    const unsigned char big[] = {tag, 0x82, (unsigned char)(length >> 8), (unsigned char)length};
    const unsigned char small[] = {tag, (unsigned char)length};
    if (length >= 0x80) {
        Put(big, sizeof big);
    } else {
        Put(small, sizeof small);
    }
}

static void PutElement(unsigned char tag, const void* bytes, size_t length) {
    const size_t mark = start;
    Put(bytes, length);
    Wrap(tag, mark);
}

static void PutNumber(long value) {
    const unsigned char bytes[] = {0, (unsigned char)(value >> 24), (unsigned char)(value >> 16),
                                   (unsigned char)(value >> 8), (unsigned char)value};
    size_t first = 0;
    while (first < 4 && bytes[first] == 0 && bytes[first + 1] < 0x80) ++first;
    PutElement(2, bytes + first, sizeof bytes - first);
}

// ---------------------------------------------------------------- keys

static void PasswordKey(const char* password, unsigned char* ku) {
    unsigned char* stretched = malloc(kMebibyte);
    const size_t length = strlen(password);
    for (size_t i = 0; i < kMebibyte; ++i) stretched[i] = (unsigned char)password[i % length];
    EVP_Digest(stretched, kMebibyte, ku, NULL, hash, NULL);
    free(stretched);
}

static void Localise(const unsigned char* ku, const unsigned char* engine, unsigned char* key) {
    unsigned char text[2 * 64 + kEngineSize];
    memcpy(text, ku, keySize);
    memcpy(text + keySize, engine, kEngineSize);
    memcpy(text + keySize + kEngineSize, ku, keySize);
    EVP_Digest(text, 2 * keySize + kEngineSize, key, NULL, hash, NULL);
}

static void StoreNumber(uint32_t value, unsigned char* bytes) {
    for (int i = 0; i < 4; ++i) bytes[i] = (unsigned char)(value >> (24 - 8 * i));
}

static void Crypt(const unsigned char* key, const unsigned char* salt, const unsigned char* in,
                  size_t length, unsigned char* result, int encrypt) {
    unsigned char iv[16];
    if (usesDes) {
        DES_key_schedule schedule;
        DES_cblock desKey;
        memcpy(desKey, key, sizeof desKey);
        DES_set_key_unchecked(&desKey, &schedule);
        for (int i = 0; i < 8; ++i) iv[i] = key[8 + i] ^ salt[i];
        DES_ncbc_encrypt(in, result, (long)length, &schedule, (DES_cblock*)iv, encrypt);
    } else {
        AES_KEY schedule;
        int position = 0;
        AES_set_encrypt_key(key, 128, &schedule);
        StoreNumber(kBoots, iv);
        StoreNumber(kTime, iv + 4);
        memcpy(iv + 8, salt, 8);
        AES_cfb128_encrypt(in, result, length, &schedule, iv, &position,
                           encrypt ? AES_ENCRYPT : AES_DECRYPT);
    }
}

// ---------------------------------------------------------------- answers

static void PutValue(int device) {
    char text[16];
    PutElement(4, text, (size_t)snprintf(text, sizeof text, "Model %05d", device));
}

// requestId and oid are whole elements.
static void PutPdu(unsigned char tag, Bytes requestId, Bytes oid, int device) {
    static const unsigned char kNoError[] = {2, 1, 0, 2, 1, 0}, kOne[] = {0x41, 1, 1};
    const size_t mark = start;
    if (tag == 0xA8) {
        Put(kOne, sizeof kOne);
    } else {
        PutValue(device);
    }
    Put(oid.at, oid.length);
    Wrap(0x30, mark);
    Wrap(0x30, mark);
    Put(kNoError, sizeof kNoError);
    Put(requestId.at, requestId.length);
    Wrap(tag, mark);
}

static void EngineOf(int device, unsigned char* engine) {
    static const unsigned char kPrefix[] = {0x80, 0, 0x1F, 0x88, 1};
    memcpy(engine, kPrefix, sizeof kPrefix);
    StoreNumber(firstIp + (uint32_t)device, engine + sizeof kPrefix);
}

// Writes what encloses the scoped PDU, or the OCTET STRING with the encrypted one. Returns the
// position of the HMAC.
static size_t PutMessage(long msgId, unsigned char flags, const unsigned char* engine, Bytes user,
                         const unsigned char* salt) {
    static const unsigned char kZeros[48];
    size_t mark = start;
    PutElement(4, salt, salt ? kSaltSize : 0);
    PutElement(4, kZeros, flags & 1 ? macSize : 0);
    const size_t mac = start + 2;
    PutElement(4, user.at, user.length);
    PutNumber(kTime);
    PutNumber(kBoots);
    PutElement(4, engine, kEngineSize);
    Wrap(0x30, mark);
    Wrap(4, mark);
    mark = start;
    PutNumber(3);
    PutElement(4, &flags, 1);
    PutNumber(65507);
    PutNumber(msgId);
    Wrap(0x30, mark);
    PutNumber(3);
    Wrap(0x30, sizeof out);
    return mac;
}

static void Scope(const unsigned char* engine, size_t mark) {
    PutElement(4, NULL, 0);
    PutElement(4, engine, kEngineSize);
    Wrap(0x30, mark);
}

static void Report(long msgId, Bytes requestId, int device) {
    static const unsigned char kUnknownEngineIds[] = {6, 10, 0x2B, 6, 1, 6, 3, 15, 1, 1, 4, 0};
    unsigned char engine[kEngineSize];
    const Bytes nobody = {NULL, 0}, oid = {kUnknownEngineIds, sizeof kUnknownEngineIds};
    EngineOf(device, engine);
    start = sizeof out;
    PutPdu(0xA8, requestId, oid, device);
    Scope(engine, sizeof out);
    PutMessage(msgId, 0, engine, nobody, NULL);
}

static void Response(long msgId, Bytes user, Bytes requestId, Bytes oid, int device) {
    static uint32_t counter;
    unsigned char engine[kEngineSize], key[64], salt[kSaltSize], cipher[512] = {0};
    EngineOf(device, engine);
    start = sizeof out;
    PutPdu(0xA2, requestId, oid, device);
    Scope(engine, sizeof out);
    size_t length = sizeof out - start;
    if (usesDes) {
        const size_t padding = (8 - length % 8) % 8;
        start -= padding;
        memmove(out + start, out + start + padding, length);
        memset(out + start + length, 0, padding);
        length += padding;
    }
    StoreNumber(kBoots, salt);
    StoreNumber(++counter, salt + 4);
    Localise(privKu, engine, key);
    Crypt(key, salt, out + start, length, cipher, 1);
    start = sizeof out;
    PutElement(4, cipher, length);
    const size_t mac = PutMessage(msgId, 3, engine, user, salt);
    unsigned char code[64];
    Localise(authKu, engine, key);
    HMAC(hash, key, (int)keySize, out + start, sizeof out - start, code, NULL);
    memcpy(out + mac, code, macSize);
}

// An SNMPv1 answer; none without an OID.
static void CommunityAnswer(Bytes community, Bytes requestId, Bytes oid, int device) {
    start = sizeof out;
    PutPdu(0xA2, requestId, oid, device);
    PutElement(4, community.at, community.length);
    PutNumber(0);
    Wrap(0x30, sizeof out);
}

// ---------------------------------------------------------------- requests

typedef struct {
    long version, msgId;
    Bytes community, engine, user, requestId, oid;
} Request;

// The whole element at the start of `rest`.
static Bytes Whole(Bytes* rest) {
    Bytes whole = {rest->at, 0};
    Element(rest);
    whole.length = (size_t)(rest->at - whole.at);
    return whole;
}

static void ReadPdu(Bytes* rest, Request* request) {
    Bytes pdu = Element(rest);
    request->requestId = Whole(&pdu);
    Element(&pdu);
    Element(&pdu);
    Bytes list = Element(&pdu), binding = Element(&list);
    request->oid = Whole(&binding);
}

// Changes `datagram`. False: it must not be answered.
static int Read(unsigned char* datagram, size_t length, int device, Request* request) {
    Bytes rest = {datagram, length}, message = Element(&rest);
    unsigned char tag, engine[kEngineSize], key[64], code[64], plain[kLargest];
    request->version = Number(&message);
    if (request->version != 3) {
        request->community = Element(&message);
        ReadPdu(&message, request);
        return request->oid.length != 0;
    }
    Bytes header = Element(&message), usmString = Element(&message), usm = Element(&usmString);
    request->msgId = Number(&header);
    request->engine = Element(&usm);
    Element(&usm);
    Element(&usm);
    request->user = Element(&usm);
    const Bytes mac = Element(&usm), salt = Element(&usm);
    Bytes scoped = Take(&message, &tag);
    if (request->engine.length != 0) {
        EngineOf(device, engine);
        if (request->engine.length != kEngineSize ||
            memcmp(request->engine.at, engine, kEngineSize) != 0 || mac.length != macSize ||
            salt.length != kSaltSize || tag != 4) {
            return 0;
        }
        unsigned char received[64];
        memcpy(received, mac.at, macSize);
        memset(datagram + (mac.at - datagram), 0, macSize);
        Localise(authKu, engine, key);
        HMAC(hash, key, (int)keySize, datagram, length, code, NULL);
        if (memcmp(code, received, macSize) != 0) return 0;
        Localise(privKu, engine, key);
        Crypt(key, salt.at, scoped.at, scoped.length, plain, 0);
        memcpy(datagram + (scoped.at - datagram), plain, scoped.length);  // outlives this function
        scoped = Element(&scoped);
    }
    Element(&scoped);
    Element(&scoped);
    ReadPdu(&scoped, request);
    return request->requestId.length != 0 &&
           (request->engine.length == 0 || request->oid.length != 0);
}

static void Answer(int handle, const Request* request, int device, const struct sockaddr_in* to) {
    if (request->version != 3) {
        CommunityAnswer(request->community, request->requestId, request->oid, device);
    } else if (request->engine.length == 0) {
        Report(request->msgId, request->requestId, device);
    } else {
        Response(request->msgId, request->user, request->requestId, request->oid, device);
    }
    union {
        struct cmsghdr aligned;
        char room[CMSG_SPACE(sizeof(struct in_pktinfo))];
    } control = {0};
    struct iovec data = {out + start, sizeof out - start};
    struct msghdr message = {.msg_name = (void*)to,
                             .msg_namelen = sizeof *to,
                             .msg_iov = &data,
                             .msg_iovlen = 1,
                             .msg_control = &control,
                             .msg_controllen = sizeof control};
    struct cmsghdr* from = CMSG_FIRSTHDR(&message);
    from->cmsg_level = IPPROTO_IP;
    from->cmsg_type = IP_PKTINFO;
    from->cmsg_len = CMSG_LEN(sizeof(struct in_pktinfo));
    ((struct in_pktinfo*)CMSG_DATA(from))->ipi_spec_dst.s_addr = htonl(firstIp + (uint32_t)device);
    sendmsg(handle, &message, 0);
}

static int Open(void) {
    const int handle = socket(AF_INET, SOCK_DGRAM, 0), on = 1, room = 8 << 20;
    const struct sockaddr_in local = {.sin_family = AF_INET, .sin_port = htons(161)};
    setsockopt(handle, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    setsockopt(handle, SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
    setsockopt(handle, IPPROTO_IP, IP_PKTINFO, &on, sizeof on);
    if (bind(handle, (const struct sockaddr*)&local, sizeof local) != 0) {
        perror("port 161");
        exit(1);
    }
    return handle;
}

int main(int argc, char** argv) {
    struct in_addr first;
    if (argc != 5 || inet_pton(AF_INET, argv[1], &first) != 1) return 2;
    firstIp = ntohl(first.s_addr);
    count = atoi(argv[2]);
    hash = strcmp(argv[3], "md5") == 0    ? EVP_md5()
           : strcmp(argv[3], "sha1") == 0 ? EVP_sha1()
                                          : EVP_sha256();
    keySize = (size_t)EVP_MD_size(hash);
    macSize = keySize == 32 ? 24 : 12;
    usesDes = strcmp(argv[4], "des") == 0;
    PasswordKey("authpass1", authKu);
    PasswordKey("privpass1", privKu);
    const int handle = Open();
    puts("ready");
    fflush(stdout);
    for (;;) {
        unsigned char datagram[kLargest];
        struct sockaddr_in from;
        union {
            struct cmsghdr aligned;
            char room[CMSG_SPACE(sizeof(struct in_pktinfo))];
        } control;
        struct iovec data = {datagram, sizeof datagram};
        struct msghdr message = {.msg_name = &from,
                                 .msg_namelen = sizeof from,
                                 .msg_iov = &data,
                                 .msg_iovlen = 1,
                                 .msg_control = &control,
                                 .msg_controllen = sizeof control};
        const ssize_t length = recvmsg(handle, &message, 0);
        const struct cmsghdr* info = CMSG_FIRSTHDR(&message);
        if (length <= 0 || !info) continue;
        const uint32_t asked = ntohl(((const struct in_pktinfo*)CMSG_DATA(info))->ipi_addr.s_addr);
        const int toAll = asked == INADDR_BROADCAST, device = toAll ? 0 : (int)(asked - firstIp);
        Request request = {0};
        if (device < 0 || device >= count || !Read(datagram, (size_t)length, device, &request))
            continue;
        for (int i = device; i < (toAll ? count : device + 1); ++i)
            Answer(handle, &request, i, &from);
    }
}
