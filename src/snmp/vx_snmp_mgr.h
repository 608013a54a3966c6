// The SNMP manager: sweeps, and requests to single devices.
#pragma once

#include <cstdint>
#include <memory>

#include "interface/delivery/result_sink.h"
#include "net/sckraw.h"
#include "snmp/codec/oid_text.h"
#include "snmp/codec/response_record.h"
#include "snmp/codec/var_bind.h"
#include "snmp/device_table.h"
#include "snmp/sweep.h"
#include "support/sweeping_thread.h"
#include "vndiscover.h"

namespace vndiscover {

constexpr size_t kCommunitySize = 260;

// One exists as long as the module is loaded, for sweeps; each directed request makes its own. The
// device table takes up memory only as it is filled. For one thread at a time, except StopDiscover.
class VxSnmpMgr {
  public:
    VxSnmpMgr();  // throws std::bad_alloc
    ~VxSnmpMgr();

    // Reserves memory for the device table, so that no sweep can run out of it. Throws
    // std::bad_alloc.
    void Reserve() { devices.Reserve(); }

    // The community-based sweep. Text may be null. Always returns 0 and ends with the (0, 0)
    // message, even if nothing is sent because the request cannot be encoded or jsonRequest is too
    // long. During a sweep a further call does nothing.
    int32_t Discover(const char* oid, HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                     const wchar_t* resultPath, const char* readCommunity,
                     const char* writeCommunity, const char* jsonRequest);

    // The same for wide text, which is converted within the sweep: if memory runs out there, the
    // final message is still sent.
    int32_t Discover(const wchar_t* oid, const SweepSettings& settings,
                     const wchar_t* readCommunity, const wchar_t* writeCommunity,
                     const wchar_t* jsonRequest);

    // May be called on any thread. Always 0.
    int32_t StopDiscover();

    // Whether a sweep of another thread has not ended, even if the thread has.
    bool IsSweptByAnother() const noexcept { return sweeping_.IsAnother(); }

    // Collects answers on `sock` and delivers them. timeout and isLast are not used.
    void HandleEvents(UINT timeout, bool isLast, const char* bindAddress, const char* jsonRequest);

    // Requests to one device return the answer's value length, 0 for no answer or an empty value,
    // -1 if the send failed. waitMs is not used; attempts counts receive waits. bindAddress may be
    // null.

    // outValue receives the value and one zero byte; it may be null, but one that is too small is
    // the caller's fault. valueType may be null. writeCommunity is not used.
    int32_t GetInformation(const char* oid, const char* host, char* outValue, int32_t outSize,
                           uint32_t* valueType, uint32_t waitMs, int32_t attempts,
                           const char* readCommunity, const char* writeCommunity,
                           const char* bindAddress);

    // record belongs to the host and may be null.
    int32_t GetInformation1(const char* oid, const char* host, VnResponseRecord* record,
                            uint32_t waitMs, int32_t attempts, const char* readCommunity,
                            const char* writeCommunity, const char* bindAddress, uint8_t pduType);

    // value: in, the bytes to set; out, the answer's value. valueType: in, the tag in the low byte;
    // out, the answer's. If valueType is null, or the value fits no binding, nothing is sent and 0
    // is returned. readCommunity is not used.
    int32_t SetInformationByStr(const char* oid, const char* host, uint8_t* value,
                                int32_t valueLength, uint32_t* valueType, uint32_t waitMs,
                                int32_t attempts, const char* readCommunity,
                                const char* writeCommunity);

    // Creates the socket object if there is none.
    SCKRAW& Socket();

  private:
    friend class RunningSweep;  // through which a sweep of any version works on the fields below

    struct Query {
        OidValue oid;
        uint8_t pduType;
        const char* host;
        const char* community;
        const char* bindAddress;
        int32_t attempts;
    };
    // For an encoded OID.
    int32_t GetInformation(const Query& query, char* outValue, int32_t outSize,
                           uint32_t* valueType);
    int32_t SetInformation(const Query& query, uint8_t* value, int32_t valueLength,
                           uint32_t* valueType);
    int32_t Ask(const Query& query, const ValueView& value, ResponseRecord& answer);
    void Sweep(RunningSweep& sweep, const char* oid, const char* readCommunityText,
               const char* writeCommunityText, const char* jsonRequest);
    static const char* OrDefault(const char* community);

    std::unique_ptr<SCKRAW> socket;
    ResultSink sink;
    UINT timeout = 0;  // Kept: nothing reads it.
    OwnedSocket sock;
    DeviceTable devices;
    StopRequest stop{0};
    char readCommunity[kCommunitySize] = {};
    char writeCommunity[kCommunitySize] = {};
    SweepingThread sweeping_;
};

}  // namespace vndiscover
