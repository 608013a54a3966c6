#include "model/printer/interfaces.h"

#include <map>
#include <utility>

#include "values/object_names.h"
#include "values/plain_text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

std::string WordText(const char* object, const Answer& answer) {
    const auto number = SignedNumber(answer.bytes);
    if (answer.type != kInteger || !number) return "";
    const std::string word = WordOf(object, *number);
    return word.empty() ? std::to_string(*number) : SpacedWords(word);
}

std::string ColumnText(const std::string& object, const Answer& answer) {
    if (object == "ifDescr") return answer.type == kOctetString ? DeviceText(answer.bytes, 0) : "";
    if (object == "ifPhysAddress")
        return answer.type == kOctetString ? HexText(answer.bytes, ":") : "";
    if (object != "ifSpeed") return WordText(object.c_str(), answer);
    const auto speed = UnsignedNumber(answer.bytes);
    return answer.type == kGauge32 && speed ? SpeedText(*speed) : "";
}

}  // namespace

std::vector<Interface> InterfacesOf(const PrinterAnswers& answers) {
    constexpr std::pair<const char*, std::string Interface::*> kColumns[] = {
        {"ifDescr", &Interface::description},
        {"ifType", &Interface::type},
        {"ifSpeed", &Interface::speed},
        {"ifPhysAddress", &Interface::physicalAddress},
        {"ifAdminStatus", &Interface::adminStatus},
        {"ifOperStatus", &Interface::operStatus}};
    std::map<uint32_t, Interface> rows;
    for (const auto& [object, field] : kColumns) {
        for (const Oid& row : RowsOf(answers, object)) {
            if (row.size() == 1)
                rows[row[0]].*field =
                    ColumnText(object, answers.values.at(Append(OidOf(object), row)));
        }
    }
    std::vector<Interface> interfaces;
    interfaces.reserve(rows.size());
    for (auto& [index, row] : rows) interfaces.push_back(std::move(row));
    return interfaces;
}

std::string SpeedText(uint64_t bitsPerSecond) {
    // The object cannot hold a higher one.
    if (bitsPerSecond == UINT32_MAX) return "over 4.2 Gbit/s";
    if (bitsPerSecond == 0) return "";
    const char* const units[] = {" bit/s", " kbit/s", " Mbit/s", " Gbit/s"};
    uint64_t divisor = 1;
    size_t unit = 0;
    for (; unit < 3 && bitsPerSecond / divisor >= 1000; ++unit) divisor *= 1000;
    const uint64_t tenths = bitsPerSecond % divisor * 10 / divisor;
    return std::to_string(bitsPerSecond / divisor) +
           (tenths == 0 ? "" : "." + std::to_string(tenths)) + units[unit];
}

}  // namespace vndiscover::host
