#include "window/controls/list_control.h"

#include <gtest/gtest.h>

#include "platform/messages.h"
#include "window/controls/level_bar.h"
#include "window/controls/placement.h"
#include "window/resource.h"

namespace vndiscover::host {
namespace {

// A list in a dialog, and one that answers it.
class Lists : public testing::Test, private ListModel {
  public:
    std::optional<LRESULT> OnMessage(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
        return HandleListMessage(message, wParam, lParam);
    }
    void OnException() noexcept {}

  protected:
    Lists() {
        const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_LISTVIEW_CLASSES};
        InitCommonControlsEx(&controls);
        struct {
            DLGTEMPLATE dialog;
            WORD menuTypeAndTitle[3];
        } form = {{WS_POPUP | WS_VISIBLE, 0, 0, 0, 0, 200, 100}, {}};
        dialog_ =
            CreateDialogIndirectParamW(GetModuleHandleW(nullptr), &form.dialog, nullptr,
                                       DialogProcedure<Lists>, reinterpret_cast<LPARAM>(this));
        list_.Create(dialog_, IDC_DETAILS, L"Facts");
        list_.SetColumns({{IDS_FACT_WHAT, 100}});
        MoveWindow(list_.Handle(), 0, 0, 200, 100, TRUE);
    }
    ~Lists() override { DestroyWindow(dialog_); }

    int SelectedAfter(const wchar_t* typed) {
        list_.Select(-1);
        for (; *typed; ++typed) SendMessageW(list_.Handle(), WM_CHAR, *typed, 1);
        return list_.Selected();
    }
    template <class Check>
    bool Drawn(Check check) {
        const WindowDc screen(nullptr);
        const OwnedMemoryDc dc(CreateCompatibleDC(screen.Get()));
        const OwnedBitmap bitmap(CreateCompatibleBitmap(screen.Get(), 200, 100));
        const SelectedObject drawing(dc.Get(), bitmap.Get());
        PatBlt(dc.Get(), 0, 0, 200, 100, WHITENESS);
        SendMessageW(list_.Handle(), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc.Get()),
                     PRF_CLIENT);
        return check(dc.Get());
    }
    // Whether anything is drawn in place of rows.
    bool DrawsText() {
        return Drawn([](HDC dc) {
            const COLORREF paper = GetPixel(dc, 1, 90);
            for (int y = 30; y < 90; ++y) {
                for (int x = 1; x < 190; ++x) {
                    if (GetPixel(dc, x, y) != paper) return true;
                }
            }
            return false;
        });
    }
    // The colour between the first two cells, with the focus in the list.
    bool IsGapSelected(int x) {
        SetFocus(list_.Handle());
        return Drawn([&](HDC dc) {
            RECT row = {};
            ListView_GetItemRect(list_.Handle(), 0, &row, LVIR_BOUNDS);
            for (int at = x - 3; at < x + 6; ++at)
                if (GetPixel(dc, at, row.top + 3) != GetSysColor(COLOR_HIGHLIGHT)) return false;
            return true;
        });
    }
    bool HasFrame() {
        RECT row = {};
        ListView_GetItemRect(list_.Handle(), 0, &row, LVIR_BOUNDS);
        return Drawn([&](HDC dc) {
            const int middle = (row.top + row.bottom) / 2;
            return GetPixel(dc, row.left, middle) == GetSysColor(COLOR_HIGHLIGHT) &&
                   GetPixel(dc, row.left + 1, middle) != GetSysColor(COLOR_HIGHLIGHT);
        });
    }

    HWND dialog_ = nullptr;
    ListControl list_{*this};
    std::vector<std::wstring> texts_;
    std::wstring emptyText_;
    int reports_ = 0;  // of the second row

  private:
    size_t Count() const override { return texts_.size(); }
    std::wstring CellText(size_t row, size_t) const override { return texts_[row]; }
    void OnSelected() override { reports_ += list_.Selected() == 1; }
    std::wstring EmptyText() const override { return emptyText_; }
    bool IsBold(size_t row) const override { return row == 0; }
};

TEST_F(Lists, TypedLettersFindTheirRow) {
    texts_ = {L"Cyan", L"Black", L"Blue"};
    list_.Refresh();
    EXPECT_EQ(2, SelectedAfter(L"blu"));
    EXPECT_EQ(-1, SelectedAfter(L"z"));
}

TEST_F(Lists, OneChangeIsReportedOnce) {
    texts_ = {L"Cyan", L"Black"};
    list_.Refresh();
    list_.Select(0);
    SendMessageW(list_.Handle(), WM_KEYDOWN, VK_DOWN, 1);
    EXPECT_EQ(1, reports_);
}

TEST_F(Lists, BoldRowsAreDrawnBold) {
    texts_ = {L"", L""};
    list_.Refresh();
    const WindowDc dc(list_.Handle());
    for (const int row : {0, 1}) {
        NMLVCUSTOMDRAW draw = {};
        draw.nmcd.hdr = {list_.Handle(), IDC_DETAILS, NM_CUSTOMDRAW};
        draw.nmcd.dwDrawStage = CDDS_ITEMPREPAINT | CDDS_SUBITEM;
        draw.nmcd.hdc = dc.Get();
        draw.nmcd.dwItemSpec = static_cast<DWORD_PTR>(row);
        list_.OnNotify(&draw.nmcd.hdr);
        LOGFONTW font = {};
        GetObjectW(GetCurrentObject(dc.Get(), OBJ_FONT), sizeof font, &font);
        EXPECT_EQ(row == 0, font.lfWeight == FW_BOLD);
    }
}

// Beside a scroll bar too, and with a width that its user gave it.
TEST_F(Lists, LastColumnHasTheRestOfTheWidth) {
    list_.SetColumns({{IDS_FACT_WHAT, 50}, {IDS_PROTOCOL, 60}});
    for (const size_t rows : {1, 100, 1}) {
        texts_.resize(rows);
        list_.Refresh();
        RECT client = {};
        GetClientRect(list_.Handle(), &client);
        EXPECT_EQ(client.right, 50 + ListView_GetColumnWidth(list_.Handle(), 1)) << rows;
        EXPECT_EQ(60, list_.WidthOf(1));
    }
    ListView_SetColumnWidth(list_.Handle(), 1, 300);
    list_.Refresh();
    EXPECT_EQ(300, ListView_GetColumnWidth(list_.Handle(), 1));
    int order[] = {1, 0};
    ListView_SetColumnOrderArray(list_.Handle(), 2, order);
    ListView_SetColumnWidth(list_.Handle(), 1, 90);
    list_.Refresh();
    EXPECT_EQ(90, ListView_GetColumnWidth(list_.Handle(), 1));
    list_.SetDpi(192);
    EXPECT_EQ(100, ListView_GetColumnWidth(list_.Handle(), 0));
}

// The background alone hardly shows it.
TEST_F(Lists, SelectedRowIsFramedWithoutTheFocus) {
    texts_ = {L""};
    list_.Refresh();
    list_.Select(0);
    for (const HWND focused : {list_.Handle(), HWND()}) {
        SetFocus(focused);
        EXPECT_EQ(!focused, HasFrame());
    }
    list_.SetDpi(96);  // with images, between which and the text the gap was
    list_.SetColumns({{IDS_FACT_WHAT, 50}, {IDS_PROTOCOL, 60}});
    EXPECT_TRUE(IsGapSelected(50));
}

TEST_F(Lists, MenuOfARowThatIsScrolledAwayIsInTheList) {
    texts_.resize(100);
    list_.Refresh();
    list_.Select(0);
    ListView_EnsureVisible(list_.Handle(), 99, FALSE);
    ListControl::MenuPlace found = {};
    ASSERT_TRUE(list_.FindMenuPlace(kByKeyboard, found));
    RECT place = {};
    GetWindowRect(list_.Handle(), &place);
    EXPECT_TRUE(PtInRect(&place, found.point));
}

TEST_F(Lists, EmptyOnesSayWhyEachTime) {
    list_.Refresh();
    EXPECT_FALSE(DrawsText());
    emptyText_ = L"none";
    EXPECT_TRUE(DrawsText());
    texts_ = {L""};
    list_.Refresh();
    EXPECT_FALSE(DrawsText());
}

// A bar's cell has the colours of the other cells of its row.
TEST_F(Lists, BarsHaveTheColoursOfTheirRow) {
    texts_ = {L""};
    list_.Refresh();
    Drawn([&](HDC dc) {
        NMLVCUSTOMDRAW draw = {};
        draw.nmcd.hdr.hwndFrom = list_.Handle();
        draw.nmcd.hdc = dc;
        const RECT cell = {0, 0, 100, 20};
        const auto background = [&](HWND focused, int selected) {
            SetFocus(focused);
            list_.Select(selected);
            DrawBar(draw, cell, {0}, L"0 %", 96, false);
            EXPECT_EQ(GetSysColor(COLOR_WINDOW), GetPixel(dc, 4 + 10, 10));  // not a full bar
            return GetPixel(dc, 0, 0);
        };
        EXPECT_EQ(GetSysColor(COLOR_WINDOW), background(list_.Handle(), -1));
        EXPECT_EQ(GetSysColor(COLOR_HIGHLIGHT), background(list_.Handle(), 0));
        EXPECT_EQ(GetSysColor(COLOR_BTNFACE), background(nullptr, 0));
        // That of the supply has a frame.
        constexpr COLORREF kCyan = RGB(0, 160, 216);
        DrawBar(draw, cell, {50, kCyan}, L"50 %", 96, false);
        const int end = 4 + 2 + 32 / 2;  // the inset, the frame, and half of the inside
        EXPECT_EQ(kCyan, GetPixel(dc, end - 1, 10));
        EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), GetPixel(dc, end, 10));
        EXPECT_EQ(GetSysColor(COLOR_WINDOWTEXT), GetPixel(dc, end - 9, 3 + 1));
        EXPECT_EQ(GetSysColor(COLOR_WINDOW), GetPixel(dc, end + 1, 10));
        DrawBar(draw, cell, {2, kCyan}, L"2 %", 96, false);
        EXPECT_EQ(kCyan, GetPixel(dc, 4 + 2, 10));  // seen although it is low
        DrawBar(draw, cell, {kNoLevel}, L"", 96, true);
        EXPECT_NE(GetSysColor(COLOR_WINDOWTEXT), GetPixel(dc, 4, 10)) << "its frame";
        return true;
    });
}

TEST(Rows, GroupCountsAndNothingElse) {
    const std::vector<ListRow> rows =
        ListRowsOf({{"",
                     {{"Printed", "184305 impressions"},
                      {"Black", "30 % (3000 of 10000), 1234 pages", 30},
                      {"Waste box", "room left: 97 %", 97},
                      {"Name", "12345"}}}});
    EXPECT_EQ(L"184,305 impressions", rows[0].cells[1]);
    EXPECT_EQ(L"30 % (3,000 of 10,000), 1234 pages", rows[1].cells[1]);
    EXPECT_FALSE(rows[2].bar) << "which would look like a full box";
    EXPECT_EQ(L"12345", rows[3].cells[1]);
}

}  // namespace
}  // namespace vndiscover::host
