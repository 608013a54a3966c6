// The processes send texts, each after its size in bytes, so that passwords leave no copies in
// buffers. The other one first gets the logins. Then a request has the lines LOGIN, OID, ADDRESS,
// its answer STATUS, OID, TYPE, SIZE, BYTES in hexadecimal digits and NOTE, these two after a dot.
#include "device/ask_process.h"

#include <initializer_list>
#include <mutex>
#include <stdexcept>
#include <string_view>

#include "platform/this_process.h"
#include "platform/wide_text.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

constexpr char kLineEnd[] = "\n";

template <class Text>  // of narrow or wide characters
bool Send(HANDLE pipe, const Text& text) {
    const auto size = static_cast<DWORD>(text.size() * sizeof text[0]);
    DWORD sent = 0;
    return WriteFile(pipe, &size, sizeof size, &sent, nullptr) &&
           (size == 0 || WriteFile(pipe, text.data(), size, &sent, nullptr));
}

bool Send(HANDLE pipe, const Login& login) {
    static const Security none;
    const Security& user = login.security ? *login.security : none;
    const std::wstring community = ToWide(login.community);
    for (const std::wstring_view text : std::initializer_list<std::wstring_view>{
             community, login.security ? L"v3" : L"", user.user, user.authLabel, user.privLabel,
             user.authPassword.Get(), user.privPassword.Get()}) {
        if (!Send(pipe, text)) return false;
    }
    return true;
}

void ReceiveBytes(HANDLE pipe, void* bytes, DWORD size) {
    DWORD read = 0;
    for (auto* at = static_cast<char*>(bytes); size > 0; at += read, size -= read) {
        if (!ReadFile(pipe, at, size, &read, nullptr) || read == 0)
            throw std::runtime_error("the other process has ended");
    }
}

template <class Text>
Text Receive(HANDLE pipe) {
    using Letter = typename Text::value_type;
    DWORD size = 0;
    ReceiveBytes(pipe, &size, sizeof size);
    constexpr DWORD kMaxSize = 1 << 16;
    if (size > kMaxSize || size % sizeof(Letter) != 0)
        throw std::runtime_error("the other process has sent no text");
    Text text(size / sizeof(Letter), Letter());
    ReceiveBytes(pipe, text.data(), size);
    return text;
}

Login ReceiveLogin(HANDLE pipe) {
    Login login;
    login.community = ToUtf8(Receive<std::wstring>(pipe));
    const bool isV3 = !Receive<std::wstring>(pipe).empty();
    auto user = std::make_shared<Security>();
    for (std::wstring* text : {&user->user, &user->authLabel, &user->privLabel})
        *text = Receive<std::wstring>(pipe);
    for (Secret* secret : {&user->authPassword, &user->privPassword})
        *secret = Secret(Receive<std::wstring>(pipe));
    if (isV3) login.security = std::move(user);
    return login;
}

std::string TextOf(const Answer& answer) {
    return Joined({std::to_string(static_cast<int>(answer.status)), OidToText(answer.oid),
                   std::to_string(answer.type), std::to_string(answer.wholeSize),
                   "." + HexText(answer.bytes, ""), "." + answer.note},
                  kLineEnd);
}

// Throws std::logic_error if the text is no answer.
Answer AnswerOf(const std::string& text) {
    const std::vector<std::string> lines = SplitText(text, kLineEnd);
    Answer answer;
    answer.status = static_cast<Status>(std::stoul(lines.at(0)));
    answer.oid = ParseOid(lines.at(1)).value_or(Oid());
    answer.type = static_cast<uint32_t>(std::stoul(lines.at(2)));
    answer.wholeSize = std::stoul(lines.at(3));
    answer.bytes = ParseHex(lines.at(4).substr(1)).value_or("");
    answer.note = lines.at(5).substr(1);
    return answer;
}

// Only one end is inherited. With the writing end in another child, the reader would wait for ever.
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

}  // namespace

Answer OwnReader::GetNext(size_t login, const std::string& address, const Oid& oid) {
    if (login >= logins_.size()) return Failed(Status::kSendFailed, oid);
    if (!device_ || last_ != std::pair(login, address)) {
        device_.emplace(logins_[login], address);
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
    OwnedHandle(started.hThread);
    process_.Reset(started.hProcess);
    if (job) AssignProcessToJobObject(job, started.hProcess);
    input.read.Reset();  // if the process has ended, sending fails
    output.write.Reset();
    toProcess_ = std::move(input.write);
    fromProcess_ = std::move(output.read);
    isAlive_ = Send(toProcess_.Get(), std::to_string(logins.size()));
    for (const Login& login : logins) isAlive_ = isAlive_ && Send(toProcess_.Get(), login);
}

void ReaderProcess::End() {
    if (process_) TerminateProcess(process_.Get(), 0);
}

Answer ReaderProcess::GetNext(size_t login, const std::string& address, const Oid& oid) try {
    isAlive_ = isAlive_ && Send(toProcess_.Get(),
                                Joined({std::to_string(login), OidToText(oid), address}, kLineEnd));
    if (isAlive_) return AnswerOf(Receive<std::string>(fromProcess_.Get()));
    return Failed(Status::kSendFailed, oid);
} catch (const std::exception&) {
    isAlive_ = false;
    return Failed(Status::kSendFailed, oid);
}

OwnedHandle EndingJob() {
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

void ServeReader() try {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE), output = GetStdHandle(STD_OUTPUT_HANDLE);
    std::vector<Login> logins;
    for (unsigned long left = std::stoul(Receive<std::string>(input)); left > 0; --left)
        logins.push_back(ReceiveLogin(input));
    OwnReader reader(std::move(logins));
    for (;;) {
        const auto lines = SplitText(Receive<std::string>(input), kLineEnd);
        const Oid oid = ParseOid(lines.at(1)).value_or(Oid());
        Send(output, TextOf(reader.GetNext(std::stoul(lines.at(0)), lines.at(2), oid)));
    }
} catch (const std::exception&) {  // the other process sees that this one has ended
}

}  // namespace vndiscover::host
