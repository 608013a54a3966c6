// The SNMP manager: sweeps, and requests to single devices.
#pragma once

#include <cstdint>
#include <memory>

#include "interface/delivery/result_sink.h"
#include "snmp/codec/ber_tags.h"
#include "snmp/codec/oid_text.h"
#include "snmp/codec/snmp_message.h"
#include "snmp/codec/var_bind.h"
#include "snmp/device_table.h"
#include "snmp/sweep.h"
#include "vndiscover.h"

namespace vndiscover {

constexpr size_t kCommunitySize = 260;

// One lives as long as the process and sweeps; directed requests make one per call. The device
// table costs nothing until it is filled. Not for two threads at once, but for StopDiscover.
class VxSnmpMgr {
  public:
    VxSnmpMgr();  // throws std::bad_alloc
    ~VxSnmpMgr();
    VxSnmpMgr(const VxSnmpMgr&) = delete;
    VxSnmpMgr& operator=(const VxSnmpMgr&) = delete;

    // The community-based sweep. Texts may be null. Always 0; ends with the (0, 0) message, even if
    // the request cannot be encoded or jsonRequest is too long and nothing is sent. Called while it
    // sweeps, it does nothing.
    int32_t Discover(const char* oid, HWND hWnd, UINT uMsg, UINT timeout, BYTE useIPv6,
                     const wchar_t* resultPath, const char* readCommunity,
                     const char* writeCommunity, const char* jsonRequest);

    // Any thread. Always 0.
    int32_t StopDiscover();

    // Collects answers on `sock` and delivers them. timeout and isLast are not used: the limits are
    // fixed.
    void HandleEvents(UINT timeout, bool isLast, const char* bindAddress, const char* jsonRequest);

    // Requests to one device: the answer's value length, 0 for no answer or an empty value, -1 when
    // the send failed. waitMs is not used; attempts counts receive waits. bindAddress may be null.

    // outValue receives the value and one zero byte. Null drops it; too small a buffer is a
    // caller's fault. valueType may be null. writeCommunity is not used.
    int32_t GetInformation(const char* oid, const char* host, char* outValue, int32_t outSize,
                           uint32_t* valueType, uint32_t waitMs, int32_t attempts,
                           const char* readCommunity, const char* writeCommunity,
                           const char* bindAddress);

    // record is the host's memory; it may be null.
    int32_t GetInformation1(const char* oid, const char* host, VnResponseRecord* record,
                            uint32_t waitMs, int32_t attempts, const char* readCommunity,
                            const char* writeCommunity, const char* bindAddress, uint8_t pduType);

    // value: in the bytes to set, out the answer's value; valueType: in the tag in the low byte,
    // out the answer's. Without a type, or with a value that fits no binding: 0, nothing is sent.
    // readCommunity is not used.
    int32_t SetInformationByStr(const char* oid, const char* host, uint8_t* value,
                                int32_t valueLength, uint32_t* valueType, uint32_t waitMs,
                                int32_t attempts, const char* readCommunity,
                                const char* writeCommunity);

    // What sweeps of every SNMP version share.

    // Writes the line, clears the stop request and remembers where results go. False: a sweep is
    // running, of which this is a result message. EndSweep follows in any case, exceptions
    // included.
    bool BeginSweep(const char* line, const SweepSettings& settings) noexcept;
    void RenewSocket();  // the sweep's socket object; throws std::bad_alloc
    void EndSweep() noexcept;

    // The socket object, made if there is none.
    SCKRAW& Socket();

    ResultSink sink;
    OwnedSocket sock;
    DeviceTable devices;
    StopRequest stop{0};

  private:
    struct Query {
        OidValue oid;
        uint8_t pduType;
        const char* host;
        const char* community;
        const char* bindAddress;
        int32_t attempts;
    };
    // The forms for an encoded OID.
    int32_t GetInformation(const Query& query, char* outValue, int32_t outSize,
                           uint32_t* valueType);
    int32_t SetInformation(const Query& query, uint8_t* value, int32_t valueLength,
                           uint32_t* valueType);
    int32_t Ask(const Query& query, const ValueView& value, ResponseRecord& answer);
    void Sweep(const SweepSettings& settings, const char* oid, const char* jsonRequest);
    void FinishSweep();
    void CollectAnswers();
    bool Fetch(const ResponseRecord& device, const char* oid, const char* bindAddress,
               std::string& value);

    std::unique_ptr<SCKRAW> socket;
    UINT timeout = 0;
    bool sweeping = false;
    char readCommunity[kCommunitySize] = {};
    char writeCommunity[kCommunitySize] = {};
};

}  // namespace vndiscover
