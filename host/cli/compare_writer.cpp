#include "cli/compare_writer.h"

#include <cjson/cJSON.h>

#include "values/json_output.h"
#include "values/plain_text.h"

namespace vndiscover::host {
namespace {

constexpr size_t kLabelWidth = 9;
constexpr size_t kFieldWidth = 14;

std::string Line(const char* label, const FoundDevice& device) {
    return Padded(label, kLabelWidth) + DeviceLine(device) + "\n";
}

void AddDevices(cJSON* root, const char* name, const std::vector<FoundDevice>& devices,
                const std::vector<size_t>& indexes) {
    cJSON* array = cJSON_AddArrayToObject(root, name);
    for (const size_t index : indexes)
        cJSON_AddItemToArray(array, DeviceJson(devices[index]).release());
}

JsonItem ChangeJson(const ComparedScans& scans, const DeviceChange& change) {
    JsonItem device = DeviceJson(scans.after[change.after]);
    AddText(device.get(), "sameBy", KeyName(change.key));
    cJSON* array = cJSON_AddArrayToObject(device.get(), "changes");
    for (const FieldChange& field : change.fields) {
        cJSON* one = cJSON_CreateObject();
        AddText(one, "field", field.field);
        AddText(one, "before", field.before);
        AddText(one, "after", field.after);
        cJSON_AddItemToArray(array, one);
    }
    return device;
}

}  // namespace

std::string ComparisonText(const ComparedScans& scans) {
    const Comparison& changes = scans.changes;
    std::string text;
    for (const size_t index : changes.added) text += Line("new", scans.after[index]);
    for (const size_t index : changes.gone) text += Line("gone", scans.before[index]);
    for (const DeviceChange& change : changes.changed) {
        text += Line("changed", scans.after[change.after]);
        for (const FieldChange& field : change.fields) {
            text += std::string(kLabelWidth, ' ') + Padded(field.field, kFieldWidth) +
                    PlainText(field.before) + " -> " + PlainText(field.after) + "\n";
        }
    }
    return text + std::to_string(changes.added.size()) + " new, " +
           std::to_string(changes.gone.size()) + " gone, " +
           std::to_string(changes.changed.size()) + " changed, " + std::to_string(changes.same) +
           " unchanged\n";
}

std::string ComparisonJson(const ComparedScans& scans) {
    const JsonItem root(cJSON_CreateObject());
    AddDevices(root.get(), "new", scans.after, scans.changes.added);
    AddDevices(root.get(), "gone", scans.before, scans.changes.gone);
    cJSON* changed = cJSON_AddArrayToObject(root.get(), "changed");
    for (const DeviceChange& change : scans.changes.changed)
        cJSON_AddItemToArray(changed, ChangeJson(scans, change).release());
    AddNumber(root.get(), "asBefore", std::to_string(scans.changes.same));
    return CompactJson(root.get()) + "\n";
}

}  // namespace vndiscover::host
