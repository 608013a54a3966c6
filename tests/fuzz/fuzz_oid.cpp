// OID text and its tokenizer on any text.
#include <cstdlib>
#include <string>

#include "snmp/codec/oid_text.h"
#include "snmp/codec/text_tokenizer.h"
#include "snmp/codec/var_bind.h"

using namespace vndiscover;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto pieces = SplitText(text.c_str(), ".,");
    if (pieces.size() > kMaxPieces) std::abort();
    for (const std::string& piece : pieces) {
        if (piece.size() > kMaxPieceChars) std::abort();
    }
    OidValue oid;
    const int32_t length = ParseOidText(oid, text.c_str());
    if (length < 0 || oid.length != (length <= kMaxOidContent ? length : 0)) std::abort();
    VarBindRecord binding;
    const bool fits = MakeVarBind(oid, ValueView{5, 0, nullptr}, binding) == 0;
    if (fits != (oid.length <= kMaxNameContent)) std::abort();
    return 0;
}
