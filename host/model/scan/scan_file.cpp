#include "model/scan/scan_file.h"

#include <cjson/cJSON.h>

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "model/scan/device_merge.h"
#include "values/ip_address.h"
#include "values/json_output.h"
#include "values/module_types.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr char kFormat[] = "vndiscover-scan";
constexpr int kVersion = 1;
constexpr const char* kKinds[] = {"snmpv1", "snmpv3", "wsd"};
constexpr const char* kForms[] = {"value", "document", "variable", "reply", "added"};
constexpr char kTimePattern[] = "0000-00-00T00:00:00Z";

// The parser needs about 100 bytes of memory for each value, and recurses for each level.
constexpr size_t kMaxValues = 4000000;
constexpr size_t kMaxDepth = 8;
constexpr size_t kMaxSweeps = 50000;  // each reading of a device is one in a window
constexpr size_t kMaxSplits = 10000;

// Where a pass over JSON text ended, and why: at a limit, or at the value that was searched for.
struct Place {
    size_t line = 1;
    const char* problem = nullptr;
};

// Steps through the values of JSON text, even if malformed, in the order in which they begin.
class Stepper {
  public:
    explicit Stepper(std::string_view text) : text_(text) {}

    Place FindValue(size_t wanted) {
        for (size_t values = 0; at_ < text_.size() && !place_.problem; ++at_) {
            const bool isValue = StepOver(text_[at_]);
            if (isValue && values++ == wanted) return place_;
            if (values > kMaxValues) place_.problem = "more values than a scan may have";
        }
        return place_;
    }

  private:
    // True if a value begins here. A string or literal is skipped up to its last byte.
    bool StepOver(char first) {
        if (first == '\n') ++place_.line;
        if (first == '\0') place_.problem = "a zero byte";
        if (first == '}' || first == ']') depth_ -= depth_ > 0 ? 1 : 0;
        if (first == '{' || first == '[') {
            if (++depth_ > kMaxDepth) place_.problem = "nested too deeply";
            return true;
        }
        if (first == '"') {
            PassString();
            const size_t next = text_.find_first_not_of(" \t\r\n", at_ + 1);
            return next == std::string_view::npos || text_[next] != ':';
        }
        constexpr std::string_view kLiteral = "+-.0123456789abcdefghijklmnopqrstuvwxyzE";
        if (kLiteral.find(first) == std::string_view::npos) return false;
        at_ = std::min(text_.find_first_not_of(kLiteral, at_), text_.size()) - 1;
        return true;
    }

    void PassString() {
        while (++at_ < text_.size() && text_[at_] != '"') {
            if (text_[at_] == '\n') ++place_.line;
            // The parser would end the string there.
            if (text_[at_] == '\0' || text_.substr(at_, 6) == "\\u0000")
                place_.problem = "a zero byte";
            if (text_[at_] == '\\') ++at_;
        }
    }

    std::string_view text_;
    size_t at_ = 0;
    size_t depth_ = 0;
    Place place_;
};

Place CheckBounds(std::string_view text) {
    if (text.size() > kMaxScanSize) return {1, "larger than a scan may be"};
    return Stepper(text).FindValue(SIZE_MAX);
}

// How many values begin before `wanted`, in the order of the text.
bool CountValuesBefore(const cJSON* wanted, const cJSON* from, size_t& count) {
    for (const cJSON* item = from; item; item = item->next) {
        if (item == wanted) return true;
        ++count;
        if (CountValuesBefore(wanted, item->child, count)) return true;
    }
    return false;
}

struct Refusal {
    const cJSON* at;
    std::string problem;
};

bool IsTime(std::string_view text) {
    return std::equal(text.begin(), text.end(), std::begin(kTimePattern),
                      std::end(kTimePattern) - 1, [](char letter, char pattern) {
                          return pattern == '0' ? letter >= '0' && letter <= '9'
                                                : letter == pattern;
                      });
}

// A number, without a zone. Letters would not tell: "beef.de" is a name that requests resolve.
bool IsAddress(const std::string& text) {
    return text.empty() || (text.size() < kAddressSize && text.find('%') == std::string::npos &&
                            ParseIpAddress(text));
}

// Throws a Refusal.
class ScanReader {
  public:
    Scan Read(const cJSON* root) {
        if (Text(root, "format") != kFormat) throw Refusal{root, "not a scan"};
        const size_t version = Number(root, "version", SIZE_MAX);
        if (version != kVersion) {
            throw Refusal{Member(root, "version"), "version " + std::to_string(version) +
                                                       " of the format, but only " +
                                                       std::to_string(kVersion) + " can be read"};
        }
        const cJSON* item = nullptr;
        cJSON_ArrayForEach(item, Array(root, "sweeps")) ReadSweep(item);
        if (scan_.sweeps.size() > kMaxSweeps)
            throw Refusal{Member(root, "sweeps"), "more sweeps than a scan may have"};
        cJSON_ArrayForEach(item, Array(root, "answers")) ReadAnswer(item);
        cJSON_ArrayForEach(item, Array(root, "splits")) ReadSplit(item);
        if (scan_.splits.size() > kMaxSplits)
            throw Refusal{Member(root, "splits"), "more splits than a scan may have"};
        return std::move(scan_);
    }

  private:
    static const cJSON* Find(const cJSON* object, const char* name) {
        if (!cJSON_IsObject(object)) throw Refusal{object, "not an object"};
        return cJSON_GetObjectItemCaseSensitive(object, name);
    }

    static const cJSON* Member(const cJSON* object, const char* name) {
        if (const cJSON* member = Find(object, name)) return member;
        throw Refusal{object, "\"" + std::string(name) + "\" is missing"};
    }

    // `what` says what is wrong with the member.
    static Refusal Wrong(const cJSON* object, const char* name, const char* what) {
        return {Member(object, name), "\"" + std::string(name) + "\" " + what};
    }

    static const cJSON* Array(const cJSON* object, const char* name) {
        const cJSON* member = Member(object, name);
        if (!cJSON_IsArray(member)) throw Wrong(object, name, "is not an array");
        return member;
    }

    static std::string_view Text(const cJSON* object, const char* name) {
        const cJSON* member = Member(object, name);
        if (!cJSON_IsString(member)) throw Wrong(object, name, "is not a string");
        return member->valuestring;
    }

    static size_t AsNumber(const cJSON* item, const std::string& name, size_t end) {
        const double number = cJSON_IsNumber(item) ? item->valuedouble : -1;
        // Compared before the conversion, which is undefined for numbers that do not fit.
        const auto limit = static_cast<double>(std::min(end, kMaxScanSize));
        if (!(number >= 0 && number < limit) ||
            static_cast<double>(static_cast<size_t>(number)) != number)
            throw Refusal{item, name + " is not a valid number"};
        return static_cast<size_t>(number);
    }
    static size_t Number(const cJSON* object, const char* name, size_t end) {
        return AsNumber(Member(object, name), "\"" + std::string(name) + "\"", end);
    }

    template <class Value, size_t count>
    static Value OneOf(const cJSON* object, const char* name, const char* const (&words)[count]) {
        const auto found = std::find(std::begin(words), std::end(words), Text(object, name));
        if (found == std::end(words)) throw Wrong(object, name, "is unknown");
        return static_cast<Value>(found - std::begin(words));
    }

    static Oid ObjectId(const cJSON* object) {
        if (auto oid = ParseOid(Text(object, "oid"))) return std::move(*oid);
        throw Wrong(object, "oid", "is not an OID");
    }

    static std::string Time(const cJSON* object) {
        const std::string_view text = Text(object, "time");
        if (!IsTime(text)) throw Wrong(object, "time", "is not a time");
        return std::string(text);
    }

    static std::string Bytes(const cJSON* object) {
        const bool isText = Find(object, "text") != nullptr;
        auto bytes = isText ? std::string(Text(object, "text")) : ParseHex(Text(object, "hex"));
        if (!bytes) throw Wrong(object, "hex", "is not hexadecimal");
        if (bytes->size() > kValueSize) throw Refusal{object, "the answer is too long"};
        return std::move(*bytes);
    }

    void ReadSweep(const cJSON* item) {
        ScanSweep sweep;
        sweep.kind = OneOf<SweepKind>(item, "kind", kKinds);
        sweep.form = OneOf<AnswerForm>(item, "form", kForms);
        sweep.useIPv6 = cJSON_IsTrue(Member(item, "ipv6")) != 0;
        if (sweep.form == AnswerForm::kValue) sweep.oid = ObjectId(item);
        sweep.time = Time(item);
        if (Find(item, "search")) sweep.search = Number(item, "search", kMaxSweeps);
        sweep.isComplete = cJSON_IsTrue(Find(item, "complete")) != 0;
        scan_.sweeps.push_back(std::move(sweep));
    }

    void ReadAnswer(const cJSON* item) {
        ScanAnswer answer;
        answer.sweep = Number(item, "sweep", scan_.sweeps.size());
        answer.time = Time(item);
        answer.address = Text(item, "address");
        if (!IsAddress(answer.address)) throw Wrong(item, "address", "is not numeric");
        Answer& content = answer.answer;
        content.status = Status::kAnswered;
        content.bytes = Bytes(item);
        content.wholeSize = content.bytes.size();
        if (scan_.sweeps[answer.sweep].form == AnswerForm::kVariable) {
            content.oid = ObjectId(item);
            content.type = static_cast<uint32_t>(Number(item, "type", 0x100));
            if (Find(item, "wholeSize")) content.wholeSize = Number(item, "wholeSize", 0x10000);
        }
        scan_.answers.push_back(std::move(answer));
    }

    void ReadSplit(const cJSON* item) {
        if (!cJSON_IsArray(item) || cJSON_GetArraySize(item) != 2)
            throw Refusal{item, "a split does not have two answers"};
        const size_t end = scan_.answers.size();
        scan_.splits.emplace_back(AsNumber(cJSON_GetArrayItem(item, 0), "a split", end),
                                  AsNumber(cJSON_GetArrayItem(item, 1), "a split", end));
    }

    Scan scan_;
};

JsonItem SweepJson(const ScanSweep& sweep) {
    JsonItem item(cJSON_CreateObject());
    AddText(item.get(), "kind", kKinds[static_cast<size_t>(sweep.kind)]);
    AddText(item.get(), "form", kForms[static_cast<size_t>(sweep.form)]);
    cJSON_AddBoolToObject(item.get(), "ipv6", sweep.useIPv6);
    if (sweep.form == AnswerForm::kValue) AddText(item.get(), "oid", OidToText(sweep.oid));
    AddText(item.get(), "time", sweep.time);
    if (sweep.search != 0)
        cJSON_AddNumberToObject(item.get(), "search", static_cast<double>(sweep.search));
    if (sweep.isComplete) cJSON_AddBoolToObject(item.get(), "complete", true);
    return item;
}

JsonItem AnswerJson(const ScanAnswer& one, AnswerForm form) {
    const Answer& answer = one.answer;
    JsonItem item(cJSON_CreateObject());
    cJSON_AddNumberToObject(item.get(), "sweep", static_cast<double>(one.sweep));
    AddText(item.get(), "time", one.time);
    AddText(item.get(), "address", one.address);
    if (form == AnswerForm::kVariable) {
        AddText(item.get(), "oid", OidToText(answer.oid));
        cJSON_AddNumberToObject(item.get(), "type", answer.type);
        if (answer.wholeSize != answer.bytes.size())
            cJSON_AddNumberToObject(item.get(), "wholeSize", static_cast<double>(answer.wholeSize));
    }
    if (form != AnswerForm::kVariable || answer.type == kOctetString) {
        AddText(item.get(), "text", answer.bytes);
        // The string differs if it could not hold the bytes unchanged.
        const cJSON* text = cJSON_GetObjectItemCaseSensitive(item.get(), "text");
        if (answer.bytes == text->valuestring) return item;
        cJSON_DeleteItemFromObjectCaseSensitive(item.get(), "text");
    }
    AddText(item.get(), "hex", HexText(answer.bytes, ""));
    return item;
}

template <class Rows, class ToJson>
std::string Elements(const Rows& rows, ToJson toJson) {
    JsonArray array;
    std::string text;
    for (const auto& row : rows) {
        array.Add(toJson(row).get());
        text += array.Flush();
    }
    text += array.Finish();
    text.pop_back();  // the line goes on
    return text;
}

size_t LargestSweep(const Scan& scan) {
    constexpr size_t kMembers = 128;  // bytes for the members other than the answer itself
    std::vector<size_t> sizes(scan.sweeps.size());
    for (const ScanAnswer& answer : scan.answers)
        sizes[answer.sweep] += kMembers + answer.answer.bytes.size();
    return static_cast<size_t>(std::max_element(sizes.begin(), sizes.end()) - sizes.begin());
}

// Removes answers of the largest sweep: over half of the most of an address, or the later half.
void Thin(Scan& scan) {
    const size_t sweep = LargestSweep(scan);
    std::unordered_map<std::string_view, size_t> counts;
    std::vector<size_t> ranks;  // of the sweep's answers, among those of their address
    for (const ScanAnswer& answer : scan.answers) {
        if (answer.sweep == sweep) ranks.push_back(counts[answer.address]++);
    }
    const size_t most = *std::max_element(ranks.begin(), ranks.end()) + 1;
    std::vector<ScanAnswer> kept;
    std::vector<size_t> places;  // in `kept`; SIZE_MAX: left out
    size_t seen = 0;
    for (ScanAnswer& answer : scan.answers) {
        bool isKept = true;
        if (answer.sweep == sweep) {
            isKept = most > 1 ? ranks[seen] < most / 2 : seen < ranks.size() / 2;
            ++seen;
        }
        places.push_back(isKept ? kept.size() : SIZE_MAX);
        if (isKept) kept.push_back(std::move(answer));
    }
    scan.answers = std::move(kept);
    auto splits = std::exchange(scan.splits, {});
    for (const auto& [one, other] : splits) {
        if (places[one] != SIZE_MAX && places[other] != SIZE_MAX)
            scan.splits.emplace_back(places[one], places[other]);
    }
}

}  // namespace

std::optional<std::string> WriteFittingScan(Scan scan, size_t maxSize, size_t& leftOut,
                                            std::string& problem) {
    const size_t all = scan.answers.size();
    while (true) {
        auto text = WriteScan(scan, problem);
        leftOut = all - scan.answers.size();
        if (text && text->size() <= maxSize) return text;
        if (scan.answers.empty()) return std::nullopt;
        Thin(scan);
    }
}

std::optional<std::string> WriteScan(const Scan& scan, std::string& problem) {
    std::string text = "{\"format\":\"" + std::string(kFormat) +
                       "\",\"version\":" + std::to_string(kVersion) +
                       ",\n\"sweeps\":" + Elements(scan.sweeps, SweepJson);
    text += ",\n\"answers\":" + Elements(scan.answers, [&](const ScanAnswer& answer) {
                return AnswerJson(answer, scan.sweeps[answer.sweep].form);
            });
    text += ",\n\"splits\":" + Elements(scan.splits, [](const auto& split) {
                const double pair[] = {static_cast<double>(split.first),
                                       static_cast<double>(split.second)};
                return JsonItem(cJSON_CreateDoubleArray(pair, 2));
            });
    text += ",\n\"devices\":" + Elements(MakeDevices(scan), DeviceJson) + "}\n";
    const char* tooLarge = CheckBounds(text).problem;
    if (scan.sweeps.size() > kMaxSweeps) tooLarge = "more sweeps than a scan may have";
    if (scan.splits.size() > kMaxSplits) tooLarge = "more splits than a scan may have";
    if (!tooLarge) return text;
    problem = tooLarge;
    return std::nullopt;
}

std::optional<Scan> ReadScan(const std::string& text, std::string& problem) {
    const auto refuse = [&](size_t line, const std::string& reason) {
        problem = "line " + std::to_string(line) + ": " + reason;
        return std::nullopt;
    };
    const Place bound = CheckBounds(text);
    if (bound.problem) return refuse(bound.line, bound.problem);
    // Including the terminating zero: some versions of the parser read one byte too far.
    const char* end = nullptr;
    const JsonItem root(cJSON_ParseWithLengthOpts(text.c_str(), text.size() + 1, &end, 0));
    const auto read = end ? static_cast<size_t>(end - text.c_str()) : 0;
    const size_t rest = text.find_first_not_of(" \t\r\n", read);
    if (!root || rest != std::string::npos) {
        const auto at = static_cast<ptrdiff_t>(root ? rest : std::min(read, text.size()));
        const auto line = std::count(text.begin(), text.begin() + at, '\n') + 1;
        return refuse(static_cast<size_t>(line), "not JSON");
    }
    try {
        return ScanReader().Read(root.get());
    } catch (const Refusal& refusal) {
        size_t count = 0;
        CountValuesBefore(refusal.at, root.get(), count);
        return refuse(Stepper(text).FindValue(count).line, refusal.problem);
    }
}

}  // namespace vndiscover::host
