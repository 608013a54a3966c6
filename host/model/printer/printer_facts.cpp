#include "model/printer/printer_facts.h"

#include <algorithm>
#include <set>

#include "values/object_names.h"
#include "values/ranges.h"
#include "values/text.h"
#include "values/value_text.h"

namespace vndiscover::host {

namespace {

constexpr int64_t kReceptacle = 4;
constexpr int64_t kPercent = 19;
constexpr int64_t kLoopback = 24;
constexpr int64_t kUp = 1;
constexpr char kUnreadable[] = "unreadable";  // of a type that is no number

std::string TextOr(std::string text, std::string otherwise) {
    return text.empty() ? std::move(otherwise) : std::move(text);
}

std::vector<uint32_t> AllPrinters(const PrinterAnswers& answers) {
    return PrintersOf(
        answers, {"hrPrinterStatus", "hrPrinterDetectedErrorState", "prtGeneralCurrentLocalization",
                  "prtMarkerSuppliesLevel", "prtMarkerLifeCount"});
}

bool IsWaste(const std::string& type) { return type.rfind("waste", 0) == 0; }

class Facts {
  public:
    explicit Facts(const PrinterAnswers& answers) : answers_(answers) {}

    PrinterFacts Make() {
        FindPrinter();
        SetSystem();
        AddInterfaces();
        facts_.macAddress = MacAddress();
        if (!facts_.deviceIndex) return std::move(facts_);
        SetState();
        AddSupplies();
        AddTrays();
        AddCounts();
        AddAlerts();
        AddPanel();
        return std::move(facts_);
    }

  private:
    const Answer* Find(const char* object, const Oid& instance) const {
        const auto found = answers_.values.find(Append(OidOf(object), instance));
        return found == answers_.values.end() ? nullptr : &found->second;
    }

    // Some devices send a counter as a gauge, or a level as a counter.
    std::optional<int64_t> Number(const char* object, const Oid& instance) const {
        const Answer* answer = Find(object, instance);
        if (!answer || !NumberText(answer->type, answer->bytes)) return std::nullopt;
        if (answer->type == kInteger) return SignedNumber(answer->bytes);
        return static_cast<int64_t>(*UnsignedNumber(answer->bytes));
    }

    std::optional<uint64_t> Count(const char* object, const Oid& instance) const {
        const auto number = Number(object, instance);
        if (!number || *number < 0) return std::nullopt;
        return static_cast<uint64_t>(*number);
    }

    std::string Text(const char* object, const Oid& instance) const {
        const Answer* answer = Find(object, instance);
        if (!answer || answer->type != kOctetString) return "";
        return DeviceText(answer->bytes);
    }

    std::string Word(const char* object, const Oid& instance) const {
        const auto number = Number(object, instance);
        if (!number) return "";
        const std::string word = WordOf(object, *number);
        return word.empty() ? std::to_string(*number) : word;
    }

    // The rows that occur in any of the columns, since a column may be missing.
    std::set<Oid> Rows(std::initializer_list<const char*> columns, const Oid& within) const {
        std::set<Oid> rows;
        for (const char* column : columns) {
            for (const Oid& row : RowsOf(answers_, OidOf(column))) {
                if (IsWithin(row, within)) rows.insert(row);
            }
        }
        return rows;
    }

    void FindPrinter() {
        const std::vector<uint32_t> printers = AllPrinters(answers_);
        if (printers.empty()) return;
        printer_ = {printers.front()};
        facts_.deviceIndex = printers.front();
        facts_.otherPrinters.assign(printers.begin() + 1, printers.end());
        mibRow_ = printer_;
        const bool isListed = !PrintersOf(answers_).empty();
        for (const char* column :
             {"prtMarkerLifeCount", "prtInputCurrentLevel", "prtMarkerSuppliesLevel"}) {
            for (const Oid& row : RowsOf(answers_, OidOf(column))) {
                if (row[0] == printer_[0]) {
                    mibRow_ = printer_;
                    return;
                }
                const bool isOther = isListed && !Contains(printers, row[0]);
                if (isOther && mibRow_ == printer_) mibRow_ = {row[0]};
            }
        }
    }

    // The index of a row that a value names; 0: none.
    uint32_t Index(const char* object, const Oid& instance) const {
        const int64_t number = Number(object, instance).value_or(0);
        return number > 0 && number <= UINT32_MAX ? static_cast<uint32_t>(number) : 0;
    }

    // Facts of the device, even if no printer was found.
    void SetSystem() {
        facts_.upTicks = Count("sysUpTime", {0});
        facts_.description = Text("sysDescr", {0});
        facts_.location = Text("sysLocation", {0});
        facts_.name = TextOr(Text("prtGeneralPrinterName", printer_), Text("sysName", {0}));
        facts_.model = TextOr(Text("hrDeviceDescr", printer_), facts_.description);
        facts_.serialNumber = TextOr(Text("prtGeneralSerialNumber", mibRow_),
                                     Text("prtGeneralSerialNumber", printer_));
        for (const Oid& part : RowsOf(answers_, OidOf("entPhysicalSerialNum")))
            facts_.serialNumber = TextOr(facts_.serialNumber, Text("entPhysicalSerialNum", part));
    }

    // Of the first network interface that is up, otherwise of the first one.
    std::string MacAddress() const {
        std::string found;
        for (const Oid& instance : RowsOf(answers_, OidOf("ifPhysAddress"))) {
            const std::string& bytes = Find("ifPhysAddress", instance)->bytes;
            if (bytes.size() != 6 || bytes == std::string(6, '\0') ||
                Number("ifType", instance) == kLoopback)
                continue;
            std::string mac = HexText(bytes, ":");
            if (Number("ifOperStatus", instance) == kUp) return mac;
            if (found.empty()) found = mac;
        }
        return found;
    }

    void AddInterfaces() {
        for (const Oid& row : Rows(
                 {"ifDescr", "ifType", "ifSpeed", "ifPhysAddress", "ifAdminStatus", "ifOperStatus"},
                 {})) {
            if (row.size() != 1) continue;  // no index of ifTable
            const auto words = [&](const char* object) { return SpacedWords(Word(object, row)); };
            const Answer* const address = Find("ifPhysAddress", row);
            const bool isAddress = address && address->type == kOctetString;
            facts_.interfaces.push_back({Text("ifDescr", row), words("ifType"),
                                         SpeedText(Count("ifSpeed", row).value_or(0)),
                                         isAddress ? HexText(address->bytes, ":") : "",
                                         words("ifAdminStatus"), words("ifOperStatus")});
        }
    }

    void SetState() {
        facts_.deviceStatus = Word("hrDeviceStatus", printer_);
        facts_.printerStatus = Word("hrPrinterStatus", printer_);
        const Answer* bits = Find("hrPrinterDetectedErrorState", printer_);
        if (!bits || bits->type != kOctetString) return;
        facts_.errors = WordsOf("hrPrinterDetectedErrorState", bits->bytes);
        facts_.errorBits = bits->bytes;
    }

    void AddSupplies() {
        for (const Oid& row : Rows({"prtMarkerSuppliesLevel", "prtMarkerSuppliesDescription",
                                    "prtMarkerSuppliesType"},
                                   mibRow_)) {
            Supply supply;
            supply.description = Text("prtMarkerSuppliesDescription", row);
            supply.type = Word("prtMarkerSuppliesType", row);
            if (const uint32_t colorant = Index("prtMarkerSuppliesColorantIndex", row))
                supply.colour = Text("prtMarkerColorantValue", Append(mibRow_, {colorant}));
            supply.level = LevelOf("prtMarkerSuppliesLevel", "prtMarkerSuppliesMaxCapacity",
                                   "prtMarkerSuppliesSupplyUnit", row);
            // Some devices give containers for waste the class of what is consumed.
            supply.level.isReceptacle =
                Number("prtMarkerSuppliesClass", row) == kReceptacle || IsWaste(supply.type);
            facts_.supplies.push_back(std::move(supply));
        }
    }

    // Some devices send negative numbers, which have meanings, as unsigned ones of 32 bits.
    std::optional<int64_t> Signed(const char* object, const Oid& row) const {
        const auto number = Number(object, row);
        const bool isNegative = number && *number > INT32_MAX && *number <= UINT32_MAX;
        return isNegative ? *number - UINT32_MAX - 1 : number;
    }

    Level LevelOf(const char* object, const char* maximum, const char* unit, const Oid& row) const {
        Level level = {Signed(object, row), Signed(maximum, row), UnitText(unit, row)};
        if (!level.level && Find(object, row)) level.missing = kUnreadable;
        if (Number(unit, row) != kPercent) return level;
        level.isPercent = level.maximum.value_or(0) <= 100;
        if (!level.isPercent) level.unit.clear();  // parts of a percent, or of something else
        return level;
    }

    // "" for "other" and "unknown", which add nothing to a number.
    std::string UnitText(const char* object, const Oid& row) const {
        const int64_t unit = Number(object, row).value_or(0);
        return unit <= 2 ? "" : SpacedWords(Word(object, row));
    }

    void AddTrays() {
        for (const Oid& row : Rows({"prtInputCurrentLevel", "prtInputName", "prtInputMediaName",
                                    "prtInputDescription"},
                                   mibRow_)) {
            facts_.trays.push_back(
                {TextOr(Text("prtInputName", row), Text("prtInputDescription", row)),
                 Text("prtInputMediaName", row),
                 LevelOf("prtInputCurrentLevel", "prtInputMaxCapacity", "prtInputCapacityUnit",
                         row)});
        }
    }

    void AddCounts() {
        for (const Oid& row : Rows({"prtMarkerLifeCount"}, mibRow_)) {
            if (const auto count = Count("prtMarkerLifeCount", row))
                facts_.pageCounts.push_back({*count, UnitText("prtMarkerCounterUnit", row)});
        }
    }

    void AddAlerts() {
        for (const Oid& row :
             Rows({"prtAlertCode", "prtAlertDescription", "prtAlertSeverityLevel"}, mibRow_)) {
            facts_.alerts.push_back({Word("prtAlertSeverityLevel", row), Word("prtAlertGroup", row),
                                     Word("prtAlertCode", row), Text("prtAlertDescription", row),
                                     Count("prtAlertTime", row)});
        }
        std::stable_partition(facts_.alerts.begin(), facts_.alerts.end(),
                              [](const Alert& alert) { return alert.severity == "critical"; });
    }

    void AddPanel() {
        for (const Oid& row : Rows({"prtConsoleDisplayBufferText"}, mibRow_)) {
            const std::string line = Text("prtConsoleDisplayBufferText", row);
            if (!line.empty()) facts_.panel.push_back(line);
        }
    }

    const PrinterAnswers& answers_;
    PrinterFacts facts_;
    Oid printer_;  // its row in the Host Resources MIB; empty: no printer was found
    Oid mibRow_;   // in the Printer MIB, where some devices give it another number
};

}  // namespace

bool HasPrinter(const PrinterAnswers& answers) { return !AllPrinters(answers).empty(); }

PrinterFacts FactsOf(const PrinterAnswers& answers) {
    PrinterFacts facts = Facts(answers).Make();
    if (answers.areGapsKnown) SetGaps(facts, answers.gaps);
    return facts;
}

void SetGaps(PrinterFacts& facts, std::vector<Gap> gaps) {
    facts.gaps = std::move(gaps);
    const auto set = [&](Level& level, const char* subject, const char* object) {
        if (level.missing != kUnreadable) level.missing = MissingText(facts.gaps, subject, object);
    };
    for (Supply& supply : facts.supplies) set(supply.level, "supplies", "prtMarkerSuppliesLevel");
    for (Tray& tray : facts.trays) set(tray.level, "trays", "prtInputCurrentLevel");
}

const char* MissingText(const std::vector<Gap>& gaps, std::string_view subject,
                        std::string_view object) {
    const bool isGap = AnyOf(gaps, [&](const Gap& gap) {
        const bool isObject = object.empty() || gap.object.empty() || gap.object == object;
        return gap.subject == subject && isObject;
    });
    return isGap ? "not read" : "not given";
}

namespace {

constexpr int64_t kNoLimit = -1;
constexpr int64_t kSomeLeft = -3;

std::string NegativeText(const Level& level) {
    if (*level.level == kNoLimit) return "no limit";
    if (*level.level == kSomeLeft) return level.isReceptacle ? "some" : "some left";
    if (*level.level == kUnknownLevel) return "unknown";
    return "unknown (" + std::to_string(*level.level) + ")";
}

std::string AmountText(const Level& level) {
    const std::string unit = level.unit.empty() ? "" : " " + level.unit;
    const std::string amount = std::to_string(*level.level);
    if (level.maximum == kNoLimit) return amount + unit + ", no maximum";
    if (level.maximum.value_or(kUnknownLevel) <= 0) return amount + unit + ", maximum unknown";
    return amount + " of " + std::to_string(*level.maximum) + unit;
}

std::string Text(const Level& level) {
    if (!level.level) return level.missing;
    if (*level.level < 0) return NegativeText(level);
    if (level.isPercent) {
        if (*level.level <= 100) return PercentText(level);
        return "100 % (the device says " + std::to_string(*level.level) + " %)";
    }
    const bool hasMaximum = level.maximum.value_or(kUnknownLevel) > 0;
    if (*level.level == 0 && !hasMaximum) return level.isReceptacle ? "none" : "empty";
    std::string amount = AmountText(level);
    if (!hasMaximum) return amount;
    const bool isAbove = *level.level > *level.maximum;
    return PercentText(level) + " (" + amount + (isAbove ? ", above the maximum)" : ")");
}

}  // namespace

std::optional<int> PercentOf(const Level& level) {
    if (!level.level || *level.level < 0) return std::nullopt;
    if (level.isPercent) return static_cast<int>(std::min<int64_t>(*level.level, 100));
    if (*level.level == 0) return 0;  // whatever the maximum
    if (level.maximum.value_or(kUnknownLevel) <= 0) return std::nullopt;
    const int64_t capped = std::min(*level.level, *level.maximum);
    // As floating point: a device may send 64-bit numbers, and times 100 they would overflow.
    return static_cast<int>(static_cast<double>(capped) * 100 /
                            static_cast<double>(*level.maximum));
}

std::string PercentText(const Level& level) {
    const int percent = *PercentOf(level);
    return percent == 0 && *level.level > 0 ? "under 1 %" : std::to_string(percent) + " %";
}

std::string LevelText(const Level& level) {
    return (level.isReceptacle ? "room left: " : "") + Text(level);
}

}  // namespace vndiscover::host
