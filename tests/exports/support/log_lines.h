// Log lines of sweeps and requests that several tests share.
#pragma once

#include "exports/support/network_test.h"

#include <iphlpapi.h>

namespace vndiscover {

// What a request for an OID says while it is built: `content` are the OID's content octets as "%02x
// " each, `message` the whole datagram; loggedLength is one more than the content has. `asking` is
// what a get says between the two.
inline std::string RequestLines(int loggedLength, const std::string& content, const Bytes& message,
                                const std::string& asking = "") {
    return "OID length [" + std::to_string(loggedLength) + "]\nOID = [" + content + "]\n" + asking +
           "SNMP_MSG = [" + ToHex(message, " ") + "]\n";
}

// The phase after a sweep's send: it ends with a time-out and delivers the devices that answered.
inline std::string AnsweredLines(const Lines& senders, const std::string& delivering = "") {
    const std::string count = std::to_string(senders.size());
    std::string lines = "HandleEvents start\n";
    for (const std::string& sender : senders) lines += "tszRecvAddr = [" + sender + "]\n";
    return lines + "RecvFrom - Timeout\n ==== We have [" + count +
           "] devices on the network. ==== \n" + delivering + "We have [" + count +
           "] devices responsed the information.\nHandleEvents end\n";
}

// An IPv4 adapter of the test network, with the description that the system gives it.
inline std::string AdapterLines(int index) {
    IP_ADAPTER_INFO list[8];
    ULONG size = sizeof list;
    if (GetAdaptersInfo(list, &size) != ERROR_SUCCESS) return "no adapters";
    const std::string address = "10.77." + std::to_string(index + 1) + ".1";
    for (const IP_ADAPTER_INFO* adapter = list; adapter; adapter = adapter->Next) {
        if (address != adapter->IpAddressList.IpAddress.String) continue;
        return "NIC [" + std::to_string(index) + "]\n   IP   = [" + address +
               ", 255.255.255.0]\n   DESC = [" + adapter->Description + "]\n";
    }
    return "no such adapter";
}

// A whole IPv4 sweep for the default OID, with what follows the lines of each adapter.
inline std::string SweepLines(const std::string& onFirst, const std::string& onSecond) {
    return "SNMP::Discover\nSCKRAW::SCKRAW()\n" +
           RequestLines(14, "2b 06 01 04 01 ae 4b 2b 05 01 01 01 01 ", SnmpGet(kDefaultOid)) +
           AdapterLines(0) + onFirst + AdapterLines(1) + onSecond + "SNMP::Discover - ended\n";
}

}  // namespace vndiscover
