// The Windows firewall, as vndiscover.exe doctor reads it.
#include "check/windows_headers.h"

#include <netfw.h>
#include <oleauto.h>

#include <cstdio>
#include <string>

#include "check/module.h"
#include "check/rows.h"

namespace check {
namespace {

constexpr ULONGLONG kLimitMs = 5000;

std::string Error(HRESULT result) {
    char text[32];
    std::snprintf(text, sizeof text, "error 0x%08lX", static_cast<unsigned long>(result));
    return text;
}

// Released on destruction.
template <class Interface>
struct Reference {
    Reference() = default;
    ~Reference() {
        if (object) object->Release();
    }
    Reference(const Reference&) = delete;
    Reference& operator=(const Reference&) = delete;
    void** Out() { return reinterpret_cast<void**>(&object); }
    Interface* operator->() const { return object; }

    Interface* object = nullptr;
};

using Policy = Reference<INetFwPolicy2>;
HRESULT Open(Policy& policy) {
    return CoCreateInstance(__uuidof(NetFwPolicy2), nullptr, CLSCTX_INPROC_SERVER,
                            __uuidof(INetFwPolicy2), policy.Out());
}

// How many rules name this program; -1 if they cannot be read.
int RulesOfThisProgram(INetFwPolicy2& policy) {
    Reference<INetFwRules> rules;
    Reference<IUnknown> list;
    Reference<IEnumVARIANT> each;
    if (FAILED(policy.get_Rules(&rules.object)) || !rules.object ||
        FAILED(rules->get__NewEnum(&list.object)) || !list.object ||
        FAILED(list->QueryInterface(__uuidof(IEnumVARIANT), each.Out()))) {
        return -1;
    }
    const std::wstring own = BesideProgram(L"windows_check.exe");
    int count = 0;
    VARIANT item;
    VariantInit(&item);
    for (; each->Next(1, &item, nullptr) == S_OK; VariantClear(&item)) {
        Reference<INetFwRule> rule;
        BSTR path = nullptr;
        if (item.vt != VT_DISPATCH ||
            FAILED(item.pdispVal->QueryInterface(__uuidof(INetFwRule), rule.Out())))
            continue;
        if (SUCCEEDED(rule->get_ApplicationName(&path)) && path && _wcsicmp(path, own.c_str()) == 0)
            ++count;
        SysFreeString(path);
    }
    return count;
}

int PolicyRows(Report& report) {
    const ULONGLONG started = GetTickCount64();
    Policy policy;
    LONG profiles = 0;
    HRESULT result = Open(policy);
    if (SUCCEEDED(result)) result = policy->get_CurrentProfileTypes(&profiles);
    const int rules = SUCCEEDED(result) ? RulesOfThisProgram(*policy.object) : -1;
    const bool isInTime = GetTickCount64() - started <= kLimitMs;
    report.Add("the firewall's policy, read by COM", "with its rules, within 5 s",
               FAILED(result) ? Error(result)
                              : std::string(rules < 0 ? "without its rules" : "with its rules") +
                                    (isInTime ? ", within 5 s" : ", later"));
    NET_FW_MODIFY_STATE state = {};
    if (SUCCEEDED(result)) result = policy->get_LocalPolicyModifyState(&state);
    report.Add("whether group policy overrides it", "told",
               FAILED(result) ? Error(result) : "told");
    report.EndPart("The firewall's policy");
    return rules;
}

// For COM, while it lives.
struct Apartment {
    Apartment() : isOpen(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
    ~Apartment() {
        if (isOpen) CoUninitialize();
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

    const bool isOpen;
};

}  // namespace

int FirewallRows(Report& report) {
    report.Section("The firewall");
    const Apartment apartment;
    return PolicyRows(report);
}

void RuleRow(Report& report, int before) {
    constexpr char kName[] = "rules for this program after it has listened";
    constexpr char kSame[] = "as many as before";
    report.Section("The firewall afterwards");
    const Apartment apartment;
    Policy policy;
    if (before < 0 || FAILED(Open(policy))) {
        report.NotSeen(kName, kSame, "the rules cannot be read");
        return;
    }
    const bool isSame = RulesOfThisProgram(*policy.object) == before;
    report.Add(kName, kSame, isSame ? kSame : "others than before");
}

}  // namespace check
