/**
 * VnDiscover: finds printers and multifunction devices on every network the host is attached to,
 * and reads and writes single management values of one device. 64-bit Windows, C and C++.
 *
 * Conventions that all exports share:
 * - Text: `wchar_t` arguments are NUL-terminated UTF-16, `char` arguments NUL-terminated text in
 *   the system's ANSI code page. The module copies what it keeps; every argument may be freed on
 *   return.
 * - Addresses that sweeps report are numeric text: "192.168.1.20" or, without zone suffix,
 *   "fe80::1". Directed requests also take a name, which is resolved to IPv4; one that does not
 *   resolve costs all waits and gives 0.
 * - Communities: null or "" means "sesame". One of more than 255 bytes cannot be encoded: a sweep
 *   then sends nothing and still ends with its final message, a directed request returns 0.
 * - SNMPv1 messages carry one-byte lengths. A request whose community, encoded OID and value come
 *   to more than 103 bytes goes out malformed, and an answer with a value of 128 bytes and more, or
 *   a message length in the form 81 nn, is misread. An SNMPv3 answer with a value of more than 126
 *   bytes, or an OID of more than 124, counts as no answer.
 * - No export throws, and none calls back into the host except by the result message below.
 * - Threads: each export blocks the thread that calls it; the module makes no thread of its own.
 *   At most one SNMP sweep and one WS-Discovery sweep at a time in a process; directed requests one
 *   at a time in a process (they share the remembered bind address). StopDiscoverSnmp and
 *   StopDiscoverSoap may be called from any thread, and from within a result message. A sweep that
 *   is started within a result message of a running one of its kind does nothing and sends no final
 *   message; within the final message the next one may start.
 *   VxPing and IsIPv6Supported may be called from any thread at any time.
 *
 * The result message, sent with SendMessageA on the sweeping thread (a window of another thread
 * must therefore pump messages while the sweep runs):
 *     SendMessageA(hWnd, uMsg, (WPARAM)address, (LPARAM)value)
 * - address: `const char*`, the responder's address, at most 47 characters.
 * - value:   `const char*`. SNMP sweeps: the value as text up to its first zero byte, or in JSON
 *   mode the filled-in document as indented UTF-8 (at most 4,095 bytes; a longer one is cut there,
 *   between two characters, so it no longer parses: ask for fewer OIDs). WS-Discovery: the reply, a
 *   buffer of VN_SOAP_REPLY_SIZE bytes, zero-padded; a reply of exactly that size has NO
 *   terminating zero.
 * - Both pointers belong to the module and are valid only while the message is handled: copy them.
 * - Who handles it must not throw nor unload the module, and may make directed requests.
 * - Duplicates are not suppressed: a device that answers twice, or on two adapters, is reported
 *   twice.
 * - The end of a sweep: one message with both parameters 0. Sweeps over SNMPv3 send none: they have
 *   ended when the export returns.
 * - hWnd may be null: no message is sent.
 *
 * The debug log is switched on in the registry, key HKEY_LOCAL_MACHINE\Software\Varnell Osk\VnInst:
 * `Debug` (non-zero) sends lines to the debugger, `Dbg2Log` (non-zero) appends the narrow ones,
 * nearly all, to VxAdmSvc.log in the current directory. A change takes effect at load and whenever
 * a thread of the host starts or ends; `Dbg2Log` can then only be switched on. Values of at most 4
 * bytes count.
 */
#ifndef VNDISCOVER_H
#define VNDISCOVER_H

#include <stddef.h>
#include <stdint.h>

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN /* keeps the old winsock.h out, so winsock2.h may still follow */
#include <windows.h>
#undef WIN32_LEAN_AND_MEAN
#else
#include <windows.h>
#endif

#ifdef __cplusplus
#define VN_EXTERN extern "C"
#else
#define VN_EXTERN extern
#endif
#ifdef VNDISCOVER_BUILD
#define VN_API VN_EXTERN
#else
#define VN_API VN_EXTERN __declspec(dllimport)
#endif

/** The OID that DiscoverDevices, DiscoverSnmp, DiscoverSnmpV3 and GetSnmpInformation ask for. */
#define VN_DEFAULT_DISCOVERY_OID ".1.3.6.1.4.1.5963.43.5.1.1.1.1"
/** The community used where the host gives none. */
#define VN_DEFAULT_COMMUNITY "sesame"

/** Value types: the BER tag of an SNMP value. */
#define VN_TYPE_INTEGER 2u
#define VN_TYPE_OCTET_STRING 4u
#define VN_TYPE_NULL 5u
#define VN_TYPE_OBJECT_IDENTIFIER 6u
#define VN_TYPE_IP_ADDRESS 0x40u
#define VN_TYPE_COUNTER32 0x41u
#define VN_TYPE_GAUGE32 0x42u
#define VN_TYPE_TIME_TICKS 0x43u
#define VN_TYPE_OPAQUE 0x44u
#define VN_TYPE_COUNTER64 0x46u

/** Labels of the SNMPv3 protocols, compared without regard to letter case. */
#define VN_AUTH_MD5 L"MD5"
#define VN_AUTH_SHA1 L"SHA1"
#define VN_AUTH_SHA224 L"SHA-2(224)"
#define VN_AUTH_SHA256 L"SHA-2(256)"
#define VN_AUTH_SHA384 L"SHA-2(384)"
#define VN_AUTH_SHA512 L"SHA-2(512)"
#define VN_PRIV_DES L"DES"
#define VN_PRIV_AES L"AES"

/** Sizes in bytes. */
#define VN_ADDRESS_SIZE 48
#define VN_VALUE_SIZE 4096
#define VN_OID_SIZE 128
#define VN_INFORMATION_SIZE 260   /* smallest buffer for GetSnmpInformation */
#define VN_REQUEST_VALUE_SIZE 256 /* always suffices for one directed value and its zero byte */
#define VN_JSON_REQUEST_SIZE 2048 /* a JSON request must convert to fewer bytes than this */
#define VN_SOAP_REPLY_SIZE 2048
#define VN_SOAP_PROBE_MAX 2048
#define VN_COMMUNITY_MAX 255   /* a longer one cannot be encoded */
#define VN_REQUEST_OID_MAX 124 /* content octets of an encoded OID that is asked for */
#define VN_USER_NAME_MAX 127   /* a USM user's name as UTF-8 */
/** Characters of a result file's path and of an OID's text, without the terminator. */
#define VN_TEXT_MAX 259

/** What a get-next request found; the host's memory, 4,312 bytes. */
typedef struct VnResponseRecord {
    uint16_t valueType;            /* BER tag of the value, VN_TYPE_... */
    uint16_t valueLength;          /* bytes in value, 0 to 255 */
    char address[VN_ADDRESS_SIZE]; /* responder, NUL-terminated; may end in a zone, "%12" */
    uint8_t value[VN_VALUE_SIZE];  /* raw value; a zero byte follows it */
    uint8_t oid[VN_OID_SIZE];      /* BER content octets of the variable's OID */
    uint16_t oidLength;            /* bytes in oid, 0 to 128 */
    uint8_t reserved[34];          /* not the host's: neither read nor written */
} VnResponseRecord;

#ifdef __cplusplus
static_assert(sizeof(VnResponseRecord) == 4312, "part of the binary interface");
static_assert(offsetof(VnResponseRecord, value) == 52, "part of the binary interface");
static_assert(offsetof(VnResponseRecord, oid) == 4148, "part of the binary interface");
static_assert(offsetof(VnResponseRecord, oidLength) == 4276, "part of the binary interface");
#elif defined(__STDC_VERSION__) && __STDC_VERSION__ >= 201112L
_Static_assert(sizeof(VnResponseRecord) == 4312, "part of the binary interface");
_Static_assert(offsetof(VnResponseRecord, oidLength) == 4276, "part of the binary interface");
#endif

/* ---------------------------------------------------------------- discovery over SNMPv1 */

/**
 * Sweeps every adapter with one SNMPv1 GetRequest for the default discovery OID.
 * @param hWnd            Window that receives the result messages, or null.
 * @param uMsg            Number of the result message, for example WM_APP.
 * @param timeout         Accepted, not used: the limits below are fixed.
 * @param useIPv6         0: IPv4 broadcast from every IPv4 address of the host; else: multicast to
 *                        FF02::1 from every IPv6 link-local address of an adapter that is up.
 * @param resultPath      File that receives a line "address","value" per device (CR LF, quotes not
 *                        escaped), emptied first; null or "": no file. Fewer than 260 characters. A
 *                        file that cannot be opened is left out: messages only. It is complete when
 *                        the export returns, not yet at the final message.
 * @param readCommunity   Null or "" means "sesame".
 * @param writeCommunity  Accepted like readCommunity; a sweep does not use it.
 * @return Always 0; the outcome is in the messages, the last of which is (0, 0).
 * Blocks until the sweep is over: for each address until 2 s have passed without an answer, 60 s at
 * most (one receive wait of 2 s may follow), or until 8,192 answers are held.
 *
 *     DiscoverDevices(window, WM_APP, 5000, 0, L"devices.csv", L"public", NULL);
 */
VN_API int32_t DiscoverDevices(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                               const wchar_t* resultPath, const wchar_t* readCommunity,
                               const wchar_t* writeCommunity);

/**
 * DiscoverDevices for an OID of the host's choice.
 * @param oid  Dotted text, at most 259 characters, for example L".1.3.6.1.2.1.1.1.0". Null or "":
 *             the default discovery OID. Arcs from 16,384 on cannot be encoded and go out wrong;
 *             text of fewer than two arcs asks for the empty OID. One that does not fit (over 124
 *             encoded bytes): nothing is sent, only the final message comes.
 */
VN_API int32_t DiscoverDevicesByOID(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                                    const wchar_t* oid, const wchar_t* resultPath,
                                    const wchar_t* readCommunity, const wchar_t* writeCommunity);

/**
 * DiscoverDevices with further questions to each device that answers with a non-empty value. Each
 * OID under "GET" costs one directed request (10 s at most where a device is silent); its answer
 * replaces the member's string, a member without an answer keeps it. The filled-in document is the
 * value that is delivered.
 * @param jsonRequest  ASCII; other characters as JSON escapes. Null is no JSON. For example
 *     {"DiscoverOID": ".1.3.6.1.2.1.1.2.0",
 *      "GET": {".1.3.6.1.2.1.1.1.0": "", ".1.3.6.1.2.1.1.5.0": ""}}
 *                     Without "DiscoverOID" the default OID is asked for. Text that is no JSON: no
 *                     device is delivered. One that converts to 2,048 bytes or more, or with a
 *                     "DiscoverOID" of 260 characters or more: nothing is sent. In each case the
 *                     final message (0, 0) is still sent. A name of 260 characters or more under
 *                     "GET" is not asked for.
 */
VN_API int32_t DiscoverDevicesByOIDjson(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                                        const wchar_t* jsonRequest, const wchar_t* resultPath,
                                        const wchar_t* readCommunity,
                                        const wchar_t* writeCommunity);

/** DiscoverDevices with communities in the ANSI code page and without a result file. */
VN_API int32_t DiscoverSnmp(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                            const char* readCommunity, const char* writeCommunity);

/**
 * Asks the running SNMP sweep to end, SNMPv3 sweeps included. While answers are collected it takes
 * effect after the current wait (2 s at most) and nothing more is delivered; while devices are
 * delivered, it takes effect before the next one, in JSON mode after the current one's questions.
 * Every remaining address is still sent its request and costs one wait. The final message, where
 * the sweep has one, is sent all the same. Without a running sweep it has no effect: each sweep
 * begins by clearing it.
 * @return 0.
 */
VN_API int32_t StopDiscoverSnmp(void);

/* ---------------------------------------------------------------- discovery over SNMPv3 */

/**
 * Sweeps every adapter over SNMPv3: an engine discovery probe, then one request per responder for
 * the default discovery OID. A device is reported when its answer holds a non-empty INTEGER or
 * OCTET STRING.
 * @param hWnd, uMsg, timeout, useIPv6  As in DiscoverDevices.
 * @param userName      USM user, fewer than 128 bytes as UTF-8. A longer one: nothing is sent.
 * @param useAuth       0: noAuthNoPriv. Else: authentication.
 * @param authPassword  An empty or null one gives no key: requests go out unauthenticated.
 * @param usePriv       Privacy; used only where useAuth is set.
 * @param privPassword  As authPassword, for privacy.
 * @param authProtocol  VN_AUTH_...; any other text: no authentication key.
 * @param privProtocol  VN_PRIV_...; with any other text requests that ask for privacy stay
 *                      unanswered.
 * @return Always 0. NO final (0, 0) message: the sweep is over when the call returns.
 * An answer with a wrong authentication code is used all the same (the debug log tells).
 */
VN_API int32_t DiscoverSnmpV3(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                              const wchar_t* userName, BYTE useAuth, const wchar_t* authPassword,
                              BYTE usePriv, const wchar_t* privPassword,
                              const wchar_t* authProtocol, const wchar_t* privProtocol);

/**
 * DiscoverSnmpV3 with a JSON request as in DiscoverDevicesByOIDjson, but any Unicode text, with 2 s
 * at most for each OID, and without a final message in any case.
 */
VN_API int32_t DiscoverV3DevicesByOIDjson(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                                          const wchar_t* jsonRequest, const wchar_t* userName,
                                          BYTE useAuth, const wchar_t* authPassword, BYTE usePriv,
                                          const wchar_t* privPassword, const wchar_t* authProtocol,
                                          const wchar_t* privProtocol);

/* ---------------------------------------------------------------- WS-Discovery */

/**
 * Multicasts the host's WS-Discovery Probe to 239.255.255.250 port 3702 from every IPv4 address of
 * the host and from 127.0.0.1, and delivers every reply, unread, as it arrives.
 * @param timeout      Milliseconds of silence that end an adapter's phase, counted in whole
 *                     seconds: 2,500 waits 2 s; 999, and 2^31 and more, only take what is already
 *                     there. No wait begins after 30 s, so that a phase lasts 30 s and one wait at
 *                     most.
 * @param probe        The whole message, sent byte for byte. Null with a length: zero bytes are
 *                     sent.
 * @param probeLength  0 to 2,048 bytes. 0, negative or more than 2,048: nothing is sent, only the
 *                     final message comes.
 * @return Always 0. The last message is (0, 0); without a manager (memory exhausted at load) none.
 */
VN_API int32_t DiscoverSoap(HWND hWnd, UINT uMsg, UINT timeout, const char* probe,
                            int32_t probeLength);

/**
 * Asks the running WS-Discovery sweep to end: at once within a result message, else after the
 * current wait; every remaining address is still sent the Probe and costs one wait.
 * @return 0.
 */
VN_API int32_t StopDiscoverSoap(void);

/** Present so that hosts which look them up find them. They do nothing. @return 0. */
VN_API int32_t DiscoverHttp(void);
VN_API int32_t DiscoverBonjour(void);
VN_API int32_t GetBonjourInformation(void);

/* ---------------------------------------------------------------- directed requests, SNMPv1 */

/**
 * Asks a device for the text of the default discovery OID: GetSnmpRequest for an OCTET STRING.
 * @param value  Caller's buffer of at least VN_INFORMATION_SIZE (260) bytes.
 */
VN_API int32_t GetSnmpInformation(const char* host, char* value, const char* readCommunity,
                                  const char* writeCommunity);

/**
 * Asks one device for one value of the type the host expects, as text; one datagram out, up to five
 * waits of 2 s. For an IPv6 host each call first tries the remembered local address with a request
 * of one wait (12 s in all), and where that stays without an answer remembers the host's second one
 * instead.
 * @param host          Device address as text; with a ':' it is IPv6. Null: nothing is sent, 0.
 * @param oid           Dotted text.
 * @param value         Receives the text and its zero byte; may be null: nothing is written.
 *                      Written only when an answer of the expected type came. The bytes of an
 *                      INTEGER are put together without sign extension and written as a signed
 *                      32-bit decimal number: one byte 0xFF gives "255", four give "-1"; 12 bytes
 *                      suffice. An OCTET STRING is written up to its first zero byte.
 * @param valueSize     Size of value in bytes; VN_REQUEST_VALUE_SIZE suffices. A text that does not
 *                      fit is a caller's fault: value becomes "" and the C runtime's
 *                      invalid-parameter handler is called, which by default ends the process on
 *                      some runtimes.
 * @param expectedType  VN_TYPE_INTEGER or VN_TYPE_OCTET_STRING. Any other: nothing is written, the
 *                      length is returned where the types agree.
 * @param timeout, retries, writeCommunity  Accepted, not used.
 * @return Bytes of the value as received; 0: no answer, an empty value, another type, or the
 *         request was not sent.
 */
VN_API int32_t GetSnmpRequest(const char* host, const char* oid, char* value, int32_t valueSize,
                              uint32_t expectedType, uint32_t timeout, uint32_t retries,
                              const char* readCommunity, const char* writeCommunity);

/**
 * Asks one device for one management value and waits for the answer, about 10 s at most.
 * @param host           As in GetSnmpRequest.
 * @param oid            Dotted text, for example ".1.3.6.1.2.1.1.1.0". Null reads as "": 0.
 * @param value          Caller's buffer: receives the raw value and one zero byte behind it. Null:
 *                       the value is dropped; type and length are still given.
 * @param valueSize      Size of value in bytes: 256 always suffices, too small is a caller's fault
 *                       (value is zeroed, the length is returned all the same, and the runtime's
 *                       handler is called as in GetSnmpRequest).
 * @param valueType      Receives the BER tag, VN_TYPE_...; may be null.
 * @param readCommunity  Null or "" means "sesame".
 * @param timeout, retries, writeCommunity  Accepted, not used.
 * @return Bytes of the value; 0: no answer, an empty value, or an OID that cannot be encoded (fewer
 *         than two arcs, over 124 bytes); -1: the request could not be sent.
 */
VN_API int32_t GetSnmpRequestRaw(const char* host, const char* oid, uint8_t* value,
                                 int32_t valueSize, uint32_t* valueType, uint32_t timeout,
                                 uint32_t retries, const char* readCommunity,
                                 const char* writeCommunity);

/**
 * Asks one device for the variable that follows an OID; times and waits as in GetSnmpRequestRaw. An
 * error answer is delivered like any other: the end of the device's variables shows as a record
 * whose OID does not lie behind the one asked for.
 * @param record  Receives the variable; may be null. Left alone when no answer comes.
 * @return Bytes in record->value; 0: no answer or an empty value; -1: could not be sent.
 */
VN_API int32_t GetNextSnmpRequestRaw(const char* host, const char* oid, VnResponseRecord* record,
                                     uint32_t timeout, uint32_t retries, const char* readCommunity,
                                     const char* writeCommunity);

/**
 * Sets one value of one device. A refusal is an answer like any other and is not told apart: read
 * the value again to be sure.
 * @param value           Raw value bytes; overwritten by the answer's value.
 * @param valueLength     Bytes in value, 0 to 126; more (or an OID over 124 encoded bytes): nothing
 *                        is sent, 0. An answer with a longer value, which any device may send,
 *                        counts as a caller's fault: value is zeroed, and see GetSnmpRequestRaw.
 * @param valueType       In: the BER tag in the low byte; out: the answer's. Null: nothing is sent,
 *                        0.
 * @param writeCommunity  Null or "" means "sesame".
 * @param timeout, retries, readCommunity  Accepted, not used.
 * @return Bytes of the answer's value; 0: no answer or an empty one; -1: could not be sent.
 */
VN_API int32_t SetSnmpRequestRaw(const char* host, const char* oid, uint8_t* value,
                                 int32_t valueLength, uint32_t* valueType, uint32_t timeout,
                                 uint32_t retries, const char* readCommunity,
                                 const char* writeCommunity);

/* ---------------------------------------------------------------- directed requests, SNMPv3 */

/**
 * Asks one device for one INTEGER or OCTET STRING over SNMPv3, as text: an engine discovery, then
 * the request, each sent once and given up after 2 s of silence. IPv6: the local address is chosen
 * first by a trial discovery, as in GetSnmpRequest.
 * @param value         Receives the text and its zero byte. Left alone when there is no text. May
 *                      be null. A text that does not fit valueSize is cut; VN_REQUEST_VALUE_SIZE
 *                      suffices.
 * @param valueType     Receives the BER tag of whatever value came; left alone without one. May be
 *                      null.
 * @param timeout, retries  Accepted, not used.
 * @param userName ... privProtocol  As in DiscoverSnmpV3.
 * @return The length of the engine report, NOT of the value, where a text came; 0: none.
 */
VN_API int32_t GetSnmpRequestV3(const char* host, const char* oid, char* value, int32_t valueSize,
                                uint32_t* valueType, uint32_t timeout, uint32_t retries,
                                const wchar_t* userName, BYTE useAuth, const wchar_t* authPassword,
                                BYTE usePriv, const wchar_t* privPassword,
                                const wchar_t* authProtocol, const wchar_t* privProtocol);

/**
 * Asks one device for the variable that follows an OID over SNMPv3; times as in GetSnmpRequestV3.
 * @param record  Receives the host's address and, where an answer came, the variable (a value of at
 *                most 126 bytes). Null: 0 is returned.
 * @return The length of the engine report; 0: no device answered the engine discovery, or no
 *         record; -1: it could not be sent. Whether a variable came shows in record->oidLength:
 *         clear the record before the call.
 */
VN_API int32_t GetNextSnmpRequestV3(const char* host, const char* oid, VnResponseRecord* record,
                                    uint32_t timeout, uint32_t retries, const wchar_t* userName,
                                    BYTE useAuth, const wchar_t* authPassword, BYTE usePriv,
                                    const wchar_t* privPassword, const wchar_t* authProtocol,
                                    const wchar_t* privProtocol);

/* ---------------------------------------------------------------- reachability */

/**
 * Sends one ICMP echo request.
 * @param address  IPv4 dotted text; anything else (IPv6 text, a host name, 255.255.255.255) takes
 *                 the IPv6 way. Null: 0.
 * @param timeout  Milliseconds to wait for the reply; resolving a name comes on top.
 * @return 1: the target answered; 0: it did not, or the request could not be made.
 */
VN_API BYTE VxPing(const char* address, UINT timeout);

/** @return 1: the system has an IPv6 stack; 0: it has none. Sends nothing. */
VN_API BYTE IsIPv6Supported(void);

#endif /* VNDISCOVER_H */
