// A call of the module as a C++ or C# program, or as a vndiscover command, that repeats it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace vndiscover::host {

struct CallArgument {
    std::string name;   // as in the export's declaration, and "oid" even if it is in a JSON request
    std::string value;  // UTF-8; for a secret, the environment variable that holds it
    bool isSecret = false;
};

struct Call {
    std::string name;                     // of the export
    std::vector<CallArgument> arguments;  // omitted ones are null, 0 or a buffer for the result
    std::string time;                     // of its start, as "2026-11-25T04:32:23Z"
    std::string result;                   // what it returned, or the answer
    std::optional<size_t> answers;        // of a sweep
    unsigned milliseconds = 0;
    unsigned walk = 0;  // the number of the walk that it is a part of; 0: none
    size_t more = 0;    // calls of the same walk that came directly after it
};

enum class CallLanguage { kCpp, kCSharp, kCommand };

// Empty for an unknown export, a missing command, or one that the shell would misread.
std::string CallText(const Call& call, CallLanguage language);

// One line: DiscoverDevicesByOID(timeout 5000, oid ".1.3").
std::string CallLine(const Call& call);

// The exports' parameters, as declared in the public header.
struct ExportShape {
    const char* name;
    const char* parameters;
    const char* result = "int32_t";
};
extern const ExportShape kCallShapes[9];

}  // namespace vndiscover::host
