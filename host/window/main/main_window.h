// The window of VnBrowser.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "window/main/device_list.h"
#include "window/pages/calls_window.h"
#include "window/pages/details_pane.h"
#include "window/pages/doctor_page.h"
#include "window/pages/walk_window.h"
#include "window/store/settings.h"
#include "window/work/engine.h"
#include "window/work/session.h"
#include "window/work/workers.h"

namespace vndiscover::host {

// The command line's options.
struct StartOptions {
    bool sweep = false;
    std::string savePath;  // UTF-8; written when the sweep has ended
    bool exit = false;     // after that; no window is shown
    std::wstring profile;  // of the user for SNMPv3; empty: none
};

class MainWindow {
  public:
    // The engine must outlive the window. Throws std::runtime_error if it cannot be created.
    MainWindow(Engine& engine, StartOptions options);
    ~MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;

    HWND Handle() const { return window_; }
    // See platform/messages.h.
    std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void OnException() noexcept;
    // Runs until the window is closed, and returns the process's exit code.
    int Run();
    // Handles one message of the queue, accelerators included.
    void Dispatch(MSG& message);

    // The commands of the menu once a file is chosen, by its UTF-8 path. False if it could not be
    // read or saved, of which the user was told; the list, and an older file, are unchanged then.
    bool OpenFrom(const std::string& path);
    bool CompareWith(const std::string& path);
    bool SaveTo(const std::string& path);
    bool SaveCsvTo(const std::string& path);   // the rows as they are shown
    bool SaveJsonTo(const std::string& path);  // their answers, see JsonOf

  private:
    struct FileCommand {
        int id;
        unsigned kind;  // of file, a string
        const wchar_t* extension;
        bool isForSaving;
        bool (MainWindow::*method)(const std::string& path);
    };
    static const FileCommand kFileCommands[];
    void CreateControls();
    HWND CreateControl(const wchar_t* type, unsigned text, DWORD style, int id, DWORD extended = 0);
    void SetFonts();
    void ShowColumns();
    void ToggleColumn(unsigned column);
    void RestoreSettings();
    void StoreSettings();
    void Place();
    int WidthOf(int id) const;

    void OnCommand(int id, int code);
    DeviceList::Actions DeviceActions();

    void StartOrStop();
    void Stop();
    std::vector<SweepStep> ChosenSteps() const;
    bool FetchUser();
    bool IsTicked(int id) const;
    void AskSelected(bool isAgain);
    void AskAll();
    WalkWindow::Actions WalkActions();
    void OpenWalk();
    void Diagnose();
    void OnFrame();
    void OnSwept();
    void EndStartSweep();
    void EndEarly();
    void ShowRows();
    void ShowStatus();
    std::wstring StatusText() const;

    void WithPath(const FileCommand& command);
    bool MayReplaceScan();
    bool MayDropScan();
    bool MayClose();
    bool WillSave() const;
    void CopyCell(Column column);
    void OpenWebPage();
    void ShowPage(const std::wstring& title, std::vector<ReportRow> rows);
    bool Complain(const std::wstring& text);

    Engine& engine_;
    StartOptions options_;
    Session session_;
    HWND window_ = nullptr;
    OwnedFont font_;
    HACCEL keys_ = nullptr;
    DeviceList devices_{session_, DeviceActions()};
    DetailsPane details_{session_};
    DoctorPage doctor_;
    Settings settings_;
    Credentials credentials_;
    int dpi_ = 96;
    bool isSweeping_ = false, isStopping_ = false, wasSwept_ = false, isStopped_ = false;
    ULONGLONG startMs_ = 0, endMs_ = 0, askStartMs_ = 0;
    size_t sweepsLeft_ = 0;                    // steps of the running one
    std::wstring sweepProblem_;                // likewise
    size_t sweptAddresses_ = 0, answers_ = 0;  // of the last sweep
    std::string asked_;                        // the address that is being asked; empty: none
    std::string walked_;                       // likewise
    bool isReading_ = false;                   // asked_, for its details
    ULONGLONG walkStartMs_ = 0;
    size_t walkValues_ = 0;
    std::wstring note_;  // shown as the status until the next action, for a while before progress
    std::wstring shownNote_;
    ULONGLONG noteMs_ = 0;
    int exitCode_ = 0;
    // Last, so that their threads end before the members that they use.
    CallsWindow calls_;
    WalkWindow walk_{WalkActions()};
    EventQueue events_;
    std::unique_ptr<Workers> workers_;
};

}  // namespace vndiscover::host
