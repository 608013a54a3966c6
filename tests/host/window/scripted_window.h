// A window in this process with a scripted engine. Nothing is shown: the display driver is Wine's
// null driver.
#pragma once

#include <gmock/gmock.h>

#include <windows.h>

#include <commctrl.h>
#include <oleacc.h>

#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/model/scripted_device.h"
#include "platform/com.h"
#include "platform/wide_text.h"
#include "values/object_names.h"
#include "window/main/main_window.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

// Of a file that is not there yet.
inline std::string TemporaryPath() {
    return (std::filesystem::temp_directory_path() / "vnbrowser_test").string();
}

constexpr DWORD kPatienceMs = 10000;
constexpr wchar_t kBrowserKey[] = L"Software\\Varnell Osk\\VnBrowser";

// Sweeps wait for the answers that a test provides, and end with a stop or with End.
class ScriptedEngine : public Engine {
  public:
    bool Sweep(const SweepStep& step, const OnAnswer& onAnswer) override {
        if (isUnsent || step.kind == SweepKind::kWsd) return !isUnsent;
        ++sweeps;
        lastStep = step;
        Fail();
        std::unique_lock<std::mutex> lock(mutex_);
        isInSweep = true;
        while (true) {
            changed_.wait(lock, [&] { return isOver_ || !answers_.empty(); });
            for (const auto& [address, value] : std::exchange(answers_, {}))
                onAnswer(address.c_str(), value);
            if (isOver_) break;
        }
        isInSweep = isOver_ = false;
        Call call;
        call.name = "DiscoverDevicesByOID";
        call.arguments = {{"oid", ".1.3." + std::to_string(sweeps)}};
        ReportCall(std::move(call));
        return true;
    }
    // Like in the module, a request has no effect while no sweep runs.
    void StopSweeps() override {
        if (onStop) onStop();
        const std::lock_guard<std::mutex> lock(mutex_);
        isOver_ = isInSweep;
        ++stops;
        changed_.notify_all();
    }
    FleetDevice ReadForList(const AskTarget& target, const FleetDevice& job, Reader*,
                            std::function<bool()> mayGoOn) override {
        ++listReads;
        FleetDevice read = job;
        read.answers = Read(target, std::move(mayGoOn));
        return read;
    }
    PrinterAnswers Read(const AskTarget& target, std::function<bool()>) override {
        ++reads;
        while (isHeld) Sleep(5);
        Fail();
        PrinterAnswers answers;
        if (target.login.security) {
            answers.lastStatus = refusal;
            answers.lastProblem = "refused: wrong user";
            return answers;
        }
        if (target.address == "10.77.1.3") {  // this one is silent
            answers.lastStatus = Status::kNoAnswer;
            return answers;
        }
        for (const Answer& one : AnswersOf("prtGeneralSerialNumber.1 s SERIAL 1; ifDescr.1 s LAN; "
                                           "ifAdminStatus.1 i 1; ifOperStatus.1 i 2"))
            answers.values[one.oid] = one;
        return answers;
    }
    // Of the system's three variables, an endless table of interfaces, and a loop.
    WalkEnd Walk(const AskTarget&, const Oid& root, std::function<bool()> mayGoOn,
                 const OnVariable& onVariable) override {
        Fail();
        ScriptedDevice device(
            "sysDescr.0 s a printer\x1B; sysName.0 s hall; .1.3.6.1.2.1.1.99.0 s unnamed");
        Asker asker = device.MakeAsker();
        asker.mayGoOn = std::move(mayGoOn);
        asker.getNext = [this, ask = std::move(asker.getNext)](const Oid& oid) {
            Sleep(1);
            const Oid& column = OidOf("ifDescr");
            Call call;
            call.name = "GetNextSnmpRequestRaw";
            call.walk = 1;
            ReportCall(std::move(call));
            if (IsWithin(oid, OidOf("ifType")))
                return AnsweredWith(*ParseOidOrName("ifType.1"), kInteger, "\1");
            if (!IsWithin(oid, column)) return ask(oid);
            Oid next = column;
            next.push_back(oid.size() == column.size() ? 1 : oid.back() + 1);
            return AnsweredWith(next, kOctetString, "LAN");
        };
        return WalkSubtree(asker, root, onVariable);
    }
    // Takes steps until it is released, or may not go on.
    HostDiagnosis Diagnose(const AskTarget&, std::function<bool()> mayGoOn) override {
        Fail();
        HostDiagnosis diagnosis;
        diagnosis.ping.outcome = Outcome::kAnswered;
        diagnosis.community = "office";
        while (!isReleased && !diagnosis.isStopped) {
            Sleep(5);
            diagnosis.isStopped = !mayGoOn();
        }
        diagnosis.v1.outcome = Outcome::kSilent;
        diagnosis.discovery.outcome = hasEngine ? Outcome::kAnswered : Outcome::kSilent;
        return diagnosis;
    }
    AdapterList IPv4() override { return {}; }
    ComputerReport Report() override { return {}; }

    void Say(const std::string& address, const std::string& value) {
        const std::lock_guard<std::mutex> lock(mutex_);
        answers_.emplace_back(address, value);
        changed_.notify_all();
    }
    void End() { StopSweeps(); }
    std::atomic<int> stops{0}, reads{0}, listReads{0}, sweeps{0};
    std::atomic<bool> isInSweep{false}, isReleased{false};
    std::atomic<bool> isHeld{false};     // a reading
    std::atomic<bool> isUnsent{false};   // all sweeps
    std::atomic<bool> hasEngine{false};  // of SNMPv3, a diagnosed device
    std::atomic<Status> refusal{Status::kRefused};
    std::function<void()> onStop;
    std::atomic<const char*> failure{nullptr};  // of everything from now on
    SweepStep lastStep;                         // may be read once the sweep is over

  private:
    void Fail() const {
        if (failure) throw std::runtime_error(failure);
    }
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::pair<std::string, std::string>> answers_;
    bool isOver_ = false;
};

using testing::HasSubstr;

// To wait for, other than HasSubstr.
inline bool Has(const std::wstring& text, const std::wstring& part) {
    return text.find(part) != text.npos;
}

inline RECT PlaceOf(HWND window) {
    RECT place = {};
    GetWindowRect(window, &place);
    return place;
}

inline std::wstring ItemText(HMENU menu, int item, UINT how = MF_BYPOSITION) {
    wchar_t text[80] = L"";
    GetMenuStringW(menu, static_cast<UINT>(item), text, 80, how);
    return text;
}

inline void Press(HWND dialog, int button) {
    SendMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
}

// As on a screen with this DPI, where the window gets another size.
inline void SetDpi(HWND window, int dpi, LONG width, LONG height) {
    RECT place = {0, 0, width, height};
    SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
}

// As by the user, on a heading of the list.
inline void ClickHeading(HWND list, int column) {
    NMLISTVIEW click = {};
    click.hdr = {list, static_cast<UINT_PTR>(GetDlgCtrlID(list)),
                 static_cast<UINT>(LVN_COLUMNCLICK)};
    click.iSubItem = column;
    SendMessageW(GetParent(list), WM_NOTIFY, click.hdr.idFrom, reinterpret_cast<LPARAM>(&click));
}

inline std::wstring TextOf(HWND window) { return WindowText(window); }

// The visible window that this one owns; null if there is none.
inline HWND PopupOf(HWND owner) {
    for (HWND each = GetTopWindow(nullptr); each; each = GetWindow(each, GW_HWNDNEXT)) {
        if (GetWindow(each, GW_OWNER) == owner && IsWindowVisible(each)) return each;
    }
    return nullptr;
}

// What another thread shows soon; null if it does not.
template <class Find>
HWND Awaited(Find find) {
    HWND found = nullptr;
    for (int wait = 0; wait < 500 && !(found = find()); ++wait) Sleep(10);
    return found;
}

// The dialog that another thread shows next; null if there is none.
inline HWND NextPopupOf(HWND owner) {
    return Awaited([&] { return IsWindowEnabled(owner) ? nullptr : PopupOf(owner); });
}

// Again and again, since a dialog that is still being made ignores it. One without this button is
// cancelled. Posted: a dialog of Wine that ends by a sent message drops the next posted one, which
// may be the window's.
inline void PressUntilGone(HWND dialog, int button) {
    constexpr int kTries = kPatienceMs / 10;
    for (int tries = 0; IsWindow(dialog); ++tries) {
        EXPECT_NE(kTries, tries) << "not closed by " << button;
        PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(tries < kTries ? button : IDCANCEL),
                     0);
        Sleep(10);
    }
}

// Of a message, or of a dialog with buttons of its own.
inline std::wstring QuestionOf(HWND box) {
    const HWND text = GetDlgItem(box, 0xFFFF);
    return TextOf(text ? text : FindWindowExW(box, nullptr, L"Static", nullptr));
}

// The text on the clipboard, which is then empty.
inline std::wstring Copied() {
    const OpenedClipboard opened(OpenClipboard(nullptr) != FALSE);
    const HANDLE data = opened ? GetClipboardData(CF_UNICODETEXT) : nullptr;
    const std::wstring text = data ? static_cast<const wchar_t*>(GlobalLock(data)) : L"";
    EmptyClipboard();
    return text;
}

inline std::wstring LongerText(std::wstring text) {
    return text + std::wstring(text.size() * 2 / 5 + 1, L'w');
}

inline std::wstring TypeOf(HWND window) {
    wchar_t type[20] = L"";
    GetClassNameW(window, type, 20);
    return type;
}

// The visible controls; each is within the window and overlaps no other. A letter that no row
// begins with selects none in lists.
inline std::vector<std::pair<HWND, RECT>> PlacesIn(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    std::vector<std::pair<HWND, RECT>> places;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (!IsWindowVisible(child)) continue;  // of a page that is not shown
        if ((GetWindowLongPtrW(child, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX &&
            TypeOf(child) == L"Button")
            continue;  // which goes around others
        SCOPED_TRACE(GetDlgCtrlID(child));
        RECT place = PlaceOf(child), common = {};
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
        EXPECT_TRUE(IntersectRect(&common, &place, &client) && EqualRect(&common, &place));
        for (const auto& [other, taken] : places)
            EXPECT_FALSE(IntersectRect(&common, &place, &taken)) << GetDlgCtrlID(other);
        places.emplace_back(child, place);
        if (!ListControl::Of(child)) continue;
        NMLVFINDITEMW typed = {{child, 0, LVN_ODFINDITEMW}, -1, {}};
        typed.lvfi.flags = LVFI_STRING;
        typed.lvfi.psz = L"\x01";
        EXPECT_EQ(-1, SendMessageW(window, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&typed)));
    }
    return places;
}

// Into the system's dialog for a file.
inline void TypePath(HWND dialog, const std::string& path) {
    const HWND edit = Awaited([&] {
        HWND name = nullptr;
        EnumChildWindows(
            dialog,
            [](HWND child, LPARAM found) -> BOOL {
                if (TypeOf(child) != L"Edit" || !IsWindowVisible(child)) return TRUE;
                *reinterpret_cast<HWND*>(found) = child;
                return FALSE;
            },
            reinterpret_cast<LPARAM>(&name));
        return name;
    });
    SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(ToWide(path).c_str()));
}

// As a screen reader gets it. Wine leaves fields to the label before them.
inline std::wstring NameOf(HWND control) {
    const HWND label = GetWindow(control, GW_HWNDPREV);
    if (TypeOf(control) == L"Edit" || TypeOf(control) == L"ComboBox")
        return label && TypeOf(label) == L"Static" ? NameOf(label) : L"";
    OwnedObject<IAccessible> object;
    Owned<ClosedBy<BSTR, SysFreeString>> name;
    VARIANT self = {};
    self.vt = VT_I4;
    AccessibleObjectFromWindow(control, DWORD(OBJID_CLIENT), __uuidof(IAccessible),
                               Receive(object));
    if (object) object.Get()->get_accName(self, name.Receive());
    return name ? name.Get() : L"";
}

// Through the list, of which a screen reader's rows are made. Wine gives an IAccessible of a list
// no rows: its one child is the window of the headings, and names of others are E_INVALIDARG.
inline std::wstring CellOf(HWND list, int row, int column) {
    wchar_t text[200] = L"";
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 200;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return text;
}

// The texts of a page's second column.
inline std::wstring PageTexts(HWND page) {
    std::wstring texts;
    const HWND list = GetDlgItem(page, IDC_DETAILS);
    for (int row = 0; row < ListView_GetItemCount(list); ++row)
        texts += CellOf(list, row, 1) + L";";
    return texts;
}

class MainWindowTest : public testing::Test {
  protected:
    // The window waits for its readings, also after a failure that left one held.
    ~MainWindowTest() override { engine_.isHeld = false; }
    // By address, with one community, and read only on demand.
    void Open(StartOptions options = {}, bool hasOneCommunity = true) {
        window_.reset();
        if (options.communities.empty() && hasOneCommunity) options.communities = {""};
        if (!options.lookFor) options.lookFor = 2;
        MSG quit;  // from the previous window; it would end a dialog at once
        PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
        window_.emplace(engine_, std::move(options));
        ClickColumn(2);
        window_->state.settings.readsFound = 0;
    }
    // With the answers of a sweep that has been stopped: pairs of address and value.
    void OpenWith(const std::vector<std::pair<std::string, std::string>>& answers) {
        for (const auto& [address, value] : answers) engine_.Say(address, value);
        Open();
        Command(IDC_FIND);
        const int count = static_cast<int>(answers.size());
        ASSERT_TRUE(Until([&] { return ListView_GetItemCount(Control(IDC_DEVICES)) == count; }));
        Command(IDC_FIND);
        ASSERT_TRUE(Ends());
    }
    // Whether the sweep ends.
    bool Ends() {
        return Until([&] { return TextOf(Control(IDC_FIND)) == Text(IDS_FIND); });
    }
    // The same, as soon as the engine is in it.
    bool EndsSweeps() {
        return Until([&] {
            engine_.End();
            return TextOf(Control(IDC_FIND)) == Text(IDS_FIND);
        });
    }
    bool Shows(const std::wstring& addresses) {
        return Until([&] { return Addresses() == addresses; });
    }
    void PressKey(HWND focus, WPARAM key) {
        MSG pressed = {focus, WM_KEYDOWN, key, 1, 0, {}};
        window_->Dispatch(pressed);
    }
    HWND Control(int id) const { return GetDlgItem(window_->Handle(), id); }
    HWND Popup() const { return PopupOf(window_->Handle()); }
    std::wstring Status() const { return TextOf(Control(IDC_STATUS)); }
    void Command(int id) { Press(window_->Handle(), id); }

    // Presses these buttons, each in the next message or dialog that the window shows meanwhile.
    // Returns the text of the last one.
    std::string Answer(const std::vector<int>& buttons, const std::function<void()>& action) {
        std::string text;
        std::atomic<bool> isOver{false};
        std::thread user([&, owner = window_->Handle(), other = Popup()] {
            const auto next = [&] {
                HWND box = nullptr;
                while (!isOver && (!box || box == other)) {
                    Sleep(10);
                    box = IsWindowEnabled(owner) ? nullptr : PopupOf(owner);
                }
                return isOver ? nullptr : box;
            };
            for (const int button : buttons) {
                const HWND box = next();
                EXPECT_TRUE(box) << "none is shown for " << button;
                if (!box) return;
                EXPECT_TRUE(IsWindowVisible(owner));
                // A window with a dialog cannot be closed, whose caller goes on with it.
                SendMessageW(owner, WM_CLOSE, 0, 0);
                text = ToUtf8(QuestionOf(box));
                PressUntilGone(box, button);
            }
            while (const HWND box = next()) {
                ADD_FAILURE() << "one more is shown";
                PressUntilGone(box, IDCANCEL);
            }
        });
        action();
        isOver = true;
        user.join();
        return text;
    }

    // Opens the modal dialog; `play` acts as its user, on another thread, who then closes it.
    void PlayDialog(int button, const std::function<void(HWND dialog)>& play,
                    int command = IDM_SNMP) {
        std::thread user([&, owner = window_->Handle()] {
            const HWND dialog = NextPopupOf(owner);
            ASSERT_TRUE(dialog);
            play(dialog);
            PressUntilGone(dialog, button);
        });
        Command(command);
        user.join();
    }

    // Handles messages until the condition is true; false if it never was.
    template <class Condition>
    bool Until(Condition condition) {
        const ULONGLONG end = GetTickCount64() + kPatienceMs;
        while (!condition()) {  // also while there is always one more message
            MSG message;
            if (GetTickCount64() > end) return false;
            if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                window_->Dispatch(message);
            } else {
                Sleep(5);
            }
        }
        return true;
    }
    std::wstring Cell(int row, int column) const {
        return CellOf(Control(IDC_DEVICES), row, column);
    }
    std::wstring Addresses() const {
        std::wstring all;
        const int count = ListView_GetItemCount(Control(IDC_DEVICES));
        for (int row = 0; row < count; ++row) all += Cell(row, 2) + L";";
        return all;
    }
    int Selected() const { return ListView_GetNextItem(Control(IDC_DEVICES), -1, LVNI_SELECTED); }
    // As by a click, or with Ctrl.
    void Select(int row, bool isAlso = false) {
        constexpr UINT kBoth = LVIS_SELECTED | LVIS_FOCUSED;
        if (!isAlso) ListView_SetItemState(Control(IDC_DEVICES), -1, 0, LVIS_SELECTED);
        ListView_SetItemState(Control(IDC_DEVICES), row, kBoth, kBoth);
    }
    // Also reads it.
    void SelectNew(int row) {
        const int reads = engine_.reads;
        Select(row);
        ASSERT_TRUE(Until([&] { return engine_.reads == reads + 1; }));
    }
    void ClickColumn(int column) { ClickHeading(Control(IDC_DEVICES), column); }
    void Close() { SendMessageW(window_->Handle(), WM_CLOSE, 0, 0); }
    // One of the bar's menus, as it opens.
    HMENU OpenMenu(int index) const {
        const HMENU menu = GetSubMenu(GetMenu(window_->Handle()), index);
        SendMessageW(window_->Handle(), WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(menu), index);
        return menu;
    }
    // A search of the command line, without a window.
    void OpenScript(const std::string& path = "", const std::string& csvPath = "") {
        StartOptions options;
        options.sweep = options.exit = true;
        options.savePath = path;
        options.csvPath = csvPath;
        Open(options);
    }

    ScriptedEngine engine_;
    std::optional<MainWindow> window_;
};

}  // namespace vndiscover::host
