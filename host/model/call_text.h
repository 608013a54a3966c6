// A call of the module as a person would repeat it: as a C++ program, as a C# program, and as a
// vndiscover command. Each is whole, and gives the same answers.
#ifndef VNDISCOVER_HOST_MODEL_CALL_TEXT_H
#define VNDISCOVER_HOST_MODEL_CALL_TEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vndiscover::host {

struct CallArgument {
    std::string name;   // as in the export's declaration; "oid" also where it is in a JSON request
    std::string value;  // UTF-8; of a secret, the environment variable that holds it
    bool isSecret = false;
};

struct Call {
    std::string name;                     // of the export
    std::vector<CallArgument> arguments;  // those left out are null, 0 or a place for the result
    std::string time;                     // of its start, as "2026-11-25T04:32:23Z"
    std::string result;                   // what it returned, or the answer
    std::optional<size_t> answers;        // of a sweep
    unsigned milliseconds = 0;
};

enum class CallLanguage { kCpp, kCSharp, kCommand };

// Without an end of line at its end. Empty: an unknown export; a command that does not exist or
// that the shell would read as another one.
std::string CallText(const Call& call, CallLanguage language);

// One line: DiscoverDevicesByOID(timeout 5000, oid ".1.3").
std::string CallLine(const Call& call);

// What the exports take, as the public header declares it.
struct ExportShape {
    const char* name;
    const char* parameters;
};
extern const ExportShape kCallShapes[];
extern const size_t kCallShapeCount;

}  // namespace vndiscover::host

#endif  // VNDISCOVER_HOST_MODEL_CALL_TEXT_H
