#include <cstring>
#include <memory>
#include <new>

#include "interface/exception_state.h"
#include "interface/module.h"
#include "snmp/bind_address.h"
#include "support/registry.h"

namespace vndiscover {

HINSTANCE g_hModule = nullptr;
VxSnmpMgr* g_snmpMgr = nullptr;
VxSoapMgr* g_soapMgr = nullptr;

namespace {

// Creates a manager and reserves memory for its table, so that no sweep can run out of it. If there
// is not enough memory, the module still loads, and the exports that need the manager do nothing.
template <class Manager>
Manager* Create() noexcept {
    try {
        auto manager = std::make_unique<Manager>();
        manager->Reserve();
        return manager.release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void ForgetAdapterRows() {
    std::memset(&g_adapterAddr[0], 0, sizeof g_adapterAddr[0]);
    g_nAdapter = 0;
}

void Attach(HINSTANCE module) {
    OpenExceptionState();
    g_hModule = module;
    g_snmpMgr = Create<VxSnmpMgr>();
    g_soapMgr = Create<VxSoapMgr>();
    std::memset(g_szBindIp, 0, sizeof g_szBindIp);
    ForgetAdapterRows();
}

// The end of the process has killed all other threads. One that was killed within a sweep may have
// left its manager half changed, or a lock taken that the destructor waits for.
template <class Manager>
void Destroy(Manager* manager, bool processEnds) {
    if (manager && processEnds && manager->IsSweptByAnother()) return;
    delete manager;
}

void Detach(bool processEnds) {
    Destroy(g_snmpMgr, processEnds);
    Destroy(g_soapMgr, processEnds);
    ForgetAdapterRows();
    if (!processEnds) CloseExceptionState();  // otherwise the system frees everything
}

}  // namespace
}  // namespace vndiscover

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved) {
    using namespace vndiscover;
    // On every notification, thread starts and ends included, so that changes in the registry take
    // effect.
    LoadDebugSwitches("VnInst", 0);
    switch (reason) {
        case DLL_PROCESS_ATTACH:
            Attach(module);
            break;
        case DLL_PROCESS_DETACH:
            Detach(reserved != nullptr);
            break;
        case DLL_THREAD_DETACH:
            ForgetThreadsExceptions();
            break;
        default:
            break;
    }
    return TRUE;
}
