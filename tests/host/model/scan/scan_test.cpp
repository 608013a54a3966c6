// Scans: merging answers into devices, saving to files, and comparing two.
#include "model/scan/scan_file.h"

#include <gmock/gmock.h>

#include <ctime>

#include "host/model/scripted_device.h"
#include "model/scan/compare.h"
#include "model/scan/device_merge.h"
#include "model/scan/device_writer.h"
#include "model/scan/scan_report.h"
#include "values/module_types.h"
#include "values/object_names.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kTime[] = "2026-11-25T04:32:23Z";

// A scan with one sweep of each form for each round.
struct ScanOf {
    Scan scan;

    void Begin(SweepKind kind, AnswerForm form, const char* oid = "") {
        scan.sweeps.push_back({kind, form, false, ParseOid(oid).value_or(Oid()), kTime});
    }
    void Add(const char* address, const std::string& bytes, const char* name = "",
             uint32_t type = kOctetString) {
        const auto oid = ParseOidOrName(name);
        scan.answers.push_back({scan.sweeps.size() - 1, kTime, address,
                                AnsweredWith(oid.value_or(Oid()), oid ? type : 0, bytes)});
    }
    // The variables that a saved sweep reads from a printer.
    void AddPrinter(const char* address, const std::string& serial, const std::string& mac,
                    const std::string& name = "") {
        Add(address, EncodeOid(*ParseOid(".1.3.6.1.2.1.25.3.1.5")), "hrDeviceType.5",
            kObjectIdentifier);
        if (!name.empty()) Add(address, name, "sysName.0");
        if (!serial.empty()) Add(address, serial, "prtGeneralSerialNumber.5");
        if (!mac.empty()) Add(address, mac, "ifPhysAddress.2");
    }
    // One of several with the same name.
    void AddSupply(const char* row, const char* level, bool hasMaximum) {
        const auto add = [&](const std::string& object, const char* bytes, uint32_t type) {
            Add("10.0.0.8", bytes, ("prtMarkerSupplies" + object + ".5." + row).c_str(), type);
        };
        add("Description", "Black", kOctetString);
        if (*level) add("Level", level, kInteger);
        if (hasMaximum) add("MaxCapacity", "\x64", kInteger);
    }
};

ScanOf Variables() {
    ScanOf scan;
    scan.Begin(SweepKind::kSnmpV1, AnswerForm::kVariable);
    return scan;
}

// "0 1|2": the answers of each device.
std::string Groups(const Scan& scan) {
    std::string text;
    for (const FoundDevice& device : MakeDevices(scan)) {
        text += text.empty() ? "" : "|";
        for (const size_t answer : device.answers)
            text += (text.empty() || text.back() == '|' ? "" : " ") + std::to_string(answer);
    }
    return text;
}

const std::string kMac("\x3C\x2A\xF4\x00\xF5\x1B", 6);
const std::string kOtherMac("\x3C\x2A\xF4\x00\xF5\x1C", 6);

TEST(DeviceMerge, AFloodOfRepliesIsNotReadWhole) {
    ScanOf flood;
    flood.Begin(SweepKind::kWsd, AnswerForm::kReply);
    for (int i = 0; i < 300; ++i) flood.Add("10.77.1.20", Reply(std::to_string(i)));
    const FoundDevice device = MakeDevices(flood.scan).at(0);
    EXPECT_EQ(300u, device.answers.size());
    EXPECT_EQ(256u, device.identity.Of(MergeKey::kEndpoint).size());
}

// Each of the later addresses joins the group with an earlier one, which then is its first.
TEST(DeviceMerge, HostileRepliesDoNotMakeItSlow) {
    constexpr int kPairs = 8000;
    ScanOf one;
    one.Begin(SweepKind::kWsd, AnswerForm::kReply);
    for (int i = 2 * kPairs - 1; i >= 0; --i) {
        const int pair = i < kPairs ? kPairs - 1 - i : i;
        const std::string address = std::to_string(pair);
        one.Add(address.c_str(), Reply(std::to_string(pair % kPairs)));
        if (i < kPairs) one.scan.answers.push_back(one.scan.answers.back());
        if (i < kPairs) one.scan.answers.back().answer.bytes = Reply("common");
    }
    const std::clock_t start = std::clock();
    EXPECT_EQ(1u, MakeDevices(one.scan).size());
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 10);  // with copied groups, a minute
}

TEST(DeviceMerge, UsesTheStrongestKeyAndKeepsTheReason) {
    ScanOf one = Variables();
    one.Add("10.0.0.1", "S1", "prtGeneralSerialNumber.1");
    one.Add("10.0.0.2", "S1", "prtGeneralSerialNumber.1");
    one.Add("10.0.0.3", kMac, "ifPhysAddress.1");
    one.Add("10.0.0.4", kMac, "ifPhysAddress.1");
    one.Begin(SweepKind::kWsd, AnswerForm::kReply);
    one.Add("10.0.0.5", Reply("urn:uuid:1"));
    one.Add("10.0.0.4", Reply("urn:uuid:1"));
    EXPECT_EQ("0 1|2 3 4 5", Groups(one.scan));
    const auto devices = MakeDevices(one.scan);
    std::vector<std::string> reasons;
    for (const FoundDevice& device : devices) {
        for (const Merge& merge : device.merges)
            reasons.push_back(std::string(KeyName(merge.key)) + " " + merge.value + " " +
                              std::to_string(merge.first) + " " + std::to_string(merge.second));
    }
    EXPECT_THAT(reasons,
                ElementsAre("serial number S1 0 1", "MAC address 3C:2A:F4:00:F5:1B 2 3",
                            "address 10.0.0.4 3 5", "WS-Discovery endpoint urn:uuid:1 4 5"));
    EXPECT_THAT(devices[1].identity.Of(MergeKey::kAddress),
                ElementsAre("10.0.0.3", "10.0.0.4", "10.0.0.5"));
}

TEST(DeviceMerge, StrongerKeysSeparateDevices) {
    ScanOf one = Variables();
    one.Add("10.0.0.1", "S1", "prtGeneralSerialNumber.1");
    one.Add("10.0.0.1", kMac, "ifPhysAddress.1");
    one.Add("10.0.0.2", "S2", "prtGeneralSerialNumber.1");  // on the same print server
    one.Add("10.0.0.2", kMac, "ifPhysAddress.1");
    one.Begin(SweepKind::kSnmpV1, AnswerForm::kVariable);
    one.Add("10.0.0.1", "S2", "prtGeneralSerialNumber.1");  // the address was reassigned
    EXPECT_EQ("0 1|2 3 4", Groups(one.scan));
}

TEST(DeviceMerge, IgnoresPlaceholdersOfSerialNumbersAndMacs) {
    std::vector<std::pair<const char*, std::string>> rows;
    for (const char* serial : {"", " ", "XXXXXXXX", "xxxx", "00000000", "0000-XXXX"})
        rows.emplace_back("prtGeneralSerialNumber.1", serial);
    for (const char byte : {'\0', '\xFF'})
        rows.emplace_back("ifPhysAddress.1", std::string(6, byte));
    for (const auto& [name, value] : rows) {
        ScanOf one = Variables();
        for (const char* address : {"10.0.0.1", "10.0.0.2"}) one.Add(address, value, name);
        EXPECT_EQ("0|1", Groups(one.scan)) << name << value;
    }
}

TEST(DeviceMerge, SplitsUndoIt) {
    ScanOf one = Variables();
    DeviceMaker maker;
    one.AddPrinter("10.0.0.1", "S1", kMac);  // 0 to 2
    EXPECT_EQ(1u, maker.Make(one.scan).size());
    one.AddPrinter("10.0.0.2", "S1", kMac);      // 3 to 5
    one.AddPrinter("10.0.0.3", "", kOtherMac);   // 6, 7
    one.AddPrinter("10.0.0.2", "", "", "late");  // 8, 9
    EXPECT_EQ("0 1 2 3 4 5 8 9|6 7", Groups(one.scan));
    EXPECT_EQ("late", maker.Make(one.scan)[0].facts->name);  // as they arrive
    EXPECT_EQ("late", maker.Make(one.scan)[0].facts->name);
    const Merge merge = MakeDevices(one.scan)[0].merges[0];
    one.scan.splits.emplace_back(merge.first, merge.second);
    EXPECT_EQ("0 1 2|3 4 5 8 9|6 7", Groups(one.scan));
    one.Begin(SweepKind::kSnmpV1, AnswerForm::kVariable);
    one.AddPrinter("10.0.0.2", "S1", kMac);  // 10 to 12
    EXPECT_EQ("0 1 2|3 4 5 8 9 10 11 12|6 7", Groups(one.scan))
        << "what it says later is apart too";
}

// A hostile file: each pair of answers separates all that came from both addresses.
TEST(DeviceMerge, ManySplitsCostLittle) {
    ScanOf one = Variables();
    for (int sweep = 0; sweep < 300; ++sweep) {
        one.Begin(SweepKind::kSnmpV1, AnswerForm::kVariable);
        one.AddPrinter("10.0.0.1", "S1", "");
        one.AddPrinter("10.0.0.2", "S1", "");
    }
    one.scan.splits.assign(10000, {0, 2});
    const std::clock_t start = std::clock();
    EXPECT_LE(2u, MakeDevices(one.scan).size());
    EXPECT_GT(10 * CLOCKS_PER_SEC, std::clock() - start);
}

TEST(DeviceMerge, ReadsEveryForm) {
    ScanOf one;
    one.Begin(SweepKind::kSnmpV1, AnswerForm::kValue, kDefaultDiscoveryOid);
    one.Add("10.0.0.1", "VN LaserPro 410");
    one.Begin(SweepKind::kSnmpV3, AnswerForm::kDocument);
    one.Add("10.0.0.1",
            R"({"GET":{".1.3.6.1.2.1.43.5.1.1.17.1":"S1",".1.3.6.1.2.1.1.5.0":"hall"}})");
    one.Begin(SweepKind::kSnmpV1, AnswerForm::kVariable);
    one.Add("10.0.0.1", "VN 410, firmware 1.2", "sysDescr.0");
    one.Add("10.0.0.1", "\x05", "prtMarkerLifeCount.1.1", kCounter32);
    const auto devices = MakeDevices(one.scan);
    ASSERT_EQ(1u, devices.size());
    EXPECT_EQ("VN LaserPro 410, S1, 10.0.0.1", DeviceLine(devices[0]));
    EXPECT_EQ("hall", devices[0].facts->name);
    EXPECT_EQ("VN 410, firmware 1.2", devices[0].facts->description);
    ASSERT_EQ(1u, devices[0].facts->pageCounts.size());
    EXPECT_EQ(5u, devices[0].facts->pageCounts[0].count);
}

TEST(ScanFile, KeepsEveryByte) {
    ScanOf one;
    one.Begin(SweepKind::kSnmpV1, AnswerForm::kValue, ".1.3.6.1.2.1.1.5.0");
    std::string all;
    for (int byte = 1; byte < 256; ++byte) all += static_cast<char>(byte);
    for (const std::string text : {"", "B\xC3\xBCro \"1\"\\u0000\t\n", "\xE2\x80\xAE", "B\xFCro"})
        one.Add("fe80::1", text);
    one.Add("10.0.0.1", all);
    one.Begin(SweepKind::kSnmpV3, AnswerForm::kVariable);
    one.Add("10.0.0.1", kMac, "ifPhysAddress.1");
    one.scan.answers.back().answer.wholeSize = 200;
    one.scan.splits.emplace_back(0, 5);
    one.scan.sweeps[1].search = kMaxScanSize;  // after a search with the highest number of a file
    std::string problem;
    const auto text = WriteScan(one.scan, problem);
    ASSERT_TRUE(text) << problem;
    EXPECT_THAT(*text,
                HasSubstr("\"answers\":[4,5],\"merges\":[{\"by\":\"address\""));  // the devices
    const auto read = ReadScan(*text, problem);
    ASSERT_TRUE(read) << problem;
    ASSERT_EQ(6u, read->answers.size());
    for (size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(one.scan.answers[i].answer.bytes, read->answers[i].answer.bytes);
        EXPECT_EQ(one.scan.answers[i].address, read->answers[i].address);
    }
    EXPECT_EQ(one.scan.answers[5].answer.oid, read->answers[5].answer.oid);
    EXPECT_EQ(200u, read->answers[5].answer.wholeSize);
    EXPECT_EQ(one.scan.sweeps[0].oid, read->sweeps[0].oid);
    EXPECT_EQ(text, WriteScan(*read, problem));
}

constexpr char kGood[] = R"({"format":"vndiscover-scan","version":1,
"sweeps":[
{"kind":"snmpv1","form":"variable","ipv6":false,"time":"2026-11-25T04:32:23Z"}],
"answers":[
{"sweep":0,"time":"2026-11-25T04:32:23Z","address":"10.0.0.1","oid":".1.3","type":4,"text":"a"},
{"sweep":0,"time":"2026-11-25T04:32:24Z","address":"fe80::1","oid":".1.3","type":4,"hex":"A0"}],
"splits":[[0,1]]
})";

TEST(ScanFile, RefusalsNameLineAndReason) {
    std::string problem;
    ASSERT_TRUE(ReadScan(kGood, problem)) << problem;
    struct Case {
        const char *part, *instead, *problem;
    };
    for (const Case& one : {
             Case{"vndiscover-scan", "scan", "line 1: not a scan"},
             {"\"version\":1", "\"version\":2", "line 1: version 2 of the format, but only 1 can"},
             {"\"version\":1,", "", "line 1: \"version\" is missing"},
             {"\"snmpv1\"", "\"snmpv2\"", "line 3: \"kind\" is unknown"},
             {"\"splits\":[[0,1]]", "\"splits\":7", "line 7: \"splits\" is not an array"},
             {"[0,1]", "[0,2]", "line 7: a split is not a valid number"},
             {"[0,1]", "[0]", "line 7: a split does not have two answers"},
             {"\"A0\"", "\"A\"", "line 6: \"hex\" is not hexadecimal"},
             {"\"a\"", "7", "line 5: \"text\" is not a string"},
             {"fe80::1", "beef.de", "line 6: \"address\" is not numeric"},
             {"04:32:24Z", "04:32", "line 6: \"time\" is not a time"},
             {"{\"sweep\":0", "{\"sweep\":1", "line 5: \"sweep\" is not a valid number"},
             {"{\"sweep\":0", "{\"sweep\":0.5", "line 5: \"sweep\" is not a valid number"},
             {"{\"sweep\":0", "{\"sweep\":1e999", "line 5: \"sweep\" is not a valid number"},
             {"\".1.3\"", "\"x\"", "line 5: \"oid\" is not an OID"},
             {"\"type\":4", "\"type\":256", "line 5: \"type\" is not a valid number"},
             {"\"a\"", "\"a\\u0000\"", "line 5: a zero byte"},
             {"\"a\"", "[[[[[[[[[[0]]]]]]]]]]", "line 5: nested too deeply"},
             {"\"hex\"", "hex", "line 6: not JSON"},
             {"]]\n}", "]]\n} 5", "line 8: not JSON"},
         }) {
        std::string text = kGood;
        const size_t at = text.find(one.part);
        ASSERT_NE(std::string::npos, at) << one.part;
        text.replace(at, std::string(one.part).size(), one.instead);
        EXPECT_FALSE(ReadScan(text, problem)) << one.instead;
        EXPECT_THAT(problem, testing::StartsWith(one.problem));
    }
    std::string text = kGood;
    text.replace(text.find("\"a\""), 3, "\"" + std::string(kValueSize + 1, 'a') + "\"");
    EXPECT_FALSE(ReadScan(text, problem));
    EXPECT_EQ("line 5: the answer is too long", problem);
}

TEST(ScanFile, EveryPrefixIsRefused) {
    const std::string good = kGood;
    std::string problem;
    for (size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(ReadScan(good.substr(0, size), problem)) << size;
    EXPECT_FALSE(ReadScan("[" + std::string(8100000, ',').replace(0, 1, "0"), problem));
    std::string many = "[";
    for (int i = 0; i < 4000001; ++i) many += "0,";
    EXPECT_FALSE(ReadScan(many, problem));
    EXPECT_EQ("line 1: more values than a scan may have", problem);
}

// The largest sweep loses the latest answers of the address that sent most.
TEST(ScanFile, TooLargeScansLoseWhatFloodsThem) {
    ScanOf one;
    one.Begin(SweepKind::kWsd, AnswerForm::kReply);
    for (int i = 0; i < 9; ++i) one.Add("10.0.0.1", std::string(1000, 'a'));
    one.Add("10.0.0.2", "b");
    one.Begin(SweepKind::kSnmpV1, AnswerForm::kVariable);
    one.AddPrinter("10.0.0.3", "S1", kMac);
    const auto kept = [&](size_t maxSize) {
        std::string problem;
        size_t leftOut = 0;
        const auto scan = ReadScan(*WriteFittingScan(one.scan, maxSize, leftOut, problem), problem);
        EXPECT_EQ(13u, scan->answers.size() + leftOut);
        return *scan;
    };
    EXPECT_EQ(13u, kept(20000).answers.size());
    const Scan half = kept(8000);
    EXPECT_EQ(8u, half.answers.size());
    EXPECT_EQ("b", half.answers[4].answer.bytes);
    std::string problem;
    size_t leftOut = 0;
    EXPECT_TRUE(WriteFittingScan(one.scan, 300, leftOut, problem));
    EXPECT_EQ(13u, leftOut);
    EXPECT_FALSE(WriteFittingScan(one.scan, 100, leftOut, problem));
}

std::string FieldsOf(const DeviceChange& change) {
    std::string text;
    for (const FieldChange& field : change.fields)
        text += field.field + ": " + field.before + " -> " + field.after + "; ";
    return text;
}

TEST(ScanComparison, FindsWhatIsNewGoneAndChanged) {
    ScanOf before = Variables(), after = Variables();
    before.AddPrinter("10.0.0.1", "S1", kMac, "hall");
    before.Add("10.0.0.1", "VN 410, firmware 1.2", "sysDescr.0");
    before.Add("10.0.0.1", "\x05", "prtMarkerLifeCount.5.1", kCounter32);
    before.AddPrinter("10.0.0.2", "S2", "", "attic");
    before.AddPrinter("10.0.0.3", "", kOtherMac, "cellar");
    after.AddPrinter("10.0.0.2", "S4", "", "attic");  // another device at this address
    after.AddPrinter("10.0.0.3", "", kOtherMac);      // the name was not asked for
    after.AddPrinter("10.0.0.9", "S1", kMac, "lobby");
    after.Add("10.0.0.9", "VN 410, firmware 1.3", "sysDescr.0");
    after.Add("10.0.0.9", "\x09", "prtMarkerLifeCount.5.1", kCounter32);
    const Comparison found = CompareDevices(MakeDevices(before.scan), MakeDevices(after.scan));
    EXPECT_THAT(found.added, ElementsAre(0));
    EXPECT_THAT(found.gone, ElementsAre(1));
    EXPECT_EQ(1u, found.same);
    ASSERT_EQ(1u, found.changed.size());
    EXPECT_EQ(MergeKey::kSerial, found.changed[0].key);
    EXPECT_EQ(
        "address: 10.0.0.1 -> 10.0.0.9; name: hall -> lobby; firmware: VN 410, firmware 1.2 -> "
        "VN 410, firmware 1.3; page count: 5 -> 9; ",
        FieldsOf(found.changed[0]));
    // Of which both programs show all.
    const std::string text = ReportText(ReportOf(found), {SIZE_MAX});
    for (const ChangeRow& row : ChangesOf(found)) {
        for (const std::string& cell : {row.device, row.what, row.before, row.after})
            EXPECT_THAT(text, HasSubstr(cell));
    }
    EXPECT_TRUE(CompareDevices(MakeDevices(after.scan), MakeDevices(after.scan), true).IsEqual());
}

// What a printer says of itself, before and after.
enum class Extent { kWhole, kCut, kList };  // of the reading; cut: before the alerts
Comparison OfPrinter(const char* errors, const char* black, const char* count, const char* alert,
                     Extent extent = Extent::kWhole, bool countsPages = false) {
    const auto scan = [](const std::string& bits, const char* level, const char* pages,
                         const char* text, Extent one) {
        ScanOf scan = Variables();
        scan.Add("10.0.0.8", bits, "hrPrinterDetectedErrorState.5");
        scan.Add("10.0.0.8", pages, "prtMarkerLifeCount.5.1", kCounter32);
        if (*text) scan.Add("10.0.0.8", text, "prtAlertDescription.5.1");
        scan.AddSupply("1", level, true);
        scan.AddSupply("2", "\x1E", false);
        if (one != Extent::kList) scan.Add("10.0.0.8", "\x09", "sysUpTime.0", kTimeTicks);
        if (one != Extent::kCut) scan.Add("10.0.0.8", "\x06", "ifType.1", kInteger);
        return MakeDevices(scan.scan);
    };
    return CompareDevices(scan({"\0", 1}, "\x1E", "\x05", "", Extent::kWhole),
                          scan(errors, black, count, alert, extent), countsPages);
}

TEST(ScanComparison, CountsStateSuppliesAndAlerts) {
    const Comparison found = OfPrinter("\x04", "\x1D", "\x09", "jam");
    EXPECT_EQ(
        "errors: none -> jammed; alerts: none -> jam; Black: 30 % (30 of 100) -> 29 % (29 of 100); "
        "page count: 5 -> 9; ",
        FieldsOf(found.changed.at(0)));
    EXPECT_FALSE(found.IsEqual());
}

// 5 and 0 of 1000 are both 0 %.
TEST(ScanComparison, ASupplyThatHasBecomeEmptyCounts) {
    const auto scan = [](const char* level) {
        ScanOf scan = Variables();
        scan.AddSupply("1", "", false);
        scan.Add("10.0.0.8", "\x03\xE8", "prtMarkerSuppliesMaxCapacity.5.1", kInteger);
        scan.Add("10.0.0.8", std::string(1, *level), "prtMarkerSuppliesLevel.5.1", kInteger);
        return MakeDevices(scan.scan);
    };
    EXPECT_FALSE(CompareDevices(scan("\5"), scan("")).IsEqual());
    EXPECT_TRUE(CompareDevices(scan("\5"), scan("\6")).IsEqual());
}

TEST(ScanComparison, WhatWasNotReadIsNoChange) {
    for (const Extent extent : {Extent::kCut, Extent::kList})
        EXPECT_TRUE(OfPrinter("", "\x1E", "\x05", "jam", extent).IsEqual());
    // Of two supplies with one name, the level of the first, and the maximum of the second.
    ScanOf before = Variables(), after = Variables();
    before.AddSupply("1", "\7", true);
    before.AddSupply("2", "\x9", true);
    after.AddSupply("1", "", false);
    after.AddSupply("2", "\x9", false);
    EXPECT_TRUE(CompareDevices(MakeDevices(before.scan), MakeDevices(after.scan)).IsEqual());
    ScanOf found;
    found.Begin(SweepKind::kSnmpV1, AnswerForm::kValue);
    found.Add("10.0.0.8", "x");
    EXPECT_THAT(CountsOf(CompareDevices(MakeDevices(before.scan), MakeDevices(found.scan))),
                testing::EndsWith("1 equal; equal without a reading: 1"));
}

TEST(ScanComparison, CountsPagesOnlyIfAsked) {
    for (const bool areCounted : {false, true}) {
        const Comparison printed = OfPrinter("", "\x1E", "\x09", "", Extent::kWhole, areCounted);
        EXPECT_EQ(areCounted, !printed.IsEqual());
        EXPECT_THAT(CountsOf(printed), testing::EndsWith(areCounted ? " 1 changed, 0 equal"
                                                                    : " 0 changed, 1 equal, of "
                                                                      "which 1 have printed"));
        EXPECT_EQ(areCounted ? "changed" : "printed", ReportOf(printed).at(0).rows.at(1).label);
        EXPECT_THAT(ComparisonJson(printed),
                    HasSubstr(areCounted ? "\"printed\":[],\"asBefore\":0"
                                         : "\"changed\":[],\"printed\":[{\"addresses\":"));
    }
}

TEST(AnswerLines, ShowEachFormAndNoMarksThatChangeTheText) {
    ScanOf one;
    one.Begin(SweepKind::kSnmpV1, AnswerForm::kValue, ".1.3.6.1.2.1.1.5.0");
    one.Add("10.77.1.1", "\xC8" + std::string(128, 'a'));  // 200 bytes, as the module delivers
    one.Add("10.77.1.2", "");
    one.Begin(SweepKind::kSnmpV3, AnswerForm::kVariable);
    one.Add("10.77.1.1", "\x06", "ifType.1", kInteger);
    one.Add("10.77.1.1", "hall\xE2\x80\xAE", "sysName.0");
    one.scan.answers.back().answer.wholeSize = 300;
    one.Begin(SweepKind::kWsd, AnswerForm::kReply);
    one.Add("10.77.1.1", "<a>\r\n\x1B[2J</a>");
    one.Begin(SweepKind::kSnmpV3, AnswerForm::kDocument);
    one.Add("10.77.1.2", "{" + std::string(kValueSize - 2, ' '));
    const std::vector<AnswerLine> lines = AnswerLines(one.scan, {0, 1, 2, 3, 4, 5});
    ASSERT_EQ(6u, lines.size());
    EXPECT_EQ(kTime, lines[0].time);
    EXPECT_EQ("sysName.0", lines[0].object);
    EXPECT_EQ(std::string(128, 'a') + " [the first 128 of 200 bytes]", lines[0].value);
    EXPECT_EQ("(empty)", lines[1].value);
    EXPECT_EQ("ethernetCsmacd(6)", lines[2].value);
    EXPECT_EQ("68 61 6C 6C E2 80 AE [the first 7 of 300 bytes]", lines[3].value);
    EXPECT_EQ("<a> \xEF\xBF\xBD[2J</a>", lines[4].value);
    EXPECT_EQ("reply", lines[4].object);
    EXPECT_THAT(lines[5].value, testing::EndsWith(" [the first 4095 bytes]"));
    // Of one device only.
    EXPECT_EQ(SweepKind::kWsd, AnswerLines(one.scan, {4}).at(0).kind);
}

}  // namespace
}  // namespace vndiscover::host
