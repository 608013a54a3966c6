#include "interface/delivery/result_sink.h"

#include <cstdio>
#include <cwchar>
#include <string>

#include "support/debug_log.h"

namespace vndiscover {

void ResultSink::OpenFile(const wchar_t* path) {
    if (!path || !*path) return;
    // A truncated path would empty another file. "t": text mode whatever the runtime's default is.
    resultFile.Reset(wcsnlen(path, kPathSize) < kPathSize ? _wfopen(path, L"wt") : nullptr);
}

void ResultSink::SendResult(const char* address, const char* value) {
    if (hWnd) {
        SendMessageA(hWnd, uMsg, reinterpret_cast<WPARAM>(address),
                     reinterpret_cast<LPARAM>(value));
    }
    if (!resultFile || !address || !*address || !value) return;
    // Of any length: in JSON mode the value is a whole document. Kept: quotes are not escaped.
    const std::string line = std::string("\"") + address + "\",\"" + value + "\"\n";
    DebugLogA("m_fp = [%s]\n", line.c_str());
    std::fputs(line.c_str(), resultFile.Get());
}

}  // namespace vndiscover
