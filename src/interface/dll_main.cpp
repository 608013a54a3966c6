#include <cstring>
#include <new>

#include "interface/module.h"
#include "snmp/bind_address.h"
#include "support/debug_switches.h"

namespace vndiscover {

HINSTANCE g_hModule = nullptr;
VxSnmpMgr* g_snmpMgr = nullptr;
VxSoapMgr* g_soapMgr = nullptr;

namespace {

// Without memory the module still loads, and the exports that need the manager do nothing.
template <class Manager>
Manager* Create() noexcept {
    try {
        return new Manager();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void Attach(HINSTANCE module) {
    g_hModule = module;
    g_snmpMgr = Create<VxSnmpMgr>();
    g_soapMgr = Create<VxSoapMgr>();
    std::memset(g_szBindIp, 0, sizeof g_szBindIp);
}

void Detach() {
    delete g_snmpMgr;
    delete g_soapMgr;
}

void ForgetAdapterRows() {
    std::memset(&g_adapterAddr[0], 0, sizeof g_adapterAddr[0]);
    g_nAdapter = 0;
}

}  // namespace
}  // namespace vndiscover

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/) {
    using namespace vndiscover;
    // On every notification, thread starts and ends too: so a change of the registry takes effect.
    LoadDebugSwitches("VnInst", 0);
    if (reason != DLL_PROCESS_ATTACH && reason != DLL_PROCESS_DETACH) return TRUE;
    if (reason == DLL_PROCESS_ATTACH) Attach(module);
    if (reason == DLL_PROCESS_DETACH) Detach();
    ForgetAdapterRows();
    return TRUE;
}
