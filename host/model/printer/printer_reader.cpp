#include "model/printer/printer_reader.h"

#include <optional>
#include <string_view>
#include <utility>

#include "model/asking/walk.h"
#include "model/printer/report.h"
#include "values/object_names.h"
#include "values/ranges.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

// Bounds tables, whose length the device decides; no printer has this many rows of anything.
constexpr size_t kMaxRows = 256;

// Which rows of an object are asked for.
enum class Way {
    kColumn,   // all rows
    kScalar,   // instance 0
    kPrinter,  // the row of the first printer; all rows if none is listed
    kFirst,    // the first row
};
constexpr char kState[] = "model and state";
struct Question {
    const char* object;
    const char* subject;
    Way way = Way::kColumn;
    bool isListed = false;  // a list of printers shows it too
};
constexpr Question kQuestions[] = {
    {"sysUpTime", "up since", Way::kScalar},  // first: every agent has it, and it is short
    {"sysDescr", "description", Way::kScalar, true},
    {"sysName", "name", Way::kScalar, true},
    {"sysLocation", "location", Way::kScalar, true},
    {"hrDeviceType", kState},
    {"hrDeviceDescr", kState, Way::kPrinter},
    {"hrDeviceStatus", kState, Way::kPrinter},
    {"hrPrinterStatus", kState, Way::kPrinter},
    {"hrPrinterDetectedErrorState", kState, Way::kPrinter},
    {"prtGeneralPrinterName", "name", Way::kPrinter, true},
    {"prtGeneralSerialNumber", "serial number", Way::kPrinter, true},
    {"prtMarkerSuppliesColorantIndex", "supplies"},
    {"prtMarkerSuppliesClass", "supplies", Way::kColumn, true},
    {"prtMarkerSuppliesType", "supplies", Way::kColumn, true},
    {"prtMarkerSuppliesDescription", "supplies", Way::kColumn, true},
    {"prtMarkerSuppliesSupplyUnit", "supplies", Way::kColumn, true},
    {"prtMarkerSuppliesMaxCapacity", "supplies", Way::kColumn, true},
    {"prtMarkerSuppliesLevel", "supplies", Way::kColumn, true},
    {"prtMarkerColorantValue", "supplies"},
    {"prtMarkerCounterUnit", "page counts"},
    {"prtMarkerLifeCount", "page counts", Way::kColumn, true},
    {"prtInputCapacityUnit", "trays"},
    {"prtInputMaxCapacity", "trays"},
    {"prtInputCurrentLevel", "trays"},
    {"prtInputMediaName", "trays"},
    {"prtInputName", "trays"},
    {"prtInputDescription", "trays"},
    {"prtAlertSeverityLevel", "alerts"},
    {"prtAlertGroup", "alerts"},
    {"prtAlertCode", "alerts"},
    {"prtAlertDescription", "alerts"},
    {"prtAlertTime", "alerts"},
    {"prtConsoleDisplayBufferText", "panel"},
};
// In addition to those above.
constexpr Question kInterfaceQuestions[] = {
    {"ifSpeed", "interfaces"},
    {"ifAdminStatus", "interfaces"},
    {"ifDescr", "interfaces"},
};
// The Printer MIB of a device without a printer in the Host Resources MIB.
constexpr Question kPrinterMib = {"prtGeneralCurrentLocalization", kState, Way::kFirst};
// In a list only without a serial number, so that the printer's addresses can be merged.
constexpr Question kMac[] = {
    {"ifType", "MAC address"},
    {"ifPhysAddress", "MAC address"},
    {"ifOperStatus", "MAC address"},
};
const Oid kPrinterDevice = {1, 3, 6, 1, 2, 1, 25, 3, 1, 5};  // hrDevicePrinter

constexpr size_t kMaxFailures = 8, kMaxRefusals = 2;  // in a column

// The first OID that is not within `oid` and comes after it.
Oid EndOf(Oid oid) {
    ++oid.back();
    return oid;
}

class Questioner {
  public:
    explicit Questioner(const Asker& asker, PrinterAnswers known = {})
        : caller_(asker),
          asker_{asker.getNext, asker.isV3, [this] { return MayGoOn(); }, nullptr},
          patient_(asker_, !known.values.empty()),
          answers_(std::move(known)),
          startMs_(caller_.NowMs()) {}

    template <size_t count>
    void Read(const Question (&questions)[count]) {
        for (const Question& question : questions) Read(question);
    }
    void Read(const Question& question) {
        const Oid& oid = OidOf(question.object);
        const auto printer = Printer();
        if (hasStopped_) {
            AddGap(question, false, "not asked for");
        } else if (question.way == Way::kColumn || (question.way == Way::kPrinter && !printer)) {
            ReadColumn(question, oid);
        } else if (question.way == Way::kFirst) {
            const Answer answer = Ask(oid);
            Handle(question, answer, IsWithin(answer.oid, oid), EndOf(oid));
        } else {
            ReadRow(question, Append(oid, {question.way == Way::kScalar ? 0 : *printer}));
        }
    }
    void LeaveOut(const Question& question) { AddGap(question, false, ""); }
    bool IsStateUnread() const { return host::IsStateUnread(answers_); }
    // Only if the printer itself gives none.
    void ReadEntitySerial(Way way) {
        if (!HasSerial("prtGeneralSerialNumber"))
            Read(Question{"entPhysicalSerialNum", "serial number", way});
    }
    PrinterAnswers Finish() {
        answers_.spentMs = caller_.NowMs() - startMs_;
        return std::move(answers_);
    }

    // The index of the first printer.
    std::optional<uint32_t> Printer() const {
        const auto printers = PrintersOf(
            answers_,
            {"hrPrinterStatus", "hrPrinterDetectedErrorState", "prtGeneralCurrentLocalization"});
        return printers.empty() ? std::nullopt : std::optional(printers.front());
    }

    // For supplies, if none of them has a colour in its name.
    void ReadColours() {
        const Oid& column = OidOf("prtMarkerSuppliesDescription");
        const std::vector<Oid> rows = RowsOf(answers_, column);
        const bool isNamed = AnyOf(rows, [&](const Oid& row) {
            return FindSupplyColour(answers_.values.at(Append(column, row)).bytes) != nullptr;
        });
        if (isNamed || rows.empty() || hasStopped_) return;
        for (const char* object : {"prtMarkerSuppliesColorantIndex", "prtMarkerColorantValue"})
            Read(Question{object, "supplies"});
    }

    bool HasSerial(const char* object) const {
        const Oid& column = OidOf(object);
        return AnyOf(RowsOf(answers_, column), [&](const Oid& row) {
            const std::string& bytes = answers_.values.at(Append(column, row)).bytes;
            return bytes.find_first_not_of(std::string_view(" \0", 2)) != std::string::npos;
        });
    }

  private:
    void ReadRow(const Question& question, const Oid& oid) {
        if (IsMisencoded(oid)) {
            const Answer first = Ask(OidOf(question.object));
            if (first.status != Status::kAnswered) return AddGap(question, first);
            if (first.oid == oid) return Save(first);
            AddGap(question, true, "the printer's index is over 16383 and cannot be requested");
        } else if (answers_.values.count(oid) == 0) {
            const Answer answer = Ask(JustBefore(oid));
            Handle(question, answer, answer.oid == oid, oid);
            // Some devices give their printer another number in the Printer MIB.
            const Oid& column = OidOf("prtGeneralSerialNumber");
            if (answer.status != Status::kAnswered || answer.oid == oid || !IsWithin(oid, column))
                return;
            const std::vector<uint32_t> listed = PrintersOf(answers_);
            if (listed.empty()) return;
            const Answer first = Ask(column);
            if (first.status == Status::kAnswered && IsWithin(first.oid, column) &&
                !Contains(listed, first.oid.back()))
                Save(first);
        }
    }

    // `last`: the last OID that the variable may have.
    void Handle(const Question& question, const Answer& answer, bool isWanted, const Oid& last) {
        if (answer.status == Status::kAnswered) {
            if (isWanted) Save(answer);
        } else if (!IsOnlyThisOne(answer) || GetsPast(last, question.way == Way::kScalar)) {
            AddGap(question, answer);
        }
    }

    void ReadColumn(const Question& question, const Oid& column) {
        Oid asked = column;
        std::optional<Answer> unclear;  // a failure: of a row, or of what follows the column
        for (size_t rows = 0, failures = 0; rows < kMaxRows; ++rows) {
            const Answer answer = Ask(asked);
            if (answer.status != Status::kAnswered) {
                const auto row = RowAfter(column, asked);
                if (row && IsOnlyThisOne(answer)) {
                    unclear = answer;
                } else if (!IsOnlyThisOne(answer) || GetsPast(EndOf(column))) {
                    AddGap(question, answer);
                } else {
                    return;
                }
                if (hasStopped_) return;
                const size_t most = refusals_ == 0 ? kMaxFailures : kMaxRefusals;
                if (++failures > most) return AddGap(question, answer);
                asked = row ? *row : RowOfNextColumn(column, asked);
                continue;
            }
            if (unclear) AddGap(question, *unclear);
            unclear.reset();
            const WalkStep step = StepOf(column, asked, answer, asker_.isV3);
            if (step == WalkStep::kNotIncreasing) AddGap(question, true, "OID not increasing");
            if (step == WalkStep::kEnd || step == WalkStep::kNotIncreasing) return;
            Save(answer);
            asked = answer.oid;
            if (step == WalkStep::kVariable) continue;
            if (!IsEnough(question))
                AddGap(question, true,
                       "a row's index is over 16383, so what follows cannot be requested");
            return;
        }
        if (!IsEnough(question)) AddGap(question, true, "more rows than can be read");
    }

    // The row after that of `asked` in a later column; without one, the next number.
    Oid RowOfNextColumn(const Oid& column, const Oid& asked) {
        const Oid table = Head(column, column.size() - 1);
        Oid other = EndOf(column);
        for (int attempt = 0; attempt < 2; ++attempt) {  // the table may lack the first one
            const Answer answer = Ask(Append(other, Tail(asked, column.size())));
            const bool isCell = IsWithin(answer.oid, table) && answer.oid.size() > column.size();
            if (answer.status != Status::kAnswered || !isCell) break;
            Oid row = Append(column, Tail(answer.oid, column.size()));
            if (row > asked) return row;
            other = Head(answer.oid, column.size());
        }
        const Oid printerMib = {1, 3, 6, 1, 2, 1, 43};
        Oid row = asked;
        if (asked == column && Printer() && IsWithin(column, printerMib)) row.push_back(*Printer());
        if (asked == column) row.push_back(0);
        return EndOf(row);
    }

    // Whether a request for what follows `oid` gets past the variable that cannot be read. If
    // `isLikely`, a device mostly has what `oid` names: then two in a row may be unreadable.
    bool GetsPast(const Oid& oid, bool isLikely = false) {
        const Status status = IsMisencoded(oid) ? Status::kNoAnswer : Ask(oid).status;
        const bool isRefused = refusals_ > 1;  // this request, and the one before
        return status == Status::kAnswered || isRefused ||
               (isLikely && status == Status::kUnreadable);
    }

    // Computers that share a printer list hundreds of devices after it.
    bool IsEnough(const Question& question) const {
        return std::string_view(question.object) == "hrDeviceType" && !PrintersOf(answers_).empty();
    }

    // Where to continue after a row that could not be read: at the first row after `asked` in a
    // column read before.
    std::optional<Oid> RowAfter(const Oid& column, const Oid& asked) const {
        std::optional<Oid> first;
        for (const Oid& cell : RowsOf(answers_, Head(column, column.size() - 1))) {
            const Oid row = Append(column, Tail(cell, 1));
            if (row > asked && (!first || row < *first)) first = row;
        }
        return first;
    }

    bool MayGoOn() {
        if (stopReason_) return false;
        if (caller_.NowMs() - startMs_ >= kMaxReadMs) stopReason_ = "not read within 2 minutes";
        if (!caller_.MayGoOn()) stopReason_ = "stopped";
        return !stopReason_;
    }

    Answer Ask(const Oid& oid) {
        Answer answer = MayGoOn() ? patient_.GetNextSoon(oid) : Failed(Status::kNoAnswer, oid);
        // A device that lets its user read other variables refuses only this one. If it refuses
        // many in a row, it refuses all.
        constexpr size_t kManyRefusals = 40;
        if (answer.status == Status::kAnswered) refusals_ = 0;
        const bool isOnlyThisOne = answer.status == Status::kRefused && !answers_.values.empty() &&
                                   (++refusals_ < kManyRefusals || Printer());
        if (isOnlyThisOne) return Failed(Status::kUnreadable, oid, Problem(answer));
        const Oid* const object = StandardObjectOf(oid);
        // The silent variable may come after a table that the device lacks, or after its last row.
        // This request shows it: then no more of the table is asked for.
        if (answer.status == Status::kSilentHere && object && MayGoOn())
            patient_.GetNextSoon(EndOf(Head(*object, object->size() - 1)));
        const Oid afterMib2 = {1, 3, 6, 1, 2, 2};
        const bool isError = MayGoOn() && patient_.IsError(oid, answer, afterMib2);
        return isError ? Failed(Status::kUnreadable, oid, kErrorAnswer) : answer;
    }

    void Save(const Answer& answer) {
        if (!IsNoValue(answer.type)) answers_.values[answer.oid] = answer;
    }

    // The failure ends the reading, unless it is of this variable only.
    void AddGap(const Question& question, const Answer& failure) {
        const std::string problem = stopReason_ ? stopReason_ : Problem(failure);
        AddGap(question, true, problem);
        hasStopped_ = stopReason_ || !IsOnlyThisOne(failure);
        if (!hasStopped_) return;
        answers_.lastStatus = failure.status;
        answers_.lastProblem = problem;
        answers_.isStopped = stopReason_ != nullptr;
    }

    void AddGap(const Question& question, bool wasAsked, std::string reason) {
        Gap gap = {question.subject, wasAsked ? question.object : "", std::move(reason)};
        const auto isSame = [&](const Gap& known) {
            return known.subject == gap.subject && known.object == gap.object;
        };
        if (!AnyOf(answers_.gaps, isSame)) answers_.gaps.push_back(std::move(gap));
    }

    const Asker& caller_;
    const Asker asker_;  // with the time limit
    PatientAsker patient_;
    PrinterAnswers answers_;
    int64_t startMs_;
    bool hasStopped_ = false;
    size_t refusals_ = 0;               // since the last answer
    const char* stopReason_ = nullptr;  // set by the caller or the time limit
};

}  // namespace

std::vector<Oid> RowsOf(const PrinterAnswers& answers, const Oid& column) {
    std::vector<Oid> rows;
    for (auto at = answers.values.upper_bound(column);
         at != answers.values.end() && IsWithin(at->first, column); ++at)
        rows.push_back(Tail(at->first, column.size()));
    return rows;
}

std::vector<uint32_t> PrintersOf(const PrinterAnswers& answers,
                                 std::initializer_list<const char*> otherwise) {
    std::vector<uint32_t> printers;
    const Oid& types = OidOf("hrDeviceType");
    for (const Oid& row : RowsOf(answers, types)) {
        const Answer& type = answers.values.at(Append(types, row));
        if (row.size() == 1 && type.type == kObjectIdentifier &&
            DecodeOid(type.bytes) == kPrinterDevice)
            printers.push_back(row.back());
    }
    for (const char* column : otherwise) {
        if (!printers.empty()) break;
        const std::vector<Oid> rows = RowsOf(answers, OidOf(column));
        if (!rows.empty()) printers = {rows.front().front()};
    }
    return printers;
}

bool IsStateUnread(const PrinterAnswers& answers) {
    return AnyOf(answers.gaps, [](const Gap& gap) { return gap.object == "hrPrinterStatus"; });
}

PrinterAnswers ReadPrinter(const Asker& asker, bool withInterfaces) {
    Questioner questioner(asker);
    questioner.Read(kQuestions);
    if (!questioner.Printer()) questioner.Read(kPrinterMib);
    questioner.Read(kMac);
    questioner.ReadEntitySerial(Way::kColumn);
    if (withInterfaces) questioner.Read(kInterfaceQuestions);
    return questioner.Finish();
}

PrinterAnswers ReadState(const Asker& asker, PrinterAnswers known) {
    Questioner questioner(asker, std::move(known));
    questioner.Read({"hrPrinterStatus", kState, Way::kFirst});  // its row also names the printer
    if (questioner.IsStateUnread())
        questioner.Read({"hrPrinterDetectedErrorState", kState, Way::kFirst});
    if (!questioner.Printer()) questioner.Read({"hrDeviceType", kState, Way::kFirst});
    if (!questioner.Printer()) questioner.Read(kPrinterMib);
    for (const char* object : {"hrPrinterDetectedErrorState", "hrDeviceStatus", "hrDeviceDescr"})
        if (questioner.Printer()) questioner.Read({object, kState, Way::kPrinter});
    for (const Question& question : kQuestions)
        if (std::string_view(question.subject) != kState) questioner.LeaveOut(question);
    questioner.LeaveOut(kMac[0]);
    return questioner.Finish();
}

PrinterAnswers ReadForList(const Asker& asker, PrinterAnswers known) {
    EraseIf(known.gaps, [](const Gap& gap) { return gap.subject != kState; });
    Questioner questioner(asker, std::move(known));
    for (const Question& question : kQuestions) {
        if (question.isListed) questioner.Read(question);
    }
    questioner.ReadColours();
    questioner.ReadEntitySerial(Way::kFirst);
    if (questioner.HasSerial("prtGeneralSerialNumber") ||
        questioner.HasSerial("entPhysicalSerialNum")) {
        questioner.LeaveOut(kMac[0]);
    } else {
        questioner.Read(kMac);
    }
    return questioner.Finish();
}

}  // namespace vndiscover::host
