#include "cli/printer_writer.h"

#include <cjson/cJSON.h>

#include "values/json_output.h"

namespace vndiscover::host {
namespace {

void AddOrNull(cJSON* object, const char* name, const std::string& text) {
    if (text.empty()) {
        cJSON_AddNullToObject(object, name);
    } else {
        AddText(object, name, text);
    }
}

template <class Number>
void AddOrNull(cJSON* object, const char* name, const std::optional<Number>& number) {
    if (number) {
        AddNumber(object, name, std::to_string(*number));
    } else {
        cJSON_AddNullToObject(object, name);
    }
}

void AddLevel(cJSON* object, const Level& level) {
    AddOrNull(object, "level", level.level);
    AddOrNull(object, "maximum", level.maximum);
    AddOrNull(object, "unit", level.unit);
    AddOrNull(object, "percent", PercentOf(level));
    AddText(object, "text", LevelText(level));
}

// An array member with an object for each row, which `fill` fills.
template <class Rows, class Fill>
void AddObjects(cJSON* parent, const char* name, const Rows& rows, Fill fill) {
    cJSON* array = cJSON_AddArrayToObject(parent, name);
    for (const auto& row : rows) {
        cJSON* object = cJSON_CreateObject();
        fill(object, row);
        cJSON_AddItemToArray(array, object);
    }
}

void AddTables(cJSON* root, const PrinterFacts& facts) {
    AddObjects(root, "pageCounts", facts.pageCounts, [](cJSON* object, const PageCount& count) {
        AddNumber(object, "count", std::to_string(count.count));
        AddOrNull(object, "unit", count.unit);
    });
    AddObjects(root, "supplies", facts.supplies, [](cJSON* object, const Supply& supply) {
        AddOrNull(object, "description", supply.description);
        AddOrNull(object, "colour", supply.colour);
        AddOrNull(object, "type", supply.type);
        cJSON_AddBoolToObject(object, "isReceptacle", supply.level.isReceptacle);
        AddLevel(object, supply.level);
    });
    AddObjects(root, "trays", facts.trays, [](cJSON* object, const Tray& tray) {
        AddOrNull(object, "name", tray.name);
        AddOrNull(object, "medium", tray.medium);
        AddLevel(object, tray.level);
    });
    AddObjects(root, "alerts", facts.alerts, [](cJSON* object, const Alert& alert) {
        AddOrNull(object, "severity", alert.severity);
        AddOrNull(object, "group", alert.group);
        AddOrNull(object, "code", alert.code);
        AddOrNull(object, "description", alert.description);
        AddOrNull(object, "upTicks", alert.upTicks);
    });
    AddObjects(root, "notRead", facts.gaps, [](cJSON* object, const Gap& gap) {
        AddText(object, "subject", gap.subject);
        AddOrNull(object, "object", gap.object);
        AddText(object, "reason", gap.reason);
    });
}

}  // namespace

std::string PrinterJson(const PrinterFacts& facts, const std::string& host) {
    const JsonItem root(cJSON_CreateObject());
    AddText(root.get(), "host", host);
    AddOrNull(root.get(), "deviceIndex", facts.deviceIndex);
    AddOrNull(root.get(), "model", facts.model);
    AddOrNull(root.get(), "serialNumber", facts.serialNumber);
    AddOrNull(root.get(), "name", facts.name);
    AddOrNull(root.get(), "location", facts.location);
    AddOrNull(root.get(), "description", facts.description);
    AddOrNull(root.get(), "macAddress", facts.macAddress);
    AddOrNull(root.get(), "upTicks", facts.upTicks);
    AddOrNull(root.get(), "deviceStatus", facts.deviceStatus);
    AddOrNull(root.get(), "printerStatus", facts.printerStatus);
    AddTexts(root.get(), "errors", facts.errors);
    AddTexts(root.get(), "panel", facts.panel);
    AddTables(root.get(), facts);
    return CompactJson(root.get()) + "\n";
}

}  // namespace vndiscover::host
