#include "model/scan/scan_file.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "model/scan/device_merge.h"
#include "values/ip_address.h"
#include "values/json_output.h"
#include "values/module_types.h"
#include "values/ranges.h"
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
// The highest that can be read: a file may have it, and the next search the next number.
constexpr size_t kMaxSearch = kMaxScanSize - 1;
constexpr char kTooManySweeps[] = "more sweeps than a scan may have";
constexpr char kTooManySplits[] = "more splits than a scan may have";

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
    // Returns whether a value begins here. Skips a string or literal up to its last byte.
    bool StepOver(char first) {
        if (first == '\n') ++place_.line;
        if (first == '\0') place_.problem = "a zero byte";
        if (first == '}' || first == ']') depth_ -= depth_ > 0 ? 1 : 0;
        if (first == '{' || first == '[') {
            if (++depth_ > kMaxDepth) place_.problem = "nested too deeply";
            return true;
        }
        if (first == '"') {
            SkipString();
            const size_t next = text_.find_first_not_of(" \t\r\n", at_ + 1);
            return next == std::string_view::npos || text_[next] != ':';
        }
        constexpr std::string_view kLiteral = "+-.0123456789abcdefghijklmnopqrstuvwxyzE";
        if (kLiteral.find(first) == std::string_view::npos) return false;
        at_ = std::min(text_.find_first_not_of(kLiteral, at_), text_.size()) - 1;
        return true;
    }

    void SkipString() {
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

// Counts the values that begin before `wanted`, in the order of the text. Returns whether it is
// among the items or within one.
bool CountValuesBefore(const cJSON* wanted, const cJSON* from, size_t& count) {
    for (const cJSON* item = from; item; item = item->next) {
        if (item == wanted) return true;
        ++count;
        if (CountValuesBefore(wanted, item->child, count)) return true;
    }
    return false;
}

struct ReadError {
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

// A number, without a zone. Letters do not show it: "beef.de" is a name that requests resolve.
bool IsAddress(const std::string& text) {
    return text.empty() || (text.size() < kAddressSize && text.find('%') == std::string::npos &&
                            ParseIpAddress(text));
}

// A member of an object, or an element of an array. What reads it throws a ReadError.
struct Item {
    const cJSON* value;
    std::string name;

    ReadError Wrong(const char* what) const { return {value, name + " " + what}; }

    const cJSON* Array() const {
        if (!cJSON_IsArray(value)) throw Wrong("is not an array");
        return value;
    }
    std::string_view Text() const {
        if (!cJSON_IsString(value)) throw Wrong("is not a string");
        return value->valuestring;
    }
    size_t Number(size_t end) const {
        const double number = cJSON_IsNumber(value) ? value->valuedouble : -1;
        // Compared before the conversion, which is undefined for numbers that do not fit.
        const auto limit = static_cast<double>(std::min(end, kMaxScanSize));
        if (!(number >= 0 && number < limit) ||
            static_cast<double>(static_cast<size_t>(number)) != number)
            throw Wrong("is not a valid number");
        return static_cast<size_t>(number);
    }
    template <class Value, size_t count>
    Value OneOf(const char* const (&words)[count]) const {
        const auto found = std::find(std::begin(words), std::end(words), Text());
        if (found == std::end(words)) throw Wrong("is unknown");
        return static_cast<Value>(found - std::begin(words));
    }
    Oid ObjectId() const {
        if (auto oid = ParseOid(Text())) return std::move(*oid);
        throw Wrong("is not an OID");
    }
    std::string Time() const {
        const std::string_view text = Text();
        if (!IsTime(text)) throw Wrong("is not a time");
        return std::string(text);
    }
};

const cJSON* Find(const cJSON* object, const char* name) {
    if (!cJSON_IsObject(object)) throw ReadError{object, "not an object"};
    return cJSON_GetObjectItemCaseSensitive(object, name);
}

Item Member(const cJSON* object, const char* name) {
    const std::string quoted = "\"" + std::string(name) + "\"";
    if (const cJSON* const member = Find(object, name)) return {member, quoted};
    throw ReadError{object, quoted + " is missing"};
}

std::string BytesOf(const cJSON* object) {
    const bool isText = Find(object, "text") != nullptr;
    const Item item = Member(object, isText ? "text" : "hex");
    auto bytes = isText ? std::string(item.Text()) : ParseHex(item.Text());
    if (!bytes) throw item.Wrong("is not hexadecimal");
    if (bytes->size() > kValueSize) throw ReadError{object, "the answer is too long"};
    return std::move(*bytes);
}

ScanSweep SweepOf(const cJSON* item) {
    ScanSweep sweep;
    sweep.kind = Member(item, "kind").OneOf<SweepKind>(kKinds);
    sweep.form = Member(item, "form").OneOf<AnswerForm>(kForms);
    sweep.useIPv6 = cJSON_IsTrue(Member(item, "ipv6").value) != 0;
    if (sweep.form == AnswerForm::kValue) sweep.oid = Member(item, "oid").ObjectId();
    sweep.time = Member(item, "time").Time();
    if (Find(item, "search")) sweep.search = Member(item, "search").Number(SIZE_MAX);
    sweep.isComplete = cJSON_IsTrue(Find(item, "complete")) != 0;
    sweep.isCut = cJSON_IsTrue(Find(item, "cut")) != 0;
    sweep.isList = cJSON_IsTrue(Find(item, "list")) != 0;
    return sweep;
}

ScanAnswer AnswerOf(const cJSON* item, const std::vector<ScanSweep>& sweeps) {
    ScanAnswer answer;
    answer.sweep = Member(item, "sweep").Number(sweeps.size());
    answer.time = Member(item, "time").Time();
    const Item address = Member(item, "address");
    answer.address = address.Text();
    if (!IsAddress(answer.address)) throw address.Wrong("is not numeric");
    Answer& content = answer.answer;
    content = Received(BytesOf(item));
    if (sweeps[answer.sweep].form == AnswerForm::kVariable) {
        content.oid = Member(item, "oid").ObjectId();
        content.type = static_cast<uint32_t>(Member(item, "type").Number(0x100));
        if (Find(item, "wholeSize")) content.wholeSize = Member(item, "wholeSize").Number(0x10000);
    }
    return answer;
}

std::pair<size_t, size_t> SplitOf(const cJSON* item, size_t answers) {
    if (!cJSON_IsArray(item) || cJSON_GetArraySize(item) != 2)
        throw ReadError{item, "a split does not have two answers"};
    const auto at = [&](int i) {
        return Item{cJSON_GetArrayItem(item, i), "a split"}.Number(answers);
    };
    return {at(0), at(1)};
}

// Throws a ReadError.
Scan ScanOf(const cJSON* root) {
    if (Member(root, "format").Text() != kFormat) throw ReadError{root, "not a scan"};
    const Item version = Member(root, "version");
    if (const size_t number = version.Number(SIZE_MAX); number != kVersion) {
        throw ReadError{version.value, "version " + std::to_string(number) +
                                           " of the format, but only " + std::to_string(kVersion) +
                                           " can be read"};
    }
    Scan scan;
    const cJSON* item = nullptr;
    const cJSON* const sweeps = Member(root, "sweeps").Array();
    cJSON_ArrayForEach(item, sweeps) scan.sweeps.push_back(SweepOf(item));
    if (scan.sweeps.size() > kMaxSweeps) throw ReadError{sweeps, kTooManySweeps};
    cJSON_ArrayForEach(item, Member(root, "answers").Array())
        scan.answers.push_back(AnswerOf(item, scan.sweeps));
    const cJSON* const splits = Member(root, "splits").Array();
    cJSON_ArrayForEach(item, splits) scan.splits.push_back(SplitOf(item, scan.answers.size()));
    if (scan.splits.size() > kMaxSplits) throw ReadError{splits, kTooManySplits};
    return scan;
}

void AddSweep(cJSON* item, const ScanSweep& sweep) {
    AddText(item, "kind", kKinds[static_cast<size_t>(sweep.kind)]);
    AddText(item, "form", kForms[static_cast<size_t>(sweep.form)]);
    cJSON_AddBoolToObject(item, "ipv6", sweep.useIPv6);
    if (sweep.form == AnswerForm::kValue) AddText(item, "oid", OidToText(sweep.oid));
    AddText(item, "time", sweep.time);
    if (sweep.search != 0) AddNumber(item, "search", std::min(sweep.search, kMaxSearch));
    if (sweep.isComplete) cJSON_AddBoolToObject(item, "complete", true);
    if (sweep.isCut) cJSON_AddBoolToObject(item, "cut", true);
    if (sweep.isList) cJSON_AddBoolToObject(item, "list", true);
}

void AddAnswer(cJSON* item, const ScanAnswer& one, AnswerForm form) {
    const Answer& answer = one.answer;
    AddNumber(item, "sweep", one.sweep);
    AddText(item, "time", one.time);
    AddText(item, "address", one.address);
    if (form == AnswerForm::kVariable) {
        AddText(item, "oid", OidToText(answer.oid));
        AddNumber(item, "type", answer.type);
        if (answer.wholeSize != answer.bytes.size()) AddNumber(item, "wholeSize", answer.wholeSize);
    }
    if (form != AnswerForm::kVariable || answer.type == kOctetString) {
        AddText(item, "text", answer.bytes);
        // The string differs if it could not hold the bytes unchanged.
        const cJSON* text = cJSON_GetObjectItemCaseSensitive(item, "text");
        if (answer.bytes == text->valuestring) return;
        cJSON_DeleteItemFromObjectCaseSensitive(item, "text");
    }
    AddText(item, "hex", HexText(answer.bytes, ""));
}

// An array with an element for each row, which fill(element, row) fills.
template <class Rows, class Fill>
std::string Elements(const Rows& rows, Fill fill, cJSON* (*create)() = cJSON_CreateObject) {
    JsonArray array;
    for (const auto& row : rows) {
        const JsonItem element(create());
        fill(element.get(), row);
        array.Add(element.get());
    }
    std::string text = array.Finish();
    text.pop_back();  // the line end: more follows
    return text;
}

size_t LargestSweep(const Scan& scan) {
    constexpr size_t kMembers = 128;  // bytes for the members other than the answer itself
    std::vector<size_t> sizes(scan.sweeps.size());
    for (const ScanAnswer& answer : scan.answers)
        sizes[answer.sweep] += kMembers + answer.answer.bytes.size();
    return static_cast<size_t>(std::max_element(sizes.begin(), sizes.end()) - sizes.begin());
}

// Removes answers of the largest sweep: those of an address beyond half of the most that one has,
// or if none has two, the later half.
void LeaveOutSome(Scan& scan) {
    const size_t sweep = LargestSweep(scan);
    std::unordered_map<std::string_view, size_t> counts;
    std::vector<size_t> ranks;  // of the sweep's answers, among those of their address
    for (const ScanAnswer& answer : scan.answers) {
        if (answer.sweep == sweep) ranks.push_back(counts[answer.address]++);
    }
    const size_t most = *std::max_element(ranks.begin(), ranks.end()) + 1;
    size_t seen = 0;  // of the sweep's answers
    EraseIf(scan.answers, [&](const ScanAnswer& answer) {
        if (answer.sweep != sweep) return false;
        const size_t at = seen++;
        return most > 1 ? ranks[at] >= most / 2 : at >= ranks.size() / 2;
    });
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
        LeaveOutSome(scan);
    }
}

std::optional<std::string> WriteScan(const Scan& scan, std::string& problem) {
    std::string text = "{\"format\":\"" + std::string(kFormat) +
                       "\",\"version\":" + std::to_string(kVersion) +
                       ",\n\"sweeps\":" + Elements(scan.sweeps, AddSweep);
    text += ",\n\"answers\":" + Elements(scan.answers, [&](cJSON* item, const auto& answer) {
                AddAnswer(item, answer, scan.sweeps[answer.sweep].form);
            });
    const auto addSplit = [](cJSON* pair, const auto& split) {
        for (const size_t index : {split.first, split.second})
            cJSON_AddItemToArray(pair, cJSON_CreateNumber(static_cast<double>(index)));
    };
    text += ",\n\"splits\":" + Elements(scan.splits, addSplit, cJSON_CreateArray);
    text += ",\n\"devices\":" + Elements(MakeDevices(scan), AddDevice) + "}\n";
    const char* tooLarge = CheckBounds(text).problem;
    if (scan.sweeps.size() > kMaxSweeps) tooLarge = kTooManySweeps;
    if (scan.splits.size() > kMaxSplits) tooLarge = kTooManySplits;
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
        return ScanOf(root.get());
    } catch (const ReadError& error) {
        size_t count = 0;
        CountValuesBefore(error.at, root.get(), count);
        return refuse(Stepper(text).FindValue(count).line, error.problem);
    }
}

}  // namespace vndiscover::host
