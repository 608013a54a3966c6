#include "values/object_names.h"

#include <algorithm>
#include <unordered_map>

#include "values/ranges.h"
#include "values/text.h"
#include "values/value_text.h"

namespace vndiscover::host {
namespace {

constexpr char kMib2[] = ".1.3.6.1.2.1.";

constexpr char kCapacityUnits[] =
    "other(1) unknown(2) tenThousandthsOfInches(3) micrometers(4) sheets(8) feet(16) meters(17) "
    "items(18) percent(19)";
constexpr char kCoverStates[] =
    "other(1) unknown(2) coverOpen(3) coverClosed(4) interlockOpen(5) interlockClosed(6)";

constexpr char kInterfaceTypes[] =
    "other(1) ethernetCsmacd(6) iso88023Csmacd(7) iso88025TokenRing(9) fddi(15) ppp(23) "
    "softwareLoopback(24) slip(28) propVirtual(53) fastEther(62) ieee80211(71) "
    "gigabitEthernet(117) tunnel(131) l2vlan(135) ieee1394(144) usb(160) bridge(209)";
constexpr char kInterfaceStates[] =
    "up(1) down(2) testing(3) unknown(4) dormant(5) notPresent(6) lowerLayerDown(7)";

constexpr char kErrorStates[] =
    "lowPaper(0) noPaper(1) lowToner(2) noToner(3) doorOpen(4) jammed(5) offline(6) "
    "serviceRequested(7) inputTrayMissing(8) outputTrayMissing(9) markerSupplyMissing(10) "
    "outputNearFull(11) outputFull(12) inputTrayEmpty(13) overduePreventMaint(14)";

constexpr char kInputTypes[] =
    "other(1) unknown(2) sheetFeedAutoRemovableTray(3) sheetFeedAutoNonRemovableTray(4) "
    "sheetFeedManual(5) continuousRoll(6) continuousFanFold(7)";
constexpr char kMarkTechnologies[] =
    "other(1) unknown(2) electrophotographicLED(3) electrophotographicLaser(4) "
    "electrophotographicOther(5) impactMovingHeadDotMatrix9pin(6) "
    "impactMovingHeadDotMatrix24pin(7) impactMovingHeadDotMatrixOther(8) "
    "impactMovingHeadFullyFormed(9) impactBand(10) impactOther(11) inkjetAqueous(12) "
    "inkjetSolid(13) inkjetOther(14) pen(15) thermalTransfer(16) thermalSensitive(17) "
    "thermalDiffusion(18) thermalOther(19) electroerosion(20) electrostatic(21) "
    "photographicMicrofiche(22) photographicImagesetter(23) photographicOther(24) "
    "ionDeposition(25) eBeam(26) typesetter(27)";
constexpr char kCounterUnits[] =
    "other(1) unknown(2) tenThousandthsOfInches(3) micrometers(4) characters(5) lines(6) "
    "impressions(7) sheets(8) dotRow(9) hours(11) feet(16) meters(17)";
constexpr char kSupplyTypes[] =
    "other(1) unknown(2) toner(3) wasteToner(4) ink(5) inkCartridge(6) inkRibbon(7) wasteInk(8) "
    "opc(9) developer(10) fuserOil(11) solidWax(12) ribbonWax(13) wasteWax(14) fuser(15) "
    "coronaWire(16) fuserOilWick(17) cleanerUnit(18) fuserCleaningPad(19) transferUnit(20) "
    "tonerCartridge(21) fuserOiler(22) water(23) wasteWater(24) glueWaterAdditive(25) "
    "wastePaper(26) bindingSupply(27) bandingSupply(28) stitchingWire(29) shrinkWrap(30) "
    "paperWrap(31) staples(32) inserts(33) covers(34)";
constexpr char kSupplyUnits[] =
    "other(1) unknown(2) tenThousandthsOfInches(3) micrometers(4) impressions(7) sheets(8) "
    "hours(11) thousandthsOfOunces(12) tenthsOfGrams(13) hundrethsOfFluidOunces(14) "
    "tenthsOfMilliliters(15) feet(16) meters(17) items(18) percent(19)";

constexpr char kAlertGroups[] =
    "other(1) hostResourcesMIBStorageTable(3) hostResourcesMIBDeviceTable(4) generalPrinter(5) "
    "cover(6) localization(7) input(8) output(9) marker(10) markerSupplies(11) "
    "markerColorant(12) mediaPath(13) channel(14) interpreter(15) consoleDisplayBuffer(16) "
    "consoleLights(17) alert(18) finDevice(30) finSupply(31) finSupplyMediaInput(32) "
    "finAttribute(33)";
constexpr char kTrainingLevels[] =
    "other(1) unknown(2) untrained(3) trained(4) fieldService(5) management(6) "
    "noInterventionRequired(7)";
constexpr char kAlertCodes[] =
    "other(1) unknown(2) coverOpen(3) coverClosed(4) interlockOpen(5) interlockClosed(6) "
    "configurationChange(7) jam(8) subunitMissing(9) subunitLifeAlmostOver(10) "
    "subunitLifeOver(11) subunitAlmostEmpty(12) subunitEmpty(13) subunitAlmostFull(14) "
    "subunitFull(15) subunitNearLimit(16) subunitAtLimit(17) subunitOpened(18) "
    "subunitClosed(19) subunitTurnedOn(20) subunitTurnedOff(21) subunitOffline(22) "
    "subunitPowerSaver(23) subunitWarmingUp(24) subunitAdded(25) subunitRemoved(26) "
    "subunitResourceAdded(27) subunitResourceRemoved(28) subunitRecoverableFailure(29) "
    "subunitUnrecoverableFailure(30) subunitRecoverableStorageError(31) "
    "subunitUnrecoverableStorageError(32) subunitMotorFailure(33) subunitMemoryExhausted(34) "
    "subunitUnderTemperature(35) subunitOverTemperature(36) subunitTimingFailure(37) "
    "subunitThermistorFailure(38) doorOpen(501) doorClosed(502) powerUp(503) powerDown(504) "
    "printerNMSReset(505) printerManualReset(506) printerReadyToPrint(507) "
    "inputMediaTrayMissing(801) inputMediaSizeChange(802) inputMediaWeightChange(803) "
    "inputMediaTypeChange(804) inputMediaColorChange(805) inputMediaFormPartsChange(806) "
    "inputMediaSupplyLow(807) inputMediaSupplyEmpty(808) inputMediaChangeRequest(809) "
    "inputManualInputRequest(810) inputTrayPositionFailure(811) inputTrayElevationFailure(812) "
    "inputCannotFeedSizeSelected(813) outputMediaTrayMissing(901) "
    "outputMediaTrayAlmostFull(902) outputMediaTrayFull(903) outputMailboxSelectFailure(904) "
    "markerFuserUnderTemperature(1001) markerFuserOverTemperature(1002) "
    "markerFuserTimingFailure(1003) markerFuserThermistorFailure(1004) "
    "markerAdjustingPrintQuality(1005) markerTonerEmpty(1101) markerInkEmpty(1102) "
    "markerPrintRibbonEmpty(1103) markerTonerAlmostEmpty(1104) markerInkAlmostEmpty(1105) "
    "markerPrintRibbonAlmostEmpty(1106) markerWasteTonerReceptacleAlmostFull(1107) "
    "markerWasteInkReceptacleAlmostFull(1108) markerWasteTonerReceptacleFull(1109) "
    "markerWasteInkReceptacleFull(1110) markerOpcLifeAlmostOver(1111) markerOpcLifeOver(1112) "
    "markerDeveloperAlmostEmpty(1113) markerDeveloperEmpty(1114) "
    "markerTonerCartridgeMissing(1115) mediaPathMediaTrayMissing(1301) "
    "mediaPathMediaTrayAlmostFull(1302) mediaPathMediaTrayFull(1303) "
    "mediaPathCannotDuplexMediaSelected(1304) interpreterMemoryIncrease(1501) "
    "interpreterMemoryDecrease(1502) interpreterCartridgeAdded(1503) "
    "interpreterCartridgeDeleted(1504) interpreterResourceAdded(1505) "
    "interpreterResourceDeleted(1506) interpreterResourceUnavailable(1507) "
    "interpreterComplexPageEncountered(1509) alertRemovalOfBinaryChangeEntry(1801)";

struct ObjectName {
    const char* name;        // "hrPrinterStatus"
    const char* below;       // its OID below .1.3.6.1.2.1: "25.3.5.1.1"
    const char* words = "";  // of numbers, "idle(3) printing(4)", or of bits from the highest
    bool isBinary = false;   // see IsBinary
};

// In the order of their OIDs.
constexpr ObjectName kObjectNames[] = {
    {"sysDescr", "1.1"},
    {"sysObjectID", "1.2"},
    {"sysUpTime", "1.3"},
    {"sysContact", "1.4"},
    {"sysName", "1.5"},
    {"sysLocation", "1.6"},
    {"sysServices", "1.7"},
    {"ifNumber", "2.1"},
    {"ifIndex", "2.2.1.1"},
    {"ifDescr", "2.2.1.2"},
    {"ifType", "2.2.1.3", kInterfaceTypes},
    {"ifMtu", "2.2.1.4"},
    {"ifSpeed", "2.2.1.5"},
    {"ifPhysAddress", "2.2.1.6", "", true},
    {"ifAdminStatus", "2.2.1.7", "up(1) down(2) testing(3)"},
    {"ifOperStatus", "2.2.1.8", kInterfaceStates},
    {"ifLastChange", "2.2.1.9"},
    {"ifInOctets", "2.2.1.10"},
    {"ifOutOctets", "2.2.1.16"},
    {"atPhysAddress", "3.1.1.2", "", true},
    {"ipAdEntAddr", "4.20.1.1"},
    {"ipAdEntIfIndex", "4.20.1.2"},
    {"ipAdEntNetMask", "4.20.1.3"},
    {"ipNetToMediaPhysAddress", "4.22.1.2", "", true},
    {"hrSystemUptime", "25.1.1"},
    {"hrSystemDate", "25.1.2"},
    {"hrMemorySize", "25.2.2"},
    {"hrStorageDescr", "25.2.3.1.3"},
    {"hrStorageSize", "25.2.3.1.5"},
    {"hrStorageUsed", "25.2.3.1.6"},
    {"hrDeviceIndex", "25.3.2.1.1"},
    {"hrDeviceType", "25.3.2.1.2"},
    {"hrDeviceDescr", "25.3.2.1.3"},
    {"hrDeviceID", "25.3.2.1.4"},
    {"hrDeviceStatus", "25.3.2.1.5", "unknown(1) running(2) warning(3) testing(4) down(5)"},
    {"hrDeviceErrors", "25.3.2.1.6"},
    {"hrPrinterStatus", "25.3.5.1.1", "other(1) unknown(2) idle(3) printing(4) warmup(5)"},
    {"hrPrinterDetectedErrorState", "25.3.5.1.2", kErrorStates, true},
    {"ifName", "31.1.1.1.1"},
    {"prtGeneralConfigChanges", "43.5.1.1.1"},
    {"prtGeneralCurrentLocalization", "43.5.1.1.2"},
    {"prtGeneralReset", "43.5.1.1.3",
     "notResetting(3) powerCycleReset(4) resetToNVRAM(5) resetToFactoryDefaults(6)"},
    {"prtGeneralCurrentOperator", "43.5.1.1.4"},
    {"prtGeneralServicePerson", "43.5.1.1.5"},
    {"prtGeneralPrinterName", "43.5.1.1.16"},
    {"prtGeneralSerialNumber", "43.5.1.1.17"},
    {"prtAlertCriticalEvents", "43.5.1.1.18"},
    {"prtAlertAllEvents", "43.5.1.1.19"},
    {"prtCoverDescription", "43.6.1.1.2"},
    {"prtCoverStatus", "43.6.1.1.3", kCoverStates},
    {"prtLocalizationLanguage", "43.7.1.1.2"},
    {"prtLocalizationCountry", "43.7.1.1.3"},
    {"prtLocalizationCharacterSet", "43.7.1.1.4", "csASCII(3) csISOLatin1(4) csUTF8(106)"},
    {"prtInputType", "43.8.2.1.2", kInputTypes},
    {"prtInputCapacityUnit", "43.8.2.1.8", kCapacityUnits},
    {"prtInputMaxCapacity", "43.8.2.1.9"},
    {"prtInputCurrentLevel", "43.8.2.1.10"},
    {"prtInputStatus", "43.8.2.1.11"},
    {"prtInputMediaName", "43.8.2.1.12"},
    {"prtInputName", "43.8.2.1.13"},
    {"prtInputDescription", "43.8.2.1.18"},
    {"prtOutputMaxCapacity", "43.9.2.1.4"},
    {"prtOutputRemainingCapacity", "43.9.2.1.5"},
    {"prtOutputName", "43.9.2.1.7"},
    {"prtMarkerMarkTech", "43.10.2.1.2", kMarkTechnologies},
    {"prtMarkerCounterUnit", "43.10.2.1.3", kCounterUnits},
    {"prtMarkerLifeCount", "43.10.2.1.4"},
    {"prtMarkerPowerOnCount", "43.10.2.1.5"},
    {"prtMarkerStatus", "43.10.2.1.15"},
    {"prtMarkerSuppliesColorantIndex", "43.11.1.1.3"},
    {"prtMarkerSuppliesClass", "43.11.1.1.4",
     "other(1) supplyThatIsConsumed(3) receptacleThatIsFilled(4)"},
    {"prtMarkerSuppliesType", "43.11.1.1.5", kSupplyTypes},
    {"prtMarkerSuppliesDescription", "43.11.1.1.6"},
    {"prtMarkerSuppliesSupplyUnit", "43.11.1.1.7", kSupplyUnits},
    {"prtMarkerSuppliesMaxCapacity", "43.11.1.1.8"},
    {"prtMarkerSuppliesLevel", "43.11.1.1.9"},
    {"prtMarkerColorantRole", "43.12.1.1.3", "other(1) process(3) spot(4)"},
    {"prtMarkerColorantValue", "43.12.1.1.4"},
    {"prtInterpreterDescription", "43.15.1.1.5"},
    {"prtInterpreterVersion", "43.15.1.1.6"},
    {"prtConsoleDisplayBufferText", "43.16.5.1.2"},
    {"prtConsoleDescription", "43.17.6.1.5"},
    {"prtAlertSeverityLevel", "43.18.1.1.2",
     "other(1) critical(3) warning(4) warningBinaryChangeEvent(5)"},
    {"prtAlertTrainingLevel", "43.18.1.1.3", kTrainingLevels},
    {"prtAlertGroup", "43.18.1.1.4", kAlertGroups},
    {"prtAlertGroupIndex", "43.18.1.1.5"},
    {"prtAlertLocation", "43.18.1.1.6"},
    {"prtAlertCode", "43.18.1.1.7", kAlertCodes},
    {"prtAlertDescription", "43.18.1.1.8"},
    {"prtAlertTime", "43.18.1.1.9"},
    {"entPhysicalDescr", "47.1.1.1.1.2"},
    {"entPhysicalName", "47.1.1.1.1.7"},
    {"entPhysicalFirmwareRev", "47.1.1.1.1.9"},
    {"entPhysicalSoftwareRev", "47.1.1.1.1.10"},
    {"entPhysicalSerialNum", "47.1.1.1.1.11"},
    {"entPhysicalMfgName", "47.1.1.1.1.12"},
    {"entPhysicalModelName", "47.1.1.1.1.13"},
};

// Null if it is not in the table.
const ObjectName* FindName(std::string_view name) {
    const std::string lower = Lower(name);
    return FindIf(kObjectNames,
                  [&](const ObjectName& known) { return Lower(known.name) == lower; });
}

const ObjectName* FindObject(const Oid& oid) {
    const Oid* const object = StandardObjectOf(oid);
    return object ? &kObjectNames[object - StandardObjects().data()] : nullptr;
}

std::string Word(std::string_view words, int64_t number) {
    const size_t end = words.find("(" + std::to_string(number) + ")");
    if (end == std::string_view::npos) return "";
    const size_t space = words.rfind(' ', end);
    const size_t start = space == std::string_view::npos ? 0 : space + 1;
    return std::string(words.substr(start, end - start));
}

}  // namespace

const std::vector<Oid>& StandardObjects() {
    static const auto all = [] {
        std::vector<Oid> oids;
        for (const ObjectName& object : kObjectNames)
            oids.push_back(ParseOid(kMib2 + std::string(object.below)).value_or(Oid()));
        return oids;
    }();
    return all;
}

const Oid* StandardObjectOf(const Oid& oid) {
    const std::vector<Oid>& all = StandardObjects();
    // The last one that is not greater: an object's instances come between it and the next object.
    const auto after = std::upper_bound(all.begin(), all.end(), oid);
    return after == all.begin() || !IsWithin(oid, *(after - 1)) ? nullptr : &*(after - 1);
}

const Oid& OidOf(std::string_view name) {
    // Called dozens of times for each of thousands of devices.
    static const auto known = [] {
        std::unordered_map<std::string_view, const Oid*> oids;
        const Oid* oid = StandardObjects().data();
        for (const ObjectName& object : kObjectNames) oids[object.name] = oid++;
        return oids;
    }();
    return *known.at(name);
}

std::optional<Oid> ParseOidOrName(std::string_view text) {
    if (auto oid = ParseOid(text)) return oid;
    const size_t dot = std::min(text.find('.'), text.size());
    const ObjectName* const object = FindName(text.substr(0, dot));
    if (!object) return std::nullopt;
    const Oid& oid = OidOf(object->name);
    return dot == text.size() ? oid : ParseOid(OidToText(oid) + std::string(text.substr(dot)));
}

std::string NotAnOid(std::string_view text) {
    return "'" + std::string(text) +
           "' is neither a numeric OID such as .1.3.6.1.2.1.1.1.0 nor a known name such as "
           "sysDescr.0";
}

std::string NameText(const Oid& oid) {
    const ObjectName* const object = FindObject(oid);
    if (!object) return OidToText(oid);
    return object->name + OidToText(Tail(oid, OidOf(object->name).size()));
}

bool IsBinary(const Oid& oid) {
    const ObjectName* const object = FindObject(oid);
    return object && object->isBinary;
}

std::string WordOf(std::string_view name, int64_t number) {
    // Not by FindName, which ignores the case of all names: a list asks for thousands of words.
    return Word(FindObject(OidOf(name))->words, number);
}

std::vector<std::string> WordsOf(std::string_view name, std::string_view bits) {
    // A device may send thousands of bits; no object of the table has more words than this.
    constexpr size_t kMaxBits = 64;
    std::vector<std::string> words;
    for (size_t bit = 0; bit < std::min(bits.size() * 8, kMaxBits); ++bit) {
        if ((static_cast<uint8_t>(bits[bit / 8]) & 0x80 >> bit % 8) == 0) continue;
        const std::string word = WordOf(name, static_cast<int64_t>(bit));
        words.push_back(word.empty() ? "bit " + std::to_string(bit) : word);
    }
    return words;
}

std::string FormatNamedValue(const Oid& oid, uint32_t type, std::string_view bytes) {
    const ObjectName* const object = FindObject(oid);
    std::string plain = FormatValue(type, bytes);
    if (!object) return plain;
    if (type == kInteger && !object->isBinary) {
        const auto number = SignedNumber(bytes);
        const std::string word = number ? Word(object->words, *number) : "";
        return word.empty() ? plain : word + "(" + plain + ")";
    }
    if (type != kOctetString || bytes.empty() || !object->isBinary) return plain;
    if (*object->words == '\0') return HexText(bytes, ":");
    const std::vector<std::string> words = WordsOf(object->name, bytes);
    return words.empty() ? "none" : Joined(words);
}

}  // namespace vndiscover::host
