#include "window/snmp_dialog.h"

#include <vndiscover.h>

#include "platform/wide_text.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr const wchar_t* kAuthLabels[] = {VN_AUTH_MD5,    VN_AUTH_SHA1,   VN_AUTH_SHA224,
                                          VN_AUTH_SHA256, VN_AUTH_SHA384, VN_AUTH_SHA512};
constexpr const wchar_t* kPrivLabels[] = {VN_PRIV_DES, VN_PRIV_AES};
constexpr int kMaxText = 120;  // a longer user's name cannot be sent

std::wstring FieldText(HWND dialog, int id) {
    wchar_t text[kMaxText + 1] = L"";
    GetDlgItemTextW(dialog, id, text, kMaxText + 1);
    std::wstring copy = text;
    SecureZeroMemory(text, sizeof text);
    return copy;
}

// "none" and the labels; `chosen` is one of them, or none.
template <size_t N>
void Fill(HWND dialog, int id, const wchar_t* const (&labels)[N], const std::wstring& chosen) {
    const auto add = [&](const wchar_t* text) {
        SendDlgItemMessageW(dialog, id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    };
    add(Text(IDS_NO_PROTOCOL).c_str());
    size_t index = 0;
    for (size_t label = 0; label < N; ++label) {
        add(labels[label]);
        if (chosen == labels[label]) index = label + 1;
    }
    SendDlgItemMessageW(dialog, id, CB_SETCURSEL, index, 0);
}

template <size_t N>
std::wstring Chosen(HWND dialog, int id, const wchar_t* const (&labels)[N]) {
    const LRESULT index = SendDlgItemMessageW(dialog, id, CB_GETCURSEL, 0, 0);
    return index > 0 ? labels[index - 1] : L"";
}

Secret PasswordOf(HWND dialog, int id, const Secret* known) {
    std::wstring typed = FieldText(dialog, id);
    if (typed.empty() && known) return Secret(known->Get());
    return Secret(std::move(typed));
}

// False: what is there makes no user.
bool Take(HWND dialog, Credentials& credentials) {
    credentials.community = ToUtf8(FieldText(dialog, IDC_COMMUNITY));
    auto next = std::make_shared<Security>();
    next->user = FieldText(dialog, IDC_USER);
    next->authLabel = Chosen(dialog, IDC_AUTH, kAuthLabels);
    next->privLabel = Chosen(dialog, IDC_PRIV, kPrivLabels);
    next->useAuth = !next->authLabel.empty();
    next->usePriv = !next->privLabel.empty();
    // A password belongs to its user.
    const Security* known = credentials.security.get();
    if (known && known->user != next->user) known = nullptr;
    next->authPassword =
        PasswordOf(dialog, IDC_AUTH_PASSWORD, known ? &known->authPassword : nullptr);
    next->privPassword =
        PasswordOf(dialog, IDC_PRIV_PASSWORD, known ? &known->privPassword : nullptr);
    if (next->user.empty()) {
        credentials.security.reset();
        return !next->useAuth && !next->usePriv;
    }
    // The module would send unprotected requests instead.
    if ((next->useAuth && next->authPassword.IsEmpty()) ||
        (next->usePriv && (!next->useAuth || next->privPassword.IsEmpty())))
        return false;
    credentials.security = std::move(next);
    return true;
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, GWLP_USERDATA, lParam);
        const auto& known = *reinterpret_cast<const Credentials*>(lParam);
        for (const int id : {IDC_COMMUNITY, IDC_USER, IDC_AUTH_PASSWORD, IDC_PRIV_PASSWORD})
            SendDlgItemMessageW(dialog, id, EM_LIMITTEXT, kMaxText, 0);
        SetDlgItemTextW(
            dialog, IDC_COMMUNITY,
            ToWide(known.community.empty() ? VN_DEFAULT_COMMUNITY : known.community).c_str());
        const Security* user = known.security.get();
        SetDlgItemTextW(dialog, IDC_USER, user ? user->user.c_str() : L"");
        Fill(dialog, IDC_AUTH, kAuthLabels, user ? user->authLabel : L"");
        Fill(dialog, IDC_PRIV, kPrivLabels, user ? user->privLabel : L"");
        return TRUE;
    }
    if (message != WM_COMMAND) return FALSE;
    if (LOWORD(wParam) == IDCANCEL) EndDialog(dialog, FALSE);
    if (LOWORD(wParam) != IDOK) return FALSE;
    auto& credentials = *reinterpret_cast<Credentials*>(GetWindowLongPtrW(dialog, GWLP_USERDATA));
    Credentials next = credentials;
    if (Take(dialog, next)) {
        credentials = std::move(next);
        EndDialog(dialog, TRUE);
    } else {
        MessageBoxW(dialog, Text(IDS_SNMP_BAD_USER).c_str(), Text(IDS_TITLE).c_str(),
                    MB_OK | MB_ICONWARNING);
    }
    return TRUE;
}

}  // namespace

bool AskCredentials(HWND owner, Credentials& credentials) {
    return DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDD_SNMP), owner, Procedure,
                           reinterpret_cast<LPARAM>(&credentials)) == TRUE;
}

}  // namespace vndiscover::host
