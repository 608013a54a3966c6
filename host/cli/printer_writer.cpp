#include "cli/printer_writer.h"

#include <cjson/cJSON.h>

#include <algorithm>

#include "cli/labelled_lines.h"
#include "values/json_output.h"
#include "values/plain_text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

constexpr size_t kMaxNameWidth = 30;
constexpr int kBarWidth = 20;

std::string OrNotGiven(const std::string& text) { return text.empty() ? "(not given)" : text; }

std::string Joined(const std::string& one, const char* separator, const std::string& other) {
    return one.empty() || other.empty() ? one + other : one + separator + other;
}

// Ticks of a hundredth of a second in whole seconds: "5 days, 3:04:05".
std::string Duration(uint64_t ticks) {
    const std::string text = TickText(ticks);
    return text.substr(0, text.size() - 3);
}

std::string Bar(const Level& level) {
    const auto percent = PercentOf(level);
    if (!percent) return std::string(kBarWidth + 2, ' ');
    const auto full = static_cast<size_t>((*percent * kBarWidth + 50) / 100);
    return "[" + std::string(full, '#') + std::string(kBarWidth - full, '.') + "]";
}

template <class Rows, class Name>
size_t NameWidth(const Rows& rows, Name name) {
    size_t width = 0;
    for (const auto& row : rows) width = std::max(width, name(row).size());
    return std::min(width, kMaxNameWidth) + 2;
}

std::string SupplyName(const Supply& supply) {
    return supply.description.empty() ? SpacedWords(supply.type) : supply.description;
}

std::string TrayName(const Tray& tray) { return tray.name.empty() ? "(no name)" : tray.name; }

void AddSupplies(Lines& lines, const PrinterFacts& facts) {
    const size_t width = NameWidth(facts.supplies, SupplyName);
    for (const Supply& supply : facts.supplies) {
        const std::string kind = Joined(supply.colour, " ", SpacedWords(supply.type));
        lines.Add("Supplies", Padded(SupplyName(supply), width) + Bar(supply.level) + "  " +
                                  Joined(LevelText(supply.level), ", ", kind));
    }
}

void AddTrays(Lines& lines, const PrinterFacts& facts) {
    const size_t width = NameWidth(facts.trays, TrayName);
    for (const Tray& tray : facts.trays) {
        lines.Add("Trays", Padded(TrayName(tray), width) + Bar(tray.level) + "  " +
                               Joined(LevelText(tray.level), ", ", tray.medium));
    }
}

void AddAlerts(Lines& lines, const PrinterFacts& facts) {
    for (const Alert& alert : facts.alerts) {
        const std::string what = Joined(SpacedWords(alert.group), ", ", SpacedWords(alert.code));
        std::string line = Joined(SpacedWords(alert.severity), ": ",
                                  alert.description.empty() ? what : alert.description);
        if (!alert.description.empty() && !what.empty()) line += " (" + what + ")";
        // The time of an alert from before the device's restart would be in the future.
        if (alert.upTicks && facts.upTicks && *alert.upTicks <= *facts.upTicks)
            line += ", for " + Duration(*facts.upTicks - *alert.upTicks);
        lines.Add("Alerts", line);
    }
}

// One line for each reason: "trays (prtInputName), alerts: no answer".
void AddGaps(Lines& lines, const PrinterFacts& facts) {
    std::vector<std::string> reasons;
    for (const Gap& gap : facts.gaps) {
        if (std::find(reasons.begin(), reasons.end(), gap.reason) == reasons.end())
            reasons.push_back(gap.reason);
    }
    for (const std::string& reason : reasons) {
        std::vector<std::pair<std::string, std::string>> parts;  // subjects with their objects
        for (const Gap& gap : facts.gaps) {
            if (gap.reason != reason) continue;
            const auto known = std::find_if(parts.begin(), parts.end(), [&](const auto& part) {
                return part.first == gap.subject;
            });
            if (known == parts.end()) {
                parts.emplace_back(gap.subject, gap.object);
            } else {
                known->second = Joined(known->second, ", ", gap.object);
            }
        }
        std::string line;
        for (const auto& [subject, objects] : parts) {
            line.append(line.empty() ? "" : ", ").append(subject);
            if (!objects.empty()) line.append(" (").append(objects).append(")");
        }
        lines.Add("Not read", line.append(": ").append(reason));
    }
}

std::string ErrorText(const PrinterFacts& facts) {
    std::string text;
    for (const std::string& word : facts.errors) text = Joined(text, ", ", SpacedWords(word));
    return text;
}

std::string UpText(const PrinterFacts& facts, const std::string& upSince) {
    return facts.upTicks ? Joined(upSince, " ", "(" + Duration(*facts.upTicks) + ")") : "";
}

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

std::string PrinterText(const PrinterFacts& facts, const std::string& upSince) {
    Lines lines;
    lines.Add("Model", OrNotGiven(facts.model));
    lines.Add("Serial number", OrNotGiven(facts.serialNumber));
    lines.Add("Name", OrNotGiven(facts.name));
    lines.Add("Location", OrNotGiven(facts.location));
    lines.Add("MAC address", OrNotGiven(facts.macAddress));
    lines.Add("Up since", UpText(facts, upSince));
    lines.Add("Device", SpacedWords(facts.deviceStatus));
    lines.Add("Printer", SpacedWords(facts.printerStatus));
    lines.Add("Errors", ErrorText(facts));
    AddAlerts(lines, facts);
    for (const std::string& line : facts.panel) lines.Add("Panel", line);
    for (const PageCount& count : facts.pageCounts)
        lines.Add("Printed", Joined(std::to_string(count.count), " ", count.unit));
    AddSupplies(lines, facts);
    AddTrays(lines, facts);
    for (const uint32_t other : facts.otherPrinters)
        lines.Add("Also there", "another printer, device index " + std::to_string(other));
    AddGaps(lines, facts);
    return lines.Text();
}

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
