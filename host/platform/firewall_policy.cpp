// The Windows firewall's settings (INetFwPolicy2).
#include <windows.h>

#include <netfw.h>
#include <oleauto.h>

#include <optional>
#include <string>

#include "platform/com.h"
#include "platform/saved_file.h"
#include "platform/this_computer.h"
#include "platform/this_process.h"
#include "platform/wide_text.h"

namespace vndiscover::host {
namespace {

constexpr IID kNoId = {};  // IID_NULL
constexpr LONG kAnyProtocol = 256;
constexpr LONG kUdp = 17;

struct Variant : VARIANT {
    Variant() { VariantInit(this); }
    ~Variant() { VariantClear(this); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
};

// A property of an object; empty if it has none.
template <class Object, class Value>
std::optional<Value> Read(Object& object, HRESULT (STDMETHODCALLTYPE Object::*get)(Value*)) {
    Value value{};
    return SUCCEEDED((object.*get)(&value)) ? std::optional<Value>(value) : std::nullopt;
}

std::wstring Text(INetFwRule& rule, HRESULT (STDMETHODCALLTYPE INetFwRule::*get)(BSTR*)) {
    const Owned<ClosedBy<BSTR, SysFreeString>> value(Read(rule, get).value_or(nullptr));
    return value ? std::wstring(value.Get(), SysStringLen(value.Get())) : L"";
}

// By name, for properties that only newer systems have.
std::wstring Text(IDispatch& object, const wchar_t* name) {
    DISPID id = 0;
    std::wstring nameText(name);
    LPOLESTR names[] = {nameText.data()};
    if (FAILED(object.GetIDsOfNames(kNoId, names, 1, LOCALE_INVARIANT, &id))) return L"";
    Variant value;
    DISPPARAMS none = {};
    if (FAILED(object.Invoke(id, kNoId, LOCALE_INVARIANT, DISPATCH_PROPERTYGET, &none, &value,
                             nullptr, nullptr)) ||
        value.vt != VT_BSTR || !value.bstrVal)
        return L"";
    return {value.bstrVal, SysStringLen(value.bstrVal)};
}

bool IsAny(const std::wstring& text) { return text.empty() || text == L"*" || text == L"All"; }

std::wstring Expanded(const std::wstring& path) {
    std::wstring text(32768, L'\0');
    const DWORD size =
        ExpandEnvironmentStringsW(path.c_str(), text.data(), static_cast<DWORD>(text.size()));
    if (size == 0 || size > text.size()) return path;
    text.resize(size - 1);
    return text;
}

bool IsConcerned(INetFwRule& rule) {
    const LONG protocol = Read(rule, &INetFwRule::get_Protocol).value_or(0);
    return Read(rule, &INetFwRule::get_Enabled).value_or(VARIANT_FALSE) &&
           Read(rule, &INetFwRule::get_Direction) == NET_FW_RULE_DIR_IN &&
           (protocol == kUdp || protocol == kAnyProtocol);
}

// Rules of packaged apps name a package instead of a program and apply only to it.
bool HasLimits(INetFwRule& rule, IDispatch& dispatch) {
    const std::wstring remote = Text(rule, &INetFwRule::get_RemoteAddresses);
    return !Text(rule, &INetFwRule::get_ServiceName).empty() ||
           !Text(dispatch, L"LocalAppPackageId").empty() ||
           !Text(dispatch, L"LocalUserAuthorizedList").empty() ||
           !IsAny(Text(rule, &INetFwRule::get_LocalPorts)) ||
           !IsAny(Text(rule, &INetFwRule::get_LocalAddresses)) ||
           !IsAny(Text(rule, &INetFwRule::get_InterfaceTypes)) ||
           (!IsAny(remote) && remote != L"LocalSubnet");
}

void AddRule(FirewallState& state, INetFwRule& rule, IDispatch& dispatch,
             const std::string& ownPath) {
    if (!IsConcerned(rule) || HasLimits(rule, dispatch)) return;
    const auto profiles = Read(rule, &INetFwRule::get_Profiles);
    const auto action = Read(rule, &INetFwRule::get_Action);
    if (!profiles || !action) return;
    const std::wstring application = Text(rule, &INetFwRule::get_ApplicationName);
    const bool isForThis =
        !application.empty() && IsSamePath(ToUtf8(Expanded(application)), ownPath);
    if (!application.empty() && !isForThis) return;
    state.rules.push_back({ToUtf8(Text(rule, &INetFwRule::get_Name)),
                           ToUtf8(Text(rule, &INetFwRule::get_RemotePorts)),
                           static_cast<uint32_t>(*profiles), action == NET_FW_ACTION_ALLOW,
                           isForThis});
}

bool ReadRules(FirewallState& state, INetFwPolicy2& policy) {
    OwnedObject<INetFwRules> rules;
    OwnedObject<IUnknown> unknown;
    OwnedObject<IEnumVARIANT> each;
    if (FAILED(policy.get_Rules(rules.Receive())) || !rules ||
        FAILED(rules.Get()->get__NewEnum(unknown.Receive())) || !unknown ||
        FAILED(unknown.Get()->QueryInterface(__uuidof(IEnumVARIANT), Receive(each)))) {
        return false;
    }
    const std::string ownPath = OwnPath();
    Variant item;
    for (; each.Get()->Next(1, &item, nullptr) == S_OK; VariantClear(&item)) {
        OwnedObject<INetFwRule> rule;
        if (item.vt == VT_DISPATCH && item.pdispVal &&
            SUCCEEDED(item.pdispVal->QueryInterface(__uuidof(INetFwRule), Receive(rule))))
            AddRule(state, *rule.Get(), *item.pdispVal, ownPath);
    }
    return true;
}

bool ReadProfile(FirewallState& state, INetFwPolicy2& policy, uint32_t bit) {
    const auto type = static_cast<NET_FW_PROFILE_TYPE2>(bit);
    VARIANT_BOOL isOn = VARIANT_FALSE, blocksAll = VARIANT_FALSE, isDeaf = VARIANT_FALSE;
    NET_FW_ACTION action = NET_FW_ACTION_BLOCK, outbound = NET_FW_ACTION_ALLOW;
    if (FAILED(policy.get_FirewallEnabled(type, &isOn)) ||
        FAILED(policy.get_BlockAllInboundTraffic(type, &blocksAll)) ||
        FAILED(policy.get_UnicastResponsesToMulticastBroadcastDisabled(type, &isDeaf)) ||
        FAILED(policy.get_DefaultInboundAction(type, &action)) ||
        FAILED(policy.get_DefaultOutboundAction(type, &outbound))) {
        return false;
    }
    state.active.push_back({bit, isOn != VARIANT_FALSE, blocksAll != VARIANT_FALSE,
                            action == NET_FW_ACTION_ALLOW, isDeaf == VARIANT_FALSE,
                            outbound == NET_FW_ACTION_ALLOW});
    return true;
}

bool ReadState(FirewallState& state) {
    OwnedObject<INetFwPolicy2> policy;
    LONG profiles = 0;
    if (FAILED(CoCreateInstance(__uuidof(NetFwPolicy2), nullptr, CLSCTX_INPROC_SERVER,
                                __uuidof(INetFwPolicy2), Receive(policy))) ||
        !policy || FAILED(policy.Get()->get_CurrentProfileTypes(&profiles))) {
        return false;
    }
    NET_FW_MODIFY_STATE effect = NET_FW_MODIFY_STATE_OK;  // of a change to the local policy
    state.isOverridden = SUCCEEDED(policy.Get()->get_LocalPolicyModifyState(&effect)) &&
                         effect == NET_FW_MODIFY_STATE_GP_OVERRIDE;
    for (const uint32_t bit : {kDomain, kPrivate, kPublic}) {
        const bool isActive = (static_cast<uint32_t>(profiles) & bit) != 0;
        if (isActive && !ReadProfile(state, *policy.Get(), bit)) return false;
    }
    return !state.active.empty() && ReadRules(state, *policy.Get());
}

}  // namespace

FirewallState ThisFirewall() {
    const Apartment apartment;
    FirewallState state;
    if (!ReadState(state)) return {};
    state.isKnown = true;
    return state;
}

}  // namespace vndiscover::host
