// Files under the names of system libraries, in the folder of the host's program and in the current
// one: an installer runs from a download folder, where anybody may have put them.
#include <string>

#include "exports/support/lab_test.h"
#include "hardening/quick_waits.h"

namespace vndiscover {
namespace {

const char* const kNames[] = {"ICMP.DLL", "IPHLPAPI.DLL", "Ws2_32.dll", "bcrypt.dll"};

std::string ProgramFolder() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return std::string(path, std::string(path).rfind('\\') + 1);
}

std::string CurrentFolder() {
    char path[MAX_PATH] = {};
    GetCurrentDirectoryA(MAX_PATH, path);
    return path + std::string("\\");
}

bool IsThere(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

class Decoys : public LabTest {
  protected:
    Decoys() {
        for (const std::string& folder : {ProgramFolder(), CurrentFolder()}) {
            for (const char* name : kNames) {
                CopyFileA((ProgramFolder() + "decoy.dll").c_str(), (folder + name).c_str(), FALSE);
            }
        }
    }
    static std::string Loaded() {
        std::string names;
        for (const std::string& folder : {ProgramFolder(), CurrentFolder()}) {
            for (const char* name : kNames) {
                if (IsThere(folder + name + ".loaded")) names += folder + name + ' ';
            }
        }
        return names;
    }
    QuickWaits waits{module};
};

// Everything that looks a library up at run time.
TEST_F(Decoys, AreNeverLoaded) {
    SilentDevices();
    Sweep();
    Sweep(nullptr, 1);
    module.DiscoverSoap(window.Handle(), window.kMessage, 0, "x", 1);
    char text[260];
    module.GetSnmpInformation("fe80::1:2", text, nullptr, nullptr);
    module.DiscoverSnmpV3(window.Handle(), window.kMessage, 0, 0, L"user", 1, L"authpass1", 1,
                          L"privpass1", VN_AUTH_SHA512, VN_PRIV_AES);
    for (const wchar_t* protocol : {VN_AUTH_MD5, VN_AUTH_SHA256}) {
        module.GetSnmpRequestV3("10.77.1.2", kSysName, text, 256, nullptr, 0, 0, L"user", 1,
                                L"authpass1", 1, L"privpass1", protocol, VN_PRIV_DES);
    }
    EXPECT_EQ(1, module.VxPing("127.0.0.1", 1000));
    module.VxPing("::1", 100);
    module.IsIPv6Supported();
    EXPECT_EQ("", Loaded());

    // That they would have been: the search order that the module avoids does find them.
    const HMODULE found = LoadLibraryA("ICMP.DLL");
    EXPECT_NE("", Loaded());
    FreeLibrary(found);
}

}  // namespace
}  // namespace vndiscover
