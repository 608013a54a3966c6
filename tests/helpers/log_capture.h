// Collects the lines that the code under test logs while the object exists.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "support/debug_log.h"
#ifdef _WIN32
#include "support/win.h"
#endif

namespace vndiscover {

// Lines have no time stamp, but their line end; characters other than ASCII in wide lines become
// '?'. On Windows this collects debugger output of every module of the process whose debug switch
// is on. One object, and one thread that logs, at a time.
class LogCapture {
  public:
    LogCapture() { self_ = this; }
    ~LogCapture() { self_ = nullptr; }
    static LogCapture* Current() { return self_; }

    const std::vector<std::string>& Lines() const { return lines_; }
    std::string Text() const {
        std::string text;
        for (const std::string& line : lines_) text += line;
        return text;
    }
    bool Has(const std::string& line) const {
        return std::find(lines_.begin(), lines_.end(), line) != lines_.end();
    }
    void Clear() { lines_.clear(); }
    void Add(const std::string& line) { lines_.push_back(line); }

  private:
    static inline LogCapture* self_ = nullptr;
    std::vector<std::string> lines_;

#ifdef _WIN32
    template <class Char>
    static std::string AsciiOf(ULONG_PTR address) {
        std::string text;
        for (auto c = reinterpret_cast<const Char*>(address); *c; ++c) {
            text += sizeof(Char) == 1 || *c < 0x80 ? static_cast<char>(*c) : '?';
        }
        return text;
    }
    // Lines for the debugger are first raised as an exception, whose parameters are length and
    // text.
    static LONG CALLBACK OnException(EXCEPTION_POINTERS* pointers) {
        constexpr DWORD kPrintNarrow = 0x40010006, kPrintWide = 0x4001000A;
        constexpr size_t kStampChars = sizeof "MM/DD/YYYY hh:mm:ss:mmm " - 1;
        const EXCEPTION_RECORD& raised = *pointers->ExceptionRecord;
        const bool wide = raised.ExceptionCode == kPrintWide;
        if ((!wide && raised.ExceptionCode != kPrintNarrow) || !self_) {
            return EXCEPTION_CONTINUE_SEARCH;
        }
        const ULONG_PTR text = raised.ExceptionInformation[1];
        const std::string line = wide ? AsciiOf<wchar_t>(text) : AsciiOf<char>(text);
        self_->Add(line.size() >= kStampChars ? line.substr(kStampChars) : line);
        return EXCEPTION_CONTINUE_EXECUTION;
    }
    struct Registration {
        ~Registration() { RemoveVectoredExceptionHandler(handler); }
        void* handler = AddVectoredExceptionHandler(1, OnException);
    } registration_;
#endif
};

// Also turns on the debug switch of code that is linked into the test.
class UnitLog : public LogCapture {
  public:
    UnitLog() { g_debugSwitches.debug = 1; }
    ~UnitLog() { g_debugSwitches.debug = 0; }
};

}  // namespace vndiscover
