// The adapters from which a sweep sends, for unusual lists, and the local address to which a
// directed request to an IPv6 device binds.
#include <deque>
#include <thread>

#include "exports/support/network_test.h"

namespace vndiscover {
namespace {

// Adapter lists that no test network has, in place of the system's two for one module; one object
// at a time. Like the system, it refuses a buffer that is too small and returns the size it needs.
class ScriptedAdapters {
  public:
    explicit ScriptedAdapters(const Module& module) : lookup(module) {
        self_ = this;
        lookup.Set("GetAdaptersInfo", [](IP_ADAPTER_INFO* list, ULONG* size) {
            return self_->Fill(self_->ipv4_, list, size);
        });
        lookup.Set("GetAdaptersAddresses",
                   [](ULONG, ULONG, void*, IP_ADAPTER_ADDRESSES* list, ULONG* size) {
                       EXPECT_GE(HeapSize(GetProcessHeap(), 0, list), *size);
                       return self_->Fill(self_->ipv6_, list, size);
                   });
    }

    // Appends an adapter. Entries are pairs of address and mask.
    void AddIPv4(const std::string& description,
                 const std::vector<std::pair<std::string, std::string>>& entries) {
        IP_ADAPTER_INFO& adapter = Append(ipv4_, ipv4_.empty() ? nullptr : &ipv4_.back());
        std::strncpy(adapter.Description, description.c_str(), sizeof adapter.Description - 1);
        IP_ADDR_STRING* entry = nullptr;
        for (const auto& [address, mask] : entries) {
            entry = entry ? &Append(ipv4Entries_, entry) : &adapter.IpAddressList;
            std::strncpy(entry->IpAddress.String, address.c_str(), 15);
            std::strncpy(entry->IpMask.String, mask.c_str(), 15);
        }
    }
    void AddIPv6(const std::wstring& name, const std::vector<std::string>& addresses,
                 bool isUp = true) {
        IP_ADAPTER_ADDRESSES& adapter = Append(ipv6_, ipv6_.empty() ? nullptr : &ipv6_.back());
        adapter.FriendlyName = names_.emplace_back(name).data();
        adapter.IfType = IF_TYPE_ETHERNET_CSMACD;
        adapter.OperStatus = isUp ? IfOperStatusUp : IfOperStatusDown;
        IP_ADAPTER_UNICAST_ADDRESS* entry = nullptr;
        for (const std::string& text : addresses) {
            entry = &Append(ipv6Entries_, entry);
            if (!adapter.FirstUnicastAddress) adapter.FirstUnicastAddress = entry;
            sockaddr_in6& address = ipv6Addresses_.emplace_back();
            address.sin6_family = AF_INET6;
            inet_pton(AF_INET6, text.c_str(), &address.sin6_addr);
            entry->Address = {reinterpret_cast<sockaddr*>(&address), sizeof address};
        }
    }

    // Bytes for a list, given those of the module's buffer; null: the size of the list's records.
    std::function<ULONG(ULONG)> needs;
    ULONG error = 0;           // instead of a list
    std::vector<ULONG> sizes;  // of the module's buffers
    LookupPatch lookup;

  private:
    template <class Record>
    static Record& Append(std::deque<Record>& records, Record* last) {
        Record& record = records.emplace_back();
        std::memset(&record, 0, sizeof record);
        if (last) last->Next = &record;
        return record;
    }
    // The first record is copied to the module's buffer and links to the others, which stay here.
    template <class Record>
    ULONG Fill(const std::deque<Record>& records, void* list, ULONG* size) {
        const ULONG offered = *size;
        sizes.push_back(offered);
        if (error != 0) return error;
        *size = needs ? needs(offered) : static_cast<ULONG>(records.size() * sizeof(Record));
        if (*size == 0) return ERROR_NO_DATA;
        if (offered < *size) return ERROR_BUFFER_OVERFLOW;
        std::memcpy(list, &records.front(), sizeof(Record));
        return ERROR_SUCCESS;
    }
    static inline ScriptedAdapters* self_;
    std::deque<IP_ADAPTER_INFO> ipv4_;
    std::deque<IP_ADDR_STRING> ipv4Entries_;  // except each adapter's first
    std::deque<IP_ADAPTER_ADDRESSES> ipv6_;
    std::deque<IP_ADAPTER_UNICAST_ADDRESS> ipv6Entries_;
    std::deque<sockaddr_in6> ipv6Addresses_;
    std::deque<std::wstring> names_;
};

class Adapters : public NetworkTest {
  protected:
    // The local addresses of the requests that a sweep sends.
    Lines SendersOf(BYTE useIPv6) {
        SilentDevices();
        log.Clear();
        window.results.clear();
        Sweep(nullptr, useIPv6);
        EXPECT_THAT(window.Texts(), ElementsAre("end"));
        return Senders();
    }

    ScriptedAdapters adapters{module};
};

// For 0.0.0.0, of an adapter without an address, the system chooses one, as for one that is gone.
TEST_F(Adapters, IPv4AddressesAreUsedInTheSystemsOrder) {
    adapters.AddIPv4(
        "First",
        {{"10.77.2.1", "255.255.255.0"}, {"", "255.255.255.0"}, {"10.77.1.1", "255.255.0.0"}});
    adapters.AddIPv4("No mask", {{"10.77.2.1", ""}});
    adapters.AddIPv4("Unplugged", {{"0.0.0.0", "0.0.0.0"}});
    adapters.AddIPv4("Gone", {{"10.99.9.9", "255.255.255.0"}});
    EXPECT_THAT(SendersOf(0), ElementsAre("10.77.2.1", "10.77.1.1", "10.77.1.1", "10.77.1.1"));
    for (const char* lines :
         {"NIC [0]\n   IP   = [10.77.2.1, 255.255.255.0]\n   DESC = [First]\nHandleEvents",
          "NIC [1]\n   IP   = [10.77.1.1, 255.255.0.0]\n   DESC = [First]\nHandleEvents",
          "NIC [2]\n   IP   = [0.0.0.0, 0.0.0.0]\n   DESC = [Unplugged]\nHandleEvents",
          // Wine 8 binds to it all the same; Windows and Wine 10 report that it is gone.
          "NIC [3]\n   IP   = [10.99.9.9, 255.255.255.0]\n   DESC = [Gone]\n"}) {
        EXPECT_THAT(log.Text(), HasSubstr(lines));
    }
}

TEST_F(Adapters, MoreThan32IPv4AdaptersSendNothing) {
    EXPECT_THAT(SendersOf(0), IsEmpty());
    for (int i = 0; i < 32; ++i) adapters.AddIPv4("Many", {{"10.77.1.1", "255.255.255.0"}});
    EXPECT_THAT(SendersOf(0), SizeIs(32));
    adapters.AddIPv4("One more", {{"10.77.1.1", "255.255.255.0"}});
    EXPECT_THAT(SendersOf(0), IsEmpty());
    EXPECT_THAT(adapters.sizes, ElementsAre(22528, 22528, 22528)) << "nobody asks for more room";
}

TEST_F(Adapters, IPv6SendsFromLinkLocalAddressesThatAreUp) {
    // The system may write addresses in upper case.
    adapters.lookup.Set("inet_ntop", [](INT family, const void* address, PSTR text, size_t size) {
        const PCSTR written = inet_ntop(family, address, text, size);
        std::transform(text, text + strlen(text), text, toupper);
        return written;
    });
    adapters.AddIPv6(L"Down", {"fe80::1:1"}, false);
    adapters.AddIPv6(L"Up", {"2001:db8::1", "fe80::2:1", "fd00::1", "fec0::1"});
    adapters.AddIPv6(L"Nothing", {});
    adapters.AddIPv6(L"Too", {"::1", "fe80::1:1"});
    EXPECT_THAT(SendersOf(1), ElementsAre("fe80::2:1", "fe80::1:1"));
    EXPECT_THAT(log.Text(), HasSubstr("\tFriendly name: Down\n pStringBuf [FE80::1:1]\n"
                                      "IPADDRESS ....fe80::1:1    Link local....\n"
                                      "\tNumber of Unicast Addresses: 1\n\tIfType: 6\n"
                                      "\tOperStatus: 2\n---------------------\n"
                                      "\tFriendly name: Up\n pStringBuf [2001:DB8::1]\n"
                                      "IPADDRESS ....2001:db8::1 pStringBuf [FE80::2:1]\n"
                                      "IPADDRESS ....fe80::2:1    Link local....\n"
                                      " pStringBuf [FD00::1]\nIPADDRESS ....fd00::1"
                                      " pStringBuf [FEC0::1]\nIPADDRESS ....fec0::1"
                                      "\tNumber of Unicast Addresses: 4\n\tIfType: 6\n"
                                      "\tOperStatus: 1\n---------------------\n"
                                      "\tFriendly name: Nothing\n\tNo Unicast Addresses\n"));
}

TEST_F(Adapters, IPv6UsesAtMost32AddressesAndThreeCalls) {
    adapters.AddIPv6(L"Many", Lines(40, "fe80::1:1"));
    const auto sizesOf = [this](size_t senders) {
        adapters.sizes.clear();
        EXPECT_THAT(SendersOf(1), SizeIs(senders));
        return adapters.sizes;
    };
    adapters.needs = [](ULONG) { return 50000; };
    EXPECT_THAT(sizesOf(32), ElementsAre(15000, 50000));
    EXPECT_TRUE(log.Has("-------------- ...nCount [32]\n"));
    adapters.needs = [](ULONG offered) { return offered + 100; };
    EXPECT_THAT(sizesOf(0), ElementsAre(15000, 15100, 15200));
    adapters.error = 9852;
    EXPECT_THAT(sizesOf(0), ElementsAre(15000)) << "any other failure is final";
}

constexpr char kInNetA[] = "fe80::1:11";
constexpr char kInNetB[] = "fe80::2:2";

class BindAddress : public NetworkTest {
  protected:
    // A device answers only requests from the adapter of its own network.
    std::string Get(const char* host) {
        Devices([](const Request& request) {
            const bool isNeighbour = request.local.substr(0, 7) == request.sender.substr(0, 7);
            return isNeighbour ? Answers{{SnmpText("Model")}} : Answers();
        });
        log.Clear();
        char text[VN_INFORMATION_SIZE] = "(nothing)";
        module.GetSnmpInformation(host, text, nullptr, nullptr);
        return text;
    }
};

TEST_F(BindAddress, FirstAdapterIsKeptUnlessItsTrialIsUnanswered) {
    EXPECT_EQ("Model", Get(kInNetA));
    EXPECT_THAT(Senders(), ElementsAre("fe80::1:1", "fe80::1:1"));
    // A trial that cannot be sent does not count as unanswered.
    network.sendError = [](int call) { return call == 1 ? WSAENETUNREACH : 0; };
    EXPECT_EQ("Model", Get(kInNetA));
    EXPECT_THAT(Senders(), ElementsAre("fe80::1:1"));
    EXPECT_THAT(SilentWaits(), IsEmpty());
}

// Only the first two rows are tried, and the first is not tried again.
TEST_F(BindAddress, SecondAdapterIsRememberedAfterOneTimeOut) {
    EXPECT_EQ("Model", Get(kInNetB));
    EXPECT_THAT(Senders(), ElementsAre("fe80::1:1", "fe80::2:1"));
    EXPECT_THAT(SilentWaits(), SizeIs(1));
    EXPECT_THAT(log.Lines(), IsSupersetOf({"g_nAdapter [0]\n",
                                           "g_adapterAddr[g_nAdapter].szAddress [fe80::1:1]\n",
                                           "g_adapterAddr[g_nAdapter].szAddress [fe80::2:1]\n"}));
    EXPECT_EQ("Model", Get(kInNetB));
    EXPECT_THAT(Senders(), ElementsAre("fe80::2:1", "fe80::2:1")) << "remembered";
    const std::string exchange =
        RequestLines(kDefaultOid, SnmpGet(kDefaultOid), "SNMP::GetInformation - [fe80::2:2]\n") +
        " tszBindAddr [fe80::2:1]\n";
    ExpectLog("g_nAdapter [2]\nVxSNMP::VxSNMP()\nSCKRAW::SCKRAW()\n" + exchange +
              "szBindIp [fe80::2:1]\n" + exchange +
              "VxSnmpMgr::~VxSnmpMgr()\nSCKRAW::~SCKRAW() [-1]\n");
    EXPECT_EQ("(nothing)", Get(kInNetA));
    EXPECT_THAT(SilentWaits(), SizeIs(1 + 5));

    EXPECT_EQ("Model", Get("10.77.1.11"));
    EXPECT_THAT(Senders(), ElementsAre("10.77.1.1")) << "an IPv4 device is asked unbound";
    EXPECT_TRUE(log.Has("szBindIp []\n"));

    Reload();
    EXPECT_EQ("Model", Get(kInNetA)) << "a module that is loaded again starts with the first";
}

TEST_F(BindAddress, OnlyTheFirstTwoOfTheListAreTried) {
    for (const Lines& list : {Lines{"fe80::1:1"}, Lines{"fe80::1:1", "fe80::1:1", "fe80::2:1"}}) {
        Reload();
        ScriptedAdapters adapters(module);
        adapters.AddIPv6(L"Adapter", list);
        EXPECT_EQ("(nothing)", Get(kInNetB));
        EXPECT_TRUE(log.Has("szBindIp [fe80::1:1]\n"));
        EXPECT_THAT(SilentWaits(), SizeIs(1 + 5));
        std::thread([] {}).join();
        Get(kInNetB);
        EXPECT_THAT(adapters.sizes, SizeIs(1)) << "a thread that starts forgets no address";
    }
}

}  // namespace
}  // namespace vndiscover
