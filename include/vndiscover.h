/**
 * VnDiscover: finds the printers and multifunction devices on every network that this computer is
 * attached to, and reads and writes single management values of one device. For C and C++ programs
 * on 64-bit Windows. Below, "the host" is the program that calls these functions, "the module" is
 * VnDiscover.dll.
 *
 * What all functions share:
 * - Text: `wchar_t` arguments are NUL-terminated UTF-16, `char` arguments are NUL-terminated text
 *   in the system's ANSI code page. The module copies what it keeps, so the host may free every
 *   argument as soon as the function returns.
 * - Addresses that sweeps report are numeric text without a zone: "192.168.1.20" or "fe80::1".
 *   Directed requests also accept a name, which is resolved to an IPv4 address. A name that cannot
 *   be resolved costs as much time as a silent device, and the result is 0.
 * - Communities: null or "" means VN_DEFAULT_COMMUNITY. One of more than 255 bytes cannot be
 *   encoded: a sweep then sends nothing but still ends with its final message, and a directed
 *   request returns 0.
 * - SNMPv1 messages carry every length in a single byte. If the community, the encoded OID and the
 *   value of a request exceed 103 bytes together, the request goes out malformed. An answer is
 *   misread if its value has 128 bytes or more, or if its message length has the form 81 nn. An
 *   SNMPv3 answer whose value exceeds 126 bytes, or whose OID exceeds 124, counts as no answer.
 * - No function throws an exception, and none calls back into the host except by the result message
 *   described below.
 * - Threads: every function blocks its caller; the module creates no threads. A process may run one
 *   SNMP sweep, one WS-Discovery sweep and one directed request at a time (directed requests share
 *   the local address that they bind to). StopDiscoverSnmp and StopDiscoverSoap may be called on
 *   any thread, and while a result message is handled. A sweep that is started on any thread while
 *   a result message of a running sweep of the same kind is handled does nothing and sends no final
 *   message; while the final message is handled, the next one may be started. VxPing and
 *   IsIPv6Supported may be called on any thread at any time.
 *
 * The result message is sent on the thread that runs the sweep; a window of another thread receives
 * it only while that thread pumps messages:
 *     SendMessageA(hWnd, uMsg, (WPARAM)address, (LPARAM)value)
 * - address: `const char*`, the responder's address, at most 47 characters.
 * - value:   `const char*`. SNMP sweeps: the value as text, up to its first zero byte. In JSON
 *   mode: the filled-in document as indented UTF-8, at most 4,095 bytes; a longer one is cut there,
 *   between two characters, and no longer parses: ask for fewer OIDs. WS-Discovery: the reply in a
 *   buffer of VN_SOAP_REPLY_SIZE bytes, padded with zeros; a reply of exactly that size has NO
 *   terminating zero.
 * - Both pointers belong to the module and are valid only while the message is handled: copy the
 *   texts.
 * - The handler must not throw: an exception out of the final message ends the process. It must not
 *   end its thread: the sweep then ends without its final message, and its socket and result file
 *   stay open until the next sweep of the same kind. It must not unload the module. It may make
 *   directed requests.
 * - Duplicates are not removed: a device that answers twice, or on two adapters, is reported twice.
 * - A sweep ends with one message whose parameters are both 0. SNMPv3 sweeps send none: they have
 *   ended when the function returns. If the module found no memory when it was loaded, every sweep
 *   does nothing and returns 0, without a message.
 * - If hWnd is null, no message is sent.
 *
 * The debug log is switched on by two values of the registry key
 * HKEY_LOCAL_MACHINE\Software\Varnell Osk\VnInst: a non-zero `Debug` sends every line to the
 * debugger; a non-zero `Dbg2Log` appends the narrow lines, nearly all of them, to VxAdmSvc.log in
 * the current directory. Only values of at most 4 bytes count. Both are read when the module is
 * loaded and whenever a thread of the host starts or ends; `Dbg2Log` can be switched on while the
 * module is loaded, but not off.
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

/* The source annotations used below, for compilers whose Windows headers lack them. */
#ifndef _In_
#define _In_
#endif
#ifndef _In_opt_
#define _In_opt_
#endif
#ifndef _In_opt_z_
#define _In_opt_z_
#endif
#ifndef _In_reads_bytes_opt_
#define _In_reads_bytes_opt_(s)
#endif
#ifndef _Out_opt_
#define _Out_opt_
#endif
#ifndef _Out_writes_opt_z_
#define _Out_writes_opt_z_(s)
#endif
#ifndef _Out_writes_bytes_opt_
#define _Out_writes_bytes_opt_(s)
#endif
#ifndef _Inout_opt_
#define _Inout_opt_
#endif
#ifndef _Inout_updates_bytes_opt_
#define _Inout_updates_bytes_opt_(s)
#endif
#ifndef _Success_
#define _Success_(expr)
#endif

#ifdef VNDISCOVER_BUILD
#define VN_API
#else
#define VN_API __declspec(dllimport)
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

/** Names of the SNMPv3 protocols. Letter case does not matter. */
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
#define VN_REQUEST_VALUE_SIZE 256 /* holds any value of one directed request and its zero byte */
#define VN_JSON_REQUEST_SIZE 2048 /* a JSON request must convert to fewer bytes than this */
#define VN_SOAP_REPLY_SIZE 2048
#define VN_SOAP_PROBE_MAX 2048
#define VN_COMMUNITY_MAX 255   /* a longer one cannot be encoded */
#define VN_REQUEST_OID_MAX 124 /* content octets of the encoded OID in a request */
#define VN_USER_NAME_MAX 127   /* a USM user's name as UTF-8 */
/** Characters of a result file's path and of an OID's text, without the terminator. */
#define VN_TEXT_MAX 259

/** The variable that a get-next request found. The host allocates it: 4,312 bytes. */
typedef struct VnResponseRecord {
    uint16_t valueType;            /* BER tag of the value, VN_TYPE_... */
    uint16_t valueLength;          /* bytes in value, 0 to 255 */
    char address[VN_ADDRESS_SIZE]; /* responder, NUL-terminated; may end in a zone, "%12" */
    uint8_t value[VN_VALUE_SIZE];  /* raw value, followed by a zero byte */
    uint8_t oid[VN_OID_SIZE];      /* BER content octets of the variable's OID */
    uint16_t oidLength;            /* bytes in oid, 0 to 128 */
    uint8_t reserved[34];          /* neither read nor written; leave it alone */
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

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------- discovery over SNMPv1 */

/**
 * Searches every network with one SNMPv1 GetRequest for the default discovery OID, and reports each
 * answer.
 * @param hWnd            Window that receives the result messages. Null: no messages.
 * @param uMsg            Number of the result message, for example WM_APP.
 * @param timeout         Not used: the limits below are fixed.
 * @param useIPv6         0 sends an IPv4 broadcast from every IPv4 address of this computer; any
 *                        other value sends an IPv6 multicast to FF02::1 from every link-local
 *                        address of an adapter that is up.
 * @param resultPath      File that receives one line "address","value" per answer, ended by CR LF;
 *                        quotes within are not escaped. An existing file is overwritten. At most
 *                        VN_TEXT_MAX characters. Null or "": no file. If the file cannot be opened,
 *                        the sweep runs without it. The file is complete when the function returns,
 *                        but not yet at the final message.
 * @param readCommunity   Community of the request. Null or "" means VN_DEFAULT_COMMUNITY.
 * @param writeCommunity  Not used.
 * @return Always 0. The outcome is in the result messages, the last of which is (0, 0).
 *
 * Blocks until every address has been swept. Each is listened to until no answer has come for 2 s,
 * for 62 s at most, or until 8,192 answers have come; its answers are reported after that.
 *
 *     DiscoverDevices(window, WM_APP, 0, 0, L"devices.csv", L"public", NULL);
 */
VN_API int32_t DiscoverDevices(_In_opt_ HWND hWnd, _In_ UINT uMsg, _In_ UINT timeout,
                               _In_ BYTE useIPv6, _In_opt_z_ const wchar_t* resultPath,
                               _In_opt_z_ const wchar_t* readCommunity,
                               _In_opt_z_ const wchar_t* writeCommunity);

/**
 * DiscoverDevices for an OID of the host's choice.
 * @param oid  Dotted text of at most VN_TEXT_MAX characters, for example L".1.3.6.1.2.1.1.1.0".
 *             Null or "" means the default discovery OID. Text with fewer than two arcs requests
 *             the empty OID. Arcs of 16,384 and above lose their high bits: another OID is
 *             requested. If the text is too long, or encodes to more than 124 bytes, nothing is
 *             sent and only the final message comes.
 */
VN_API int32_t DiscoverDevicesByOID(_In_opt_ HWND hWnd, _In_ UINT uMsg, _In_ UINT timeout,
                                    _In_ BYTE useIPv6, _In_opt_z_ const wchar_t* oid,
                                    _In_opt_z_ const wchar_t* resultPath,
                                    _In_opt_z_ const wchar_t* readCommunity,
                                    _In_opt_z_ const wchar_t* writeCommunity);

/**
 * DiscoverDevices with further requests to each device that answers with a non-empty value. For
 * each OID under "GET" the device is sent one directed request, which takes 10 s if the device is
 * silent. The answer replaces the member's string; without an answer the string stays. The value
 * that is reported is the document filled in this way.
 * @param jsonRequest  ASCII; write other characters as JSON escapes. For example
 *     {"DiscoverOID": ".1.3.6.1.2.1.1.2.0",
 *      "GET": {".1.3.6.1.2.1.1.1.0": "", ".1.3.6.1.2.1.1.5.0": ""}}
 *                     Without "DiscoverOID" the sweep requests the default OID. If this is null or
 *                     not JSON, no device is reported. If it converts to VN_JSON_REQUEST_SIZE bytes
 *                     or more, or if "DiscoverOID" exceeds VN_TEXT_MAX characters, nothing is sent.
 *                     The final message (0, 0) comes in each of these cases. A name under "GET"
 *                     that exceeds VN_TEXT_MAX characters is not requested.
 */
VN_API int32_t DiscoverDevicesByOIDjson(_In_opt_ HWND hWnd, _In_ UINT uMsg, _In_ UINT timeout,
                                        _In_ BYTE useIPv6, _In_opt_z_ const wchar_t* jsonRequest,
                                        _In_opt_z_ const wchar_t* resultPath,
                                        _In_opt_z_ const wchar_t* readCommunity,
                                        _In_opt_z_ const wchar_t* writeCommunity);

/** DiscoverDevices with communities in the ANSI code page and without a result file. */
VN_API int32_t DiscoverSnmp(_In_opt_ HWND hWnd, _In_ UINT uMsg, _In_ UINT timeout,
                            _In_ BYTE useIPv6, _In_opt_z_ const char* readCommunity,
                            _In_opt_z_ const char* writeCommunity);

/**
 * Asks the running SNMP sweep, SNMPv3 included, to end early. During collection the sweep reacts
 * after the current wait, at most 2 s, and reports nothing more. During reporting it reacts before
 * the next device; in JSON mode the requests to the current device are finished first, which takes
 * up to 10 s for each OID that remains, over SNMPv3 2 s. The request is still sent from each
 * address that remains, followed by one wait. The final message comes as usual, except after an
 * SNMPv3 sweep. Each sweep begins by clearing the stop request, so a call while no sweep is running
 * has no effect.
 * @return Always 0.
 */
VN_API int32_t StopDiscoverSnmp(void);

/* ---------------------------------------------------------------- discovery over SNMPv3 */

/**
 * Searches every network over SNMPv3: sends one engine discovery message, then asks each responder
 * for the default discovery OID. A device is reported if it answers with a non-empty INTEGER or
 * OCTET STRING. An answer whose HMAC is wrong is used all the same; the debug log says so.
 * @param hWnd, uMsg, timeout, useIPv6  As in DiscoverDevices.
 * @param userName      USM user. Null means "". If it exceeds VN_USER_NAME_MAX bytes as UTF-8,
 *                      nothing is sent.
 * @param useAuth       0: noAuthNoPriv, whatever usePriv says. Otherwise requests are
 *                      authenticated.
 * @param authPassword  If null or "", there is no key and requests go out unauthenticated.
 * @param usePriv       0: authNoPriv. Otherwise requests are encrypted as well.
 * @param privPassword  If null or "", there is no key: requests go out with an empty text in place
 *                      of the encrypted one and get no answer.
 * @param authProtocol  VN_AUTH_...; with any other text there is no authentication key, and no
 *                      privacy key either.
 * @param privProtocol  VN_PRIV_...; with any other text there is no privacy key.
 * @return Always 0. There is NO final (0, 0) message: the sweep has ended when this returns.
 *
 *     DiscoverSnmpV3(window, WM_APP, 0, 0, L"operator", 1, L"password1", 1, L"password2",
 *                    VN_AUTH_SHA256, VN_PRIV_AES);
 */
VN_API int32_t DiscoverSnmpV3(_In_opt_ HWND hWnd, _In_ UINT uMsg, _In_ UINT timeout,
                              _In_ BYTE useIPv6, _In_opt_z_ const wchar_t* userName,
                              _In_ BYTE useAuth, _In_opt_z_ const wchar_t* authPassword,
                              _In_ BYTE usePriv, _In_opt_z_ const wchar_t* privPassword,
                              _In_opt_z_ const wchar_t* authProtocol,
                              _In_opt_z_ const wchar_t* privProtocol);

/**
 * DiscoverSnmpV3 with a JSON request as in DiscoverDevicesByOIDjson. The request may hold any
 * Unicode text, a silent device takes 2 s per OID, and no final message comes in any case.
 */
VN_API int32_t DiscoverV3DevicesByOIDjson(_In_opt_ HWND hWnd, _In_ UINT uMsg, _In_ UINT timeout,
                                          _In_ BYTE useIPv6, _In_opt_z_ const wchar_t* jsonRequest,
                                          _In_opt_z_ const wchar_t* userName, _In_ BYTE useAuth,
                                          _In_opt_z_ const wchar_t* authPassword, _In_ BYTE usePriv,
                                          _In_opt_z_ const wchar_t* privPassword,
                                          _In_opt_z_ const wchar_t* authProtocol,
                                          _In_opt_z_ const wchar_t* privProtocol);

/* ---------------------------------------------------------------- WS-Discovery */

/**
 * Multicasts the host's WS-Discovery Probe to 239.255.255.250, port 3702, from every IPv4 address
 * of this computer and from 127.0.0.1, and reports every reply, unparsed, as it arrives.
 * @param hWnd, uMsg   As in DiscoverDevices.
 * @param timeout      Milliseconds without a reply after which the sweep goes on to the next
 *                     address, counted in whole seconds: 2,500 waits 2 s. Values below 1,000, and
 *                     of 2^31 and above, only take the replies that have already arrived. No wait
 *                     begins after 30 s, so an address takes 30 s and one wait at most.
 * @param probe        The whole message, sent byte for byte. If null, zero bytes are sent in its
 *                     place.
 * @param probeLength  Bytes in probe, 1 to VN_SOAP_PROBE_MAX. With any other length nothing is sent
 *                     and only the final message comes.
 * @return Always 0. The last message is (0, 0).
 */
VN_API int32_t DiscoverSoap(_In_opt_ HWND hWnd, _In_ UINT uMsg, _In_ UINT timeout,
                            _In_reads_bytes_opt_(probeLength) const char* probe,
                            _In_ int32_t probeLength);

/**
 * Asks the running WS-Discovery sweep to end early: at once if called while a result message is
 * handled, otherwise after the current wait. The Probe is still sent from each address that
 * remains, followed by one wait.
 * @return Always 0.
 */
VN_API int32_t StopDiscoverSoap(void);

/** These do nothing; they exist for hosts that look them up. @return Always 0. */
VN_API int32_t DiscoverHttp(void);
VN_API int32_t DiscoverBonjour(void);
VN_API int32_t GetBonjourInformation(void);

/* ---------------------------------------------------------------- directed requests, SNMPv1 */

/**
 * Asks one device for the text of the default discovery OID: GetSnmpRequest for an OCTET STRING.
 * @param value  Buffer of at least VN_INFORMATION_SIZE bytes for the text. Null: not written.
 */
_Success_(return > 0)
VN_API int32_t GetSnmpInformation(_In_opt_z_ const char* host,
                                  _Out_writes_opt_z_(VN_INFORMATION_SIZE) char* value,
                                  _In_opt_z_ const char* readCommunity,
                                  _In_opt_z_ const char* writeCommunity);

/**
 * Asks one device for one value of the type that the host expects, and returns it as text. One
 * datagram is sent; the answer is awaited for 10 s at most. With an IPv6 host, each call first
 * sends a trial request from the local address that worked last and waits 2 s for it (12 s in all);
 * if it goes unanswered, this computer's second link-local address is used from then on.
 * @param host            Address or name of the device; text with a ':' is taken as IPv6. If null,
 *                        nothing is sent and 0 is returned.
 * @param oid             Dotted text. Null reads as "".
 * @param value           Buffer for the text and its zero byte; written only if an answer of the
 *                        expected type came. May be null. An INTEGER is written as a signed 32-bit
 *                        decimal number, at most 12 bytes. Its bytes are not sign-extended: one
 *                        byte 0xFF gives "255", four give "-1". An OCTET STRING is written up to
 *                        its first zero byte.
 * @param valueSize       Bytes in value; VN_REQUEST_VALUE_SIZE always suffices. If the text does
 *                        not fit, value becomes "" and the C runtime's invalid-parameter handler is
 *                        called, which in some runtimes ends the process.
 * @param expectedType    VN_TYPE_INTEGER or VN_TYPE_OCTET_STRING. For any other type nothing is
 *                        written, but the length is returned if the answer has that type.
 * @param timeout, retries  Not used.
 * @param readCommunity   Null or "" means VN_DEFAULT_COMMUNITY.
 * @param writeCommunity  Not used.
 * @return Bytes of the value as received. 0: no answer, an empty value, another type, or the
 *         request could not be sent.
 *
 *     char name[VN_REQUEST_VALUE_SIZE];
 *     if (GetSnmpRequest("192.168.1.20", ".1.3.6.1.2.1.1.5.0", name, sizeof name,
 *                        VN_TYPE_OCTET_STRING, 0, 0, "public", NULL) > 0) puts(name);
 */
_Success_(return > 0 && (expectedType == VN_TYPE_INTEGER || expectedType == VN_TYPE_OCTET_STRING))
VN_API int32_t GetSnmpRequest(_In_opt_z_ const char* host, _In_opt_z_ const char* oid,
                              _Out_writes_opt_z_(valueSize) char* value, _In_ int32_t valueSize,
                              _In_ uint32_t expectedType, _In_ uint32_t timeout,
                              _In_ uint32_t retries, _In_opt_z_ const char* readCommunity,
                              _In_opt_z_ const char* writeCommunity);

/**
 * Asks one device for one value of any type, and returns its bytes. One datagram is sent; the
 * answer is awaited for 10 s at most.
 * @param host            As in GetSnmpRequest.
 * @param oid             Dotted text, for example ".1.3.6.1.2.1.1.1.0". Null reads as "".
 * @param value           Buffer for the raw value and one zero byte after it; not written if the
 *                        value is empty. If null, only the type and the length are returned.
 * @param valueSize       Bytes in value; VN_REQUEST_VALUE_SIZE always suffices. If the value does
 *                        not fit, value is zeroed, the length is still returned, and the C
 *                        runtime's invalid-parameter handler is called as in GetSnmpRequest.
 * @param valueType       Receives the BER tag, VN_TYPE_..., of any answer. May be null.
 * @param timeout, retries  Not used.
 * @param readCommunity   Null or "" means VN_DEFAULT_COMMUNITY.
 * @param writeCommunity  Not used.
 * @return Bytes of the value. 0: no answer, an empty value, or an OID that cannot be encoded (fewer
 *         than two arcs, or more than 124 bytes). -1: the request could not be sent.
 */
_Success_(return > 0)
VN_API int32_t GetSnmpRequestRaw(_In_opt_z_ const char* host, _In_opt_z_ const char* oid,
                                 _Out_writes_bytes_opt_(valueSize) uint8_t* value,
                                 _In_ int32_t valueSize, _Out_opt_ uint32_t* valueType,
                                 _In_ uint32_t timeout, _In_ uint32_t retries,
                                 _In_opt_z_ const char* readCommunity,
                                 _In_opt_z_ const char* writeCommunity);

/**
 * Asks one device for the variable that follows an OID. Waits as GetSnmpRequestRaw does. An error
 * answer is returned like any other: past the device's last variable, the record holds an OID that
 * does not follow the one asked for.
 * @param host, oid, timeout, retries, readCommunity, writeCommunity  As in GetSnmpRequestRaw.
 * @param record  Receives the variable; not written if no answer comes. May be null.
 * @return Bytes in record->value. 0: no answer or an empty value. -1: the request could not be
 *         sent.
 */
_Success_(return > 0)
VN_API int32_t GetNextSnmpRequestRaw(_In_opt_z_ const char* host, _In_opt_z_ const char* oid,
                                     _Out_opt_ VnResponseRecord* record, _In_ uint32_t timeout,
                                     _In_ uint32_t retries, _In_opt_z_ const char* readCommunity,
                                     _In_opt_z_ const char* writeCommunity);

/**
 * Sets one value of one device. Waits as GetSnmpRequestRaw does. A device's refusal is an answer
 * like any other and cannot be distinguished from success: read the value again to be sure.
 * @param host, oid, timeout, retries  As in GetSnmpRequestRaw.
 * @param value           The raw value; overwritten with the value in the answer. May be null if
 *                        valueLength is 0.
 * @param valueLength     Bytes in value, 0 to 126. With any other length, or an OID that encodes to
 *                        more than 124 bytes, nothing is sent and 0 is returned. Any device may
 *                        answer with a longer value: then value is zeroed, the longer length is
 *                        returned, and the C runtime's invalid-parameter handler is called as in
 *                        GetSnmpRequest.
 * @param valueType       In: the value's BER tag, in the low byte. Out: the answer's. If null,
 *                        nothing is sent and 0 is returned.
 * @param readCommunity   Not used.
 * @param writeCommunity  Null or "" means VN_DEFAULT_COMMUNITY.
 * @return Bytes of the answer's value. 0: no answer or an empty value. -1: the request could not be
 *         sent.
 */
VN_API int32_t SetSnmpRequestRaw(_In_opt_z_ const char* host, _In_opt_z_ const char* oid,
                                 _Inout_updates_bytes_opt_(valueLength) uint8_t* value,
                                 _In_ int32_t valueLength, _Inout_opt_ uint32_t* valueType,
                                 _In_ uint32_t timeout, _In_ uint32_t retries,
                                 _In_opt_z_ const char* readCommunity,
                                 _In_opt_z_ const char* writeCommunity);

/* ---------------------------------------------------------------- directed requests, SNMPv3 */

/**
 * Asks one device for one INTEGER or OCTET STRING over SNMPv3, and returns it as text: an engine
 * discovery, then the request, each sent once and awaited for 2 s. With an IPv6 host, a trial
 * discovery comes first to choose the local address, as in GetSnmpRequest.
 * @param host, oid     As in GetSnmpRequest.
 * @param value         Buffer for the text and its zero byte; not written if there is no text. May
 *                      be null.
 * @param valueSize     Bytes in value; VN_REQUEST_VALUE_SIZE always suffices. A longer text is cut.
 * @param valueType     Receives the BER tag of the value, even if that is of another type; not
 *                      written if no value came. May be null.
 * @param timeout, retries  Not used.
 * @param userName ... privProtocol  As in DiscoverSnmpV3.
 * @return If a text came, the length in bytes of the device's answer to the engine discovery, NOT
 *         of the value; otherwise 0.
 */
_Success_(return > 0)
VN_API int32_t GetSnmpRequestV3(_In_opt_z_ const char* host, _In_opt_z_ const char* oid,
                                _Out_writes_opt_z_(valueSize) char* value, _In_ int32_t valueSize,
                                _Out_opt_ uint32_t* valueType, _In_ uint32_t timeout,
                                _In_ uint32_t retries, _In_opt_z_ const wchar_t* userName,
                                _In_ BYTE useAuth, _In_opt_z_ const wchar_t* authPassword,
                                _In_ BYTE usePriv, _In_opt_z_ const wchar_t* privPassword,
                                _In_opt_z_ const wchar_t* authProtocol,
                                _In_opt_z_ const wchar_t* privProtocol);

/**
 * Asks one device for the variable that follows an OID over SNMPv3. Waits as GetSnmpRequestV3 does.
 * @param record  Receives the host argument as its address and, if an answer came, the variable,
 *                with a value of at most 126 bytes. Clear it before the call: the return value does
 *                not tell whether a variable came, a non-zero record->oidLength does. If null, 0 is
 *                returned.
 * @return The length in bytes of the device's answer to the engine discovery. 0: no such answer, or
 *         no record. -1: the engine discovery could not be sent.
 */
VN_API int32_t GetNextSnmpRequestV3(_In_opt_z_ const char* host, _In_opt_z_ const char* oid,
                                    _Inout_opt_ VnResponseRecord* record, _In_ uint32_t timeout,
                                    _In_ uint32_t retries, _In_opt_z_ const wchar_t* userName,
                                    _In_ BYTE useAuth, _In_opt_z_ const wchar_t* authPassword,
                                    _In_ BYTE usePriv, _In_opt_z_ const wchar_t* privPassword,
                                    _In_opt_z_ const wchar_t* authProtocol,
                                    _In_opt_z_ const wchar_t* privProtocol);

/* ---------------------------------------------------------------- reachability */

/**
 * Sends one ICMP echo request.
 * @param address  IPv4 address in dotted form. Anything else (an IPv6 address, a host name,
 *                 255.255.255.255) is resolved and pinged over IPv6. If null, 0 is returned.
 * @param timeout  Milliseconds to wait for the reply. Resolving a name takes its own time.
 * @return 1: the device answered; over IPv6 a router's error reply counts as an answer too. 0: no
 *         answer, or the request could not be sent.
 */
VN_API BYTE VxPing(_In_opt_z_ const char* address, _In_ UINT timeout);

/** @return 1 if the system has an IPv6 stack, otherwise 0. Sends nothing. */
VN_API BYTE IsIPv6Supported(void);

#ifdef __cplusplus
}
#endif

#endif /* VNDISCOVER_H */
