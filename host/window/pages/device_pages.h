// The pages on the selected device as tables.
#pragma once

#include <string>
#include <vector>

#include "window/controls/list_control.h"
#include "window/work/session.h"

namespace vndiscover::host {

using TableRows = std::vector<std::vector<std::wstring>>;

struct DevicePage {
    unsigned title;  // its string, on the tab
    std::vector<ListColumn> columns;
    TableRows (*rows)(const Session& session, const DeviceRow& row);  // null: a report
    bool isOfAnswers;  // the rows change only with the device's answers
};

// In the order of the tabs.
const std::vector<DevicePage>& DevicePages();

}  // namespace vndiscover::host
