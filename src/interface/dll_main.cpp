#include <cstring>
#include <memory>
#include <new>

#include "interface/exception_state.h"
#include "interface/module.h"
#include "snmp/bind_address.h"
#include "support/debug_switches.h"

namespace vndiscover {

HINSTANCE g_hModule = nullptr;
VxSnmpMgr* g_snmpMgr = nullptr;
VxSoapMgr* g_soapMgr = nullptr;

namespace {

// Creates a manager and reserves memory for its table, so that no sweep can run out of it. If there
// is not enough memory, the module still loads, and the exports that need the manager do nothing.
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
    OpenExceptionState();
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

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved) {
    using namespace vndiscover;
    // On every notification, thread starts and ends included, so that changes in the registry take
    // effect.
    LoadDebugSwitches("VnInst", 0);
    if (reason == DLL_THREAD_DETACH) ForgetThreadsExceptions();
    if (reason != DLL_PROCESS_ATTACH && reason != DLL_PROCESS_DETACH) return TRUE;
    if (reason == DLL_PROCESS_ATTACH) Attach(module);
    if (reason == DLL_PROCESS_DETACH) Detach();
    ForgetAdapterRows();
    // When the process ends, the system frees everything.
    if (reason == DLL_PROCESS_DETACH && !reserved) CloseExceptionState();
    return TRUE;
}
