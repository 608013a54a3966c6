#include "cli/doctor_writer.h"

#include <cjson/cJSON.h>

#include "model/computer/doctor_report.h"
#include "values/json_output.h"

namespace vndiscover::host {
namespace {

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
