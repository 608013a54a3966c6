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

template <class Rule>
std::wstring Text(Rule& rule, HRESULT (STDMETHODCALLTYPE Rule::*get)(BSTR*)) {
    const Owned<ClosedBy<BSTR, SysFreeString>> value(Read(rule, get).value_or(nullptr));
    return value ? std::wstring(value.Get(), SysStringLen(value.Get())) : L"";
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

bool IsActiveForIncomingUdp(INetFwRule& rule) {
    const LONG protocol = Read(rule, &INetFwRule::get_Protocol).value_or(0);
    return Read(rule, &INetFwRule::get_Enabled).value_or(VARIANT_FALSE) &&
           Read(rule, &INetFwRule::get_Direction) == NET_FW_RULE_DIR_IN &&
           (protocol == kUdp || protocol == kAnyProtocol);
}

// Rules of packaged apps name a package instead of a program and apply only to it. Windows 7 has
// neither them nor this interface.
bool IsOfAppOrUsers(INetFwRule& rule) {
    OwnedObject<INetFwRule3> newer;
    return SUCCEEDED(rule.QueryInterface(__uuidof(INetFwRule3), Receive(newer))) &&
           (!Text(*newer.Get(), &INetFwRule3::get_LocalAppPackageId).empty() ||
            !Text(*newer.Get(), &INetFwRule3::get_LocalUserAuthorizedList).empty());
}

bool HasLimits(INetFwRule& rule) {
    const std::wstring remote = Text(rule, &INetFwRule::get_RemoteAddresses);
    return !Text(rule, &INetFwRule::get_ServiceName).empty() || IsOfAppOrUsers(rule) ||
           !IsAny(Text(rule, &INetFwRule::get_LocalPorts)) ||
           !IsAny(Text(rule, &INetFwRule::get_LocalAddresses)) ||
           !IsAny(Text(rule, &INetFwRule::get_InterfaceTypes)) ||
           (!IsAny(remote) && remote != L"LocalSubnet");
}

void AddRule(FirewallState& state, INetFwRule& rule, const std::string& ownPath) {
    if (!IsActiveForIncomingUdp(rule) || HasLimits(rule)) return;
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
            AddRule(state, *rule.Get(), ownPath);
    }
    return true;
}

bool ReadProfile(FirewallState& state, INetFwPolicy2& policy, uint32_t bit) {
    const auto type = static_cast<NET_FW_PROFILE_TYPE2>(bit);
    VARIANT_BOOL isOn = VARIANT_FALSE, blocksAll = VARIANT_FALSE, dropsAnswers = VARIANT_FALSE;
    NET_FW_ACTION action = NET_FW_ACTION_BLOCK, outbound = NET_FW_ACTION_ALLOW;
    if (FAILED(policy.get_FirewallEnabled(type, &isOn)) ||
        FAILED(policy.get_BlockAllInboundTraffic(type, &blocksAll)) ||
        FAILED(policy.get_UnicastResponsesToMulticastBroadcastDisabled(type, &dropsAnswers)) ||
        FAILED(policy.get_DefaultInboundAction(type, &action)) ||
        FAILED(policy.get_DefaultOutboundAction(type, &outbound))) {
        return false;
    }
    state.active.push_back({bit, isOn != VARIANT_FALSE, blocksAll != VARIANT_FALSE,
                            action == NET_FW_ACTION_ALLOW, dropsAnswers == VARIANT_FALSE,
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
