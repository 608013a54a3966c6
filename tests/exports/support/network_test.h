// What most tests of the exports need: the module with its debug log, a host's window, and devices
// that each test describes.
#pragma once

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "exports/support/module.h"
#include "exports/support/registry_switches.h"
#include "exports/support/result_window.h"
#include "exports/support/scripted_network.h"
#include "helpers/log_capture.h"
#include "helpers/snmp_datagrams.h"

namespace vndiscover {

using testing::AllOf;
using testing::AnyOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Le;
using testing::SizeIs;

using Lines = std::vector<std::string>;

inline Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}
inline Lines Times(int count, const Lines& lines) {
    Lines all;
    while (count-- > 0) all = all + lines;
    return all;
}

// The first part of a table's row: it names the test.
struct Row {
    const char* name;
};
inline std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }
constexpr auto kNameOfRow = [](const auto& row) { return std::string(row.param.name); };

class NetworkTest : public testing::Test {
  protected:
    // The debug log costs time where thousands of calls are made.
    explicit NetworkTest(bool isLogged = true) : switches(isLogged ? "Debug" : nullptr) {}
    // No socket stays open after any call.
    ~NetworkTest() override { EXPECT_EQ(0u, network.OpenSockets()); }

    void Devices(Reply reply) { network.Devices(std::move(reply)); }
    void SilentDevices() { Devices(nullptr); }
    // Every device of that network answers alike; the others are silent.
    void DeviceIn(const std::string& net, Answers answers) {
        Devices([=](const Request& request) { return request.net == net ? answers : Answers(); });
    }
    const std::vector<Request>& Requests() const { return network.Requests(); }
    // Their data.
    std::vector<Bytes> Sent() const {
        std::vector<Bytes> sent;
        for (const Request& request : Requests()) sent.push_back(request.data);
        return sent;
    }
    // "net: sender > address:port" of each.
    Lines Ways() const {
        Lines ways;
        for (const Request& request : Requests()) {
            ways.push_back(request.net + ": " + request.sender + " > " + request.local + ':' +
                           std::to_string(request.port));
        }
        return ways;
    }
    // The addresses that they left from.
    Lines Senders() const {
        Lines senders;
        for (const Request& request : Requests()) senders.push_back(request.sender);
        return senders;
    }
    const std::vector<int>& SilentWaits() const { return network.SilentWaits(); }
    // The whole log; a failure shows the lines that differ.
    void ExpectLog(const Lines& expected) const {
        const auto text = [](const Lines& lines) {
            std::string all;
            for (const std::string& line : lines) all += line + '\n';
            return all;
        };
        EXPECT_EQ(text(expected), text(log.Lines()));
    }

    // DiscoverDevices with the default community; the time-out does not matter.
    void Sweep(const wchar_t* path = nullptr, BYTE useIPv6 = 0) {
        EXPECT_EQ(0, module.DiscoverDevices(window.Handle(), window.kMessage, 9, useIPv6, path,
                                            nullptr, nullptr));
    }
    // DiscoverDevicesByOIDjson without a file.
    void SweepFor(const std::wstring& request, const wchar_t* community = nullptr,
                  BYTE useIPv6 = 0) {
        EXPECT_EQ(0, module.DiscoverDevicesByOIDjson(window.Handle(), window.kMessage, 0, useIPv6,
                                                     request.c_str(), nullptr, community, nullptr));
    }
    // Unloads the module and loads it again.
    void Reload() {
        network.Detach();
        module.Reload();
        network.Attach(module);
    }

    RegistrySwitches switches;  // first: the module reads them as it is loaded
    Module module;
    ScriptedNetwork network{module};
    ResultWindow window;
    LogCapture log;
};

}  // namespace vndiscover
