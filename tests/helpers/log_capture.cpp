// For Windows; tests/native/ has another.
#ifdef _WIN32
#include "helpers/log_capture.h"

#include "support/win.h"

namespace vndiscover {
namespace {

constexpr DWORD kPrintNarrow = 0x40010006;
constexpr DWORD kPrintWide = 0x4001000A;
constexpr size_t kStampChars = sizeof "MM/DD/YYYY hh:mm:ss:mmm " - 1;

LogCapture* g_capture = nullptr;
void* g_registration = nullptr;

template <class Char>
std::string AsciiOf(ULONG_PTR address) {
    std::string text;
    for (auto c = reinterpret_cast<const Char*>(address); *c; ++c) {
        text += sizeof(Char) == 1 || *c < 0x80 ? static_cast<char>(*c) : '?';
    }
    return text;
}

// Lines for the debugger are first raised as an exception, whose parameters are length and text.
LONG CALLBACK OnException(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& raised = *pointers->ExceptionRecord;
    const bool wide = raised.ExceptionCode == kPrintWide;
    if ((!wide && raised.ExceptionCode != kPrintNarrow) || !g_capture) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    const ULONG_PTR text = raised.ExceptionInformation[1];
    const std::string line = wide ? AsciiOf<wchar_t>(text) : AsciiOf<char>(text);
    g_capture->Add(line.size() >= kStampChars ? line.substr(kStampChars) : line);
    return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

LogCapture::LogCapture() {
    g_capture = this;
    g_registration = AddVectoredExceptionHandler(1, OnException);
}

LogCapture::~LogCapture() {
    RemoveVectoredExceptionHandler(g_registration);
    g_capture = nullptr;
}

}  // namespace vndiscover
#endif
