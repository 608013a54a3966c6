// Sweeps: on the loopback, with the adapters hidden from the module, or in every network.
#include <chrono>

#include "check/agent.h"
#include "check/rows.h"

namespace check {
namespace {

constexpr char kGroup[] = "239.255.255.250";
constexpr uint16_t kWsdPort = 3702;
constexpr char kProbe[] = "<Probe/>";
constexpr unsigned kWaitMs = 1000;  // after which a sweep leaves an address
constexpr size_t kTooLong = VN_SOAP_REPLY_SIZE + 1000;

std::string Told(const ResultWindow& window) {
    std::string text;
    for (const ResultWindow::Result& result : window.results) {
        if (!text.empty()) text += ", ";
        text += result.address.empty() && result.value.empty()
                    ? "the final message"
                    : Number(int64_t(result.value.size())) + " bytes from " + result.address;
    }
    return text;
}

void Sweep(const Module& module, HWND window) {
    module.DiscoverSoap(window, ResultWindow::kMessage, kWaitMs, kProbe,
                        int32_t(sizeof kProbe - 1));
}

}  // namespace

void DiscoveryRows(Report& report, Module& module) {
    report.Section("WS-Discovery with a responder on the loopback");
    const char* const name = "replies of 2,048, 3,048 and 100 bytes";
    const std::string expected =
        "2048 bytes from 127.0.0.1, 100 bytes from 127.0.0.1, the final message";
    if (!module.HideAdapters()) {
        report.NotSeen(name, expected, "the adapters cannot be hidden from the module");
        return;
    }
    // Our programs rely on this wait: a sweep that takes no longer has sent nothing by an adapter.
    ResultWindow silent;
    const auto started = std::chrono::steady_clock::now();
    Sweep(module, silent.Handle());
    const auto waited = std::chrono::steady_clock::now() - started;
    report.Add("a Probe from the loopback that nobody answers", "waited for",
               waited >= std::chrono::milliseconds(kWaitMs / 2) ? "waited for" : "not waited for");

    std::string heard = "nothing";
    const Agent responder(kGroup, kWsdPort, "127.0.0.1", [&](const Bytes& request) {
        heard = std::string(request.begin(), request.end());
        return std::vector<Bytes>{Bytes(VN_SOAP_REPLY_SIZE, 'A'), Bytes(kTooLong, 'B'),
                                  Bytes(100, 'C')};
    });
    if (responder.Error() != 0) {
        report.NotSeen(name, expected,
                       "port 3702 cannot be shared (" + Number(responder.Error()) + ")");
        return;
    }
    ResultWindow window;
    Sweep(module, window.Handle());
    report.Add("the probe that a responder on the loopback's interface hears", kProbe, heard);
    report.Add(name, expected, Told(window));
}

void NetworkRows(Report& report, const Module& module) {
    report.Section("Sweeps in every network");
    const auto endOf = [](auto sweep) {
        ResultWindow window;
        sweep(window.Handle());
        const bool isFinal = !window.results.empty() && window.results.back().address.empty();
        return isFinal ? "ends with the final message" : "ends without one";
    };
    const char* const final = "ends with the final message";
    // The module runs it beside an SNMP sweep.
    auto wsd = std::async(std::launch::async,
                          [&] { return endOf([&](HWND window) { Sweep(module, window); }); });
    report.Add("SNMPv1, IPv4", final, endOf([&](HWND window) {
                   module.DiscoverSnmp(window, ResultWindow::kMessage, 0, 0, nullptr, nullptr);
               }));
    report.Add("SNMPv1, IPv6", final, endOf([&](HWND window) {
                   module.DiscoverSnmp(window, ResultWindow::kMessage, 0, 1, nullptr, nullptr);
               }));
    report.Add("SNMPv3, IPv4", "ends without one", endOf([&](HWND window) {
                   module.DiscoverSnmpV3(window, ResultWindow::kMessage, 0, 0, L"check", 0, nullptr,
                                         0, nullptr, nullptr, nullptr);
               }));
    report.Add("WS-Discovery", final, wsd.get());
}

}  // namespace check
