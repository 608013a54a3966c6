// The JSON request and its filling in: the first byte chooses what devices answer, the rest is the
// request.
#include <cstdlib>
#include <string>

#include "interface/delivery/json_doc.h"
#include "interface/delivery/json_request.h"
#include "support/text_convert.h"

using namespace vndiscover;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::string request(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::string answer = request.substr(0, data[0]);
    ReadDiscoveryOid(request.c_str());
    std::string document;
    int asked = 0;
    const bool isJson = FillInDocument(
        request.c_str(),
        [&](const char* oid, std::string& value) {
            if (std::string(oid).size() >= kOidTextSize) std::abort();
            value = answer.c_str();
            return ++asked % 2 != 0;
        },
        document);
    if (!isJson && (asked != 0 || !document.empty())) std::abort();
    // What is delivered is JSON again, as long as it is delivered whole.
    if (!document.empty()) {
        JsonDoc again;
        again.Parse(Utf8ToWide(document.c_str()).c_str());
        if (!again.Root()) std::abort();
        if (Utf8PrefixLength(document, 4095) > 4095) std::abort();
    }
    return 0;
}
