#include "helpers/log_capture.h"

#ifdef _WIN32
#include "support/win.h"
#else
#include "native/debug_log_native.h"
#endif

namespace vndiscover {

#ifdef _WIN32
namespace {

constexpr DWORD kPrintNarrow = 0x40010006;
constexpr DWORD kPrintWide = 0x4001000A;
constexpr size_t kStampChars = sizeof "MM/DD/YYYY hh:mm:ss:mmm " - 1;

LogCapture* g_capture = nullptr;

std::string Utf8Of(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<size_t>(std::max(size, 1)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back();
    return utf8;
}

// What goes to the debugger is raised as an exception first: the length and the text are its
// parameters.
LONG CALLBACK OnException(EXCEPTION_POINTERS* pointers) {
    const EXCEPTION_RECORD& raised = *pointers->ExceptionRecord;
    const bool wide = raised.ExceptionCode == kPrintWide;
    if ((!wide && raised.ExceptionCode != kPrintNarrow) || raised.NumberParameters < 2 ||
        !g_capture) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    const void* text = reinterpret_cast<const void*>(raised.ExceptionInformation[1]);
    std::string line = wide ? Utf8Of(static_cast<const wchar_t*>(text))
                            : std::string(static_cast<const char*>(text));
    g_capture->Add(line.size() >= kStampChars ? line.substr(kStampChars) : std::move(line));
    return EXCEPTION_CONTINUE_EXECUTION;
}

}  // namespace

LogCapture::LogCapture() {
    g_capture = this;
    registration_ = AddVectoredExceptionHandler(1, OnException);
}

LogCapture::~LogCapture() {
    RemoveVectoredExceptionHandler(registration_);
    g_capture = nullptr;
}
#else
LogCapture::LogCapture() : registration_(this) {
    g_logSinkContext = registration_;
    g_logSink = [](const char* line, void* context) {
        static_cast<LogCapture*>(context)->Add(line);
    };
}

LogCapture::~LogCapture() { g_logSink = nullptr; }
#endif

void LogCapture::Add(std::string line) {
    std::lock_guard<std::mutex> lock(mutex_);
    lines_.push_back(std::move(line));
}

}  // namespace vndiscover
