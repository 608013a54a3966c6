// Whole reports on recorded agents: what printers of several makers do that the standards do not
// expect.
#include <gtest/gtest.h>

#include "host/model/scripted_device.h"
#include "model/printer/report.h"

namespace vndiscover::host {
namespace {

std::string Report(const Asker& asker) {
    return "\n" + ReportText(ReportOf(FactsOf(ReadPrinter(asker)), {"10.77.1.20", "SNMPv1"}));
}

// The printer is neither the first device nor the only printer, its words are Latin-1 or cut within
// a character, numbers have unusual types, one maximum is no percentage, and the tables have gaps.
// The interface that has its address is neither the loopback, down, nor without an address.
constexpr char kOffice[] = R"(sysDescr.0 x 4F 73 74 72 61 76 61 0D 0A 4D 46 50 20 32 2E 31 00;
sysUpTime.0 t 8640100;
sysName.0 s copy-room;
sysLocation.0 x 20 42 C3 BC 72 6F 20 C3;
ifType.1 i 24; ifType.2 i 6; ifType.3 i 6; ifType.4 i 117;
ifPhysAddress.1 x 41 41 41 41 41 41; ifPhysAddress.2 x 02 00 5E 10 00 01;
ifPhysAddress.3 x 00 00 00 00 00 00; ifPhysAddress.4 x 02 00 5E 10 00 02;
ifOperStatus.1 i 1; ifOperStatus.2 i 2; ifOperStatus.3 i 1; ifOperStatus.4 i 1;
hrDeviceType.1 o .1.3.6.1.2.1.25.3.1.3; hrDeviceType.5 o .1.3.6.1.2.1.25.3.1.5;
hrDeviceType.9 o .1.3.6.1.2.1.25.3.1.5;
hrDeviceDescr.1 s a processor; hrDeviceDescr.5 s Ostrava C900;
hrDeviceStatus.1 i 2; hrDeviceStatus.5 i 3;
hrPrinterStatus.5 i 1;
hrPrinterDetectedErrorState.5 x 20 02;
prtGeneralCurrentLocalization.5 i 2;
prtGeneralSerialNumber.5 s OC900-77;
prtLocalizationCharacterSet.5.1 i 106; prtLocalizationCharacterSet.5.2 i 4;
prtInputCapacityUnit.5.1 i 8;
prtInputMaxCapacity.5.1 i 500; prtInputMaxCapacity.5.4 i -2;
prtInputCurrentLevel.5.1 i 0; prtInputCurrentLevel.5.4 i -3;
prtInputMediaName.5.1 s iso-a4-white;
prtInputName.1.1 s of another; prtInputName.5.1 x 00 00;
prtInputDescription.5.1 x 46 61 63 68 20 FC 31;
prtMarkerCounterUnit.5.1 i 7; prtMarkerCounterUnit.5.2 i 8;
prtMarkerLifeCount.5.1 c 4000000000; prtMarkerLifeCount.5.2 u 17; prtMarkerLifeCount.5.3 i -2;
prtMarkerSuppliesColorantIndex.5.1 i 3; prtMarkerSuppliesColorantIndex.5.9 i 0;
prtMarkerSuppliesClass.5.1 i 3; prtMarkerSuppliesClass.5.9 i 3;
prtMarkerSuppliesType.5.1 i 21; prtMarkerSuppliesType.5.9 i 4;
prtMarkerSuppliesDescription.5.1 s Toner C9;
prtMarkerSuppliesSupplyUnit.5.1 i 19; prtMarkerSuppliesSupplyUnit.5.9 i 13;
prtMarkerSuppliesMaxCapacity.5.1 i 10000; prtMarkerSuppliesMaxCapacity.5.9 i -2;
prtMarkerSuppliesLevel.5.1 c 700; prtMarkerSuppliesLevel.5.9 i 30;
prtMarkerColorantValue.5.1.3 s of another table; prtMarkerColorantValue.5.3 s cyan;
prtConsoleDisplayBufferText.5.1 s Toner low; prtConsoleDisplayBufferText.5.2 s;
prtAlertSeverityLevel.5.12 i 4; prtAlertSeverityLevel.5.40 i 3;
prtAlertGroup.5.12 i 11; prtAlertGroup.5.40 i 9999;
prtAlertCode.5.12 i 1104; prtAlertCode.5.40 i 40001;
prtAlertDescription.5.12 s Toner low {32001};
prtAlertTime.5.12 t 8640000;)";

// A label printer without a list of devices, supplies or trays, of which no interface is up.
constexpr char kLabels[] = R"(sysDescr.0 s Kestrel K4 4.11;
sysUpTime.0 t 99;
ifType.1 i 71;
ifPhysAddress.1 x 02 00; ifPhysAddress.2 x 02 00 5E 10 00 03; ifPhysAddress.3 x 02 00 5E 10 00 04;
hrPrinterStatus.1 i 3;
hrPrinterDetectedErrorState.1 s;
entPhysicalSerialNum.1 s; entPhysicalSerialNum.3 s K4-0001;
.1.3.6.1.4.1.9999.1.0 s of its maker;)";

// Names and a serial number without letters, levels that are no percentages, and a description that
// says more than the model.
constexpr char kInk[] = R"(sysDescr.0 s Norrland InkStation 70 7.2;
sysName.0 s ink;
hrDeviceType.1 o .1.3.6.1.2.1.25.3.1.5;
hrDeviceDescr.1 s Norrland InkStation 70;
hrDeviceStatus.1 i 5;
hrPrinterStatus.1 i 2;
hrPrinterDetectedErrorState.1 x 01;
prtGeneralPrinterName.1 x 20;
prtGeneralSerialNumber.1 x 00 20;
prtMarkerSuppliesClass.1.1 i 3; prtMarkerSuppliesClass.1.2 i 4;
prtMarkerSuppliesType.1.1 i 5; prtMarkerSuppliesType.1.2 i 8; prtMarkerSuppliesType.1.3 i 99;
prtMarkerSuppliesType.1.4 i 9; prtMarkerSuppliesType.1.6 i 99;
prtMarkerSuppliesSupplyUnit.1.1 i 15; prtMarkerSuppliesSupplyUnit.1.2 i 19;
prtMarkerSuppliesSupplyUnit.1.4 i 7; prtMarkerSuppliesSupplyUnit.1.5 i 2;
prtMarkerSuppliesMaxCapacity.1.1 i -2; prtMarkerSuppliesMaxCapacity.1.2 i 100;
prtMarkerSuppliesMaxCapacity.1.3 i 0; prtMarkerSuppliesMaxCapacity.1.4 i -1;
prtMarkerSuppliesLevel.1.1 x FF FF FF FD; prtMarkerSuppliesLevel.1.2 i 80;
prtMarkerSuppliesLevel.1.3 i -300; prtMarkerSuppliesLevel.1.4 i 70000;
prtMarkerSuppliesLevel.1.5 i 5; prtMarkerSuppliesLevel.1.6 s x;
entPhysicalSerialNum.1 s; entPhysicalSerialNum.2 x 20 56 4E 37 30 20;)";

TEST(Recordings, OfAnOfficePrinter) {
    EXPECT_EQ(R"(
Model          Ostrava C900
Serial number  OC900-77
Name           copy-room
Location       Büro Ã
Address        10.77.1.20
MAC address    02:00:5E:10:00:02
Protocols      SNMPv1
Description    Ostrava MFP 2.1
Up since       (1 day, 0:00:01)
Device         ! warning
Printer        another state
Errors         ! low toner, maintenance overdue
Alerts         !! critical: 9999, 40001
               ! warning: Toner low {32001} (marker supplies, marker toner
                 almost empty), for 0:00:01
Panel          Toner low
Printed        4000000000 impressions
               17 sheets
Supplies       Toner C9     [#.........]  ! 7 % (700 of 10000),
                 cyan toner cartridge
               waste toner                room left: 30 tenths of grams,
                 maximum unknown
Trays          Fach ü1  [..........]  ! 0 % (0 of 500 sheets), iso-a4-white
               Tray 2                 some left
Also there     another printer, device index 9
)",
              Report(ScriptedDevice(kOffice).MakeAsker()));
}

TEST(Recordings, OfALabelPrinter) {
    EXPECT_EQ(R"(
Model          Kestrel K4 4.11
Serial number  K4-0001
Name           (not given)
Location       (not given)
Address        10.77.1.20
MAC address    02:00:5E:10:00:03
Protocols      SNMPv1
Up since       (0:00:00)
Printer        idle
Errors         none
)",
              Report(ScriptedDevice(kLabels).MakeAsker()));
}

TEST(Recordings, OfAnAgentThatGoesBack) {
    ScriptedDevice device(kInk);
    device.variables[*ParseOidOrName("prtMarkerSuppliesLevel.1.1")].first = kGauge32;
    Asker asker = device.MakeAsker();
    asker.getNext = [&, ask = asker.getNext](const Oid& oid) {
        const bool isAlert = IsWithin(oid, OidOf("prtAlertCode"));
        return isAlert ? AnsweredWith({1, 3, 6, 1}, kInteger, "\1") : ask(oid);
    };
    EXPECT_EQ(R"(
Model          Norrland InkStation 70
Serial number  VN70
Name           ink
Location       (not given)
Address        10.77.1.20
MAC address    (not given)
Protocols      SNMPv1
Description    Norrland InkStation 70 7.2
Device         !! down
Printer        unknown
Errors         ! service requested
Supplies       ink                           some left
               waste ink       [########..]  room left: 80 %
               99                            unknown (-300)
               photoconductor                70000 impressions, no maximum
               supply                        5, maximum unknown
               99                            unreadable
Not read       alerts: OID not increasing
)",
              Report(asker));
}

}  // namespace
}  // namespace vndiscover::host
