// Saved scans: a file that can be read is written and read back unchanged, and each of its answers
// belongs to one device.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "model/scan/compare.h"
#include "model/scan/device_merge.h"
#include "model/scan/scan_file.h"

using namespace vndiscover::host;

namespace {

void Expect(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string problem;
    const auto scan = ReadScan(std::string(data, data + size), problem);
    Expect(scan.has_value() == problem.empty());
    if (!scan) return 0;
    const std::vector<FoundDevice> devices = MakeDevices(*scan);
    std::vector<bool> isSeen(scan->answers.size());
    for (const FoundDevice& device : devices) {
        for (const size_t answer : device.answers) {
            Expect(!isSeen.at(answer));
            isSeen[answer] = true;
        }
    }
    for (const bool isOne : isSeen) Expect(isOne);
    CompareDevices(devices, devices);
    const auto text = WriteScan(*scan, problem);
    const auto again = ReadScan(text.value(), problem);
    Expect(WriteScan(again.value(), problem) == text);
    return 0;
}
