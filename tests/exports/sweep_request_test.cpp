// What a sweep asks, from where, and in which order.
#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr UINT kMessage = ResultWindow::kMessage;

class SweepRequest : public QuickLabTest {
  protected:
    Bytes OnlyRequest() {
        const std::vector<Request> requests = agents->Requests();
        EXPECT_EQ(2u, requests.size()) << "one for each adapter";
        if (requests.size() != 2) return {};
        EXPECT_EQ(requests[0].data, requests[1].data);
        return requests[0].data;
    }
};

TEST_F(SweepRequest, LeavesEveryAdapterOnceAndInOrder) {
    // RFC 1157: version 0, "sesame", GetRequest with request-id 1, 1.3.6.1.4.1.5963.43.5.1.1.1.1,
    // NULL.
    const Bytes expected =
        Hex("30 2B 02 01 00 04 06 73 65 73 61 6D 65 A0 1E 02 01 01 02 01 00 02 01 00"
            "30 13 30 11 06 0D 2B 06 01 04 01 AE 4B 2B 05 01 01 01 01 05 00");
    SilentDevices();
    Sweep();
    std::vector<std::string> ways;
    for (const Request& request : agents->Requests()) {
        ways.push_back(request.sender + " > " + request.local + ' ' + std::to_string(request.port) +
                       ' ' + request.net);
        EXPECT_EQ(expected, request.data);
    }
    EXPECT_THAT(ways, ElementsAre("10.77.1.1 > 255.255.255.255 161 neta",
                                  "10.77.2.1 > 255.255.255.255 161 netb"));
}

TEST_F(SweepRequest, DeliversOneAdaptersDevicesBeforeTheNextIsAsked) {
    std::mutex mutex;
    std::vector<std::string> events;
    const auto note = [&](const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        events.push_back(event);
    };
    Devices([&](const Request& request) {
        note("asked " + request.net);
        return std::vector<Answer>{{SnmpText("Model")}};
    });
    window.onResult = [&](const Result& result) {
        note(result.isEnd ? "end" : "found " + result.address);
    };
    Sweep();
    EXPECT_THAT(events, ElementsAre("asked neta", "found 10.77.1.2", "asked netb",
                                    "found 10.77.2.2", "end"));
}

TEST_F(SweepRequest, AsksForTheEmptyOidWhereTheTextHoldsNone) {
    SilentDevices();
    module.DiscoverDevicesByOID(window.Handle(), kMessage, 0, 0, L".1", nullptr, nullptr, nullptr);
    EXPECT_EQ(Hex("30 1E 02 01 00 04 06 73 65 73 61 6D 65 A0 11 02 01 01 02 01 00 02 01 00"
                  "30 06 30 04 06 00 05 00"),
              OnlyRequest());
}

using Start = void (*)(const Module& module, HWND window);
struct StartCase : Row {
    Start start;
    std::string oid;
    std::string community;
};
class SweepStart : public SweepRequest, public testing::WithParamInterface<StartCase> {};

TEST_P(SweepStart, AsksForItsOidWithItsCommunity) {
    SilentDevices();
    GetParam().start(module, window.Handle());
    EXPECT_EQ(SnmpGet(GetParam().oid, GetParam().community), OnlyRequest());
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
}

INSTANTIATE_TEST_SUITE_P(
    Exports, SweepStart,
    testing::Values(
        StartCase{"Devices",
                  [](const Module& m, HWND w) {
                      m.DiscoverDevices(w, kMessage, 9, 0, L"", L"public", L"private");
                  },
                  kDefaultOid, "public"},
        StartCase{"DevicesWithEmptyCommunity",
                  [](const Module& m, HWND w) {
                      m.DiscoverDevices(w, kMessage, 0, 0, nullptr, L"", L"");
                  },
                  kDefaultOid, "sesame"},
        StartCase{"ByOid",
                  [](const Module& m, HWND w) {
                      m.DiscoverDevicesByOID(w, kMessage, 0, 0, L".1.3.6.1.2.1.1.1.0", nullptr,
                                             L"caf\u00e9", nullptr);
                  },
                  kSysDescr, "caf\xe9"},
        StartCase{"ByEmptyOid",
                  [](const Module& m, HWND w) {
                      m.DiscoverDevicesByOID(w, kMessage, 0, 0, L"", nullptr, nullptr, nullptr);
                  },
                  kDefaultOid, "sesame"},
        StartCase{"ByNullOid",
                  [](const Module& m, HWND w) {
                      m.DiscoverDevicesByOID(w, kMessage, 0, 0, nullptr, nullptr, nullptr, nullptr);
                  },
                  kDefaultOid, "sesame"},
        StartCase{"ByJson",
                  [](const Module& m, HWND w) {
                      m.DiscoverDevicesByOIDjson(w, kMessage, 0, 0,
                                                 L"{\"DiscoverOID\": \".1.3.6.1.2.1.1.5.0\"}",
                                                 nullptr, nullptr, nullptr);
                  },
                  kSysName, "sesame"},
        StartCase{"ByJsonWithoutOid",
                  [](const Module& m, HWND w) {
                      m.DiscoverDevicesByOIDjson(w, kMessage, 0, 0, L"{\"GET\": {}}", nullptr,
                                                 nullptr, nullptr);
                  },
                  kDefaultOid, "sesame"},
        StartCase{"ByNoJson",
                  [](const Module& m, HWND w) {
                      m.DiscoverDevicesByOIDjson(w, kMessage, 0, 0, L"{ no JSON", nullptr, nullptr,
                                                 nullptr);
                  },
                  kDefaultOid, "sesame"},
        StartCase{"ByNullJson",
                  [](const Module& m, HWND w) {
                      m.DiscoverDevicesByOIDjson(w, kMessage, 0, 0, nullptr, nullptr, nullptr,
                                                 nullptr);
                  },
                  kDefaultOid, "sesame"},
        StartCase{"Snmp",
                  [](const Module& m, HWND w) { m.DiscoverSnmp(w, kMessage, 0, 0, "narrow", ""); },
                  kDefaultOid, "narrow"},
        StartCase{
            "SnmpWithNull",
            [](const Module& m, HWND w) { m.DiscoverSnmp(w, kMessage, 0, 0, nullptr, nullptr); },
            kDefaultOid, "sesame"}),
    kNameOfRow);

// Every length is one byte, so that of a message of 294 bytes wraps.
TEST_F(SweepRequest, CarriesACommunityOf255Bytes) {
    const std::string community(255, 'c');
    SilentDevices();
    module.DiscoverSnmp(window.Handle(), kMessage, 0, 0, community.c_str(), nullptr);
    const Bytes request = OnlyRequest();
    ASSERT_EQ(294u, request.size());
    EXPECT_EQ(Hex("30 24 02 01 00 04 FF") + TextBytes(community) + Hex("A0 1E 02 01 01"),
              Prefix(request, 7 + 255 + 5));
}

TEST_F(SweepRequest, CarriesAnOidOf124EncodedBytes) {
    std::wstring oid = L"1.3";
    for (int i = 0; i < 123; ++i) oid += L".1";
    SilentDevices();
    module.DiscoverDevicesByOID(window.Handle(), kMessage, 0, 0, oid.c_str(), nullptr, nullptr,
                                nullptr);
    const Bytes request = OnlyRequest();
    ASSERT_EQ(20u + 6 + 2 + 2 + 124 + 2, request.size());
    EXPECT_EQ(Hex("30 82 30 80 06 7C 2B") + Bytes(123, 1) + Hex("05 00"),
              Bytes(request.end() - 132, request.end()));
}

struct UnsendableCase : Row {
    std::wstring oid;
    std::wstring community;
};
class UnsendableSweep : public SweepRequest, public testing::WithParamInterface<UnsendableCase> {};

TEST_P(UnsendableSweep, SendsNothingAndStillEnds) {
    SilentDevices();
    module.DiscoverDevicesByOID(window.Handle(), kMessage, 0, 0, GetParam().oid.c_str(), nullptr,
                                GetParam().community.c_str(), GetParam().community.c_str());
    EXPECT_THAT(agents->Requests(), IsEmpty());
    EXPECT_THAT(window.Texts(), ElementsAre("end"));
}

std::wstring Repeated(std::wstring text, const wchar_t* piece, int count) {
    while (count-- > 0) text += piece;
    return text;
}

INSTANTIATE_TEST_SUITE_P(
    Texts, UnsendableSweep,
    testing::Values(UnsendableCase{"CommunityOf256", L".1.3.6.1", std::wstring(256, L'c')},
                    UnsendableCase{"CommunityOf259", L".1.3.6.1", std::wstring(259, L'c')},
                    UnsendableCase{"CommunityOf300", L".1.3.6.1", std::wstring(300, L'c')},
                    UnsendableCase{"CommunityOf5000", L".1.3.6.1", std::wstring(5000, L'c')},
                    UnsendableCase{"OidOf125Bytes", Repeated(L"1.3", L".1", 124), L""},
                    UnsendableCase{"OidOf260Characters", L".1.3." + std::wstring(254, L'0') + L"6",
                                   L""},
                    UnsendableCase{"OidOf5000Characters", Repeated(L".1.3", L".1", 2498), L""}),
    kNameOfRow);

}  // namespace
}  // namespace vndiscover
