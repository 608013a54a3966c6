// For most tests of the exports: the module with its debug log, a host's window, and devices that
// each test describes.
#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "exports/support/module.h"
#include "exports/support/scripted_network.h"
#include "helpers/log_capture.h"
#include "helpers/snmp_datagrams.h"

#include <iphlpapi.h>

namespace vndiscover {

using namespace testing;  // the matchers

using Lines = std::vector<std::string>;

inline Lines operator+(Lines left, const Lines& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}
// "(no file)" if there is none.
inline std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return "(no file)";
    return {std::istreambuf_iterator<char>(file), {}};
}
// Of ASCII.
inline std::wstring Wide(const std::string& text) { return {text.begin(), text.end()}; }
// The registry values that switch on the debug log. A module reads them when it is loaded and when
// a thread starts.
class RegistrySwitches {
  public:
    // name: the value that is on; null: none.
    explicit RegistrySwitches(const char* name = nullptr, const std::string& key = "VnInst")
        : path_("Software\\Varnell Osk\\" + key) {
        RegCreateKeyA(HKEY_LOCAL_MACHINE, path_.c_str(), &key_);
        if (name) SetOn(name);
    }
    ~RegistrySwitches() {
        RegCloseKey(key_);
        RemoveAll();
        RegDeleteKeyA(HKEY_LOCAL_MACHINE, "Software\\Varnell Osk");
    }
    RegistrySwitches& operator=(RegistrySwitches&&) = delete;  // nor copied

    void Set(const char* name, DWORD type, const Bytes& data) {
        RegSetValueExA(key_, name, 0, type, data.data(), static_cast<DWORD>(data.size()));
    }
    void SetOn(const char* name) { Set(name, REG_DWORD, {1, 0, 0, 0}); }
    void Remove(const char* name) { RegDeleteValueA(key_, name); }
    // Deletes the key too; nothing can be set afterwards.
    void RemoveAll() { RegDeleteKeyA(HKEY_LOCAL_MACHINE, path_.c_str()); }

  private:
    const std::string path_;
    HKEY key_ = nullptr;
};

// A host's window, which keeps a copy of every result message.
struct Result {
    std::string address;
    std::string value;  // up to its first zero byte, or the whole buffer if there is none
    Bytes buffer;       // the value's first bytes, if the window keeps buffers
    bool isEnd;         // both parameters were 0
};

class ResultWindow {
  public:
    static constexpr UINT kMessage = WM_APP + 161;

    // bufferSize: how much of every value's buffer to keep and to search for its end (WS-Discovery
    // replies); 0: values are NUL-terminated text.
    explicit ResultWindow(size_t bufferSize = 0)
        : window_(CreateWindowExA(0, "STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                                  nullptr)),
          bufferSize_(bufferSize) {
        SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(OnMessage));
    }
    ~ResultWindow() { DestroyWindow(window_); }
    ResultWindow& operator=(ResultWindow&&) = delete;  // nor copied

    HWND Handle() const { return window_; }
    // "address=value" each, the final message as "end".
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const Result& result : results) {
            texts.push_back(result.isEnd ? "end" : result.address + '=' + result.value);
        }
        return texts;
    }

    // The same for JSON, without line ends and tabs.
    std::vector<std::string> Documents() const {
        std::vector<std::string> texts = Texts();
        for (std::string& text : texts) {
            const auto isLayout = [](char c) { return c == '\n' || c == '\t'; };
            text.erase(std::remove_if(text.begin(), text.end(), isLayout), text.end());
        }
        return texts;
    }

    std::vector<Result> results;
    std::function<void(const Result&)> onResult;  // runs inside the message

  private:
    static LRESULT CALLBACK OnMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message != kMessage) return DefWindowProcA(window, message, wParam, lParam);
        auto* self = reinterpret_cast<ResultWindow*>(GetWindowLongPtrA(window, GWLP_USERDATA));
        self->Take(reinterpret_cast<const char*>(wParam), reinterpret_cast<const char*>(lParam));
        return 0;
    }
    void Take(const char* address, const char* value) {
        Result result = {};
        result.isEnd = !address && !value;
        if (address) result.address = address;
        if (value) result.value.assign(value, strnlen(value, bufferSize_ ? bufferSize_ : SIZE_MAX));
        if (value) result.buffer.assign(value, value + bufferSize_);
        results.push_back(result);
        if (onResult) onResult(result);
    }

    HWND window_;
    size_t bufferSize_;
};

// A caller's buffer between bytes that are checked for changes and a page that must not be
// accessed.
class GuardedBuffer {
  public:
    static constexpr uint8_t kFill = 0xA5;

    // size bytes of kFill; size may be 0.
    explicit GuardedBuffer(size_t size) : size_(size) {
        const size_t room = (size + kFront + kPage - 1) / kPage * kPage;
        base_ = static_cast<uint8_t*>(
            VirtualAlloc(nullptr, room + kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        DWORD before;
        VirtualProtect(base_ + room, kPage, PAGE_NOACCESS, &before);
        data_ = base_ + room - size;
        Fresh();
    }
    ~GuardedBuffer() { VirtualFree(base_, 0, MEM_RELEASE); }
    GuardedBuffer& operator=(GuardedBuffer&&) = delete;  // nor copied

    // Fills the buffer again, for the next call.
    template <class Type = uint8_t>
    Type* Fresh() {
        std::memset(base_, kFill, static_cast<size_t>(data_ - base_) + size_);
        return reinterpret_cast<Type*>(data_);
    }
    uint8_t* Data() { return data_; }
    char* Text() { return reinterpret_cast<char*>(data_); }
    int32_t Size() const { return static_cast<int32_t>(size_); }

    Bytes Content() const { return Bytes(data_, data_ + size_); }
    // Whether nothing was written to but, at most, the first bytes of the buffer.
    bool IsUntouched(size_t butFor = 0) const {
        const auto isFilled = [](uint8_t byte) { return byte == kFill; };
        return std::all_of(base_, data_, isFilled) &&
               std::all_of(data_ + butFor, data_ + size_, isFilled);
    }
    bool FrontStands() const { return IsUntouched(size_); }

  private:
    static constexpr size_t kPage = 4096;
    static constexpr size_t kFront = 512;  // longer than any value

    size_t size_;
    uint8_t* base_;
    uint8_t* data_;
};

class NetworkTest : public testing::Test {
  protected:
    // The debug log is slow for tests that make thousands of calls.
    explicit NetworkTest(bool isLogged = true) : switches(isLogged ? "Debug" : nullptr) {}
    // Checks that no socket is open after a call.
    ~NetworkTest() override { EXPECT_EQ(0u, network.OpenSockets()); }

    void Devices(Reply reply) { network.Devices(std::move(reply)); }
    void SilentDevices() { Devices(nullptr); }
    // All devices of that network give this answer; the others are silent.
    void DeviceIn(const std::string& net, Answers answers) {
        Devices([=](const Request& request) { return request.net == net ? answers : Answers(); });
    }
    const std::vector<Request>& Requests() const { return network.Requests(); }
    // A part of each of them.
    template <class Part, class Parts = Lines>
    Parts Of(Part Request::*part) const {
        Parts parts;
        for (const Request& request : Requests()) parts.push_back(std::invoke(part, request));
        return parts;
    }
    std::vector<Bytes> Sent() const { return Of<Bytes, std::vector<Bytes>>(&Request::data); }
    Lines Ways() const { return Of(&Request::Way); }
    Lines Senders() const { return Of(&Request::sender); }
    const std::vector<int>& SilentWaits() const { return network.SilentWaits(); }
    // The log since the last call.
    void ExpectLog(const std::string& expected) {
        EXPECT_EQ(expected, log.Text());
        log.Clear();
    }

    // DiscoverDevices with the default community; the time-out has no effect.
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

    RegistrySwitches switches;  // first, since the module reads them when it is loaded
    Module module;
    ScriptedNetwork network{module};
    ResultWindow window;
    LogCapture log;
};

// Log lines. That of an OID tells one more than the number of its content octets.
inline std::string OidLines(const std::string& oid) {
    const Bytes content = OidContent(oid);
    return "OID length [" + std::to_string(content.size() + 1) + "]\nOID = [" +
           ToHex(content, " ") + "]\n";
}
// A request; `asking` is what a get says before the datagram.
inline std::string RequestLines(const std::string& oid, const Bytes& message,
                                const std::string& asking = "") {
    return OidLines(oid) + asking + "SNMP_MSG = [" + ToHex(message, " ") + "]\n";
}

// The phase after a sweep's send: it ends with a time-out and delivers the devices that answered.
inline std::string AnsweredLines(const Lines& senders, const std::string& delivering = "") {
    const std::string count = std::to_string(senders.size());
    std::string lines = "HandleEvents start\n";
    for (const std::string& sender : senders) lines += "tszRecvAddr = [" + sender + "]\n";
    return lines + "RecvFrom - Timeout\n ==== We have [" + count +
           "] devices on the network. ==== \n" + delivering + "We have [" + count +
           "] devices responsed the information.\nHandleEvents end\n";
}

// An IPv4 adapter of the test network, with the description that the system gives it.
inline std::string AdapterLines(int index) {
    IP_ADAPTER_INFO list[8];
    ULONG size = sizeof list;
    if (GetAdaptersInfo(list, &size) != ERROR_SUCCESS) return "no adapters";
    const std::string address = "10.77." + std::to_string(index + 1) + ".1";
    for (const IP_ADAPTER_INFO* adapter = list; adapter; adapter = adapter->Next) {
        if (address != adapter->IpAddressList.IpAddress.String) continue;
        return "NIC [" + std::to_string(index) + "]\n   IP   = [" + address +
               ", 255.255.255.0]\n   DESC = [" + adapter->Description + "]\n";
    }
    return "no such adapter";
}

// A whole IPv4 sweep for the default OID, with what follows the lines of each adapter.
inline std::string SweepLines(const std::string& onFirst, const std::string& onSecond) {
    return "SNMP::Discover\nSCKRAW::SCKRAW()\n" + RequestLines(kDefaultOid, SnmpGet(kDefaultOid)) +
           AdapterLines(0) + onFirst + AdapterLines(1) + onSecond + "SNMP::Discover - ended\n";
}

}  // namespace vndiscover
