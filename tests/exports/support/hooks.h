// System calls of the module that tests stand in front of, one object of a kind at a time.
#pragma once

#include <functional>
#include <vector>

#include "exports/support/module.h"

namespace vndiscover {

// The module's clock: the real one, which a test may move on, so that limits of a minute need no
// minute.
class FastClock {
  public:
    explicit FastClock(const Module& module);
    void Advance(DWORD milliseconds);

  private:
    ImportPatch patch_;
};

// The module's receive waits, in milliseconds. Short ones last a quarter of what the module asked
// for, so that a test with many sweeps does not take minutes.
class Waits {
  public:
    enum Length { kReal, kShort };
    explicit Waits(const Module& module, Length length = kShort);

    // Those that passed silently.
    std::vector<int> Silent() const;

  private:
    ImportPatch patch_;
};

// Stands in front of recvfrom. Both functions run on the sweeping thread.
class Receives {
  public:
    // errorOf: gets the number of the call, from 1, and returns a WinSock error to report instead,
    // or 0. onDatagram: gets the number of datagrams so far.
    Receives(const Module& module, std::function<int(int)> errorOf,
             std::function<void(int)> onDatagram = nullptr);
    int Calls() const;

  private:
    ImportPatch patch_;
};

// Stands in front of sendto; errorOf as above.
class Sends {
  public:
    Sends(const Module& module, std::function<int(int)> errorOf);

  private:
    ImportPatch patch_;
};

}  // namespace vndiscover
