#include "window/dialogs/snmp_dialog.h"

#include <vndiscover.h>

#include <commctrl.h>

#include <utility>

#include "platform/wide_text.h"
#include "values/module_types.h"
#include "values/ranges.h"
#include "values/text.h"
#include "window/dialogs/dialogs.h"
#include "window/resource.h"
#include "window/store/settings.h"
#include "window/strings.h"

namespace vndiscover::host {
namespace {

constexpr WPARAM kMaxCommunities = 2000;

bool IsSame(const std::wstring& one, const std::wstring& other) {
    return lstrcmpiW(one.c_str(), other.c_str()) == 0;
}

class SnmpDialog : public Dialog {
  public:
    SnmpDialog(Credentials& credentials, std::wstring reason)
        : credentials_(credentials), reason_(std::move(reason)), known_(credentials.security) {}
    using Dialog::ShowModal;

  private:
    LRESULT Send(int id, UINT message, WPARAM wParam = 0, const wchar_t* text = nullptr) const {
        return SendDlgItemMessageW(dialog_, id, message, wParam, reinterpret_cast<LPARAM>(text));
    }
    std::wstring FieldText(int id) const { return WindowText(Item(id)); }
    // Unlike ChangeText, this reads no password from the field.
    void SetField(int id, const std::wstring& text) const {
        SetDlgItemTextW(dialog_, id, text.c_str());
    }

    // Fills a list with "none" and the names of protocols. Selects the one with the label, or
    // "none".
    void Fill(int id, const std::vector<Protocol>& protocols, const std::wstring& label) const {
        Send(id, CB_RESETCONTENT);
        Send(id, CB_ADDSTRING, 0, Text(IDS_NO_PROTOCOL).c_str());
        Send(id, CB_SETCURSEL, 0);
        for (const Protocol& one : protocols) {
            const LRESULT index = Send(id, CB_ADDSTRING, 0, one.name);
            if (IsSame(one.label, label)) Send(id, CB_SETCURSEL, static_cast<WPARAM>(index));
        }
    }

    std::wstring Chosen(int id, const std::vector<Protocol>& protocols) const {
        const LRESULT index = Send(id, CB_GETCURSEL);
        return index > 0 ? protocols[static_cast<size_t>(index) - 1].label : L"";
    }

    // The known password unless another one is typed.
    Secret PasswordOf(int id, const Secret& known) const {
        std::wstring typed = FieldText(id);
        return typed.empty() ? Secret(known.Get()) : Secret(std::move(typed));
    }

    void OnFonts() override {
        FitFields({IDC_COMMUNITY, IDC_PROFILE, IDC_USER, IDC_AUTH, IDC_AUTH_PASSWORD, IDC_PRIV,
                   IDC_PRIV_PASSWORD});
    }

    void OnOpened() override {
        // Passwords have no limit, since the module accepts any length.
        Send(IDC_COMMUNITY, EM_LIMITTEXT, kMaxCommunities);
        Send(IDC_USER, EM_LIMITTEXT, VN_USER_NAME_MAX);
        Send(IDC_PROFILE, CB_LIMITTEXT, kMaxProfileName);
        std::vector<std::string> communities = credentials_.communities;
        for (std::string& one : communities) one = one.empty() ? VN_DEFAULT_COMMUNITY : one;
        SetField(IDC_COMMUNITY, ToWide(Joined(communities)));
        ListProfiles();
        if (known_) {
            const auto profile = ReadProfile(credentials_.profile);
            isClosed_ = profile && !profile->isOpen;
            loaded_ = profile ? credentials_.profile : L"";
            SetField(IDC_PROFILE, loaded_);
            Show(*known_, true);
        } else {
            Load(LastProfile());
        }
    }

    void OnControl(int id, int code) override {
        if (id == IDC_PROFILE && code == CBN_SELCHANGE) {
            const auto index = static_cast<size_t>(Send(IDC_PROFILE, CB_GETCURSEL));
            if (index < names_.size()) Load(names_[index]);
        } else if (code == CBN_SELCHANGE || code == CBN_EDITCHANGE) {
            EnableControls();
        } else if (id == IDC_PROFILE_DELETE) {
            Delete();
        } else if (id == IDCANCEL) {
            End(FALSE);
        } else if (id == IDOK) {
            Finish();
        }
    }

    // No is the default. With a Cancel button, Esc closes the message.
    static constexpr UINT kQuestion = MB_YESNOCANCEL | MB_ICONQUESTION | MB_DEFBUTTON2;
    int ShowMessage(const std::wstring& text, UINT kind = MB_OK | MB_ICONWARNING) const {
        return MessageBoxW(dialog_, text.c_str(), Text(IDS_TITLE).c_str(), kind);
    }

    void ListProfiles() {
        names_ = ProfileNames();
        Send(IDC_PROFILE, CB_RESETCONTENT);
        for (const std::wstring& name : names_) Send(IDC_PROFILE, CB_ADDSTRING, 0, name.c_str());
    }

    // For a profile that cannot be read, the fields are empty; it can be deleted.
    void Load(const std::wstring& name) {
        auto profile = ReadProfile(name);
        isClosed_ = profile ? !profile->isOpen : IsSaved(name);
        loaded_ = profile || isClosed_ ? name : L"";
        SetField(IDC_PROFILE, loaded_);
        if (!profile) {
            known_.reset();
            return Show({}, false);
        }
        Show(profile->security, profile->isOpen);
        // For a profile that cannot be opened, passwords that were typed before are used again.
        const bool isTyped = isClosed_ && known_ && known_->user == profile->security.user;
        if (!isTyped) known_ = std::make_shared<Security>(std::move(profile->security));
    }

    bool IsSaved(const std::wstring& name) const {
        return AnyOf(names_, [&](const std::wstring& each) { return IsSame(each, name); });
    }

    void Show(const Security& user, bool hasPasswords) const {
        SetField(IDC_USER, user.user);
        Fill(IDC_AUTH, kAuth, user.authLabel);
        Fill(IDC_PRIV, kPriv, user.privLabel);
        const std::wstring hint = Text(IDS_SNMP_KNOWN);
        for (const auto& [id, isKnown] : {std::pair(IDC_AUTH_PASSWORD, user.UseAuth()),
                                          std::pair(IDC_PRIV_PASSWORD, user.UsePriv())}) {
            SetField(id, L"");
            Send(id, EM_SETCUEBANNER, TRUE, hasPasswords && isKnown ? hint.c_str() : L"");
        }
        const std::wstring note = Text(!isClosed_        ? IDS_PROFILE_NOTE
                                       : loaded_.empty() ? IDS_USER_CLOSED
                                                         : IDS_PROFILE_CLOSED);
        SetField(IDC_PROFILE_NOTE, reason_.empty() ? note : reason_ + L"\n" + note);
        EnableControls();
    }

    // Disables what has no effect now.
    void EnableControls() const {
        const bool hasAuth = Send(IDC_AUTH, CB_GETCURSEL) > 0;
        const bool hasPriv = hasAuth && Send(IDC_PRIV, CB_GETCURSEL) > 0;
        for (const auto& [id, isUsed] :
             {std::pair(IDC_AUTH_PASSWORD, hasAuth), std::pair(IDC_PRIV, hasAuth),
              std::pair(IDC_PRIV_PASSWORD, hasPriv),
              std::pair(IDC_PROFILE_DELETE, IsSaved(FieldText(IDC_PROFILE)))})
            EnableWindow(Item(id), isUsed);
    }

    void Delete() {
        const std::wstring name = FieldText(IDC_PROFILE);
        if (!IsSaved(name) || ShowMessage(Text(IDS_PROFILE_ASK_DELETE, {name}), kQuestion) != IDYES)
            return;
        if (!DeleteProfile(name)) return void(ShowMessage(Text(IDS_PROFILE_NOT_DELETED)));
        isClosed_ = false;
        known_.reset();
        loaded_.clear();
        ListProfiles();
        Show({}, false);
    }

    // Without the values of disabled fields.
    std::shared_ptr<Security> TypedUser() const {
        auto user = std::make_shared<Security>();
        user->user = FieldText(IDC_USER);
        user->authLabel = Chosen(IDC_AUTH, kAuth);
        if (user->UseAuth()) user->privLabel = Chosen(IDC_PRIV, kPriv);
        // A known password is only valid for its user.
        const Security none;
        const Security& known = known_ && known_->user == user->user ? *known_ : none;
        if (user->UseAuth()) user->authPassword = PasswordOf(IDC_AUTH_PASSWORD, known.authPassword);
        if (user->UsePriv()) user->privPassword = PasswordOf(IDC_PRIV_PASSWORD, known.privPassword);
        return user;
    }

    // The field with a mistake, and the string that says what to do; {0, 0}: there is none.
    static std::pair<int, unsigned> FindMistake(const std::wstring& profile, const Security& user) {
        if (!profile.empty() && !IsProfileName(profile)) return {IDC_PROFILE, IDS_PROFILE_BAD_NAME};
        const bool needsUser = !profile.empty() || user.UseAuth();
        if ((needsUser && user.user.empty()) || ToUtf8(user.user).size() > VN_USER_NAME_MAX)
            return {IDC_USER, IDS_SNMP_BAD_USER};
        // Without a password, the module would send unprotected requests.
        if (user.UseAuth() && user.authPassword.IsEmpty())
            return {IDC_AUTH_PASSWORD, IDS_SNMP_NO_AUTH};
        if (user.UsePriv() && user.privPassword.IsEmpty())
            return {IDC_PRIV_PASSWORD, IDS_SNMP_NO_PRIV};
        return {0, 0};
    }

    void ShowMistake(int field, unsigned text) const {
        ShowMessage(Text(text));
        const auto control = reinterpret_cast<WPARAM>(Item(field));
        SendMessageW(dialog_, WM_NEXTDLGCTL, control, TRUE);  // also selects the field's text
    }

    void Finish() {
        const std::wstring typed = FieldText(IDC_COMMUNITY), name = FieldText(IDC_PROFILE);
        auto communities = ParseCommunities(ToUtf8(typed));
        if (!communities) return ShowMistake(IDC_COMMUNITY, IDS_SNMP_BAD_COMMUNITY);
        std::shared_ptr<Security> user = TypedUser();
        const auto [field, text] = FindMistake(name, *user);
        if (field != 0) return ShowMistake(field, text);
        if (user->user.empty()) user.reset();
        const auto saved = user ? Save(name, *user) : std::optional(SaveResult::kSaved);
        if (!saved) return;
        // The default profile is of no use any more.
        if ((!user || !name.empty()) && !DeleteProfile(L""))
            ShowMessage(Text(IDS_PROFILE_NOT_DELETED));
        SaveLastProfile(name);
        const SaveResult communitiesSaved = SaveCommunities(typed);
        ShowResult(*saved == SaveResult::kSaved ? communitiesSaved : *saved);
        credentials_.communities = *std::move(communities);
        credentials_.security = user;
        credentials_.profile = name;
        End(TRUE);
    }

    // Returns nothing if the user wants another name.
    std::optional<SaveResult> Save(const std::wstring& name, const Security& user) const {
        const bool isLoaded = IsSame(name, loaded_);
        if (!isLoaded && IsSaved(name) &&
            ShowMessage(Text(IDS_PROFILE_REPLACE, {name}), kQuestion) != IDYES)
            return std::nullopt;
        // The dialog has said that a profile that cannot be opened is not changed.
        const bool isUnchanged = isLoaded && isClosed_ && !name.empty();
        return isUnchanged ? SaveResult::kSaved : SaveProfile(name, user);
    }

    void ShowResult(SaveResult result) const {
        if (result == SaveResult::kNotSealed) ShowMessage(Text(IDS_PROFILE_NOT_SEALED));
        if (result == SaveResult::kNotWritten) ShowMessage(Text(IDS_PROFILE_NOT_WRITTEN));
        if (result == SaveResult::kLeftAlone) ShowMessage(Text(IDS_PROFILE_LEFT_ALONE));
    }

    void End(INT_PTR result) const {
        // Overwrites the edit controls' own copies of the passwords.
        for (const int id : {IDC_AUTH_PASSWORD, IDC_PRIV_PASSWORD}) {
            const auto length = static_cast<size_t>(GetWindowTextLengthW(Item(id)));
            SetField(id, std::wstring(length, L' '));
        }
        EndDialog(dialog_, result);
    }

    Credentials& credentials_;
    const std::wstring reason_;
    std::shared_ptr<const Security> known_;  // its passwords need not be typed again
    std::vector<std::wstring> names_;
    std::wstring loaded_;    // the profile whose user the fields show
    bool isClosed_ = false;  // that profile cannot be opened
};

}  // namespace

std::optional<std::vector<std::string>> ParseCommunities(const std::string& text) {
    std::vector<std::string> communities;
    for (std::string one : SplitText(text, ",")) {
        one.erase(0, one.find_first_not_of(' '));
        one.erase(one.find_last_not_of(' ') + 1);
        if (one.empty()) continue;
        if (ToAnsi(one).size() > kLongestCommunity) return std::nullopt;
        if (one == VN_DEFAULT_COMMUNITY) one.clear();
        IndexOrAppend(communities, one);
    }
    return communities.empty() ? Credentials().communities : communities;
}

bool AskCredentials(HWND owner, Credentials& credentials, const std::wstring& reason) {
    return SnmpDialog(credentials, reason).ShowModal(owner, IDD_SNMP);
}

bool UseProfile(const std::wstring& name, Credentials& credentials) {
    const std::wstring used = name.empty() ? LastProfile() : name;
    auto profile = ReadProfile(used);
    if (!profile || !profile->isOpen) return false;
    credentials.security = std::make_shared<const Security>(std::move(profile->security));
    credentials.profile = used;
    return true;
}

std::wstring UseSaved(const std::wstring& profile, Credentials& credentials) {
    const auto text = SavedCommunities();
    const auto communities = ParseCommunities(ToUtf8(text.value_or(L"")));
    if (communities) credentials.communities = *communities;
    const bool isOpen = UseProfile(profile, credentials);
    if (!isOpen && !profile.empty()) return Text(IDS_NO_PROFILE, {profile});
    return text && communities ? L"" : Text(IDS_COMMUNITIES_CLOSED);
}

}  // namespace vndiscover::host
