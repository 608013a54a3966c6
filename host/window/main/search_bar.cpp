#include "window/main/search_bar.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "platform/wide_text.h"
#include "values/module_types.h"
#include "values/object_names.h"
#include "window/dialogs/dialogs.h"
#include "window/strings.h"
#include "wsd/wsd_message.h"

namespace vndiscover::host {
namespace {

constexpr DWORD kTick = BS_AUTOCHECKBOX | WS_TABSTOP;

// In tab order. A screen reader uses the label before a control as its name.
constexpr struct BarItem {
    int id;
    const wchar_t* type;
    unsigned text;
    DWORD style;
    bool startsGroup;  // has a wider space before it
    int space;         // the width without the text, in pixels at 96 DPI
    unsigned widest;   // the widest text that it ever has, so that no other control moves; 0: none
} kItems[] = {
    {IDC_FIND, L"BUTTON", IDS_FIND, BS_DEFPUSHBUTTON | WS_TABSTOP, false, 36, IDS_STOPPING},
    {IDC_PRESET_LABEL, L"STATIC", IDS_PRESET_LABEL, SS_CENTERIMAGE, true, 2, IDS_PRESET_LABEL},
    {IDC_PRESET, L"COMBOBOX", 0, CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, false, 44,
     IDS_PRESET_KNOWN},
    {IDC_V1, L"BUTTON", IDS_V1, kTick, true, 26, IDS_V1},
    {IDC_V3, L"BUTTON", IDS_V3, kTick, false, 26, IDS_V3},
    {IDC_WSD, L"BUTTON", IDS_WSD, kTick, false, 26, IDS_WSD},
    {IDC_IPV4, L"BUTTON", IDS_IPV4, kTick, true, 26, IDS_IPV4},
    {IDC_IPV6, L"BUTTON", IDS_IPV6, kTick, false, 26, IDS_IPV6},
    {IDC_FILTER_LABEL, L"STATIC", IDS_FILTER, SS_CENTERIMAGE, true, 2, IDS_FILTER},
    {IDC_FILTER, L"EDIT", 0, ES_AUTOHSCROLL | WS_TABSTOP, false, 150, 0},
};
constexpr int kTicks[] = {IDC_V1, IDC_V3, IDC_WSD, IDC_IPV4, IDC_IPV6};
constexpr struct PresetItem {
    unsigned text, note;
    const char* object;
    const char* types;  // for WS-Discovery
} kPresets[] = {{IDS_PRESET_PRINTERS, IDS_PRESET_PRINTERS_NOTE, "hrDeviceDescr.1", kPrinterType},
                {IDS_PRESET_ALL, IDS_PRESET_ALL_NOTE, "sysName.0", "wsdp:Device"},
                {IDS_PRESET_KNOWN, IDS_PRESET_KNOWN_NOTE, kDefaultDiscoveryOid, kPrinterType}};
static_assert(std::size(kPresets) == kPresetCount);

}  // namespace

int LineHeight(HFONT font) {
    LOGFONTW size = {};
    GetObjectW(font, sizeof size, &size);
    return MulDiv(std::abs(size.lfHeight), 4, 3);
}

void SearchBar::Create(HWND parent) {
    parent_ = parent;
    for (const BarItem& item : kItems)
        CreateControl(parent, item.type, item.text, item.style, item.id,
                      item.id == IDC_FILTER ? WS_EX_CLIENTEDGE : 0);
    for (const PresetItem& preset : kPresets)
        SendMessageW(Control(IDC_PRESET), CB_ADDSTRING, 0,
                     reinterpret_cast<LPARAM>(Text(preset.text).c_str()));
    CreateControl(parent, L"STATIC", 0, SS_NOPREFIX, IDC_PRESET_NOTE);
}

void SearchBar::ShowNote() const {
    ChangeText(Control(IDC_PRESET_NOTE), Text(kPresets[Preset()].note));
}

void SearchBar::Restore(const Settings& settings) {
    for (size_t index = 0; index < std::size(kTicks); ++index)
        CheckDlgButton(parent_, kTicks[index], settings.ticks >> index & 1);
    Choose(settings.preset);
}

void SearchBar::Choose(size_t preset) const {
    SendMessageW(Control(IDC_PRESET), CB_SETCURSEL, preset, 0);
    ShowNote();
}

void SearchBar::Save(Settings& settings) const {
    settings.ticks = 0;
    for (size_t index = 0; index < std::size(kTicks); ++index)
        settings.ticks |= static_cast<uint32_t>(IsTicked(kTicks[index])) << index;
    settings.preset = static_cast<uint32_t>(Preset());
}

int SearchBar::Place(Placement* placement, HFONT font, int width, int dpi) const {
    const int margin = Scaled(8, dpi), gap = Scaled(6, dpi);
    const int inner = std::max(0, width - 2 * margin);
    Box box = {margin, margin, 0, LineHeight(font) + Scaled(10, dpi)};
    for (const BarItem& item : kItems) {
        const std::wstring widest = item.widest ? Text(item.widest) : L"";
        const int text = TextSize(Control(item.id), widest, DT_SINGLELINE).cx;
        box.width = std::min(text + Scaled(item.space, dpi), inner);
        if (box.x > margin && item.startsGroup) box.x += Scaled(12, dpi);
        if (box.x > margin && box.x + box.width > width - margin) {
            box.x = margin;
            box.y += box.height + gap;
        }
        if (item.id == IDC_FILTER) box.width = std::max(box.width, width - margin - box.x);
        if (placement) PlaceItem(*placement, item.id, box);
        box.x += box.width + gap;
    }
    const HWND note = Control(IDC_PRESET_NOTE);
    const int height = TextSize(note, WindowText(note), DT_WORDBREAK | DT_NOPREFIX, inner).cy;
    box = {margin, box.y + box.height + Scaled(3, dpi), inner, std::max(height, LineHeight(font))};
    if (placement) placement->Move(note, box);
    return box.y + box.height + gap;
}

// Centres the control in its row. The height of a combo box includes its open list.
void SearchBar::PlaceItem(Placement& placement, int id, Box box) const {
    const bool isField = id == IDC_FILTER || id == IDC_PRESET;
    const int height = isField ? FitField(Control(id)) : box.height;
    box.y += std::max(0, box.height - height) / 2;
    box.height = id == IDC_PRESET ? box.height * 6 : height;
    placement.Move(Control(id), box);
}

size_t SearchBar::Preset() const {
    const LRESULT chosen = SendMessageW(Control(IDC_PRESET), CB_GETCURSEL, 0, 0);
    return static_cast<size_t>(std::max<LRESULT>(0, chosen));
}

std::vector<SweepStep> SearchBar::Steps(const Credentials& credentials) const {
    const PresetItem& preset = kPresets[Preset()];
    std::vector<SweepStep> steps;
    SweepStep step;
    for (const bool useIPv6 : {false, true}) {
        if (!IsTicked(useIPv6 ? IDC_IPV6 : IDC_IPV4)) continue;
        step.useIPv6 = useIPv6;
        step.kind = SweepKind::kSnmpV1;
        step.oid = *ParseOidOrName(preset.object);
        for (const std::string& community : credentials.communities) {
            step.login = {community, nullptr};
            if (IsTicked(IDC_V1)) steps.push_back(step);
        }
        if (!IsTicked(IDC_V3)) continue;
        step.login = {"", credentials.security};
        step.kind = SweepKind::kSnmpV3;
        steps.push_back(step);
        // Over SNMPv3, the preset's object would not find a printer whose index is not 1.
        step.oid = *ParseOidOrName("sysName.0");
        if (LooksForPrinters()) steps.push_back(step);
    }
    step = {};
    step.kind = SweepKind::kWsd;
    step.types = preset.types;
    if (IsTicked(IDC_WSD) && IsTicked(IDC_IPV4)) steps.push_back(step);
    return steps;
}

bool SearchBar::ClearFilter() const {
    const HWND filter = Control(IDC_FILTER);
    if (GetFocus() != filter || GetWindowTextLengthW(filter) == 0) return false;
    return SetWindowTextW(filter, L"") != 0;
}

}  // namespace vndiscover::host
