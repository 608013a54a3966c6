// The exports. Each is one conversion and one call.
#include "vndiscover.h"

#include <memory>

#include "interface/module.h"
#include "net/pinger.h"
#include "snmp/directed_request.h"
#include "snmpv3/snmp_v3.h"
#include "support/text_convert.h"

using namespace vndiscover;

namespace {

// No exception reaches the host.
template <class Result, class Work>
Result AtBoundary(Result onFailure, Work&& work) noexcept {
    try {
        return work();
    } catch (...) {
        return onFailure;
    }
}

// For exports that need one of the process's managers; without it they do nothing.
template <class Manager, class Work>
int32_t With(Manager* manager, Work&& work) noexcept {
    return AtBoundary(0, [&] { return manager ? work(*manager) : 0; });
}

// A directed request makes its own manager. Without a host nothing is sent.
template <class Work>
int32_t OnOwnManager(const char* host, Work&& work) noexcept {
    return AtBoundary(0, [&] {
        const auto manager = std::make_unique<VxSnmpMgr>();
        return host ? work(*manager) : 0;
    });
}

}  // namespace

extern "C" {

int32_t DiscoverDevices(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const wchar_t* resultPath,
                        const wchar_t* readCommunity, const wchar_t* writeCommunity) {
    return DiscoverDevicesByOID(hWnd, uMsg, timeout, useIPv6, L"" VN_DEFAULT_DISCOVERY_OID,
                                resultPath, readCommunity, writeCommunity);
}

int32_t DiscoverDevicesByOID(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const wchar_t* oid,
                             const wchar_t* resultPath, const wchar_t* readCommunity,
                             const wchar_t* writeCommunity) {
    return With(g_snmpMgr, [&](VxSnmpMgr& manager) {
        return manager.Discover(oid, {hWnd, uMsg, timeout, useIPv6, resultPath}, readCommunity,
                                writeCommunity, nullptr);
    });
}

int32_t DiscoverDevicesByOIDjson(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                                 const wchar_t* jsonRequest, const wchar_t* resultPath,
                                 const wchar_t* readCommunity, const wchar_t* writeCommunity) {
    return With(g_snmpMgr, [&](VxSnmpMgr& manager) {
        return manager.Discover(nullptr, {hWnd, uMsg, timeout, useIPv6, resultPath}, readCommunity,
                                writeCommunity, jsonRequest ? jsonRequest : L"");
    });
}

int32_t DiscoverSnmp(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const char* readCommunity,
                     const char* writeCommunity) {
    return With(g_snmpMgr, [&](VxSnmpMgr& manager) {
        return manager.Discover(VN_DEFAULT_DISCOVERY_OID, hWnd, uMsg, timeout, useIPv6, nullptr,
                                readCommunity, writeCommunity, nullptr);
    });
}

int32_t StopDiscoverSnmp(void) {
    return With(g_snmpMgr, [](VxSnmpMgr& manager) { return manager.StopDiscover(); });
}

int32_t DiscoverSnmpV3(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6, const wchar_t* userName,
                       BYTE useAuth, const wchar_t* authPassword, BYTE usePriv,
                       const wchar_t* privPassword, const wchar_t* authProtocol,
                       const wchar_t* privProtocol) {
    return With(g_snmpMgr, [&](VxSnmpMgr& manager) {
        return DiscoverV3(
            manager, {hWnd, uMsg, timeout, useIPv6, nullptr}, VN_DEFAULT_DISCOVERY_OID, nullptr,
            {{userName, useAuth, authPassword, usePriv, privPassword, authProtocol, privProtocol}});
    });
}

int32_t DiscoverV3DevicesByOIDjson(HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                                   const wchar_t* jsonRequest, const wchar_t* userName,
                                   BYTE useAuth, const wchar_t* authPassword, BYTE usePriv,
                                   const wchar_t* privPassword, const wchar_t* authProtocol,
                                   const wchar_t* privProtocol) {
    return With(g_snmpMgr, [&](VxSnmpMgr& manager) {
        return DiscoverV3(
            manager, {hWnd, uMsg, timeout, useIPv6, nullptr}, nullptr,
            WideToUtf8(jsonRequest).c_str(),
            {{userName, useAuth, authPassword, usePriv, privPassword, authProtocol, privProtocol}});
    });
}

int32_t DiscoverSoap(HWND hWnd, UINT uMsg, UINT timeout, const char* probe, int32_t probeLength) {
    return With(g_soapMgr, [&](VxSoapMgr& manager) {
        return manager.Discover(hWnd, uMsg, timeout, false, probe, probeLength);
    });
}

int32_t StopDiscoverSoap(void) {
    return With(g_soapMgr, [](VxSoapMgr& manager) { return manager.StopDiscover(); });
}

int32_t DiscoverHttp(void) { return 0; }
int32_t DiscoverBonjour(void) { return 0; }
int32_t GetBonjourInformation(void) { return 0; }

int32_t GetSnmpInformation(const char* host, char* value, const char* readCommunity,
                           const char* writeCommunity) {
    return GetSnmpRequest(host, VN_DEFAULT_DISCOVERY_OID, value, VN_INFORMATION_SIZE,
                          VN_TYPE_OCTET_STRING, 0, 0, readCommunity, writeCommunity);
}

int32_t GetSnmpRequest(const char* host, const char* oid, char* value, int32_t valueSize,
                       uint32_t expectedType, uint32_t /*timeout*/, uint32_t /*retries*/,
                       const char* readCommunity, const char* writeCommunity) {
    return AtBoundary(0, [&] {
        return RequestText(host, oid, {value, valueSize}, expectedType,
                           {readCommunity, writeCommunity});
    });
}

int32_t GetSnmpRequestRaw(const char* host, const char* oid, uint8_t* value, int32_t valueSize,
                          uint32_t* valueType, uint32_t /*timeout*/, uint32_t /*retries*/,
                          const char* readCommunity, const char* writeCommunity) {
    return OnOwnManager(host, [&](VxSnmpMgr& manager) {
        return manager.GetInformation(oid, host, reinterpret_cast<char*>(value), valueSize,
                                      valueType, kRequestWaitMs, kRequestAttempts, readCommunity,
                                      writeCommunity, nullptr);
    });
}

int32_t GetNextSnmpRequestRaw(const char* host, const char* oid, VnResponseRecord* record,
                              uint32_t /*timeout*/, uint32_t /*retries*/, const char* readCommunity,
                              const char* writeCommunity) {
    return OnOwnManager(host, [&](VxSnmpMgr& manager) {
        return manager.GetInformation1(oid, host, record, kRequestWaitMs, kRequestAttempts,
                                       readCommunity, writeCommunity, nullptr, kPduGetNextRequest);
    });
}

int32_t SetSnmpRequestRaw(const char* host, const char* oid, uint8_t* value, int32_t valueLength,
                          uint32_t* valueType, uint32_t /*timeout*/, uint32_t /*retries*/,
                          const char* readCommunity, const char* writeCommunity) {
    return OnOwnManager(host, [&](VxSnmpMgr& manager) {
        return manager.SetInformationByStr(oid, host, value, valueLength, valueType, kRequestWaitMs,
                                           kRequestAttempts, readCommunity, writeCommunity);
    });
}

int32_t GetSnmpRequestV3(const char* host, const char* oid, char* value, int32_t valueSize,
                         uint32_t* valueType, uint32_t /*timeout*/, uint32_t /*retries*/,
                         const wchar_t* userName, BYTE useAuth, const wchar_t* authPassword,
                         BYTE usePriv, const wchar_t* privPassword, const wchar_t* authProtocol,
                         const wchar_t* privProtocol) {
    return AtBoundary(0, [&] {
        return RequestTextV3(
            host, oid, {value, valueSize}, valueType,
            {{userName, useAuth, authPassword, usePriv, privPassword, authProtocol, privProtocol}});
    });
}

int32_t GetNextSnmpRequestV3(const char* host, const char* oid, VnResponseRecord* record,
                             uint32_t /*timeout*/, uint32_t /*retries*/, const wchar_t* userName,
                             BYTE useAuth, const wchar_t* authPassword, BYTE usePriv,
                             const wchar_t* privPassword, const wchar_t* authProtocol,
                             const wchar_t* privProtocol) {
    return AtBoundary(0, [&] {
        return RequestNextV3(
            host, oid, record,
            {{userName, useAuth, authPassword, usePriv, privPassword, authProtocol, privProtocol}});
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
