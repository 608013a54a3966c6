#include "cli/compare_writer.h"

#include <cjson/cJSON.h>

#include "values/json_output.h"

namespace vndiscover::host {
namespace {

void AddDevices(cJSON* root, const char* name, const std::vector<FoundDevice>& devices,
                const std::vector<size_t>& indexes) {
    cJSON* array = cJSON_AddArrayToObject(root, name);
    for (const size_t index : indexes)
        cJSON_AddItemToArray(array, DeviceJson(devices[index]).release());
}

JsonItem ChangeJson(const Comparison& comparison, const DeviceChange& change) {
    JsonItem device = DeviceJson(comparison.after[change.after]);
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

std::string ComparisonJson(const Comparison& comparison) {
    const JsonItem root(cJSON_CreateObject());
    AddDevices(root.get(), "new", comparison.after, comparison.added);
    AddDevices(root.get(), "gone", comparison.before, comparison.gone);
    cJSON* changed = cJSON_AddArrayToObject(root.get(), "changed");
    for (const DeviceChange& change : comparison.changed)
        cJSON_AddItemToArray(changed, ChangeJson(comparison, change).release());
    AddNumber(root.get(), "asBefore", std::to_string(comparison.same));
    return CompactJson(root.get()) + "\n";
}

}  // namespace vndiscover::host
