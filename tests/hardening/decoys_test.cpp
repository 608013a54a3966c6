// Files under the names of system libraries, in the folder of the host's program and in the current
// one: an installer runs from a download folder, where anybody may have put them.
#include "exports/support/network_test.h"

namespace vndiscover {
namespace {

std::string ProgramFolder() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return std::string(path, std::string(path).rfind('\\') + 1);
}

class Decoys : public NetworkTest {
  protected:
    Decoys() : NetworkTest(false) {
        for (const char* name : {"ICMP.DLL", "IPHLPAPI.DLL", "Ws2_32.dll", "bcrypt.dll"}) {
            for (const std::string& folder : {ProgramFolder(), std::string(".\\")}) {
                files_.push_back(folder + name);
                CopyFileA((ProgramFolder() + "decoy.dll").c_str(), files_.back().c_str(), FALSE);
            }
        }
    }
    ~Decoys() override {
        for (const std::string& file : files_) DeleteFileA(file.c_str());
    }
    Lines Loaded() const {
        Lines loaded;
        for (const std::string& file : files_) {
            if (DeleteFileA((file + ".loaded").c_str())) loaded.push_back(file);
        }
        return loaded;
    }

  private:
    Lines files_;
};

// Everything that looks a library up at run time.
TEST_F(Decoys, AreNeverLoaded) {
    Sweep();
    Sweep(nullptr, 1);
    module.DiscoverSoap(window.Handle(), window.kMessage, 0, "x", 1);
    char text[260];
    module.GetSnmpInformation("fe80::1:2", text, nullptr, nullptr);
    DeviceIn("neta", {{V3Report()}});
    // Not with MD5, SHA-1 or DES: Wine's own library for these imports bcrypt.dll by name.
    EXPECT_EQ(0,
              module.GetSnmpRequestV3("10.77.1.2", kSysName, text, 256, nullptr, 0, 0, L"user", 1,
                                      L"authpass1", 1, L"privpass1", VN_AUTH_SHA256, VN_PRIV_AES));
    EXPECT_THAT(Requests(), SizeIs(2)) << "the second with a hash";
    EXPECT_EQ(1, module.VxPing("127.0.0.1", 1000));
    module.VxPing("::1", 100);
    module.IsIPv6Supported();
    EXPECT_THAT(Loaded(), IsEmpty());

    // That they would have been: the search order that the module avoids does find them.
    const HMODULE found = LoadLibraryA("ICMP.DLL");
    EXPECT_THAT(Loaded(), SizeIs(1));
    FreeLibrary(found);
}

}  // namespace
}  // namespace vndiscover
