#include <cstring>
#include <memory>
#include <new>

#include "interface/module.h"
#include "snmp/bind_address.h"
#include "support/debug_switches.h"

namespace vndiscover {

HINSTANCE g_hModule = nullptr;
VxSnmpMgr* g_snmpMgr = nullptr;
VxSoapMgr* g_soapMgr = nullptr;

namespace {

// The manager with the room of its table, so that no sweep fails for want of it. Without memory the
// module still loads, and the exports that need the manager do nothing.
template <class Manager, class Table>
Manager* Create(Table Manager::*table) noexcept {
    try {
        auto manager = std::make_unique<Manager>();
        (manager.get()->*table).Reserve();
        return manager.release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void Attach(HINSTANCE module) {
    g_hModule = module;
    g_snmpMgr = Create(&VxSnmpMgr::devices);
    g_soapMgr = Create(&VxSoapMgr::results);
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

#ifdef __GLIBCXX__
namespace __gnu_cxx {
void __freeres();  // of the runtime, which declares it nowhere
}
#endif

namespace {

// The statically linked C++ runtime keeps 73 KB for exceptions that find no memory. It gives them
// back to nobody when a DLL goes, and a host may load and unload this one often.
void FreeRuntimeReserve() {
#ifdef __GLIBCXX__
    __gnu_cxx::__freeres();
#endif
}

}  // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*reserved*/) {
    using namespace vndiscover;
    // On every notification, thread starts and ends too: so a change of the registry takes effect.
    LoadDebugSwitches("VnInst", 0);
    if (reason != DLL_PROCESS_ATTACH && reason != DLL_PROCESS_DETACH) return TRUE;
    if (reason == DLL_PROCESS_ATTACH) Attach(module);
    if (reason == DLL_PROCESS_DETACH) Detach();
    ForgetAdapterRows();
    if (reason == DLL_PROCESS_DETACH) FreeRuntimeReserve();  // last: nothing may throw from here on
    return TRUE;
}
