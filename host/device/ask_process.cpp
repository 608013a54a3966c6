// The process first gets the logins: texts, each after its size in bytes, so that passwords leave
// no copies in buffers. Then a request is a line, "LOGIN OID ADDRESS", its answer another, "STATUS
// OID TYPE SIZE BYTES NOTE", of which BYTES are hexadecimal digits after a dot.
#include "device/ask_process.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstdlib>
#include <cwchar>
#include <mutex>
#include <stdexcept>
#include <string_view>

#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

bool Send(HANDLE pipe, std::wstring_view text) {
    const auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    DWORD sent = 0;
    return WriteFile(pipe, &size, sizeof size, &sent, nullptr) &&
           (size == 0 || WriteFile(pipe, text.data(), size, &sent, nullptr));
}

bool Send(HANDLE pipe, const Login& login) {
    static const Security none;
    const Security& user = login.security ? *login.security : none;
    const std::wstring community = ToWide(login.community);
    for (const wchar_t* text : {community.c_str(), login.security ? L"v3" : L"", user.user.c_str(),
                                user.authLabel.c_str(), user.privLabel.c_str(),
                                user.authPassword.Get(), user.privPassword.Get()}) {
        if (!Send(pipe, text)) return false;
    }
    return true;
}

void ReceiveBytes(HANDLE pipe, void* bytes, DWORD size) {
    DWORD read = 0;
    for (auto* at = static_cast<char*>(bytes); size > 0; at += read, size -= read) {
        if (!ReadFile(pipe, at, size, &read, nullptr) || read == 0)
            throw std::runtime_error("the logins are cut short");
    }
}

std::wstring ReceiveText(HANDLE pipe) {
    DWORD size = 0;
    ReceiveBytes(pipe, &size, sizeof size);
    constexpr DWORD kMaxSize = 1 << 16;
    if (size > kMaxSize || size % sizeof(wchar_t) != 0)
        throw std::runtime_error("no logins were sent");
    std::wstring text(size / sizeof(wchar_t), L'\0');
    ReceiveBytes(pipe, text.data(), size);
    return text;
}

Login ReceiveLogin(HANDLE pipe) {
    Login login;
    login.community = ToUtf8(ReceiveText(pipe));
    const bool isV3 = !ReceiveText(pipe).empty();
    auto user = std::make_shared<Security>();
    for (std::wstring* text : {&user->user, &user->authLabel, &user->privLabel})
        *text = ReceiveText(pipe);
    for (Secret* secret : {&user->authPassword, &user->privPassword})
        *secret = Secret(ReceiveText(pipe));
    user->useAuth = !user->authLabel.empty();
    user->usePriv = !user->privLabel.empty();
    if (isV3) login.security = std::move(user);
    return login;
}

std::string LineOf(const Answer& answer) {
    return std::to_string(static_cast<int>(answer.status)) + " " + OidToText(answer.oid) + " " +
           std::to_string(answer.type) + " " + std::to_string(answer.wholeSize) + " " + "." +
           HexText(answer.bytes, "") + " " + answer.note;
}

Answer AnswerOf(std::string_view line) {
    std::string fields[5];
    for (std::string& field : fields) {
        const size_t end = std::min(line.find(' '), line.size());
        field = line.substr(0, end);
        line.remove_prefix(std::min(end + 1, line.size()));
    }
    const auto& [status, oid, type, wholeSize, bytes] = fields;
    Answer answer;
    answer.status = static_cast<Status>(std::strtol(status.c_str(), nullptr, 10));
    answer.oid = ParseOid(oid).value_or(Oid());
    answer.type = static_cast<uint32_t>(std::strtoul(type.c_str(), nullptr, 10));
    answer.wholeSize = std::strtoul(wholeSize.c_str(), nullptr, 10);
    answer.bytes = ParseHex(bytes.substr(std::min<size_t>(1, bytes.size()))).value_or("");
    answer.note = line;
    return answer;
}

// One end is inherited: another child with the writing end would keep the reader waiting.
struct Pipe {
    OwnedHandle read, write;

    explicit Pipe(OwnedHandle Pipe::*ours) {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        // Logins must fit, even if the other process never reads them.
        constexpr DWORD kSize = 1 << 20;
        if (CreatePipe(read.Receive(), write.Receive(), &inherited, kSize))
            SetHandleInformation((this->*ours).Get(), HANDLE_FLAG_INHERIT, 0);
    }
};

OwnedStream StreamOf(OwnedHandle pipe, int flags, const char* mode) {
    const int number = _open_osfhandle(reinterpret_cast<intptr_t>(pipe.Get()), flags);
    if (number < 0) return OwnedStream();
    pipe.Release();  // the number owns it from now on, and then the stream
    OwnedStream stream(_fdopen(number, mode));
    if (!stream) _close(number);
    return stream;
}

// Without the line end. Returns false at the end of the file.
bool ReadLine(FILE* file, std::string& line) {
    line.clear();
    int letter = EOF;
    while ((letter = std::fgetc(file)) != EOF && letter != '\n') line += static_cast<char>(letter);
    if (!line.empty() && line.back() == '\r') line.pop_back();  // of the other's text mode
    return letter != EOF;
}

}  // namespace

Answer OwnReader::GetNext(size_t login, const std::string& address, const Oid& oid) {
    if (login >= logins_.size()) return Failed(Status::kSendFailed, oid);
    if (!device_ || last_ != std::pair(login, address)) {
        device_ = DeviceOf(logins_[login], address);
        last_ = {login, address};
    }
    return device_->GetNext(oid);
}

ReaderProcess::ReaderProcess(const std::vector<Login>& logins, HANDLE job) {
    // One that is started at the same time would inherit these ends too.
    static std::mutex starting;
    const std::lock_guard<std::mutex> lock(starting);
    Pipe input(&Pipe::write), output(&Pipe::read);
    const std::wstring program = ToWide(OwnPath());
    std::wstring line = L"\"" + program + L"\" " + ToWide(kReaderOption);
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input.read.Get();
    start.hStdOutput = output.write.Get();
    PROCESS_INFORMATION started = {};
    // Without a console, so that a Ctrl-C is for this process only.
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS,
                        nullptr, nullptr, &start, &started))
        return;
    CloseHandle(started.hThread);
    process_.Reset(started.hProcess);
    if (job) AssignProcessToJobObject(job, started.hProcess);
    input.read.Reset();  // if the process has ended, sending fails
    output.write.Reset();
    isAlive_ = Send(input.write.Get(), std::to_wstring(logins.size()));
    for (const Login& login : logins) isAlive_ = isAlive_ && Send(input.write.Get(), login);
    toProcess_ = StreamOf(std::move(input.write), 0, "w");
    fromProcess_ = StreamOf(std::move(output.read), _O_RDONLY, "r");
    isAlive_ = isAlive_ && toProcess_ && fromProcess_;
}

void ReaderProcess::End() {
    if (process_) TerminateProcess(process_.Get(), 0);
}

Answer ReaderProcess::GetNext(size_t login, const std::string& address, const Oid& oid) {
    std::string reply;
    if (isAlive_) {
        std::fprintf(toProcess_.Get(), "%zu %s %s\n", login, OidToText(oid).c_str(),
                     address.c_str());
        isAlive_ = std::fflush(toProcess_.Get()) == 0;
    }
    isAlive_ = isAlive_ && ReadLine(fromProcess_.Get(), reply);
    return isAlive_ ? AnswerOf(reply) : Failed(Status::kSendFailed, oid);
}

OwnedHandle EndingJob() {
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

void ServeReader() try {
    const HANDLE pipe = GetStdHandle(STD_INPUT_HANDLE);
    std::vector<Login> logins;
    for (size_t left = std::wcstoul(ReceiveText(pipe).c_str(), nullptr, 10); left > 0; --left)
        logins.push_back(ReceiveLogin(pipe));
    OwnReader reader(std::move(logins));
    for (std::string line; ReadLine(stdin, line);) {
        const std::vector<std::string> fields = SplitText(line, " ");
        if (fields.size() != 3) return;
        const size_t login = std::strtoul(fields[0].c_str(), nullptr, 10);
        const Answer answer = reader.GetNext(login, fields[2], ParseOid(fields[1]).value_or(Oid()));
        std::printf("%s\n", LineOf(answer).c_str());
        std::fflush(stdout);
    }
} catch (const std::exception&) {  // the other process sees that this one has ended
}

}  // namespace vndiscover::host
