#include "model/scan/device_writer.h"

#include <initializer_list>
#include <utility>

#include "model/asking/json_request.h"
#include "values/object_names.h"
#include "values/ranges.h"
#include "values/text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

// What may be letters by chance: error bits, an address.
void AddBinary(cJSON* object, const Oid& oid, const std::string& bytes) {
    AddOctets(object, bytes);
    AddText(object, "text", FormatNamedValue(oid, kOctetString, bytes));
}

using Texts = std::initializer_list<std::pair<const char*, std::string_view>>;

void AddMembers(cJSON* object, Texts texts) {
    for (const auto& [name, text] : texts) AddText(object, name, text);
}

void AddOrNull(cJSON* object, Texts texts) {
    for (const auto& [name, text] : texts) {
        if (text.empty()) {
            cJSON_AddNullToObject(object, name);
        } else {
            AddText(object, name, text);
        }
    }
}

template <class Number>
void AddOrNull(cJSON* object, const char* name, const std::optional<Number>& number) {
    if (number) {
        AddNumber(object, name, *number);
    } else {
        cJSON_AddNullToObject(object, name);
    }
}

void AddLevel(cJSON* object, const Level& level) {
    AddOrNull(object, "level", level.level);
    AddOrNull(object, "maximum", level.maximum);
    AddOrNull(object, {{"unit", level.unit}});
    AddOrNull(object, "percent", PercentOf(level));
    AddText(object, "text", LevelText(level));
}

// What a report and a list say of a printer.
void AddPrinter(cJSON* root, const PrinterFacts& facts) {
    AddOrNull(root, {{"model", facts.model},
                     {"serialNumber", facts.serialNumber},
                     {"name", facts.name},
                     {"location", facts.location},
                     {"deviceStatus", facts.deviceStatus},
                     {"printerStatus", facts.printerStatus}});
    if (facts.errors) {
        AddTexts(root, "errors", *facts.errors);
        AddText(root, "errorBits", HexText(facts.errorBits, " "));
    } else {
        cJSON_AddNullToObject(root, "errors");
        cJSON_AddNullToObject(root, "errorBits");
    }
    AddObjects(root, "pageCounts", facts.pageCounts, [](cJSON* object, const PageCount& count) {
        AddNumber(object, "count", count.count);
        AddOrNull(object, {{"unit", count.unit}});
    });
    AddObjects(root, "supplies", facts.supplies, [](cJSON* object, const Supply& supply) {
        AddOrNull(object, {{"description", supply.description},
                           {"colour", supply.colour},
                           {"type", supply.type}});
        cJSON_AddBoolToObject(object, "isReceptacle", supply.level.isReceptacle);
        AddLevel(object, supply.level);
    });
}

void AddPlan(cJSON* root, const char* name, const SweepPlan& plan) {
    cJSON* object = cJSON_AddObjectToObject(root, name);
    AddNumber(object, "adapters", plan.adapters);
    AddNumber(object, "seconds", plan.seconds);
    AddObjects(object, "addresses", plan.rows, [](cJSON* element, const SweepRow& row) {
        AddMembers(element, {{"address", row.address},
                             {"adapter", row.adapter},
                             {"description", row.description},
                             {"kind", row.kind},
                             {"state", row.state}});
        AddNumber(element, "seconds", row.seconds);
    });
}

void AddFirewall(cJSON* root, const FirewallReport& report) {
    cJSON* object = cJSON_AddObjectToObject(root, "firewall");
    cJSON_AddBoolToObject(object, "isKnown", report.isKnown);
    cJSON_AddBoolToObject(object, "isOverriddenByPolicy", report.isOverridden);
    AddObjects(object, "ports", report.ports, [](cJSON* element, const PortVerdict& verdict) {
        AddText(element, "profile", verdict.profile);
        AddNumber(element, "port", verdict.port);
        AddMembers(element,
                   {{"answers", PassageText(verdict.passage)}, {"reason", verdict.reason}});
    });
    AddTexts(object, "commands", report.commands);
}

// Bits and addresses are not text, even if all of their bytes are letters.
bool HasBinary(const Answer& answer) { return answer.type == kOctetString && IsBinary(answer.oid); }

// Numbers as numbers, text as text, anything else as hex digits with a member that says so.
void AddValue(cJSON* element, const Answer& answer) {
    if (IsNoValue(answer.type)) {
        cJSON_AddNullToObject(element, "value");
    } else if (const auto number = NumberText(answer.type, answer.bytes)) {
        AddNumber(element, "value", *number);
    } else if (answer.type == kOctetString && IsPrintable(answer.bytes) && !HasBinary(answer)) {
        AddText(element, "value", answer.bytes);
    } else if (answer.type == kOctetString || answer.type == kOpaque) {
        AddOctets(element, answer.bytes);
    } else {
        const std::string text = FormatValue(answer.type, answer.bytes);
        AddText(element, "value", text);
        if (!text.empty() && text == HexText(answer.bytes, " "))
            AddText(element, "encoding", "hex");
    }
    if (answer.wholeSize > answer.bytes.size()) AddNumber(element, "wholeSize", answer.wholeSize);
}

std::string ValueText(const Answer& answer, bool withNames) {
    if (answer.type == kNull) return "no value";
    if (IsNoValue(answer.type)) return "no value (" + TypeName(answer.type) + ")";
    std::string line = TypeName(answer.type) + ": ";
    line += answer.bytes.empty() ? "\"\""
            : withNames          ? FormatNamedValue(answer.oid, answer.type, answer.bytes)
                                 : FormatValue(answer.type, answer.bytes);
    return line + CutNote(answer);
}

JsonItem ElementOf(const Answer& answer, bool withNames) {
    JsonItem element(cJSON_CreateObject());
    AddText(element.get(), "oid", OidToText(answer.oid));
    if (withNames) AddText(element.get(), "name", NameText(answer.oid));
    if (answer.status == Status::kAnswered) {
        AddText(element.get(), "type", TypeName(answer.type));
        AddValue(element.get(), answer);
        const std::string words = FormatNamedValue(answer.oid, answer.type, answer.bytes);
        if ((withNames || HasBinary(answer)) && words != FormatValue(answer.type, answer.bytes))
            AddText(element.get(), "text", words);
    } else {
        AddText(element.get(), "error", Problem(answer));
    }
    return element;
}

std::string Line(const JsonItem& item) { return CompactJson(item.get()) + "\n"; }

}  // namespace

std::string DeviceWriter::Bytes(std::string_view value) const {
    // Only an OCTET STRING can be longer than 127 bytes.
    if (values_.kind == ValueKind::kRaw) return AnsweredWith({}, kOctetString, value).bytes;
    const auto answers = AnswersOf(ParseDocument(value).get());
    return answers.empty() ? std::string(value) : answers.front().second;
}

void DeviceWriter::ShowOctets(cJSON* document) const {
    const auto asked = AnswersOf(ParseDocument(values_.request).get());
    for (const auto& answer : AnswersOf(document)) {
        const auto oid = ParseOid(answer.first);
        if (!oid || !IsBinary(*oid) || Contains(asked, answer)) continue;
        JsonItem octets(cJSON_CreateObject());
        AddBinary(octets.get(), *oid, values_.octetsOf(answer.second));
        cJSON_ReplaceItemInObjectCaseSensitive(cJSON_GetObjectItem(document, "GET"),
                                               answer.first.c_str(), octets.release());
    }
}

JsonItem DeviceWriter::Element(std::string_view address, std::string_view value) const {
    JsonItem element(cJSON_CreateObject());
    AddText(element.get(), "address", address);
    if (JsonItem document = values_.kind == ValueKind::kDocument ? ParseDocument(value) : nullptr) {
        ShowOctets(document.get());
        cJSON_AddItemToObject(element.get(), "value", document.release());
    } else if (values_.kind == ValueKind::kDocument) {
        AddText(element.get(), "value", value);
    } else if (const std::string bytes = Bytes(value); IsBinary(values_.oid) && !bytes.empty()) {
        const bool isText = values_.kind == ValueKind::kAnswer;
        AddBinary(element.get(), values_.oid, isText ? values_.octetsOf(bytes) : bytes);
    } else {
        AddText(element.get(), "value", IsPrintable(bytes) ? bytes : ShownValue(bytes));
        if (bytes.empty()) AddText(element.get(), "text", NoValue());
    }
    return element;
}

std::string DeviceWriter::OneLine(std::string_view value) const {
    if (values_.kind != ValueKind::kDocument) return ShownValue(Bytes(value));
    const JsonItem document = ParseDocument(value);
    return document ? CompactJson(document.get()) : PlainText(value);
}

const char* DeviceWriter::NoValue() const {
    return values_.isV3 ? "no value, or neither an INTEGER nor a text of up to 126 bytes"
                        : "no value, or too long for SNMPv1";
}

std::string DeviceWriter::TableRow(std::string_view address, std::string_view value) const {
    const JsonItem document = values_.kind == ValueKind::kDocument ? ParseDocument(value) : nullptr;
    const auto answers = AnswersOf(document.get());
    const auto shown = [this](const std::string& text) {
        return text.empty() ? "(" + std::string(NoValue()) + ")" : text;
    };
    if (answers.empty()) {
        return Padded(PlainText(address), AddressWidth()) + shown(OneLine(value)) + "\n";
    }
    std::string rows;
    for (const auto& [oid, answer] : answers) {
        rows += Padded(rows.empty() ? PlainText(address) : "", AddressWidth()) +
                Padded(PlainText(oid), 29) + "  " + shown(ShownValue(answer)) + "\n";
    }
    return rows;
}

std::string DeviceWriter::Row(std::string_view address, std::string_view value) {
    if (format_ == Format::kJson) {
        array_.Add(Element(address, value).get());
        return array_.Flush();
    }
    if (format_ == Format::kCsv)
        return CsvCell(PlainText(address)) + "," + CsvCell(OneLine(value)) + "\n";
    const bool needsHead = isFirst_;
    isFirst_ = false;
    const std::string row = TableRow(address, value);
    return needsHead ? Padded("ADDRESS", AddressWidth()) + "VALUE\n" + row : row;
}

std::string DeviceWriter::End() { return format_ == Format::kJson ? array_.Finish() : ""; }

std::string VariableWriter::Row(const Answer& answer) {
    if (isJson_) {
        array_.Add(ElementOf(answer, withNames_).get());
        return array_.Flush();
    }
    if (answer.status != Status::kAnswered) return "";
    return (withNames_ ? NameText(answer.oid) : OidToText(answer.oid)) + " = " +
           ValueText(answer, withNames_) + "\n";
}

std::string CsvLine(const std::vector<std::string>& cells, const std::string& separator,
                    const char* lineEnd) {
    return JoinedAs(cells, CsvCell, separator) + lineEnd;
}

std::string PrinterJson(const PrinterFacts& facts, const std::string& host) {
    const JsonItem item(cJSON_CreateObject());
    cJSON* const root = item.get();
    AddText(root, "host", host);
    AddOrNull(root, "deviceIndex", facts.deviceIndex);
    AddPrinter(root, facts);
    AddOrNull(root, {{"description", facts.description}, {"macAddress", facts.macAddress}});
    AddOrNull(root, "upTicks", facts.upTicks);
    AddTexts(root, "panel", facts.panel);
    AddObjects(root, "trays", facts.trays, [](cJSON* object, const Tray& tray) {
        AddOrNull(object, {{"name", tray.name}, {"medium", tray.medium}});
        AddLevel(object, tray.level);
    });
    AddObjects(root, "alerts", facts.alerts, [](cJSON* object, const Alert& alert) {
        AddOrNull(object, {{"severity", alert.severity},
                           {"group", alert.group},
                           {"code", alert.code},
                           {"description", alert.description}});
        AddOrNull(object, "upTicks", alert.upTicks);
    });
    AddObjects(root, "interfaces", facts.interfaces, [](cJSON* object, const Interface& one) {
        AddOrNull(object, {{"description", one.description},
                           {"type", one.type},
                           {"speed", one.speed},
                           {"physicalAddress", one.physicalAddress},
                           {"adminStatus", one.adminStatus},
                           {"operStatus", one.operStatus}});
    });
    AddObjects(root, "notRead", facts.gaps, [](cJSON* object, const Gap& gap) {
        AddText(object, "subject", gap.subject);
        AddOrNull(object, {{"object", gap.object}});
        AddText(object, "reason", gap.reason);
    });
    return Line(item);
}

std::string ComputerJson(const ComputerReport& report) {
    const JsonItem root(cJSON_CreateObject());
    AddPlan(root.get(), "ipv4", report.ipv4);
    AddPlan(root.get(), "ipv6", report.ipv6);
    AddObjects(root.get(), "routes", report.routes, [](cJSON* element, const Route& route) {
        AddMembers(element, {{"target", route.target},
                             {"adapter", route.adapter},
                             {"source", route.source},
                             {"gateway", route.gateway}});
    });
    AddFirewall(root.get(), report.firewall);
    cJSON* log = cJSON_AddObjectToObject(root.get(), "log");
    cJSON_AddBoolToObject(log, "file", report.log.file);
    cJSON_AddBoolToObject(log, "debugger", report.log.debugger);
    AddTexts(root.get(), "causes", report.causes);
    AddTexts(root.get(), "notes", report.notes);
    return Line(root);
}

std::string HostJson(const HostDiagnosis& diagnosis, std::optional<bool> isOnOwnNetwork,
                     const std::string& host) {
    const JsonItem root(cJSON_CreateObject());
    AddText(root.get(), "host", host);
    for (const auto& [name, step] : {std::pair("ping", &diagnosis.ping),
                                     {"snmpV1", &diagnosis.v1},
                                     {"snmpV3Engine", &diagnosis.discovery},
                                     {"snmpV3User", &diagnosis.user}}) {
        cJSON* const one = cJSON_AddObjectToObject(root.get(), name);
        AddMembers(one, {{"outcome", OutcomeText(step->outcome)}, {"detail", step->detail}});
        AddNumber(one, "milliseconds", step->ms.value_or(0));
    }
    cJSON_AddItemToObject(root.get(), "isOnOwnNetwork",
                          isOnOwnNetwork ? cJSON_CreateBool(*isOnOwnNetwork) : cJSON_CreateNull());
    AddText(root.get(), "verdict", VerdictOn(diagnosis));
    if (diagnosis.v1.outcome == Outcome::kSilent)
        AddMembers(root.get(), {{"community", diagnosis.community},
                                {"object", OidToText(Append(OidOf("sysDescr"), {0}))}});
    return Line(root);
}

std::string ComparisonJson(const Comparison& comparison) {
    const JsonItem root(cJSON_CreateObject());
    AddObjects(root.get(), "new", comparison.added,
               [&](cJSON* device, size_t index) { AddDevice(device, comparison.after[index]); });
    AddObjects(root.get(), "gone", comparison.gone,
               [&](cJSON* device, size_t index) { AddDevice(device, comparison.before[index]); });
    std::vector<DeviceChange> changed, printed;
    for (const DeviceChange& change : comparison.changed)
        (change.isPrinted ? printed : changed).push_back(change);
    const auto addChange = [&](cJSON* device, const DeviceChange& change) {
        AddDevice(device, comparison.after[change.after]);
        AddText(device, "sameBy", KeyName(change.key));
        AddObjects(device, "changes", change.fields, [](cJSON* one, const FieldChange& field) {
            AddMembers(one,
                       {{"field", field.field}, {"before", field.before}, {"after", field.after}});
        });
    };
    AddObjects(root.get(), "changed", changed, addChange);
    AddObjects(root.get(), "printed", printed, addChange);
    AddNumber(root.get(), "asBefore", comparison.same);
    return Line(root);
}

std::string PrintersJson(const std::vector<PrinterLine>& printers) {
    JsonArray array;
    for (const PrinterLine& printer : printers) {
        const JsonItem item(cJSON_CreateObject());
        cJSON* const object = item.get();
        AddText(object, "severity", SeverityName(printer.summary.severity));
        AddOrNull(object,
                  {{"state", printer.summary.state}, {"lowestSupply", printer.summary.supply}});
        AddTexts(object, "addresses", printer.addresses);
        AddPrinter(object, printer.facts);
        AddOrNull(object,
                  {{"firmware", printer.facts.description}, {"notRead", UnreadText(printer)}});
        array.Add(object);
    }
    return array.Finish();
}

std::string PrintersCsv(const std::vector<PrinterLine>& printers) {
    std::string text =
        "severity,state,lowest supply,name,model,addresses,serial number,location,firmware,"
        "page count,supplies,not read\n";
    for (const PrinterLine& printer : printers) {
        const PrinterFacts& facts = printer.facts;
        const PrinterSummary& summary = printer.summary;
        text +=
            CsvLine({SeverityName(summary.severity), summary.state, summary.supply, facts.name,
                     facts.model, Joined(printer.addresses), facts.serialNumber, facts.location,
                     facts.description, CountText(facts), SuppliesText(facts), UnreadText(printer)},
                    ",", "\n");
    }
    return text;
}

}  // namespace vndiscover::host
