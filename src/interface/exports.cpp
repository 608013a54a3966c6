// The flat table of exports: each is one conversion and one call.
#include "vndiscover.h"

#include <string>

#include "interface/module.h"
#include "net/pinger.h"
#include "snmp/directed_request.h"
#include "snmpv3/directed_v3.h"
#include "snmpv3/discover_v3.h"
#include "support/text_convert.h"

using namespace vndiscover;

namespace {

// Nothing thrown underneath ever reaches the host.
template <class Result, class Work>
Result AtBoundary(Result onFailure, Work&& work) noexcept {
    try {
        return work();
    } catch (...) {
        return onFailure;
    }
}

int32_t Sweep(const char* oid, HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
              const wchar_t* resultPath, const wchar_t* readCommunity,
              const wchar_t* writeCommunity, const char* jsonRequest) {
    const std::string read = WideToAnsi(readCommunity);
    const std::string write = WideToAnsi(writeCommunity);
    return g_snmpMgr->Discover(oid, hWnd, uMsg, timeout, useIPv6, resultPath, read.c_str(),
                               write.c_str(), jsonRequest);
}

}  // namespace

extern "C" {

int32_t DiscoverDevices(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const wchar_t* resultPath,
                        const wchar_t* readCommunity, const wchar_t* writeCommunity) {
    if (!g_snmpMgr) return 0;
    return AtBoundary(0, [&] {
        return Sweep(kDefaultDiscoveryOid, hWnd, uMsg, timeout, useIPv6, resultPath, readCommunity,
                     writeCommunity, nullptr);
    });
}

int32_t DiscoverDevicesByOID(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const wchar_t* oid,
                             const wchar_t* resultPath, const wchar_t* readCommunity,
                             const wchar_t* writeCommunity) {
    if (!g_snmpMgr) return 0;
    return AtBoundary(0, [&] {
        return Sweep(WideToAnsi(oid).c_str(), hWnd, uMsg, timeout, useIPv6, resultPath,
                     readCommunity, writeCommunity, nullptr);
    });
}

int32_t DiscoverDevicesByOIDjson(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                                 const wchar_t* jsonRequest, const wchar_t* resultPath,
                                 const wchar_t* readCommunity, const wchar_t* writeCommunity) {
    if (!g_snmpMgr) return 0;
    return AtBoundary(0, [&] {
        return Sweep("", hWnd, uMsg, timeout, useIPv6, resultPath, readCommunity, writeCommunity,
                     WideToAnsi(jsonRequest).c_str());
    });
}

int32_t DiscoverSnmp(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const char* readCommunity,
                     const char* writeCommunity) {
    if (!g_snmpMgr) return 0;
    return AtBoundary(0, [&] {
        return g_snmpMgr->Discover(kDefaultDiscoveryOid, hWnd, uMsg, timeout, useIPv6, nullptr,
                                   readCommunity, writeCommunity, nullptr);
    });
}

int32_t StopDiscoverSnmp(void) { return g_snmpMgr ? g_snmpMgr->StopDiscover() : 0; }

int32_t DiscoverSnmpV3(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const wchar_t* userName,
                       BYTE useAuth, const wchar_t* authPassword, BYTE usePriv,
                       const wchar_t* privPassword, const wchar_t* authProtocol,
                       const wchar_t* privProtocol) {
    if (!g_snmpMgr) return 0;
    return AtBoundary(0, [&] {
        const SecuritySettings security(userName, useAuth, authPassword, usePriv, privPassword,
                                        authProtocol, privProtocol);
        return DiscoverV3(*g_snmpMgr, kDefaultDiscoveryOid, hWnd, uMsg, timeout, useIPv6, nullptr,
                          security);
    });
}

int32_t DiscoverV3DevicesByOIDjson(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                                   const wchar_t* jsonRequest, const wchar_t* userName,
                                   BYTE useAuth, const wchar_t* authPassword, BYTE usePriv,
                                   const wchar_t* privPassword, const wchar_t* authProtocol,
                                   const wchar_t* privProtocol) {
    if (!g_snmpMgr) return 0;
    return AtBoundary(0, [&] {
        const SecuritySettings security(userName, useAuth, authPassword, usePriv, privPassword,
                                        authProtocol, privProtocol);
        return DiscoverV3(*g_snmpMgr, nullptr, hWnd, uMsg, timeout, useIPv6,
                          WideToUtf8(jsonRequest).c_str(), security);
    });
}

int32_t DiscoverSoap(HWND hWnd, UINT uMsg, UINT timeout, const char* probe, int32_t probeLength) {
    if (!g_soapMgr) return 0;
    return AtBoundary(
        0, [&] { return g_soapMgr->Discover(hWnd, uMsg, timeout, false, probe, probeLength); });
}

int32_t StopDiscoverSoap(void) { return g_soapMgr ? g_soapMgr->StopDiscover() : 0; }

int32_t DiscoverHttp(void) { return 0; }
int32_t DiscoverBonjour(void) { return 0; }
int32_t GetBonjourInformation(void) { return 0; }

int32_t GetSnmpInformation(const char* host, char* value, const char* readCommunity,
                           const char* writeCommunity) {
    return GetSnmpRequest(host, kDefaultDiscoveryOid, value, kInformationSize, kTagOctetString, 0,
                          0, readCommunity, writeCommunity);
}

int32_t GetSnmpRequest(const char* host, const char* oid, char* value, int32_t valueSize,
                       uint32_t expectedType, uint32_t /*timeout*/, uint32_t /*retries*/,
                       const char* readCommunity, const char* writeCommunity) {
    return AtBoundary(0, [&] {
        return RequestText(host, oid, value, valueSize, expectedType, readCommunity,
                           writeCommunity);
    });
}

int32_t GetSnmpRequestRaw(const char* host, const char* oid, uint8_t* value, int32_t valueSize,
                          uint32_t* valueType, uint32_t /*timeout*/, uint32_t /*retries*/,
                          const char* readCommunity, const char* writeCommunity) {
    return AtBoundary(0, [&] {
        return RequestRaw(host, oid, value, valueSize, valueType, readCommunity, writeCommunity);
    });
}

int32_t GetNextSnmpRequestRaw(const char* host, const char* oid, VnResponseRecord* record,
                              uint32_t /*timeout*/, uint32_t /*retries*/, const char* readCommunity,
                              const char* writeCommunity) {
    return AtBoundary(
        0, [&] { return RequestNext(host, oid, record, readCommunity, writeCommunity); });
}

int32_t SetSnmpRequestRaw(const char* host, const char* oid, uint8_t* value, int32_t valueLength,
                          uint32_t* valueType, uint32_t /*timeout*/, uint32_t /*retries*/,
                          const char* readCommunity, const char* writeCommunity) {
    return AtBoundary(0, [&] {
        return RequestSet(host, oid, value, valueLength, valueType, readCommunity, writeCommunity);
    });
}

int32_t GetSnmpRequestV3(const char* host, const char* oid, char* value, int32_t valueSize,
                         uint32_t* valueType, uint32_t /*timeout*/, uint32_t /*retries*/,
                         const wchar_t* userName, BYTE useAuth, const wchar_t* authPassword,
                         BYTE usePriv, const wchar_t* privPassword, const wchar_t* authProtocol,
                         const wchar_t* privProtocol) {
    return AtBoundary(0, [&] {
        const SecuritySettings security(userName, useAuth, authPassword, usePriv, privPassword,
                                        authProtocol, privProtocol);
        return RequestTextV3(host, oid, value, valueSize, valueType, security);
    });
}

int32_t GetNextSnmpRequestV3(const char* host, const char* oid, VnResponseRecord* record,
                             uint32_t /*timeout*/, uint32_t /*retries*/, const wchar_t* userName,
                             BYTE useAuth, const wchar_t* authPassword, BYTE usePriv,
                             const wchar_t* privPassword, const wchar_t* authProtocol,
                             const wchar_t* privProtocol) {
    return AtBoundary(0, [&] {
        const SecuritySettings security(userName, useAuth, authPassword, usePriv, privPassword,
                                        authProtocol, privProtocol);
        return RequestNextV3(host, oid, record, security);
    });
}

BYTE VxPing(const char* address, UINT timeout) {
    if (!address) return 0;
    return AtBoundary(BYTE{0}, [&] {
        Pinger pinger;
        return static_cast<BYTE>(pinger.Ping(address, timeout));
    });
}

BYTE IsIPv6Supported(void) {
    return AtBoundary(BYTE{0}, [] {
        SCKRAW socket;
        return static_cast<BYTE>(socket.HasIPv6Address());
    });
}

}  // extern "C"
