#include "cli/doctor_writer.h"

#include <cjson/cJSON.h>

#include <algorithm>

#include "cli/labelled_lines.h"
#include "model/computer/doctor_text.h"
#include "values/json_output.h"
#include "values/plain_text.h"

namespace vndiscover::host {
namespace {

std::string Seconds(unsigned seconds) { return std::to_string(seconds) + " s"; }

// "eth0: Ethernet, up"
std::string AdapterText(const SweepRow& row) {
    std::string text = row.adapter;
    const char* separator = ": ";
    for (const std::string& word : {row.kind, row.state}) {
        if (word.empty()) continue;
        text += separator + word;
        separator = ", ";
    }
    return text;
}

void AddPlan(Lines& lines, const char* label, const SweepPlan& plan) {
    const auto swept = std::count_if(plan.rows.begin(), plan.rows.end(),
                                     [](const SweepRow& row) { return row.seconds != 0; });
    lines.Add(label, swept == 0 ? "is not sent"
                                : "from " + std::to_string(swept) +
                                      (swept == 1 ? " address" : " addresses") + ", takes " +
                                      Seconds(plan.seconds) + " at least");
    size_t width = 0;
    for (const SweepRow& row : plan.rows) width = std::max(width, row.address.size() + 2);
    for (const SweepRow& row : plan.rows) {
        lines.Add(label, Padded(row.address, width) + AdapterText(row) + ", " +
                             (row.seconds == 0 ? "not swept" : Seconds(row.seconds)));
    }
}

std::string RouteText(const Route& route) {
    const std::string text = Padded(route.target, 17);
    if (route.source.empty()) return text + "no route";
    return text + "by " + (route.adapter.empty() ? "" : PlainText(route.adapter) + ", ") +
           route.source + (route.gateway.empty() ? "" : ", gateway " + route.gateway);
}

void AddPlanJson(cJSON* root, const char* name, const SweepPlan& plan) {
    cJSON* object = cJSON_AddObjectToObject(root, name);
    cJSON_AddNumberToObject(object, "adapters", static_cast<double>(plan.adapters));
    cJSON_AddNumberToObject(object, "seconds", plan.seconds);
    cJSON* array = cJSON_AddArrayToObject(object, "addresses");
    for (const SweepRow& row : plan.rows) {
        cJSON* element = cJSON_CreateObject();
        AddText(element, "address", row.address);
        AddText(element, "adapter", row.adapter);
        AddText(element, "description", row.description);
        AddText(element, "kind", row.kind);
        AddText(element, "state", row.state);
        cJSON_AddNumberToObject(element, "seconds", row.seconds);
        cJSON_AddItemToArray(array, element);
    }
}

void AddRoutesJson(cJSON* root, const std::vector<Route>& routes) {
    cJSON* array = cJSON_AddArrayToObject(root, "routes");
    for (const Route& route : routes) {
        cJSON* element = cJSON_CreateObject();
        AddText(element, "target", route.target);
        AddText(element, "adapter", route.adapter);
        AddText(element, "source", route.source);
        AddText(element, "gateway", route.gateway);
        cJSON_AddItemToArray(array, element);
    }
}

void AddFirewallJson(cJSON* root, const FirewallReport& report) {
    cJSON* object = cJSON_AddObjectToObject(root, "firewall");
    cJSON_AddBoolToObject(object, "isKnown", report.isKnown);
    cJSON* array = cJSON_AddArrayToObject(object, "ports");
    for (const PortVerdict& verdict : report.ports) {
        cJSON* element = cJSON_CreateObject();
        AddText(element, "profile", verdict.profile);
        cJSON_AddNumberToObject(element, "port", verdict.port);
        AddText(element, "answers", PassageText(verdict.passage));
        AddText(element, "reason", verdict.reason);
        cJSON_AddItemToArray(array, element);
    }
    AddTexts(object, "commands", report.commands);
}

}  // namespace

std::string ComputerText(const ComputerReport& report) {
    Lines lines;
    AddPlan(lines, "IPv4 sweep", report.ipv4);
    AddPlan(lines, "IPv6 sweep", report.ipv6);
    for (const Route& route : report.routes) lines.Add("Routes", RouteText(route));
    for (const std::string& line : FirewallLines(report.firewall)) lines.Add("Firewall", line);
    lines.Add("Log", LogText(report.log));
    for (const std::string& note : report.notes) lines.Add("Notes", note);
    for (const std::string& cause : report.causes) lines.Add("Verdict", cause);
    if (report.causes.empty())
        lines.Add("Verdict", "nothing seen here keeps a sweep from finding devices");
    return lines.Text();
}

std::string ComputerJson(const ComputerReport& report) {
    const JsonItem root(cJSON_CreateObject());
    AddPlanJson(root.get(), "ipv4", report.ipv4);
    AddPlanJson(root.get(), "ipv6", report.ipv6);
    AddRoutesJson(root.get(), report.routes);
    AddFirewallJson(root.get(), report.firewall);
    cJSON* log = cJSON_AddObjectToObject(root.get(), "log");
    cJSON_AddBoolToObject(log, "file", report.log.file);
    cJSON_AddBoolToObject(log, "debugger", report.log.debugger);
    AddTexts(root.get(), "causes", report.causes);
    AddTexts(root.get(), "notes", report.notes);
    return CompactJson(root.get()) + "\n";
}

std::string HostText(const HostDiagnosis& diagnosis, const std::optional<bool>& isOnOwnNetwork) {
    Lines lines;
    lines.Add("Ping", StepText(diagnosis.ping));
    lines.Add("SNMPv1", StepText(diagnosis.v1));
    lines.Add("SNMPv3 engine", StepText(diagnosis.discovery));
    lines.Add("SNMPv3 user", StepText(diagnosis.user));
    lines.Add("Verdict", VerdictOn(diagnosis));
    if (isOnOwnNetwork == false) lines.Add("Note", kElsewhere);
    return lines.Text();
}

std::string HostJson(const HostDiagnosis& diagnosis, const std::optional<bool>& isOnOwnNetwork,
                     const std::string& host) {
    const JsonItem root(cJSON_CreateObject());
    AddText(root.get(), "host", host);
    const std::pair<const char*, const StepResult*> steps[] = {
        {"ping", &diagnosis.ping},
        {"snmpV1", &diagnosis.v1},
        {"snmpV3Engine", &diagnosis.discovery},
        {"snmpV3User", &diagnosis.user}};
    for (const auto& [name, step] : steps) {
        cJSON* object = cJSON_AddObjectToObject(root.get(), name);
        AddText(object, "outcome", OutcomeText(step->outcome));
        AddText(object, "detail", step->detail);
    }
    if (isOnOwnNetwork) {
        cJSON_AddBoolToObject(root.get(), "isOnOwnNetwork", *isOnOwnNetwork);
    } else {
        cJSON_AddNullToObject(root.get(), "isOnOwnNetwork");
    }
    AddText(root.get(), "verdict", VerdictOn(diagnosis));
    return CompactJson(root.get()) + "\n";
}

}  // namespace vndiscover::host
