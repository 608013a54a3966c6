// A Probe, and the reply that answers it (whitespace added; the prefixes are the sender's choice):
//     <s:Envelope>
//       <s:Header> a:Action, a:MessageID, a:To (Probe) or a:RelatesTo (reply) </s:Header>
//       <s:Body>
//         <d:Probe> <d:Types>wsdp:Device</d:Types> </d:Probe>
//         <d:ProbeMatches> <d:ProbeMatch>
//             <a:EndpointReference><a:Address>urn:uuid:...</a:Address></a:EndpointReference>
//             <d:Types>wsdp:Device wprt:PrintDeviceType</d:Types>
//             <d:XAddrs>http://192.168.1.20:5357/...</d:XAddrs> ...
#include "wsd/wsd_message.h"

#include <cjson/cJSON.h>

#include <pugixml.hpp>
#include <random>

#include "values/json_output.h"
#include "values/ranges.h"
#include "values/text.h"

namespace vndiscover::host {
namespace {

// Each of them is read. The first one is sent.
using Namespaces = std::initializer_list<const char*>;
constexpr Namespaces kSoap = {"http://www.w3.org/2003/05/soap-envelope"};
constexpr Namespaces kAddressing = {"http://schemas.xmlsoap.org/ws/2004/08/addressing",
                                    "http://www.w3.org/2005/08/addressing"};
constexpr Namespaces kDiscovery = {"http://schemas.xmlsoap.org/ws/2005/04/discovery",
                                   "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01"};

const struct Prefix {
    std::string prefix, uri;
} kPrefixes[] = {
    {"wsdp", "http://schemas.xmlsoap.org/ws/2006/02/devprof"},
    {"wprt", "http://schemas.microsoft.com/windows/2006/08/wdp/print"},
    {"wscn", "http://schemas.microsoft.com/windows/2006/08/wdp/scan"},
    {"pub", "http://schemas.microsoft.com/windows/pub/2005/07"},
};

bool IsName(std::string_view name) {
    constexpr std::string_view kLetters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-.";
    return !name.empty() && name.find_first_not_of(kLetters) == std::string_view::npos;
}

struct QName {
    std::string_view prefix;
    std::string_view local;
};
QName Split(std::string_view name) {
    const size_t colon = name.find(':');
    if (colon == std::string_view::npos) return {{}, name};
    return {name.substr(0, colon), name.substr(colon + 1)};
}

// The namespace of a prefix, by the nearest enclosing declaration; the parser knows none.
std::string_view NamespaceOf(pugi::xml_node at, std::string_view prefix) {
    const std::string declaration = prefix.empty() ? "xmlns" : "xmlns:" + std::string(prefix);
    for (pugi::xml_node node = at; node; node = node.parent()) {
        if (const pugi::xml_attribute found = node.attribute(declaration.c_str()))
            return found.value();
    }
    return {};
}

bool Is(pugi::xml_node node, std::string_view local, Namespaces namespaces) {
    const QName name = Split(node.name());
    return name.local == local && Contains(namespaces, NamespaceOf(node, name.prefix));
}

pugi::xml_node Child(pugi::xml_node parent, std::string_view local, Namespaces namespaces) {
    return parent.find_child([&](pugi::xml_node child) { return Is(child, local, namespaces); });
}

std::string ShownType(pugi::xml_node at, const std::string& word) {
    const QName name = Split(word);
    const std::string_view uri = NamespaceOf(at, name.prefix);
    for (const Prefix& known : kPrefixes) {
        if (known.uri == uri) return known.prefix + ":" + PlainText(name.local);
    }
    if (uri.empty()) return PlainText(word);
    return "{" + PlainText(uri) + "}" + PlainText(name.local);
}

ProbeMatch ReadMatch(pugi::xml_node node) {
    constexpr char kSpace[] = " \t\r\n";
    ProbeMatch match;
    const auto endpoint = Child(node, "EndpointReference", kAddressing);
    match.endpoint = PlainText(Child(endpoint, "Address", kAddressing).text().get());
    const auto types = Child(node, "Types", kDiscovery);
    for (const std::string& word : SplitText(types.text().get(), kSpace))
        match.types.push_back(ShownType(types, word));
    const auto xAddrs = Child(node, "XAddrs", kDiscovery);
    for (const std::string& word : SplitText(xAddrs.text().get(), kSpace))
        match.xAddrs.push_back(PlainText(word));
    return match;
}

}  // namespace

std::optional<std::string> CheckTypes(std::string_view text, std::string& problem) {
    const std::vector<std::string> words = SplitText(text, " ,");
    for (const std::string& word : words) {
        const QName name = Split(word);
        const bool isKnown =
            AnyOf(kPrefixes, [&](const Prefix& known) { return known.prefix == name.prefix; });
        if (isKnown && IsName(name.local)) continue;
        problem = "'" + word + "' is not a type; prefixes: wsdp, wprt, wscn, pub";
        return std::nullopt;
    }
    return Joined(words, " ");
}

std::string BuildProbe(const std::string& types, const std::string& messageId) {
    std::string declarations;
    for (const Prefix& known : kPrefixes) {
        if (types.find(known.prefix + ":") != std::string::npos)
            declarations += " xmlns:" + known.prefix + "=\"" + known.uri + "\"";
    }
    const std::string discovery = *kDiscovery.begin();
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<soap:Envelope xmlns:soap=\"" +
           std::string(*kSoap.begin()) + "\" xmlns:wsa=\"" + *kAddressing.begin() +
           "\" xmlns:wsd=\"" + discovery + "\"" + declarations + ">" +
           "<soap:Header><wsa:To>urn:schemas-xmlsoap-org:ws:2005:04:discovery</"
           "wsa:To><wsa:Action>" +
           discovery + "/Probe</wsa:Action><wsa:MessageID>urn:uuid:" + messageId +
           "</wsa:MessageID></soap:Header><soap:Body><wsd:Probe>" +
           (types.empty() ? "" : "<wsd:Types>" + types + "</wsd:Types>") +
           "</wsd:Probe></soap:Body></soap:Envelope>";
}

std::string NewUuid() {
    std::string text = "xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx";  // 4: random; y: the variant
    std::random_device random;
    for (char& digit : text) {
        const unsigned number = digit == 'y' ? 8 | random() % 4 : random() % 16;
        if (digit == 'x' || digit == 'y') digit = "0123456789abcdef"[number];
    }
    return text;
}

ProbeReply ReadReply(std::string_view text) {
    ProbeReply reply;
    pugi::xml_document document;
    // The text ends at its first zero byte. A reply that is cut is not well-formed: it gives
    // nothing.
    if (!document.load_buffer(text.data(), text.size())) return reply;
    const auto envelope = Child(document, "Envelope", kSoap);
    const auto related = Child(Child(envelope, "Header", kSoap), "RelatesTo", kAddressing);
    reply.relatesTo = PlainText(related.text().get());
    const auto list = Child(Child(envelope, "Body", kSoap), "ProbeMatches", kDiscovery);
    for (const pugi::xml_node child : list.children()) {
        if (Is(child, "ProbeMatch", kDiscovery)) reply.matches.push_back(ReadMatch(child));
    }
    return reply;
}

void MatchList::Add(const std::string& address, std::vector<ProbeMatch> matches) {
    if (matches.empty()) matches.emplace_back();
    for (ProbeMatch& match : matches) {
        const auto [known, isNew] = places_.try_emplace({address, match.endpoint}, entries_.size());
        if (isNew) entries_.push_back({address, std::move(match), 0});
        ++entries_[known->second].count;
    }
}

std::string MatchList::Table() const {
    constexpr size_t kAddressWidth = 17;
    std::string text = entries_.empty() ? "" : Padded("ADDRESS", kAddressWidth) + "TYPES\n";
    for (const Entry& entry : entries_) {
        const auto line = [&](const std::string& first, const std::string& value) {
            if (!value.empty()) text += Padded(first, kAddressWidth) + value + "\n";
        };
        const ProbeMatch& match = entry.match;
        const std::string types = match.types.empty() ? "(no types)" : Joined(match.types, " ");
        const bool isUnread = match.endpoint.empty() && match.types.empty() && match.xAddrs.empty();
        line(PlainText(entry.address),
             isUnread ? "(a reply that is not ProbeMatches: see --raw)" : types);
        for (const std::string& xAddr : match.xAddrs) line("", xAddr);
        line("", match.endpoint);
        if (entry.count > 1) line("", "(" + std::to_string(entry.count) + " replies)");
    }
    return text;
}

std::string MatchList::Json() const {
    JsonArray list;
    for (const Entry& entry : entries_) {
        JsonItem item(cJSON_CreateObject());
        AddText(item.get(), "address", entry.address);
        AddText(item.get(), "endpoint", entry.match.endpoint);
        AddTexts(item.get(), "types", entry.match.types);
        AddTexts(item.get(), "xAddrs", entry.match.xAddrs);
        cJSON_AddNumberToObject(item.get(), "replies", static_cast<double>(entry.count));
        list.Add(item.get());
    }
    return list.Finish();
}

}  // namespace vndiscover::host
