#include "exports/support/logged_test.h"

#include "exports/support/system_adapters.h"

namespace vndiscover {

std::string LogHex(const Bytes& bytes) {
    std::string text;
    for (const uint8_t byte : bytes) {
        char hex[4];
        std::snprintf(hex, sizeof hex, "%02x ", byte);
        text += hex;
    }
    return text;
}

Lines RequestLines(int loggedLength, const std::string& content, const Bytes& message) {
    return {"OID length [" + std::to_string(loggedLength) + "]\n", "OID = [" + content + "]\n",
            "SNMP_MSG = [" + LogHex(message) + "]\n"};
}

Lines DefaultRequestLines() {
    return RequestLines(14, "2b 06 01 04 01 ae 4b 2b 05 01 01 01 01 ", SnmpGet(kDefaultOid));
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
