#include "model/scan/scan.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "model/scan/device_merge.h"
#include "values/object_names.h"
#include "values/ranges.h"

namespace vndiscover::host {

Oid ObjectOf(const Oid& variable) {
    const Oid* const object = StandardObjectOf(variable);
    if (!object) return variable.empty() ? Oid() : Oid(variable.begin(), variable.end() - 1);
    const Oid &first = OidOf("prtMarkerSuppliesClass"), &last = OidOf("prtMarkerSuppliesLevel");
    return first <= *object && *object <= last ? last : *object;
}

namespace {

// What answers to one question have in common. The OID is that of a variable, or asked for by a
// sweep.
using Question = std::tuple<std::string, SweepKind, AnswerForm, bool, size_t, Oid>;
// An answer is replaced only by one of the same origin.
using Origin = std::tuple<std::string, SweepKind, bool>;

bool IsVariable(const ScanSweep& sweep) { return sweep.form == AnswerForm::kVariable; }

// A variable has the same value by whichever protocol and at whichever address of its device it is
// read. `isAlone`: the question is for the variable only, not for its object.
Question QuestionOf(const ScanSweep& sweep, const ScanAnswer& answer, bool isAlone) {
    if (!IsVariable(sweep))
        return {answer.address, sweep.kind, sweep.form, sweep.useIPv6, sweep.login, sweep.oid};
    const Oid& oid = answer.answer.oid;
    return {"", {}, sweep.form, false, 0, isAlone ? oid : ObjectOf(oid)};
}

Origin OriginOf(const ScanSweep& sweep, const ScanAnswer& answer) {
    const bool isVariable = IsVariable(sweep);
    return {isVariable ? "" : answer.address, isVariable ? SweepKind() : sweep.kind, isVariable};
}

bool IsOfState(const Oid& oid) {
    return IsAny(oid, {"prtAlertSeverityLevel", "prtAlertGroup", "prtAlertCode",
                       "prtAlertDescription", "prtAlertTime", "prtConsoleDisplayBufferText"});
}

}  // namespace

bool IsAny(const Oid& oid, std::initializer_list<const char*> objects) {
    return AnyOf(objects, [&](const char* object) { return IsWithin(oid, OidOf(object)); });
}

bool IsState(const Oid& oid) {
    return IsAny(oid, {"hrDeviceStatus", "hrPrinterStatus", "hrPrinterDetectedErrorState"});
}

std::vector<size_t> CurrentAnswers(const Scan& scan, const std::vector<size_t>& answers) {
    if (answers.size() < 2) return answers;
    std::map<Question, size_t> sweeps;     // the last sweep with an answer to it
    std::map<SweepKind, size_t> readings;  // the last one that replaces all by this protocol
    size_t state = 0;                      // the last sweep with a state
    const auto raise = [](size_t& last, size_t sweep) { last = std::max(last, sweep); };
    for (const size_t index : answers) {
        const ScanAnswer& answer = scan.answers[index];
        const ScanSweep& sweep = scan.sweeps[answer.sweep];
        raise(sweeps[QuestionOf(sweep, answer, sweep.isCut)], answer.sweep);
        if (!IsVariable(sweep)) continue;
        for (const SweepKind kind : {SweepKind::kSnmpV1, SweepKind::kSnmpV3}) {
            if (sweep.isComplete || (sweep.isList && kind != sweep.kind))
                raise(readings[kind], answer.sweep);
        }
        if (IsState(answer.answer.oid)) raise(state, answer.sweep);
    }
    const auto isFormer = [](const auto& known, const auto& key, size_t sweep) {
        const auto found = known.find(key);
        return found != known.end() && found->second > sweep;
    };
    std::vector<size_t> current;
    for (const size_t index : answers) {
        const ScanAnswer& answer = scan.answers[index];
        const ScanSweep& sweep = scan.sweeps[answer.sweep];
        const bool isOfFormerReading =
            IsVariable(sweep) && (isFormer(readings, sweep.kind, answer.sweep) ||
                                  (IsOfState(answer.answer.oid) && state > answer.sweep));
        if (!isOfFormerReading &&
            !isFormer(sweeps, QuestionOf(sweep, answer, false), answer.sweep) &&
            !isFormer(sweeps, QuestionOf(sweep, answer, true), answer.sweep))
            current.push_back(index);
    }
    return current;
}

std::vector<size_t> LastCompleteSweeps(const Scan& scan, size_t running) {
    std::map<std::tuple<size_t, SweepKind, AnswerForm, bool, Oid>, size_t> last;
    for (size_t index = 0; index < scan.sweeps.size(); ++index) {
        const ScanSweep& one = scan.sweeps[index];
        if (one.search != 0 && one.search != running && one.isComplete)
            last[{one.login, one.kind, one.form, one.useIPv6, one.oid}] = index;
    }
    std::vector<size_t> sweeps;
    sweeps.reserve(last.size());
    for (const auto& [question, index] : last) sweeps.push_back(index);
    return sweeps;
}

namespace {

// Returns the new numbers of those that remain.
std::vector<size_t> RemoveFormerSweeps(Scan& scan, const std::vector<size_t>& current) {
    size_t lastSearch = 1;  // 0 is none
    for (const ScanSweep& sweep : scan.sweeps) lastSearch = std::max(lastSearch, sweep.search);
    std::set<size_t> needed;
    for (const size_t index : current) needed.insert(scan.answers[index].sweep);
    for (const size_t index : LastCompleteSweeps(scan)) needed.insert(index);
    std::vector<size_t> numbers;
    std::vector<ScanSweep> sweeps;
    for (const ScanSweep& sweep : scan.sweeps) {
        const size_t index = numbers.size();
        numbers.push_back(sweeps.size());
        if (needed.count(index) != 0 || sweep.search == lastSearch) sweeps.push_back(sweep);
    }
    scan.sweeps = std::move(sweeps);
    return numbers;
}

// By device, since the answers of one that was replaced at its address are still its own; and by
// address, since a reading there may be all that says whose the other answers are.
std::vector<std::vector<size_t>> AnswersByPlace(const Scan& scan) {
    std::vector<std::vector<size_t>> groups;
    for (const FoundDevice& device : MakeDevices(scan)) {
        std::map<std::string, std::vector<size_t>> byAddress;
        for (const size_t index : device.answers)
            byAddress[scan.answers[index].address].push_back(index);
        for (auto& [address, answers] : byAddress) groups.push_back(std::move(answers));
    }
    return groups;
}

}  // namespace

std::vector<size_t> RemoveFormerAnswers(Scan& scan) {
    std::vector<size_t> current;
    std::vector<size_t> successors(scan.answers.size());  // itself if it is current
    const auto originOf = [&](size_t index) {
        return OriginOf(scan.sweeps[scan.answers[index].sweep], scan.answers[index]);
    };
    for (const std::vector<size_t>& answers : AnswersByPlace(scan)) {
        std::map<Origin, size_t> latest;
        for (const size_t index : CurrentAnswers(scan, answers)) {
            latest[originOf(index)] = index;
            current.push_back(index);
        }
        for (const size_t index : answers) successors[index] = latest.at(originOf(index));
    }
    std::sort(current.begin(), current.end());
    std::vector<size_t> places(scan.answers.size());
    for (size_t place = 0; place < current.size(); ++place) {
        places[current[place]] = place;
        successors[current[place]] = current[place];
    }
    for (size_t& successor : successors) successor = places[successor];
    const std::vector<size_t> numbers = RemoveFormerSweeps(scan, current);
    std::vector<ScanAnswer> answers;
    answers.reserve(current.size());
    for (const size_t index : current) {
        answers.push_back(std::move(scan.answers[index]));
        answers.back().sweep = numbers[answers.back().sweep];
    }
    scan.answers = std::move(answers);
    for (auto& [one, other] : scan.splits) {
        one = successors[one];
        other = successors[other];
    }
    return successors;
}

}  // namespace vndiscover::host
