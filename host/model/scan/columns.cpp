#include "model/scan/columns.h"

#include <algorithm>
#include <vector>

#include "values/ip_address.h"
#include "values/plain_text.h"

namespace vndiscover::host {

std::string AddressCell(const RowSource& source) { return Joined(source.addresses); }

std::string IdentityCell(const RowSource& source, MergeKey key) {
    std::vector<std::string> values;
    for (const std::string& value : source.device.identity.Of(key))
        values.push_back(PlainText(value));
    return Joined(values);
}

std::string StateCell(const RowSource& source) {
    return StateText(source.standing, source.summary);
}

std::string ProtocolCell(const RowSource& source) {
    bool has[3] = {};
    for (const size_t index : source.device.answers) {
        const ScanSweep& sweep = source.scan.sweeps[source.scan.answers[index].sweep];
        if (sweep.form != AnswerForm::kAdded) has[static_cast<size_t>(sweep.kind)] = true;
    }
    constexpr const char* kNames[] = {"SNMPv1", "SNMPv3", "WSD"};
    std::vector<std::string> names;
    for (size_t kind = 0; kind < 3; ++kind) {
        if (has[kind]) names.emplace_back(kNames[kind]);
    }
    return Joined(names);
}

std::string NetworkCell(const RowSource& source) {
    const auto known =
        source.addresses.empty() ? std::nullopt : ParseIpAddress(source.addresses.front());
    if (!known) return "";
    if (!known->IsIPv4()) return "fe80::/64";
    for (const AdapterAddress& adapter : source.ipv4.addresses) {
        std::string network = CommonNetwork(*known, adapter.address, adapter.mask);
        if (!network.empty()) return network;
    }
    return "";
}

std::string LastSeenCell(const RowSource& source) { return source.standing.lastAnswer; }

}  // namespace vndiscover::host
