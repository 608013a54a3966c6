// Sweeps that a host starts within a result message.
#include <fstream>
#include <iterator>

#include "exports/support/v3_devices.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NestedSweep : public QuickLabTest {
  protected:
    NestedSweep() {
        Devices([](const Request& request) {
            if (request.net != "neta") return Answers();
            if (request.data == V3Probe()) return Answers{{V3Report()}};
            if (request.data == V3Request(kDefaultOid)) return Answers{{V3Text("V3")}};
            return Answers{{SnmpText("A")}, {SnmpText("B")}};
        });
    }
    ~NestedSweep() override { DeleteFileA(kPath); }

    int32_t SweepV3(ResultWindow& to) {
        return V3User().Ask([&](auto... security) {
            return module.DiscoverSnmpV3(to.Handle(), to.kMessage, 0, 0, security...);
        });
    }
    void SweepEveryWay(ResultWindow& to) {
        module.DiscoverDevices(to.Handle(), to.kMessage, 0, 0, L"devices.csv", nullptr, nullptr);
        module.DiscoverSnmp(to.Handle(), to.kMessage, 0, 0, nullptr, nullptr);
        SweepV3(to);
    }
    static std::string Written() {
        std::ifstream file(kPath, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static constexpr char kPath[] = "devices.csv";
    ResultWindow other;
};

TEST_F(NestedSweep, DoesNothingWhileAnotherRuns) {
    window.onResult = [&](const Result& result) {
        if (!result.isEnd) SweepEveryWay(other);
    };
    Sweep(L"devices.csv");
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
    EXPECT_EQ("\"10.77.1.2\",\"A\"\r\n\"10.77.1.2\",\"B\"\r\n", Written());
    EXPECT_EQ(2u, agents->Requests().size()) << "one of each adapter";

    window.results.clear();
    SweepV3(window);
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=V3"));
    EXPECT_THAT(other.results, IsEmpty());
}

TEST_F(NestedSweep, MayBeginWithinTheFinalMessage) {
    window.onResult = [&](const Result& result) {
        if (result.isEnd) module.DiscoverSnmp(other.Handle(), other.kMessage, 0, 0, "next", "");
    };
    Sweep(L"devices.csv");
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=A", "10.77.1.2=B", "end"));
    EXPECT_EQ(window.Texts(), other.Texts());
    EXPECT_EQ("\"10.77.1.2\",\"A\"\r\n\"10.77.1.2\",\"B\"\r\n", Written()) << "of the first alone";
}

}  // namespace
}  // namespace vndiscover
