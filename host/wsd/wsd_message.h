// WS-Discovery messages: the Probe, and the ProbeMatches that the module passes on unparsed.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vndiscover::host {

// Checks types from the command line, separated by spaces or commas: each has a known prefix (wsdp,
// wprt, wscn, pub) and a name. No types mean every device. Empty, with the reason in `problem`, for
// other text.
std::optional<std::string> CheckTypes(std::string_view text, std::string& problem);

// A SOAP 1.2 envelope of WS-Discovery 2005/04. `types` is from CheckTypes, `messageId` is a UUID.
std::string BuildProbe(const std::string& types, const std::string& messageId);

std::string NewUuid();

// One device of a reply, as plain text (see text.h).
struct ProbeMatch {
    std::string endpoint;
    std::vector<std::string>
        types;  // with the usual prefix of a known namespace, otherwise "{namespace}name"
    std::vector<std::string> xAddrs;
};

struct ProbeReply {
    std::string relatesTo;            // the identifier of the Probe; empty: not given
    std::vector<ProbeMatch> matches;  // of WS-Discovery 2005/04 or 1.1
};

// Empty if the text is not a well-formed message.
ProbeReply ReadReply(std::string_view text);

constexpr char kPrinterType[] = "wprt:PrintDeviceType";

// The devices of one sweep. A device replies once for each adapter from which a Probe reaches it.
class MatchList {
  public:
    void Add(const std::string& address, std::vector<ProbeMatch> matches);
    std::string Table() const;
    std::string Json() const;

  private:
    struct Entry {
        std::string address;
        ProbeMatch match;  // all empty if the reply could not be parsed
        size_t count;
    };
    std::vector<Entry> entries_;
    std::map<std::pair<std::string, std::string>, size_t> places_;  // by address and endpoint
};

}  // namespace vndiscover::host
