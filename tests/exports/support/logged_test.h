// For tests of the debug log, whose lines the module sends to the debugger while its switch is on.
#pragma once

#include <string>
#include <vector>

#include "exports/support/lab_test.h"
#include "exports/support/registry_switches.h"
#include "helpers/log_capture.h"

namespace vndiscover {

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

// What the tests write to the registry stands before the module is loaded.
class DebugSwitchOn {
  protected:
    DebugSwitchOn() { switches.SetOn("Debug"); }

    RegistrySwitches switches;
};

class LoggedTest : public DebugSwitchOn, public QuickLabTest {
  protected:
    // The whole log; a failure shows the lines that differ.
    void ExpectLog(const Lines& expected) const {
        const auto text = [](const Lines& lines) {
            std::string all;
            for (const std::string& line : lines) all += line + '\n';
            return all;
        };
        EXPECT_EQ(text(expected), text(log.Lines()));
    }

    LogCapture log;
};

// What a request for an OID says while it is built: `content` are the OID's content octets as "%02x
// " each, `message` the whole datagram; loggedLength is one more than the content has. `asking` is
// what a get says between the two.
Lines RequestLines(int loggedLength, const std::string& content, const Bytes& message,
                   const Lines& asking = {});
// The default OID's.
Lines DefaultRequestLines(const Lines& asking = {});
// The phase behind a sweep's send; one that ends with silence and delivers who has answered.
Lines PhaseLines(const Lines& collecting, int devices, const Lines& delivering, int delivered);
Lines AnsweredLines(const Lines& senders, const Lines& delivering = {});
// A whole IPv4 sweep for the default OID: what stands behind its adapters' own lines, and before
// the request's.
Lines SweepLines(const Lines& onFirst, const Lines& onSecond, const Lines& onOid = {});
// An IPv4 adapter of the test network, with the description that the system gives it.
Lines AdapterLines(int index);
// The listing of the IPv6 adapters, from what the system lists.
Lines IPv6ListingLines();
inline std::string LogHex(const Bytes& bytes) { return ToHex(bytes, " "); }

}  // namespace vndiscover
