// The columns of the device list: which are shown, in which order, how wide.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "model/scan/device_view.h"
#include "window/controls/list_control.h"
#include "window/store/settings.h"

namespace vndiscover::host {

// The heading of a column.
std::wstring ColumnName(Column column);

// A cell as it is shown.
std::wstring ShownText(const DeviceRow& row, Column column);

// Numbers of columns in the list are not those of Column, since the list has only those shown.
class DeviceColumns {
  public:
    // What a user without settings gets.
    static void SetDefaults(Settings& settings);

    // The files that a script has written do not depend on what a window shows.
    static void SetForScripts(Settings& settings);

    // The list must outlive it.
    void Use(ListControl& list) { list_ = &list; }
    void Show(const Settings& settings);
    void Store(Settings& settings, int dpi) const;

    Column At(size_t index) const { return index < shown_.size() ? shown_[index] : Column::kName; }
    bool IsShown(Column column) const;
    // As they are shown, from left to right.
    std::vector<Column> InOrder() const;
    void MarkSorted(Column column, bool isDescending);

  private:
    ListControl* list_ = nullptr;
    std::vector<Column> shown_;  // in the order of Column, as in the list
};

}  // namespace vndiscover::host
