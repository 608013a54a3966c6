// What can go wrong on the host's own side while the module works: its window, its disk, its memory
// and sockets.
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>

#include "exports/support/network_test.h"

namespace vndiscover {
namespace {

class HostTest : public NetworkTest {
  protected:
    HostTest() : NetworkTest(false) { DeviceIn("neta", {{SnmpText("A")}, {SnmpText("B")}}); }
};

class WindowProcedure : public HostTest {};

TEST_F(WindowProcedure, ThatDestroysTheWindowEndsTheMessagesAndNothingElse) {
    window.onResult = [&](const Result&) { DestroyWindow(window.Handle()); };
    Sweep();
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A"));
    ResultWindow other;
    module.DiscoverDevices(other.Handle(), other.kMessage, 0, 0, nullptr, nullptr, nullptr);
    EXPECT_THAT(other.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
}

TEST_F(WindowProcedure, MayAskDirectlyFromWithinAMessage) {
    Lines values;
    window.onResult = [&](const Result& result) {
        char value[260] = {};
        VnResponseRecord record = {};
        module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr);
        module.GetNextSnmpRequestRaw("10.77.1.2", kSysName, &record, 0, 0, nullptr, nullptr);
        values.push_back((result.isEnd ? "end" : result.value) + ' ' + value +
                         reinterpret_cast<const char*>(record.value));
    };
    Sweep();
    EXPECT_THAT(values, ElementsAre("A AA", "B AA", "end AA"));
}

class FullDisk : public HostTest {};

std::string Content(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

TEST_F(FullDisk, CutsTheFileAndCostsNoMessage) {
    const char* const lab = std::getenv("VNDISCOVER_LAB");  // run.sh has made the disk, of 16 KB
    const std::string path = std::string("Z:") + (lab ? lab : "") + "/full/devices.csv";
    const std::wstring widePath(path.begin(), path.end());
    DeviceIn("neta", Repeated(1000, {SnmpText(std::string(120, 'x'))}));
    Sweep(widePath.c_str());
    EXPECT_THAT(window.results, SizeIs(1001));
    std::string whole;
    while (whole.size() < 20000) whole += "\"10.77.1.2\",\"" + std::string(120, 'x') + "\"\r\n";
    const std::string written = Content(path);
    EXPECT_THAT(written.size(), AllOf(Ge(8192u), Le(16384u))) << "as much as fits";
    EXPECT_EQ(whole.substr(0, written.size()), written);
    EXPECT_NE(0, DeleteFileA(path.c_str())) << "still open";
    DeviceIn("neta", {{SnmpText("A")}});
    Sweep(widePath.c_str());
    EXPECT_EQ("\"10.77.1.2\",\"A\"\r\n", Content(path));
}

class Exhausted : public HostTest {};

SOCKET WSAAPI NoSocket(int, int, int, LPWSAPROTOCOL_INFOA, GROUP, DWORD) {
    WSASetLastError(WSAEMFILE);
    return INVALID_SOCKET;
}

TEST_F(Exhausted, SocketsEndEveryCallAtOnce) {
    char value[260];
    uint32_t type = 0;
    {
        const ImportPatch patch(module.Handle(), "WSASocketA", NoSocket);
        Sweep();
        module.DiscoverSoap(window.Handle(), window.kMessage, 5000, "x", 1);
        EXPECT_THAT(window.Texts(), ElementsAre("end", "end"));
        EXPECT_EQ(-1,
                  module.GetSnmpRequestRaw("10.77.1.2", kSysName, reinterpret_cast<uint8_t*>(value),
                                           256, &type, 0, 0, nullptr, nullptr));
        EXPECT_EQ(0, module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr));
        EXPECT_EQ(0u, network.NowMs());
    }
    EXPECT_EQ(1, module.GetSnmpInformation("10.77.1.2", value, nullptr, nullptr));
}

// Lets VirtualAlloc of the whole process fail while the object lives: its code becomes `xor
// eax,eax; ret`.
class NoPages {
  public:
    NoPages() {
        code_ = reinterpret_cast<uint8_t*>(
            GetProcAddress(GetModuleHandleA("kernelbase.dll"), "VirtualAlloc"));
        std::memcpy(before_, code_, sizeof before_);
        const uint8_t fail[] = {0x31, 0xC0, 0xC3};
        Write(fail);
    }
    ~NoPages() { Write(before_); }

  private:
    void Write(const uint8_t (&bytes)[3]) {
        DWORD protection;
        VirtualProtect(code_, sizeof bytes, PAGE_EXECUTE_READWRITE, &protection);
        std::memcpy(code_, bytes, sizeof bytes);
        VirtualProtect(code_, sizeof bytes, protection, &protection);
        FlushInstructionCache(GetCurrentProcess(), code_, sizeof bytes);
    }
    uint8_t* code_;
    uint8_t before_[3];
};

TEST(ExhaustedAtLoad, MemoryLeavesAModuleThatDoesNothing) {
    std::optional<NoPages> noPages(std::in_place);
    ASSERT_EQ(nullptr, VirtualAlloc(nullptr, 4096, MEM_COMMIT, PAGE_READWRITE));
    Module module;
    noPages.reset();
    ResultWindow window;
    const HWND host = window.Handle();
    EXPECT_EQ(0, module.DiscoverSnmp(host, window.kMessage, 0, 0, nullptr, nullptr));
    EXPECT_EQ(0, module.DiscoverDevicesByOIDjson(host, window.kMessage, 0, 0, L"{}", nullptr,
                                                 nullptr, nullptr));
    EXPECT_EQ(0, module.DiscoverSnmpV3(host, window.kMessage, 0, 0, L"user", 0, nullptr, 0, nullptr,
                                       nullptr, nullptr));
    EXPECT_EQ(0, module.DiscoverSoap(host, window.kMessage, 0, "x", 1));
    EXPECT_EQ(0, module.StopDiscoverSnmp() + module.StopDiscoverSoap());
    EXPECT_TRUE(window.results.empty());
    EXPECT_EQ(1, module.VxPing("127.0.0.1", 1000)) << "what needs no manager works";
}

}  // namespace
}  // namespace vndiscover
