// A request is one line, "LOGIN OID ADDRESS", and so is its answer, "STATUS OID TYPE SIZE BYTES
// NOTE". Bytes are hexadecimal after a dot.
#include "device/ask_process.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstdlib>

#include "values/split_text.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

std::string LineOf(const Answer& answer) {
    return std::to_string(static_cast<int>(answer.status)) + " " + OidToText(answer.oid) + " " +
           std::to_string(answer.type) + " " + std::to_string(answer.wholeSize) + " ." +
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
    answer.status = static_cast<Status>(std::atoi(status.c_str()));
    answer.oid = ParseOid(oid).value_or(Oid());
    answer.type = static_cast<uint32_t>(std::strtoul(type.c_str(), nullptr, 10));
    answer.wholeSize = std::strtoul(wholeSize.c_str(), nullptr, 10);
    answer.bytes = ParseHex(bytes.substr(std::min<size_t>(1, bytes.size()))).value_or("");
    answer.note = line;
    return answer;
}

// A pipe of which the other process inherits one end only: if another child held the writing end
// too, the reader would wait for that one.
struct Pipe {
    OwnedHandle read, write;

    explicit Pipe(OwnedHandle Pipe::*ours) {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        if (CreatePipe(read.Receive(), write.Receive(), &inherited, 0))
            SetHandleInformation((this->*ours).Get(), HANDLE_FLAG_INHERIT, 0);
    }
};

FILE* FileOf(OwnedHandle pipe, int flags, const char* mode) {
    return _fdopen(_open_osfhandle(reinterpret_cast<intptr_t>(pipe.Release()), flags), mode);
}

}  // namespace

AskProcess::AskProcess(const wchar_t* option, HANDLE job) {
    Pipe input(&Pipe::write), output(&Pipe::read);
    std::wstring program(32768, L'\0');
    GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
    std::wstring line = GetCommandLineW() + (L" " + std::wstring(option));
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
    toProcess_ = FileOf(std::move(input.write), 0, "w");
    fromProcess_ = FileOf(std::move(output.read), _O_RDONLY, "r");
    isAlive_ = toProcess_ && fromProcess_;
}

void AskProcess::End() {
    if (process_) TerminateProcess(process_.Get(), 0);
}

AskProcess::~AskProcess() {
    End();
    if (toProcess_) std::fclose(toProcess_);
    if (fromProcess_) std::fclose(fromProcess_);
}

void AskProcess::Say(const std::string& line) {
    isAlive_ = isAlive_ && std::fprintf(toProcess_, "%s\n", line.c_str()) > 0;
}

Answer AskProcess::GetNext(size_t login, const std::string& address, const Oid& oid) {
    std::string reply;
    if (isAlive_) {
        std::fprintf(toProcess_, "%zu %s %s\n", login, OidToText(oid).c_str(), address.c_str());
        isAlive_ = std::fflush(toProcess_) == 0;
    }
    isAlive_ = isAlive_ && ReadLine(fromProcess_, reply);
    return isAlive_ ? AnswerOf(reply) : Failed(Status::kSendFailed, oid);
}

OwnedHandle EndingJob() {
    OwnedHandle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

bool ReadLine(FILE* file, std::string& line) {
    line.clear();
    int letter = EOF;
    while ((letter = std::fgetc(file)) != EOF && letter != '\n') line += static_cast<char>(letter);
    return letter != EOF;
}

void ServeAskProcess(const AskNext& ask) {
    for (std::string line; ReadLine(stdin, line);) {
        const std::vector<std::string> fields = SplitText(line, " ");
        if (fields.size() != 3) return;
        const size_t login = std::strtoul(fields[0].c_str(), nullptr, 10);
        const Answer answer = ask(login, fields[2], ParseOid(fields[1]).value_or(Oid()));
        std::printf("%s\n", LineOf(answer).c_str());
        std::fflush(stdout);
    }
}

}  // namespace vndiscover::host
