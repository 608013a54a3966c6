// The commands on the scan as a whole: to open, compare, save, export and clear it, and to list
// what has changed in it.
#pragma once

#include <string>

#include "platform/owned.h"
#include "window/main/device_list.h"
#include "window/main/window_state.h"
#include "window/pages/table_window.h"
#include "window/resource.h"

namespace vndiscover::host {

class ScanCommands {
  public:
    // Both must outlive it.
    ScanCommands(WindowState& state, const DeviceList& list) : state_(state), list_(list) {}

    // Ask for the file.
    void Open();
    void Save() { WithPath(IDS_SCAN_FILES, L"json", true, &ScanCommands::SaveTo); }
    void Compare() { WithPath(IDS_SCAN_FILES, L"json", false, &ScanCommands::CompareWith); }
    void SaveCsv() { WithPath(IDS_CSV_FILES, L"csv", true, &ScanCommands::SaveCsvTo); }
    void SaveJson() { WithPath(IDS_JSON_FILES, L"json", true, &ScanCommands::SaveJsonTo); }
    void Clear();
    void Empty();  // without a question
    // What the title says the list is of; empty: it is of no file.
    void SetFile(const std::wstring& file);
    // What is found from now on is added to the file's devices, which the title still names.
    void AddToFile();
    // Some of the list is newer than the file that the title names.
    void RecordReading();
    // Whether there is something to save or to clear.
    bool HasScan() const;

    // The same with the file's UTF-8 path. They return false if it could not be read or saved,
    // which was reported; the list, and an older file, are unchanged then.
    bool OpenFrom(const std::string& path);
    bool CompareWith(const std::string& path);
    bool SaveTo(const std::string& path);
    bool SaveCsvTo(const std::string& path);   // the rows as they are shown
    bool SaveJsonTo(const std::string& path);  // the same rows, as `vndiscover printers` does

    // Records what the rows show now. A change is marked, and the taskbar button flashes.
    void RecordChanges();
    void OpenChanges();  // their list

    // Returns false if the user wants the scan to stay. `question`: names what would drop it.
    bool MayDrop(unsigned question);

    // For the end of the user's session: an unsaved scan is kept in a file of the user's, without
    // any dialog. The next start offers it. If the user wants it, its file stays until the scan is
    // saved or dropped.
    void SaveForRecovery();
    void OfferRecovery();
    void DeleteRecoveryFile();

  private:
    void WithPath(unsigned kind, const wchar_t* extension, bool isForSaving,
                  bool (ScanCommands::*method)(const std::string& path));
    bool MayReplace(unsigned question);
    void ShowOpening(const std::wstring& name) const;
    void Replace(Scan scan);
    void ShowScan(Scan scan);
    void SaveTable(const std::string& csv);
    bool SaveTextTo(const std::string& text, const std::string& path);

    WindowState& state_;
    const DeviceList& list_;
    void ShowChanges();
    TableWindow comparison_{[this](const std::string& csv) { SaveTable(csv); }};
    TableWindow changes_{[this](const std::string& csv) { SaveTable(csv); }};
    OwnedFile recoveryFile_;  // of the list; empty: it is of none
    std::string recoveryPath_;
};

}  // namespace vndiscover::host
