// The commands on the scan as a whole: to open, compare, save, export and clear it, and to list its
// changes.
#pragma once

#include <optional>
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

    // These ask for the file.
    void Open();
    void Save() { WithPath(IDS_SCAN_FILES, L"json", true, &ScanCommands::SaveTo); }
    void Compare() { WithPath(IDS_SCAN_FILES, L"json", false, &ScanCommands::CompareWith); }
    void SaveCsv() { WithPath(IDS_CSV_FILES, L"csv", true, &ScanCommands::SaveCsvTo); }
    void SaveJson() { WithPath(IDS_JSON_FILES, L"json", true, &ScanCommands::SaveJsonTo); }
    void Clear();
    void Empty();  // without a question
    // Sets the file in the title; empty: none.
    void SetFile(const std::wstring& file);
    // From now on, found devices are added to those of the file. The title says so.
    void AddToFile();
    // Adds to the title that some values are newer than the file.
    void ShowReadSince();
    // Whether there is something to save or to clear.
    bool HasScan() const;

    // The same with the file's UTF-8 path. They report a file that cannot be read or saved, and
    // return false. The list, and an older file, are unchanged then.
    bool OpenFrom(const std::string& path);
    bool CompareWith(const std::string& path);
    bool SaveTo(const std::string& path);
    bool SaveCsvTo(const std::string& path);   // the rows as they are shown
    bool SaveJsonTo(const std::string& path);  // the same rows, as `vndiscover printers` does

    // Compares the rows with what they showed before. Changes are recorded and marked, and the
    // taskbar button flashes.
    void RecordChanges();
    void OpenChanges();  // opens the list of changes

    // Asks whether to save an unsaved scan. Returns false if it must stay. `question`: names what
    // would drop it.
    bool MayDrop(unsigned question);

    // At the end of the Windows session, an unsaved scan is saved in a recovery file, without any
    // dialog. The next start offers it. If the user wants it, the file stays until the scan is
    // saved or dropped.
    void SaveForRecovery();
    void OfferRecovery();
    void DeleteRecoveryFile();

  private:
    void WithPath(unsigned kind, const wchar_t* extension, bool isForSaving,
                  bool (ScanCommands::*method)(const std::string& path));
    bool MayReplace(unsigned question);
    std::optional<Scan> Load(const std::string& path);
    void Replace(Scan scan);
    void ShowScan(Scan scan);
    void SaveTable(const std::string& csv);
    bool SaveTextTo(const std::string& text, const std::string& path);

    WindowState& state_;
    const DeviceList& list_;
    void ShowChanges();
    TableWindow comparison_{[this](const std::string& csv) { SaveTable(csv); }};
    TableWindow changes_{[this](const std::string& csv) { SaveTable(csv); }};
    OwnedFile recoveryFile_;  // of the shown scan; empty: none
    std::string recoveryPath_;
};

}  // namespace vndiscover::host
