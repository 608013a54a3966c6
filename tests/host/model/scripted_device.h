// A device for tests: a table of variables that answers like an SNMPv1 agent.
#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "model/printer/printer_reader.h"
#include "values/object_names.h"
#include "values/value_text.h"

namespace vndiscover::host {

// To a Probe of WS-Discovery.
inline std::string Reply(const std::string& endpoint, const std::string& types = "") {
    return "<e:Envelope xmlns:e='http://www.w3.org/2003/05/soap-envelope'><e:Body>"
           "<d:ProbeMatches xmlns:d='http://schemas.xmlsoap.org/ws/2005/04/discovery' "
           "xmlns:a='http://schemas.xmlsoap.org/ws/2004/08/addressing'><d:ProbeMatch>"
           "<a:EndpointReference><a:Address>" +
           endpoint + "</a:Address></a:EndpointReference><d:Types>" + types +
           "</d:Types></d:ProbeMatch></d:ProbeMatches></e:Body></e:Envelope>";
}

// "NAME TYPE VALUE; NAME TYPE VALUE": names or OIDs, and types as of `vndiscover set`.
inline std::vector<Answer> AnswersOf(const std::string& text) {
    std::vector<Answer> answers;
    std::istringstream variables(text);
    for (std::string one; std::getline(variables >> std::ws, one, ';');) {
        const size_t type = one.find(' ') + 1, value = std::min(one.size(), type + 2);
        std::string problem;
        const auto parsed = ParseSetValue(one.substr(type, 1), one.substr(value), problem);
        if (!parsed) throw std::invalid_argument(one + ": " + problem);
        answers.push_back(
            AnsweredWith(*ParseOidOrName(one.substr(0, type - 1)), parsed->type, parsed->bytes));
    }
    return answers;
}

struct ScriptedDevice {
    std::map<Oid, std::pair<uint32_t, std::string>> variables;
    // The failure of a request, if any; empty or kAnswered means none.
    std::function<Status(const Oid&)> failure;
    // Variables that no request gets: the failure of one that leads to them; kAnswered: an error.
    std::map<Oid, Status> withheld;
    size_t requests = 0;

    ScriptedDevice() = default;
    explicit ScriptedDevice(const std::string& text) { Add(text); }
    void Add(const std::string& text) {
        for (const Answer& one : AnswersOf(text)) variables[one.oid] = {one.type, one.bytes};
    }
    void Text(const std::string& name, std::string text) {
        variables[*ParseOidOrName(name)] = {kOctetString, std::move(text)};
    }
    // The same one of each object in each row.
    void Texts(const std::vector<std::string>& objects, const std::vector<std::string>& rows = {""},
               const std::string& text = "text") {
        for (const std::string& object : objects)
            for (const std::string& row : rows) Text(object + row, text);
    }
    void Integer(const std::string& name, int number) {
        std::string problem;
        variables[*ParseOidOrName(name)] = {
            kInteger, ParseSetValue("i", std::to_string(number), problem)->bytes};
    }
    void Object(const char* name, const char* oid) {
        variables[*ParseOidOrName(name)] = {kObjectIdentifier, EncodeOid(*ParseOid(oid))};
    }

    Asker MakeAsker() {
        Asker asker;
        asker.getNext = [this](const Oid& oid) {
            return Answered(oid, variables.upper_bound(oid));
        };
        return asker;
    }

  private:
    Answer Answered(const Oid& asked, decltype(variables)::const_iterator found) {
        ++requests;
        const Status status = failure ? failure(asked) : Status::kAnswered;
        if (status != Status::kAnswered) return Failed(status, asked);
        const auto held = found == variables.end() ? withheld.end() : withheld.find(found->first);
        if (held != withheld.end() && held->second != Status::kAnswered)
            return Failed(held->second, asked);
        if (found == variables.end() || held != withheld.end())
            return AnsweredWith(asked, kNull, "");
        return AnsweredWith(found->first, found->second.first, found->second.second);
    }
};

}  // namespace vndiscover::host
