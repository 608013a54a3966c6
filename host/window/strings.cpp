#include "window/strings.h"

#include <algorithm>
#include <cwctype>

#include "platform/wide_text.h"
#include "values/ranges.h"
#include "values/utc_time.h"

namespace vndiscover::host {
namespace {

TextChange textChange = nullptr;

// Returns false if `utc` is no time such as "2026-11-25T04:32:23Z".
bool ToLocal(const std::string& utc, SYSTEMTIME& local) {
    int part[6] = {};
    if (!ReadUtc(utc, part)) return false;
    const auto word = [&](int index) { return static_cast<WORD>(part[index]); };
    const SYSTEMTIME time = {word(0), word(1), 0, word(2), word(3), word(4), word(5), 0};
    return SystemTimeToTzSpecificLocalTime(nullptr, &time, &local) != 0;
}

// In the user's format. `isShort`: leaves out today's date. Returns an empty text on failure.
std::wstring Formatted(const SYSTEMTIME& time, bool isShort, DWORD clockFlags) {
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    const bool isToday =
        time.wYear == now.wYear && time.wMonth == now.wMonth && time.wDay == now.wDay;
    wchar_t date[80] = L"", clock[80] = L"";
    const bool isDone =
        GetDateFormatW(LOCALE_USER_DEFAULT, 0, &time, nullptr, date, 80) != 0 &&
        GetTimeFormatW(LOCALE_USER_DEFAULT, clockFlags, &time, nullptr, clock, 80) != 0;
    return isDone ? (isShort && isToday ? L"" : std::wstring(date) + L" ") + clock : L"";
}

}  // namespace

std::wstring Text(unsigned id) {
    // With size 0 the system returns a pointer into the resource.
    const wchar_t* text = nullptr;
    const int length =
        LoadStringW(GetModuleHandleW(nullptr), id, reinterpret_cast<wchar_t*>(&text), 0);
    std::wstring copy(text ? text : L"", static_cast<size_t>(length > 0 ? length : 0));
    return textChange ? textChange(std::move(copy)) : copy;
}

std::wstring HeadingText(unsigned id) {
    std::wstring text = Text(id);
    EraseIf(text, [](wchar_t letter) { return letter == L'&'; });
    return text;
}

std::wstring Text(unsigned id, std::initializer_list<std::wstring> values) {
    const std::wstring text = Text(id);
    std::wstring filled, last;
    for (size_t at = 0; at < text.size(); ++at) {
        const bool isPlace = text[at] == L'%' && at + 1 < text.size() && text[at + 1] >= L'1' &&
                             static_cast<size_t>(text[at + 1] - L'1') < values.size();
        const size_t middle = text.find(L'|', at), end = text.find(L']', at);
        if (isPlace) {
            filled += last = values.begin()[text[++at] - L'1'];
        } else if (text[at] == L'[' && middle < end && end != std::wstring::npos) {
            filled += last == L"1" ? text.substr(at + 1, middle - at - 1)
                                   : text.substr(middle + 1, end - middle - 1);
            at = end;
        } else {
            filled += text[at];
        }
    }
    return filled;
}

std::wstring Grouped(uint64_t count) {
    wchar_t separator[8] = L",";
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_STHOUSAND, separator, 8);
    std::wstring text = std::to_wstring(count);
    for (size_t at = text.size(); at > 3;) text.insert(at -= 3, separator);
    return text;
}

std::wstring GroupedCounts(const std::wstring& text) {
    const size_t end = std::min(text.find(L", "), text.size());
    std::wstring grouped;
    for (size_t at = 0; at < text.size();) {
        size_t digits = 0;
        while (at + digits < end && digits < 18 && std::iswdigit(text[at + digits])) ++digits;
        grouped +=
            digits == 0 ? std::wstring(1, text[at]) : Grouped(std::stoull(text.substr(at, digits)));
        at += std::max<size_t>(digits, 1);
    }
    return grouped;
}

std::wstring EditText(const std::string& text) {
    std::wstring lines;
    for (const wchar_t letter : ToWide(text)) {
        if (letter != L'\r') lines += letter == L'\n' ? L"\r\n" : std::wstring(1, letter);
    }
    return lines;
}

void SetTextChange(TextChange change) { textChange = change; }

void ChangeTexts(HWND dialog) {
    for (HWND child = GetWindow(dialog, GW_CHILD); child && textChange;
         child = GetWindow(child, GW_HWNDNEXT)) {
        wchar_t text[80] = L"";
        if (GetWindowTextW(child, text, 80) != 0) SetWindowTextW(child, textChange(text).c_str());
    }
}

std::wstring LocalTime(const std::string& utc, DWORD flags, bool isShort) {
    SYSTEMTIME local = {};
    const std::wstring text = ToLocal(utc, local) ? Formatted(local, isShort, flags) : L"";
    return text.empty() ? ToWide(utc) : text;
}

std::string SystemTime(const std::tm& local) {
    const auto word = [](int number) { return static_cast<WORD>(number); };
    const SYSTEMTIME time = {
        word(local.tm_year + 1900), word(local.tm_mon + 1), 0, word(local.tm_mday),
        word(local.tm_hour),        word(local.tm_min),     0, 0};
    return ToUtf8(Formatted(time, true, TIME_NOSECONDS));
}

}  // namespace vndiscover::host
