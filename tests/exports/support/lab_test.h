// What most tests of the exports need: the module, a host's window, devices that each test
// describes.
#pragma once

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

#include "exports/support/agents.h"
#include "exports/support/hooks.h"
#include "exports/support/module.h"
#include "exports/support/result_window.h"
#include "exports/support/snmp_datagrams.h"

namespace vndiscover {

// The first part of a table's row: it names the test.
struct Row {
    const char* name;
};
inline std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }
constexpr auto kNameOfRow = [](const auto& row) { return std::string(row.param.name); };

class LabTest : public testing::Test {
  protected:
    void Devices(Reply reply) {
        agents.reset();
        agents.emplace(std::move(reply));
    }
    void SilentDevices() { Devices(nullptr); }
    // Every device of that network answers alike; the other network is silent.
    void DeviceIn(const std::string& net, Answers answers) {
        Devices([=](const Request& request) { return request.net == net ? answers : Answers(); });
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
    // "sender > address port net" of each request so far.
    std::vector<std::string> Ways() {
        std::vector<std::string> ways;
        for (const Request& request : agents->Requests()) {
            ways.push_back(request.sender + " > " + request.local + ' ' +
                           std::to_string(request.port) + ' ' + request.net);
        }
        return ways;
    }

    Module module;
    ResultWindow window;
    std::optional<Agents> agents;
};

// Silent waits a quarter as long.
class QuickLabTest : public LabTest {
  protected:
    Waits waits{module};
};

}  // namespace vndiscover
