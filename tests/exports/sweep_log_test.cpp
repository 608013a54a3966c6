// The debug log of whole sweeps, line by line: support staff reads it.
#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

constexpr UINT kMessage = ResultWindow::kMessage;
const char kSilence[] = "RecvFrom - Timeout\n";
const Lines kNobody = {"HandleEvents start\n", kSilence,
                       " ==== We have [0] devices on the network. ==== \n",
                       "We have [0] devices responsed the information.\n", "HandleEvents end\n"};

class SweepLog : public LoggedTest {
  protected:
    ~SweepLog() override { DeleteFileA("log_test.csv"); }
};

TEST_F(SweepLog, TellsOneSweepFromItsStartToItsEnd) {
    DeviceIn("neta", {{SnmpText("A")}, {SnmpText(""), "10.77.1.11"}});
    Sweep(L"log_test.csv");
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(
            Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n"} + DefaultRequestLines() +
            AdapterLines(0) +
            Lines{"HandleEvents start\n", "tszRecvAddr = [10.77.1.2]\n",
                  "tszRecvAddr = [10.77.1.11]\n", kSilence,
                  " ==== We have [2] devices on the network. ==== \n",
                  "m_fp = [\"10.77.1.2\",\"A\"\n]\n", "m_fp = [\"10.77.1.11\",\"\"\n]\n",
                  "We have [2] devices responsed the information.\n", "HandleEvents end\n"} +
            AdapterLines(1) + kNobody + Lines{"SNMP::Discover - ended\n"}));
}

TEST_F(SweepLog, TellsAboutADeviceOnlyBehindItsMessage) {
    DeviceIn("neta", {{SnmpText("A")}, {SnmpText("B")}});
    std::vector<bool> written;
    bool endedBefore = false;
    window.onResult = [&](const Result& result) {
        written.push_back(
            log.Has("m_fp = [\"" + result.address + "\",\"" + result.value + "\"\n]\n"));
        if (result.isEnd) endedBefore = log.Lines().back() == "SNMP::Discover - ended\n";
    };
    Sweep(L"log_test.csv");
    EXPECT_THAT(written, ElementsAre(false, false, false));
    EXPECT_TRUE(endedBefore);
    EXPECT_TRUE(log.Has("m_fp = [\"10.77.1.2\",\"B\"\n]\n"));
}

TEST_F(SweepLog, TellsWhatEachDeviceIsAskedInJsonMode) {
    Devices([](const Request& request) {
        if (request.net == "neta" && request.data != SnmpGet(kSysDescr)) {
            return std::vector<Answer>{{SnmpText("A")}};
        }
        return std::vector<Answer>();
    });
    module.DiscoverDevicesByOIDjson(
        window.Handle(), kMessage, 0, 0,
        L"{\"DiscoverOID\": \".1.3.6.1.4.1.5963.43.5.1.1.1.1\", "
        L"\"GET\": {\".1.3.6.1.2.1.1.5.0\": \"\", \".1.3.6.1.2.1.1.1.0\": \"none\"}}",
        nullptr, nullptr, nullptr);
    const auto question = [](const std::string& oid, const std::string& value,
                             const std::string& content) {
        return Lines{"Key [" + oid + "]\n", "  value [" + value + "]\n", "  szKey [" + oid + "]\n",
                     "SNMP::GetInformation - [10.77.1.2]\n"} +
               RequestLines(9, content, SnmpGet(oid));
    };
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(
            Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n",
                  "wszDisOID [.1.3.6.1.4.1.5963.43.5.1.1.1.1]\n",
                  "szDisOid [.1.3.6.1.4.1.5963.43.5.1.1.1.1]\n"} +
            DefaultRequestLines() + AdapterLines(0) +
            Lines{"HandleEvents start\n", "tszRecvAddr = [10.77.1.2]\n", kSilence,
                  " ==== We have [1] devices on the network. ==== \n", "GET command\n"} +
            question(kSysName, "", "2b 06 01 02 01 01 05 00 ") + Lines{"  szValue [A]\n"} +
            question(kSysDescr, "none", "2b 06 01 02 01 01 01 00 ") + Times(5, {kSilence}) +
            Lines{"We have [1] devices responsed the information.\n", "HandleEvents end\n"} +
            AdapterLines(1) + kNobody + Lines{"SNMP::Discover - ended\n"}));
}

TEST_F(SweepLog, TellsThatNoOidWasGiven) {
    SilentDevices();
    module.DiscoverDevicesByOIDjson(window.Handle(), kMessage, 0, 0, L"{\"GET\": {}}", nullptr,
                                    nullptr, nullptr);
    EXPECT_THAT(log.Lines(),
                ElementsAreArray(Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n", "wszDisOID []\n",
                                       "szDisOid []\n",
                                       "Should not come here set set DisOID to "
                                       "\".1.3.6.1.4.1.5963.43.5.1.1.1.1\"\n"} +
                                 DefaultRequestLines() + AdapterLines(0) + kNobody +
                                 AdapterLines(1) + kNobody + Lines{"SNMP::Discover - ended\n"}));
}

TEST_F(SweepLog, TellsOneIPv6Sweep) {
    DeviceIn("netb", {{SnmpText("B")}});
    Sweep(nullptr, 1);
    const auto opened = [](const std::string& address) {
        return Lines{" pStringBuf [" + address + "]\n", " tszBindAddr [" + address + "]\n",
                     "IPADDRESS .... " + address};
    };
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n"} + DefaultRequestLines() +
                         IPv6ListingLines() + Lines{"-------------- ...nCount [2]\n"} +
                         opened("fe80::1:1") + kNobody + opened("fe80::2:1") +
                         Lines{"HandleEvents start\n", "tszRecvAddr = [fe80::2:2]\n", kSilence,
                               " ==== We have [1] devices on the network. ==== \n",
                               "We have [1] devices responsed the information.\n",
                               "HandleEvents end\n", "SNMP::Discover - ended\n"}));
}

TEST_F(SweepLog, TellsWhyAnAdapterIsSkipped) {
    const Sends sends(module, [](int) { return WSAENETUNREACH; });
    SilentDevices();
    Sweep();
    const Lines failed = {"sendto() failed - 10051\n", "sendto() failed, err: 10051\n"};
    EXPECT_THAT(log.Lines(),
                ElementsAreArray(Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n"} +
                                 DefaultRequestLines() + AdapterLines(0) + failed +
                                 AdapterLines(1) + failed + Lines{"SNMP::Discover - ended\n"}));
}

TEST_F(SweepLog, TellsEachFailedReceive) {
    const Receives receives(module, [](int call) {
        return call == 1 ? WSAECONNRESET : call == 2 ? WSANOTINITIALISED : 0;
    });
    SilentDevices();
    Sweep();
    EXPECT_THAT(
        log.Lines(),
        ElementsAreArray(Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n"} + DefaultRequestLines() +
                         AdapterLines(0) +
                         Lines{"HandleEvents start\n", "Receive Data failed - 10054\n",
                               "Receive Data failed - 10093\n", "tszRecvAddr = WSAStartup failed\n",
                               " ==== We have [0] devices on the network. ==== \n",
                               "We have [0] devices responsed the information.\n",
                               "HandleEvents end\n"} +
                         AdapterLines(1) + kNobody + Lines{"SNMP::Discover - ended\n"}));
}

TEST_F(SweepLog, TellsThatAnAdaptersAddressCannotBeBound) {
    struct Bind {
        static int WSAAPI Fail(SOCKET, const sockaddr*, int) {
            WSASetLastError(WSAEADDRNOTAVAIL);
            return SOCKET_ERROR;
        }
    };
    const ImportPatch patch(module.Handle(), "bind", Bind::Fail);
    SilentDevices();
    Sweep();
    const Lines unbound = {"BIND error 2741\n", "   WSAEADDRNOTAVAIL\n"};
    EXPECT_THAT(log.Lines(), ElementsAreArray(Lines{"SNMP::Discover\n", "SCKRAW::SCKRAW()\n"} +
                                              DefaultRequestLines() + AdapterLines(0) + unbound +
                                              kNobody + AdapterLines(1) + unbound + kNobody +
                                              Lines{"SNMP::Discover - ended\n"}));
    EXPECT_EQ(2u, agents->Requests().size()) << "the sockets stay usable";
}

TEST_F(SweepLog, TellsAStopRequest) {
    DeviceIn("neta", {{SnmpText("A")}, {SnmpText("B")}});
    window.onResult = [&](const Result& result) {
        if (!result.isEnd) module.StopDiscoverSnmp();
    };
    Sweep();
    const Lines lines = log.Lines();
    const auto stopped = std::find(lines.begin(), lines.end(), "VxSnmpMgr::StopDiscover\n");
    ASSERT_NE(lines.end(), stopped);
    EXPECT_EQ("We have [1] devices responsed the information.\n", stopped[1]);
}

}  // namespace
}  // namespace vndiscover
