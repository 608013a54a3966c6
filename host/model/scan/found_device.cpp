#include "model/scan/found_device.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "model/asking/json_request.h"
#include "values/module_types.h"
#include "values/object_names.h"
#include "values/ranges.h"
#include "values/text.h"
#include "wsd/wsd_message.h"

namespace vndiscover::host {
namespace {

bool IsPlaceholder(MergeKey key, std::string_view value) {
    constexpr std::string_view kPlaceholders = "Xx0 \t-_./:?*#";
    return value.empty() || (key == MergeKey::kSerial &&
                             value.find_first_not_of(kPlaceholders) == std::string_view::npos);
}

bool HaveCommonValue(const std::set<std::string>& one, const std::set<std::string>& other) {
    const auto& few = one.size() < other.size() ? one : other;
    const auto& many = one.size() < other.size() ? other : one;
    return AnyOf(few, [&](const std::string& value) { return many.count(value) != 0; });
}

// A device replies a few times for each adapter. One that floods a sweep would cost seconds.
constexpr size_t kMaxReplies = 256;

// Sweeps deliver values as text without a type: only those of text objects can be used.
bool IsTextObject(const Oid& oid) {
    return oid == DefaultDiscoveryOid() ||
           IsAny(oid, {"sysDescr", "sysName", "hrDeviceDescr", "prtGeneralPrinterName",
                       "prtGeneralSerialNumber", "entPhysicalSerialNum"});
}

class Collector {
  public:
    void Add(const ScanSweep& sweep, const ScanAnswer& answer) {
        device_.identity.Add(MergeKey::kAddress, answer.address);
        switch (sweep.form) {
            case AnswerForm::kValue:
                AddText(sweep.oid, AnsweredWith({}, kOctetString, answer.answer.bytes).bytes);
                break;
            case AnswerForm::kDocument:
                for (const auto& [name, value] :
                     AnswersOf(ParseDocument(answer.answer.bytes).get())) {
                    if (const auto oid = ParseOid(name)) AddText(*oid, value);
                }
                break;
            case AnswerForm::kVariable:
                AddVariable(answer, sweep.isComplete);
                break;
            case AnswerForm::kReply:
                if (++replies_ > kMaxReplies) break;
                for (const ProbeMatch& match : ReadReply(answer.answer.bytes).matches) {
                    device_.identity.Add(MergeKey::kEndpoint, match.endpoint);
                    types_.insert(match.types.begin(), match.types.end());
                }
                break;
            case AnswerForm::kAdded:
                device_.added = PlainText(answer.answer.bytes);
                break;
        }
    }

    FoundDevice Describe() {
        variables_.areGapsKnown = false;
        device_.areAlertsKnown =
            stateSweep_ != SIZE_MAX && stateSweep_ == wholeSweep_ && stateSweep_ == alertsSweep_;
        PrinterFacts facts = FactsOf(variables_);
        facts.readTime = std::move(readTime_);
        facts.upTicksTime = std::move(upTime_);
        // The model falls back to the description, which says less than the discovery OID's text.
        const std::string discovered = TextWithin(DefaultDiscoveryOid());
        if (facts.model == facts.description && !discovered.empty()) facts.model = discovered;
        if (facts.serialNumber.empty())  // no printer is listed, or it was not requested
            facts.serialNumber = TextWithin(OidOf("prtGeneralSerialNumber"));
        device_.identity.Add(MergeKey::kSerial, facts.serialNumber);
        if (facts.macAddress != "FF:FF:FF:FF:FF:FF")
            device_.identity.Add(MergeKey::kMac, facts.macAddress);
        device_.types.assign(types_.begin(), types_.end());
        device_.facts = std::make_shared<const PrinterFacts>(std::move(facts));
        return std::move(device_);
    }

  private:
    void AddVariable(const ScanAnswer& answer, bool isOfWhole) {
        const Oid& oid = answer.answer.oid;
        variables_.values[oid] = answer.answer;
        device_.hasVariables = true;
        if (IsState(oid)) {
            stateSweep_ = answer.sweep;
            readTime_ = std::max(readTime_, answer.time);
        }
        // Only a reading that asks for alerts asks for this.
        if (IsAny(oid, {"sysUpTime"})) {
            wholeSweep_ = answer.sweep;
            upTime_ = std::max(upTime_, answer.time);
        }
        // A reading that ended early has read the alerts if it has what is read after them.
        if (isOfWhole || IsAny(oid, {"prtConsoleDisplayBufferText", "ifType", "ifPhysAddress",
                                     "ifOperStatus", "entPhysicalSerialNum"}))
            alertsSweep_ = answer.sweep;
    }

    void AddText(const Oid& oid, const std::string& text) {
        if (text.empty() || !IsTextObject(oid)) return;
        Answer& known = variables_.values[oid];
        // The text may have been cut at a zero byte; a value that was read whole remains.
        if (known.bytes.compare(0, text.size(), text) == 0) return;
        known = Received(text);
        known.oid = oid;
        known.type = kOctetString;
    }

    std::string TextWithin(const Oid& root) const {
        for (auto at = variables_.values.lower_bound(root);
             at != variables_.values.end() && IsWithin(at->first, root); ++at) {
            std::string text = at->second.type == kOctetString ? DeviceText(at->second.bytes) : "";
            if (!text.empty()) return text;
        }
        return "";
    }

    PrinterAnswers variables_;
    std::string readTime_, upTime_;  // of the state, and of how long it has been up
    std::set<std::string> types_;    // in order, and none twice
    FoundDevice device_;
    size_t replies_ = 0;
    size_t stateSweep_ = SIZE_MAX, wholeSweep_ = SIZE_MAX, alertsSweep_ = SIZE_MAX;  // or none
};

void AddIndexes(cJSON* object, const std::vector<size_t>& indexes) {
    cJSON* array = cJSON_AddArrayToObject(object, "answers");
    for (const size_t index : indexes)
        cJSON_AddItemToArray(array, cJSON_CreateNumber(static_cast<double>(index)));
}

}  // namespace

const char* KeyName(MergeKey key) {
    constexpr const char* kNames[] = {"serial number", "MAC address", "WS-Discovery endpoint",
                                      "address"};
    return kNames[static_cast<size_t>(key)];
}

void Identity::Add(MergeKey key, const std::string& value) {
    if (!IsPlaceholder(key, value)) values_[static_cast<size_t>(key)].insert(value);
}

void Identity::Add(const Identity& other) {
    for (const MergeKey key : kMergeKeys)
        values_[static_cast<size_t>(key)].insert(other.Of(key).begin(), other.Of(key).end());
}

size_t Identity::Size() const {
    size_t size = 0;
    for (const auto& values : values_) size += values.size();
    return size;
}

bool Identity::DiffersByStrongerKey(const Identity& other, MergeKey key) const {
    return AnyOf(kMergeKeys, [&](MergeKey stronger) {
        return stronger < key && !Of(stronger).empty() && !other.Of(stronger).empty() &&
               !HaveCommonValue(Of(stronger), other.Of(stronger));
    });
}

FoundDevice DescribeDevice(const Scan& scan, std::vector<size_t> answers) {
    Collector collector;
    for (const size_t index : CurrentAnswers(scan, answers)) {
        const ScanAnswer& answer = scan.answers[index];
        collector.Add(scan.sweeps[answer.sweep], answer);
    }
    FoundDevice device = collector.Describe();
    device.answers = std::move(answers);
    return device;
}

bool IsOtherByType(const FoundDevice& device) {
    return !device.types.empty() && !AnyOf(device.types, [](const std::string& type) {
        return type.find("PrintDeviceType") != std::string::npos;
    });
}

std::string DeviceLine(const FoundDevice& device) {
    std::vector<std::string> parts = {device.facts->model};
    for (const MergeKey key : {MergeKey::kSerial, MergeKey::kAddress}) {
        for (const std::string& value : device.identity.Of(key)) parts.push_back(PlainText(value));
    }
    return Joined(parts);
}

void AddDevice(cJSON* object, const FoundDevice& device) {
    AddTexts(object, "addresses", device.identity.Of(MergeKey::kAddress));
    AddText(object, "name", device.facts->name);
    AddText(object, "model", device.facts->model);
    AddTexts(object, "serialNumbers", device.identity.Of(MergeKey::kSerial));
    AddTexts(object, "macAddresses", device.identity.Of(MergeKey::kMac));
    AddTexts(object, "endpoints", device.identity.Of(MergeKey::kEndpoint));
    AddText(object, "firmware", device.facts->description);
    cJSON* const counts = cJSON_AddArrayToObject(object, "pageCounts");
    for (const PageCount& count : device.facts->pageCounts)
        cJSON_AddItemToArray(counts, cJSON_CreateRaw(std::to_string(count.count).c_str()));
    AddIndexes(object, device.answers);
    AddObjects(object, "merges", device.merges, [](cJSON* one, const Merge& merge) {
        AddText(one, "by", KeyName(merge.key));
        AddText(one, "value", merge.value);
        AddIndexes(one, {merge.first, merge.second});
    });
}

}  // namespace vndiscover::host
