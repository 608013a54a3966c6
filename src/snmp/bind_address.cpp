#include "snmp/bind_address.h"

#include <memory>

#include "net/adapter_table.h"
#include "snmp/exchange.h"
#include "support/copy_text.h"
#include "support/debug_log.h"

namespace vndiscover {

AdapterAddress g_adapterAddr[kMaxAdapterRows];
int32_t g_nAdapter = 0;
char g_szBindIp[kBindAddressSize];

void LoadBindAddresses(const char* host, bool endsLines) {
    DebugLogA("g_nAdapter [%d]\n", g_nAdapter);
    if (!IsIPv6Host(host) || g_nAdapter != 0) return;
    const auto adapters = std::make_unique<AdapterTable>();
    const uint32_t count = adapters->LoadIPv6LinkLocal();
    for (uint32_t i = 0; i < count && g_nAdapter < static_cast<int32_t>(kMaxAdapterRows); ++i) {
        sockaddr_in6 address = {};
        adapters->GetIPv6Address(i, &address);
        char text[kBindAddressSize] = {};
        AdapterTable::AddressToText(AF_INET6, &address.sin6_addr, text, sizeof text);
        if (text[0] == '\0') continue;
        CopyText(g_adapterAddr[g_nAdapter].szAddress, text);
        DebugLogA("g_adapterAddr[g_nAdapter].szAddress [%s]%s", text, endsLines ? "\n" : "");
        ++g_nAdapter;
    }
}

bool ChooseBindAddress(const char* host, char (&bindAddress)[kBindAddressSize]) {
    bindAddress[0] = '\0';
    if (!IsIPv6Host(host) || g_nAdapter < 1) return false;
    if (g_szBindIp[0] == '\0') CopyText(g_szBindIp, g_adapterAddr[0].szAddress);
    CopyText(bindAddress, g_szBindIp);
    return true;
}

void UseSecondRow(char (&bindAddress)[kBindAddressSize]) {
    if (g_nAdapter < 2) return;
    CopyText(g_szBindIp, g_adapterAddr[1].szAddress);
    CopyText(bindAddress, g_szBindIp);
}

}  // namespace vndiscover
