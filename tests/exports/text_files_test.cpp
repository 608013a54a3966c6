// The files that the module writes are text files, whatever its host has made the runtime's
// default.
#include <fcntl.h>
#include <stdlib.h>

#include <fstream>
#include <iterator>

#include "exports/support/logged_test.h"

namespace vndiscover {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

std::string TakeFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    file.close();
    std::remove(path);
    return content;
}

// What the registry says stands there before the module is loaded.
struct FileSwitchOn {
    FileSwitchOn() { switches.SetOn("Dbg2Log"); }
    RegistrySwitches switches;
};

class BinaryHost : public FileSwitchOn, public QuickLabTest {
  protected:
    BinaryHost() { _fmode = _O_BINARY; }
    ~BinaryHost() override { _fmode = before_; }

  private:
    const int before_ = _fmode;
};

TEST_F(BinaryHost, GetsLinesThatEndAsTextFilesDo) {
    std::remove("VxAdmSvc.log");
    DeviceIn("neta", {{SnmpText("Model 1")}});
    Sweep(L"devices.csv");
    EXPECT_EQ("\"10.77.1.2\",\"Model 1\"\r\n", TakeFile("devices.csv"));
    const std::string log = TakeFile("VxAdmSvc.log");
    EXPECT_THAT(log, HasSubstr("SNMP::Discover\r\n"));
    EXPECT_THAT(log, EndsWith("SNMP::Discover - ended\r\n"));
}

}  // namespace
}  // namespace vndiscover
