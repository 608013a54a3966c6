#include "model/scan/scan_report.h"

#include <gtest/gtest.h>

#include "values/object_names.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

TEST(AnswerLines, ShowEachFormAndNoMarksThatChangeTheText) {
    Scan scan;
    const Oid name = *ParseOidOrName("sysName.0");
    scan.sweeps = {{SweepKind::kSnmpV1, AnswerForm::kValue, false, name, ""},
                   {SweepKind::kSnmpV3, AnswerForm::kVariable, false, {}, ""},
                   {SweepKind::kWsd, AnswerForm::kReply, false, {}, ""}};
    const std::string cut = "\xC8" + std::string(128, 'a');  // 200 bytes, as the module delivers
    const Oid type = *ParseOidOrName("ifType.1");
    Answer hall = AnsweredWith(name, kOctetString, "hall\xE2\x80\xAE");
    hall.wholeSize = 300;
    scan.answers = {{0, "2026-11-25T04:32:23Z", "10.77.1.1", Received(cut)},
                    {1, "", "10.77.1.1", AnsweredWith(type, kInteger, "\x06")},
                    {1, "", "10.77.1.1", hall},
                    {2, "", "10.77.1.1", Received("<a>\r\n\x1B[2J</a>")}};
    const std::vector<AnswerLine> lines = AnswerLines(scan, {0, 1, 2, 3});
    ASSERT_EQ(4u, lines.size());
    EXPECT_EQ("2026-11-25T04:32:23Z", lines[0].time);
    EXPECT_EQ("sysName.0", lines[0].object);
    EXPECT_EQ(std::string(128, 'a') + " [the first 128 of 200 bytes]", lines[0].value);
    EXPECT_EQ("ethernetCsmacd(6)", lines[1].value);
    EXPECT_EQ("68 61 6C 6C E2 80 AE [the first 7 of 300 bytes]", lines[2].value);
    EXPECT_EQ("<a> \xEF\xBF\xBD[2J</a>", lines[3].value);
    EXPECT_EQ("reply", lines[3].object);
    // Of one device only.
    EXPECT_EQ(SweepKind::kWsd, AnswerLines(scan, {3}).at(0).kind);
}

}  // namespace
}  // namespace vndiscover::host
