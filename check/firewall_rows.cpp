// The Windows firewall, as vndiscover.exe doctor reads it.
#include "check/windows_headers.h"

#include <netfw.h>
#include <oleauto.h>

#include <cstdio>
#include <string>

#include "check/agent.h"
#include "check/module.h"
#include "check/rows.h"

namespace check {
namespace {

constexpr ULONGLONG kLimitMs = 5000;
constexpr int kListensMs = 1000;

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

void Rows(Report& report) {
    const ULONGLONG started = GetTickCount64();
    const char* const name = "the firewall's policy, read by COM";
    const char* const rulesName = "rules for this program after it has listened";
    Reference<INetFwPolicy2> policy;
    LONG profiles = 0;
    HRESULT result = CoCreateInstance(__uuidof(NetFwPolicy2), nullptr, CLSCTX_INPROC_SERVER,
                                      __uuidof(INetFwPolicy2), policy.Out());
    if (SUCCEEDED(result)) result = policy->get_CurrentProfileTypes(&profiles);
    const int before = SUCCEEDED(result) ? RulesOfThisProgram(*policy.object) : -1;
    const bool isInTime = GetTickCount64() - started <= kLimitMs;
    report.Add(name, "with its rules, within 5 s",
               FAILED(result) ? Error(result)
                              : std::string(before < 0 ? "without its rules" : "with its rules") +
                                    (isInTime ? ", within 5 s" : ", later"));
    report.EndPart("The firewall's policy");
    if (before < 0) {
        report.NotSeen(rulesName, "as many as before", "the rules cannot be read");
        return;
    }
    UdpSocket socket(AF_INET);
    socket.Bind("0.0.0.0", 0);
    socket.IsReadable(kListensMs);
    report.Add(
        rulesName, "as many as before",
        RulesOfThisProgram(*policy.object) == before ? "as many as before" : "others than before");
}

}  // namespace

void FirewallRows(Report& report) {
    report.Section("The firewall");
    const bool isOpen = SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    Rows(report);
    if (isOpen) CoUninitialize();
}

}  // namespace check
