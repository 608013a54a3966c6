// Processes of this program that ask devices side by side: the module allows one directed request a
// process.
#pragma once

#include <cstdio>
#include <functional>
#include <string>

#include "model/asking/answer.h"
#include "platform/owned.h"

namespace vndiscover::host {

// `login` is the caller's number of a community or user.
using AskNext = std::function<Answer(size_t login, const std::string& address, const Oid& oid)>;

class AskProcess {
  public:
    // Starts this program with its own command line and `option`, by which it must call
    // ServeAskProcess. `job`, a job object, ends it with this process; null: none.
    AskProcess(const wchar_t* option, HANDLE job);
    ~AskProcess();
    AskProcess(const AskProcess&) = delete;
    AskProcess& operator=(const AskProcess&) = delete;

    // False if it could not be started, or has ended: then nothing is asked any more.
    bool IsAlive() const { return isAlive_; }
    // From any thread: a request that is being answered fails.
    void End();
    Answer GetNext(size_t login, const std::string& address, const Oid& oid);
    // Hands a line to its standard input, before any request.
    void Say(const std::string& line);

  private:
    OwnedHandle process_;
    FILE *toProcess_ = nullptr, *fromProcess_ = nullptr;
    bool isAlive_ = false;
};

// A job that ends its processes with this one, however that ends.
OwnedHandle EndingJob();

// Without the line end. Returns false at the end of the file.
bool ReadLine(FILE* file, std::string& line);

// Answers requests from standard input until it ends.
void ServeAskProcess(const AskNext& ask);

}  // namespace vndiscover::host
