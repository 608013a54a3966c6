// The SNMP manager: sweeps, and requests to single devices.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "interface/delivery/result_sink.h"
#include "net/adapter_sweep.h"
#include "net/datagram_collector.h"
#include "snmp/codec/ber_tags.h"
#include "snmp/codec/oid_text.h"
#include "snmp/codec/response_record.h"
#include "support/lazy_table.h"
#include "vndiscover.h"

namespace vndiscover {

constexpr int kSnmpPort = 161;
constexpr int kSocketTimeoutMs = 1000;
constexpr int kReceiveWaitMs = 2000;
constexpr uint32_t kCollectionMs = 60000;
constexpr uint32_t kTableCapacity = 8192;
constexpr size_t kCommunitySize = 260;
constexpr char kDefaultCommunity[] = "sesame";
constexpr char kDefaultDiscoveryOid[] = ".1.3.6.1.4.1.5963.43.5.1.1.1.1";
constexpr char kIPv4Broadcast[] = "255.255.255.255";
constexpr char kIPv6AllNodes[] = "FF02:0:0:0:0:0:0:1";

// AF_INET6 for an address with a ':', else AF_INET.
int AddressFamilyOf(const char* host);

// Logs and returns the fallback when `oid` is empty.
std::string OrDefaultDiscoveryOid(std::string oid);

// One lives as long as the process and sweeps; directed requests make one per call. The device
// table costs nothing until it is filled. Not for two threads at once, but for StopDiscover.
class VxSnmpMgr {
  public:
    VxSnmpMgr();  // throws std::bad_alloc
    ~VxSnmpMgr();
    VxSnmpMgr(const VxSnmpMgr&) = delete;
    VxSnmpMgr& operator=(const VxSnmpMgr&) = delete;

    // The community-based sweep. Texts may be null. Always 0; ends with the (0, 0) message, also
    // where the request cannot be encoded or jsonRequest is too long and nothing is sent.
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
    int32_t GetInformation(const OidValue& oid, const char* host, char* outValue, int32_t outSize,
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
    int32_t SetInformation(const OidValue& oid, const char* host, uint8_t* value,
                           int32_t valueLength, uint32_t* valueType, uint32_t waitMs,
                           int32_t attempts, const char* readCommunity, const char* writeCommunity);

    // What sweeps and exchanges of every SNMP version share.

    // Clears the stop request and remembers where results go.
    void BeginSweep(HWND hWnd, UINT uMsg, UINT timeout);

    // Makes the sweep's socket object.
    void RenewSocket();

    // Sends one datagram from every address and runs phase behind each send, with `sock` open.
    void Sweep(bool useIPv6, const void* request, int32_t length, const SweepPhase& phase);

    // Fills the table from entry 0 with what `fill` accepts of the datagrams on `sock`.
    using FillEntry = std::function<bool(const Datagram&, ResponseRecord& entry)>;
    void CollectDevices(const FillEntry& fill);

    // Hands the collected devices to the sink, in JSON mode as the request filled in by `fetch`.
    using FetchForDevice =
        std::function<bool(ResponseRecord& device, const char* oid, std::string& value)>;
    void DeliverDevices(const char* jsonRequest, const FetchForDevice& fetch);

    // Opens the file that devices are also written to; null or "": none. One that cannot be opened,
    // or a path of 260 characters and more, leaves the sink without a file.
    void OpenResultFile(const wchar_t* path);

    // Makes the socket object if there is none.
    void EnsureSocket();

    // A socket for one exchange with host, bound to bindAddress where that is given.
    OwnedSocket OpenFor(const char* host, const char* bindAddress);

    struct Exchange {
        const char* host;
        const void* request;
        int32_t length;        // bytes in request
        int32_t attempts;      // receive waits; at least one is made
        bool giveUpOnTimeout;  // the first silent wait ends it
    };
    // Sends once to port 161 and waits for the first datagram, which `take` reads. The result of
    // take, 0 for no answer, -1 when the send failed.
    int32_t RunExchange(OwnedSocket& opened, const Exchange& exchange,
                        const std::function<int32_t(const Datagram&)>& take);

    std::unique_ptr<SCKRAW> socket;
    ResultSink sink;
    UINT timeout = 0;
    OwnedSocket sock;
    LazyTable<ResponseRecord, kTableCapacity> devices;
    uint32_t deviceCount = 0;
    StopRequest stop{0};
    char readCommunity[kCommunitySize] = {};
    char writeCommunity[kCommunitySize] = {};

  private:
    int32_t GetEncoded(const OidValue& oid, const char* host, char* outValue, int32_t outSize,
                       uint32_t* valueType, int32_t attempts, const char* community,
                       const char* bindAddress);
    struct Request;
    using CopyResult = std::function<void(const ResponseRecord&)>;
    int32_t RunRequest(const Request& request, const CopyResult& copyResult);
    int32_t BuildDiscoveryRequest(const char* oid, const char* jsonRequest, uint8_t* out);
    bool DeliverDevice(ResponseRecord& device, const char* jsonRequest,
                       const FetchForDevice& fetch);
};

}  // namespace vndiscover
