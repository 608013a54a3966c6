#include "window/pages/pages.h"

#include "model/computer/doctor_text.h"
#include "model/printer/printer_facts.h"
#include "platform/wide_text.h"
#include "values/plain_text.h"
#include "values/value_text.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

// Facts in order; those without text are left out.
class Page {
  public:
    void Add(const std::wstring& label, const std::string& text,
             std::optional<int> percent = std::nullopt, Fact::Mark mark = Fact::kNone) {
        if (!text.empty()) facts.push_back({label, ToWide(text), percent, mark});
    }
    void Add(unsigned label, const std::string& text) { Add(Text(label), text); }
    std::vector<Fact> facts;
};

std::string Joined(const std::string& one, const char* separator, const std::string& other) {
    return one.empty() || other.empty() ? one + other : one + separator + other;
}

std::string AlertText(const Alert& alert) {
    const std::string what = Joined(SpacedWords(alert.group), ", ", SpacedWords(alert.code));
    return Joined(SpacedWords(alert.severity), ": ",
                  alert.description.empty() ? what : alert.description);
}

void AddPrinter(Page& page, const PrinterFacts& facts) {
    page.Add(IDS_FACT_LOCATION, facts.location);
    page.Add(IDS_FACT_DESCRIPTION, facts.description);
    if (facts.upTicks) {
        const std::string text = TickText(*facts.upTicks);
        page.Add(IDS_FACT_UP, text.substr(0, text.size() - 3));  // without hundredths
    }
    page.Add(IDS_FACT_DEVICE, SpacedWords(facts.deviceStatus));
    page.Add(IDS_FACT_PRINTER, SpacedWords(facts.printerStatus));
    std::string errors;
    for (const std::string& word : facts.errors) errors = Joined(errors, ", ", SpacedWords(word));
    page.Add(IDS_FACT_ERRORS, errors);
    for (const Alert& alert : facts.alerts) page.Add(IDS_FACT_ALERT, AlertText(alert));
    for (const std::string& line : facts.panel) page.Add(IDS_FACT_PANEL, line);
    for (const PageCount& count : facts.pageCounts)
        page.Add(IDS_FACT_PRINTED, Joined(std::to_string(count.count), " ", count.unit));
    for (const Supply& supply : facts.supplies) {
        const std::string name =
            supply.description.empty() ? SpacedWords(supply.type) : supply.description;
        page.Add(ToWide(name), LevelText(supply.level), PercentOf(supply.level));
    }
    for (const Tray& tray : facts.trays) {
        page.Add(ToWide(tray.name), Joined(LevelText(tray.level), ", ", tray.medium),
                 PercentOf(tray.level));
    }
}

void AddPlan(Page& page, unsigned label, const SweepPlan& plan) {
    for (const SweepRow& row : plan.rows) {
        const std::initializer_list<std::wstring> values = {
            ToWide(row.address), ToWide(row.adapter), ToWide(Joined(row.kind, ", ", row.state)),
            std::to_wstring(row.seconds)};
        page.facts.push_back(
            {Text(label),
             Text(row.seconds != 0 ? IDS_DOCTOR_SECONDS : IDS_DOCTOR_NOT_SENT, values),
             {},
             {}});
    }
}

void AddDevice(Page& page, const DeviceReport& device) {
    if (!device.diagnosis) {
        page.facts.push_back({Text(IDS_DOCTOR_VERDICT), Text(IDS_DOCTOR_ASKING), {}, {}});
        return;
    }
    const HostDiagnosis& diagnosis = *device.diagnosis;
    page.Add(IDS_DOCTOR_PING, StepText(diagnosis.ping));
    page.Add(IDS_DOCTOR_V1, StepText(diagnosis.v1));
    page.Add(IDS_DOCTOR_ENGINE, StepText(diagnosis.discovery));
    page.Add(IDS_DOCTOR_USER, StepText(diagnosis.user));
    page.Add(IDS_DOCTOR_VERDICT, VerdictOn(diagnosis));
    if (device.isOnOwnNetwork == false) page.Add(IDS_DOCTOR_NOTE, kElsewhere);
}

}  // namespace

std::vector<Fact> DetailFacts(const Session& session) {
    Page page;
    const DeviceRow* row = session.view.SelectedRow();
    const FoundDevice* device = row ? session.DeviceOf(*row) : nullptr;
    if (!device) return {{L"", Text(IDS_NO_SELECTION), {}, {}}};
    page.Add(IDS_COLUMN_NAME, device->name);
    page.Add(IDS_COLUMN_MODEL, device->model);
    page.Add(IDS_FACT_ADDRESS, row->Text(Column::kAddress));
    page.Add(IDS_FACT_SERIAL, row->Text(Column::kSerial));
    page.Add(IDS_COLUMN_MAC, row->Text(Column::kMac));
    page.Add(IDS_COLUMN_PROTOCOLS, row->Text(Column::kProtocols));
    const PrinterAnswers variables = VariablesOf(session.GetScan(), row->answers);
    if (!variables.values.empty()) AddPrinter(page, FactsOf(variables));
    for (const std::string& endpoint : device->identity.Of(MergeKey::kEndpoint))
        page.Add(IDS_FACT_ENDPOINT, PlainText(endpoint));
    for (const Merge& merge : device->merges) {
        const Fact fact = {
            Text(IDS_FACT_MERGED),
            Text(IDS_MERGED_BY, {ToWide(KeyName(merge.key)), ToWide(PlainText(merge.value))}),
            {},
            Fact::kNone};
        // Several answers are often merged by the same key.
        if (page.facts.back() == fact) continue;
        page.facts.push_back(fact);
    }
    for (const Gap& gap : session.GapsOf(*row)) {
        const std::string what = gap.subject + (gap.object.empty() ? "" : " (" + gap.object + ")");
        page.Add(IDS_FACT_NOT_READ, what + ": " + gap.reason);
    }
    if (variables.values.empty() && !session.WasAsked(*row))
        page.facts.push_back({L"", Text(IDS_NOT_ASKED), {}, {}});
    return page.facts;
}

std::vector<Fact> DoctorFacts(const ComputerReport& report, const DeviceReport* device) {
    Page page;
    if (device) AddDevice(page, *device);
    for (const std::string& cause : report.causes) page.Add(IDS_DOCTOR_CAUSE, cause);
    if (report.causes.empty())
        page.facts.push_back({Text(IDS_DOCTOR_CAUSE), Text(IDS_DOCTOR_NO_CAUSE), {}, {}});
    for (const std::string& note : report.notes) page.Add(IDS_DOCTOR_NOTE, note);
    AddPlan(page, IDS_DOCTOR_IPV4, report.ipv4);
    AddPlan(page, IDS_DOCTOR_IPV6, report.ipv6);
    for (const Route& route : report.routes) {
        const std::wstring way =
            route.source.empty()
                ? Text(IDS_DOCTOR_NO_ROUTE)
                : Text(IDS_DOCTOR_FROM, {ToWide(route.source), ToWide(route.adapter)});
        page.facts.push_back({Text(IDS_DOCTOR_ROUTE, {ToWide(route.target)}), way, {}, {}});
    }
    for (const std::string& line : FirewallLines(report.firewall))
        page.Add(IDS_DOCTOR_FIREWALL, line);
    page.Add(IDS_DOCTOR_LOG, LogText(report.log));
    return page.facts;
}

std::vector<Fact> CompareFacts(const std::vector<FoundDevice>& before,
                               const std::vector<FoundDevice>& after) {
    const Comparison comparison = CompareDevices(before, after);
    if (comparison.IsEqual()) return {{L"", Text(IDS_COMPARE_EQUAL), {}, {}}};
    Page page;
    for (const size_t index : comparison.added)
        page.Add(Text(IDS_COMPARE_NEW), DeviceLine(after[index]), {}, Fact::kNew);
    for (const size_t index : comparison.gone)
        page.Add(Text(IDS_COMPARE_GONE), DeviceLine(before[index]), {}, Fact::kGone);
    for (const DeviceChange& change : comparison.changed) {
        page.Add(Text(IDS_COMPARE_CHANGED), DeviceLine(after[change.after]), {}, Fact::kChanged);
        for (const FieldChange& field : change.fields) {
            page.facts.push_back(
                {L"",
                 Text(IDS_COMPARE_FIELD, {ToWide(field.field), ToWide(PlainText(field.before)),
                                          ToWide(PlainText(field.after))}),
                 {},
                 {}});
        }
    }
    return page.facts;
}

}  // namespace vndiscover::host
