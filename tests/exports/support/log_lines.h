// What sweeps and requests tell the log, in pieces that several tests share.
#pragma once

#include "exports/support/network_test.h"

#include <iphlpapi.h>

namespace vndiscover {

// What a request for an OID says while it is built: `content` are the OID's content octets as "%02x
// " each, `message` the whole datagram; loggedLength is one more than the content has.
inline Lines RequestLines(int loggedLength, const std::string& content, const Bytes& message) {
    return {"OID length [" + std::to_string(loggedLength) + "]\n", "OID = [" + content + "]\n",
            "SNMP_MSG = [" + ToHex(message, " ") + "]\n"};
}

// The phase behind a sweep's send.
inline Lines PhaseLines(const Lines& collecting, int devices, const Lines& delivering,
                        int delivered) {
    return Lines{"HandleEvents start\n"} + collecting +
           Lines{" ==== We have [" + std::to_string(devices) +
                 "] devices on the network. ==== \n"} +
           delivering +
           Lines{"We have [" + std::to_string(delivered) + "] devices responsed the information.\n",
                 "HandleEvents end\n"};
}

// One that ends with silence and delivers who has answered.
inline Lines AnsweredLines(const Lines& senders, const Lines& delivering = {}) {
    Lines collecting;
    for (const std::string& sender : senders) {
        collecting.push_back("tszRecvAddr = [" + sender + "]\n");
    }
    const int devices = static_cast<int>(senders.size());
    return PhaseLines(collecting + Lines{"RecvFrom - Timeout\n"}, devices, delivering, devices);
}

// An IPv4 adapter of the test network, with the description that the system gives it.
inline Lines AdapterLines(int index) {
    IP_ADAPTER_INFO list[8];
    ULONG size = sizeof list;
    if (GetAdaptersInfo(list, &size) != ERROR_SUCCESS) return {"no adapters"};
    const std::string address = "10.77." + std::to_string(index + 1) + ".1";
    for (const IP_ADAPTER_INFO* adapter = list; adapter; adapter = adapter->Next) {
        if (address != adapter->IpAddressList.IpAddress.String) continue;
        return {"NIC [" + std::to_string(index) + "]\n",
                "   IP   = [" + address + ", 255.255.255.0]\n",
                std::string("   DESC = [") + adapter->Description + "]\n"};
    }
    return {"no such adapter"};
}

// A whole IPv4 sweep for the default OID: what stands behind its adapters' own lines, and before
// the request's.
inline Lines SweepLines(const Lines& onFirst, const Lines& onSecond, const Lines& onOid = {}) {
    return Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n"} + onOid +
           RequestLines(14, "2b 06 01 04 01 ae 4b 2b 05 01 01 01 01 ", SnmpGet(kDefaultOid)) +
           AdapterLines(0) + onFirst + AdapterLines(1) + onSecond +
           Lines{"SNMP::Discover - ended\n"};
}

}  // namespace vndiscover
