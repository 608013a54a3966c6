#include "exports/support/logged_test.h"

#include "exports/support/system_adapters.h"

namespace vndiscover {

Lines RequestLines(int loggedLength, const std::string& content, const Bytes& message,
                   const Lines& asking) {
    return Lines{"OID length [" + std::to_string(loggedLength) + "]\n",
                 "OID = [" + content + "]\n"} +
           asking + Lines{"SNMP_MSG = [" + LogHex(message) + "]\n"};
}

Lines DefaultRequestLines(const Lines& asking) {
    return RequestLines(14, "2b 06 01 04 01 ae 4b 2b 05 01 01 01 01 ", SnmpGet(kDefaultOid),
                        asking);
}

Lines PhaseLines(const Lines& collecting, int devices, const Lines& delivering, int delivered) {
    return Lines{"HandleEvents start\n"} + collecting +
           Lines{" ==== We have [" + std::to_string(devices) +
                 "] devices on the network. ==== \n"} +
           delivering +
           Lines{"We have [" + std::to_string(delivered) + "] devices responsed the information.\n",
                 "HandleEvents end\n"};
}

Lines AnsweredLines(const Lines& senders, const Lines& delivering) {
    Lines collecting;
    for (const std::string& sender : senders) {
        collecting.push_back("tszRecvAddr = [" + sender + "]\n");
    }
    const int devices = static_cast<int>(senders.size());
    return PhaseLines(collecting + Lines{"RecvFrom - Timeout\n"}, devices, delivering, devices);
}

Lines SweepLines(const Lines& onFirst, const Lines& onSecond, const Lines& onOid) {
    return Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n"} + onOid + DefaultRequestLines() +
           AdapterLines(0) + onFirst + AdapterLines(1) + onSecond +
           Lines{"SNMP::Discover - ended\n"};
}

Lines AdapterLines(int index) {
    const std::string address = "10.77." + std::to_string(index + 1) + ".1";
    return {"NIC [" + std::to_string(index) + "]\n", "   IP   = [" + address + ", 255.255.255.0]\n",
            "   DESC = [" + IPv4Descriptions().at(static_cast<size_t>(index)) + "]\n"};
}

Lines IPv6ListingLines() {
    Lines lines;
    for (const IPv6Adapter& adapter : IPv6Adapters()) {
        lines.push_back("\tFriendly name: " + adapter.name + '\n');
        for (const std::string& address : adapter.addresses) {
            lines = lines + Lines{" pStringBuf [" + address + "]\n", "IPADDRESS ...." + address};
            if (address.rfind("fe80", 0) == 0) lines.push_back("    Link local....\n");
        }
        lines.push_back(adapter.addresses.empty()
                            ? "\tNo Unicast Addresses\n"
                            : "\tNumber of Unicast Addresses: " +
                                  std::to_string(adapter.addresses.size()) + '\n');
        lines = lines + Lines{"\tIfType: " + std::to_string(adapter.type) + '\n',
                              "\tOperStatus: " + std::to_string(adapter.status) + '\n',
                              "---------------------\n"};
    }
    return lines;
}

}  // namespace vndiscover
