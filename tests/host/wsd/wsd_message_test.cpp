// WS-Discovery messages of real and of hostile responders.
#include "wsd/wsd_message.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <regex>
#include <set>

namespace vndiscover::host {
namespace {

// Other prefixes, a default namespace, declarations in inner elements.
std::string Reply(const std::string& discovery, const std::string& match) {
    return "<Envelope xmlns='http://www.w3.org/2003/05/soap-envelope'><Body><d:ProbeMatches "
           "xmlns:d='" +
           discovery + "' xmlns:a='http://www.w3.org/2005/08/addressing'><d:ProbeMatch>" + match +
           "</d:ProbeMatch></d:ProbeMatches></Body></Envelope>";
}
std::vector<ProbeMatch> Matches(const std::string& discovery, const std::string& match) {
    return ReadReply(Reply(discovery, match)).matches;
}
std::string Hashed(const std::string& text) {
    return std::regex_replace(text, std::regex("\xEF\xBF\xBD"), "#");
}
constexpr char kVersion11[] = "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01";
constexpr char kMatch[] =
    "<a:EndpointReference><a:Address>urn:uuid:1</a:Address></a:EndpointReference>"
    "<d:Types xmlns:p='http://schemas.microsoft.com/windows/2006/08/wdp/print' xmlns:x='urn:x'> "
    "p:PrintDeviceType "
    "x:Fax\n</d:Types><d:XAddrs>http://10.0.0.1:80/a http://[fe80::1]/b</d:XAddrs>";

// '#' is written for U+FFFD, which replaces control characters.
TEST(MatchLists, ShowEachDeviceOnceAndTypesByNamespace) {
    MatchList list;
    EXPECT_EQ("", list.Table());
    EXPECT_EQ("[]\n", list.Json());
    for (const char* address : {"10.0.0.1", "fe80::2", "10.0.0.1"})
        list.Add(address, Matches(kVersion11, kMatch));
    list.Add("10.0.0.3", Matches("urn:other", kMatch));
    list.Add("10.0.0.4",
             Matches(kVersion11,
                     "<a:EndpointReference><a:Address>&#27;[2J</a:Address></a:EndpointReference>"
                     "<d:Types>n&#x9b;one</d:Types><d:XAddrs>http://a/&#7;</d:XAddrs>"));
    EXPECT_EQ(R"(ADDRESS          TYPES
10.0.0.1         wprt:PrintDeviceType {urn:x}Fax
                 http://10.0.0.1:80/a
                 http://[fe80::1]/b
                 urn:uuid:1
                 (2 replies)
fe80::2          wprt:PrintDeviceType {urn:x}Fax
                 http://10.0.0.1:80/a
                 http://[fe80::1]/b
                 urn:uuid:1
10.0.0.3         (a reply that is not ProbeMatches: see --raw)
10.0.0.4         {http://www.w3.org/2003/05/soap-envelope}n#one
                 http://a/#
                 #[2J
)",
              Hashed(list.Table()));
    EXPECT_EQ(0u, list.Json().find(R"([
  {"address":"10.0.0.1","endpoint":"urn:uuid:1","types":["wprt:PrintDeviceType","{urn:x}Fax"],)"
                                   R"("xAddrs":["http://10.0.0.1:80/a","http://[fe80::1]/b"],)"
                                   R"("replies":2},)"));
}

TEST(MatchLists, AFloodOfEndpointsDoesNotMakeThemSlow) {
    constexpr size_t kReplies = 5000, kMatches = 16;
    MatchList list;
    const std::clock_t start = std::clock();
    for (size_t i = 0; i < kReplies * kMatches; i += kMatches) {
        std::string matches;
        for (size_t k = i; k < i + kMatches; ++k) {
            matches += (k > i ? "</d:ProbeMatch><d:ProbeMatch>" : "") +
                       ("<a:EndpointReference><a:Address>" + std::to_string(k)) +
                       "</a:Address></a:EndpointReference>";
        }
        list.Add("10.0.0.1", Matches(kVersion11, matches));
    }
    const std::string json = list.Json();
    EXPECT_EQ(kReplies * kMatches + 2,
              static_cast<size_t>(std::count(json.begin(), json.end(), '\n')));
    EXPECT_LT((std::clock() - start) / CLOCKS_PER_SEC, 10);
}

TEST(ProbeMatches, MalformedRepliesGiveNoMatches) {
    const std::string whole = Reply(kVersion11, kMatch);
    for (size_t size = 0; size < whole.size(); ++size) {
        // In a block of exactly that size, so that a sanitizer finds reads past its end.
        const std::unique_ptr<char[]> block(new char[size]);
        whole.copy(block.get(), size);
        EXPECT_TRUE(ReadReply({block.get(), size}).matches.empty()) << size;
    }
    // The deepest nesting that fits a datagram, entities, invalid markup.
    std::string nested;
    while (nested.size() < 2045) nested += "<a>";
    for (const std::string& text :
         {nested, std::string("<!DOCTYPE a [<!ENTITY b \"c\"><!ENTITY d \"&b;&b;\">]><a>&d;</a>"),
          std::string(2048, '<'), std::string("\xFF\xFE<\0a\0", 6), std::string("<![CDATA[")}) {
        EXPECT_TRUE(ReadReply(text).matches.empty());
    }
}

TEST(ProbeMatches, TellWhichProbeTheyAnswer) {
    std::string reply = Reply(kVersion11, kMatch);
    EXPECT_EQ("", ReadReply(reply).relatesTo);
    reply.insert(reply.find("<Body>"),
                 "<Header><a:RelatesTo xmlns:a='http://www.w3.org/2005/08/addressing'>\n"
                 "urn:uuid:7</a:RelatesTo></Header>");
    EXPECT_EQ("urn:uuid:7", ReadReply(reply).relatesTo);
}

TEST(Probes, AreWellFormedAndDeclareTheirTypes) {
    std::string problem;
    const auto types = CheckTypes(" wprt:PrintDeviceType, wsdp:Device", problem);
    ASSERT_EQ("wprt:PrintDeviceType wsdp:Device", types);
    EXPECT_EQ(
        R"(<?xml version="1.0" encoding="utf-8"?>
<soap:Envelope xmlns:soap="http://www.w3.org/2003/05/soap-envelope")"
        R"( xmlns:wsa="http://schemas.xmlsoap.org/ws/2004/08/addressing")"
        R"( xmlns:wsd="http://schemas.xmlsoap.org/ws/2005/04/discovery")"
        R"( xmlns:wsdp="http://schemas.xmlsoap.org/ws/2006/02/devprof")"
        R"( xmlns:wprt="http://schemas.microsoft.com/windows/2006/08/wdp/print">)"
        "<soap:Header><wsa:To>urn:schemas-xmlsoap-org:ws:2005:04:discovery</wsa:To>"
        "<wsa:Action>http://schemas.xmlsoap.org/ws/2005/04/discovery/Probe</wsa:Action>"
        "<wsa:MessageID>urn:uuid:0123</wsa:MessageID></soap:Header><soap:Body><wsd:Probe>"
        "<wsd:Types>wprt:PrintDeviceType wsdp:Device</wsd:Types>"
        "</wsd:Probe></soap:Body></soap:Envelope>",
        BuildProbe(*types, "0123"));
    EXPECT_EQ(std::string::npos, BuildProbe("", "0123").find("Types"));
    for (const char* text : {"Device", "x:Device", "wsdp:", "wsdp:a<b", "wsdp:Device wprt"}) {
        EXPECT_FALSE(CheckTypes(text, problem)) << text;
    }
    EXPECT_EQ("", CheckTypes("", problem));
}

TEST(Uuids, AreRandomAndSaySo) {
    const std::regex shape("[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}");
    std::set<std::string> uuids;
    for (int i = 0; i < 64; ++i) {  // leading zeros are rare
        const std::string uuid = NewUuid();
        EXPECT_TRUE(uuids.insert(uuid).second);
        ASSERT_TRUE(std::regex_match(uuid, shape)) << uuid;
    }
}

}  // namespace
}  // namespace vndiscover::host
