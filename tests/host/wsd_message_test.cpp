// WS-Discovery as real responders speak it, and as hostile ones may.
#include "host/wsd_message.h"

#include <gtest/gtest.h>

#include <memory>
#include <pugixml.hpp>

namespace vndiscover::host {
namespace {

// A reply of Debian's wsdd 0.7 to our own Probe, shortened by its header.
constexpr char kWsddReply[] =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?><soap:Envelope "
    "xmlns:soap=\"http://www.w3.org/2003/05/soap-envelope\" "
    "xmlns:wsa=\"http://schemas.xmlsoap.org/ws/2004/08/addressing\" "
    "xmlns:wsd=\"http://schemas.xmlsoap.org/ws/2005/04/discovery\" "
    "xmlns:wsdp=\"http://schemas.xmlsoap.org/ws/2006/02/devprof\" "
    "xmlns:pub=\"http://schemas.microsoft.com/windows/pub/2005/07\"><soap:Header></"
    "soap:Header><soap:Body>"
    "<wsd:ProbeMatches><wsd:ProbeMatch><wsa:EndpointReference><wsa:Address>"
    "urn:uuid:e5e61fb5-d685-5b50-9ba7-acb6e6962ef3</wsa:Address></wsa:EndpointReference><wsd:Types>"
    "wsdp:Device "
    "pub:Computer</wsd:Types><wsd:MetadataVersion>1</wsd:MetadataVersion></wsd:ProbeMatch>"
    "</wsd:ProbeMatches></soap:Body></soap:Envelope>";

// Other prefixes, a default namespace, declarations in inner elements.
std::string Reply(const std::string& discovery, const std::string& match) {
    return "<Envelope xmlns='http://www.w3.org/2003/05/soap-envelope'><Body><d:ProbeMatches "
           "xmlns:d='" +
           discovery + "' xmlns:a='http://www.w3.org/2005/08/addressing'><d:ProbeMatch>" + match +
           "</d:ProbeMatch></d:ProbeMatches></Body></Envelope>";
}
constexpr char kVersion11[] = "http://docs.oasis-open.org/ws-dd/ns/discovery/2009/01";
constexpr char kMatch[] =
    "<a:EndpointReference><a:Address>urn:uuid:1</a:Address></a:EndpointReference>"
    "<d:Types xmlns:p='http://schemas.microsoft.com/windows/2006/08/wdp/print' xmlns:x='urn:x'> "
    "p:PrintDeviceType "
    "x:Fax\n</d:Types><d:XAddrs>http://10.0.0.1:80/a http://[fe80::1]/b</d:XAddrs>";

TEST(ProbeMatches, AreReadByNamespaceNotByPrefix) {
    const auto wsdd = ReadProbeMatches(kWsddReply);
    ASSERT_EQ(1u, wsdd.size());
    EXPECT_EQ("urn:uuid:e5e61fb5-d685-5b50-9ba7-acb6e6962ef3", wsdd[0].endpoint);
    EXPECT_EQ((std::vector<std::string>{"wsdp:Device", "pub:Computer"}), wsdd[0].types);
    EXPECT_TRUE(wsdd[0].xAddrs.empty());

    const auto other = ReadProbeMatches(Reply(kVersion11, kMatch));
    ASSERT_EQ(1u, other.size());
    EXPECT_EQ("urn:uuid:1", other[0].endpoint);
    EXPECT_EQ((std::vector<std::string>{"wprt:PrintDeviceType", "{urn:x}Fax"}), other[0].types);
    EXPECT_EQ((std::vector<std::string>{"http://10.0.0.1:80/a", "http://[fe80::1]/b"}),
              other[0].xAddrs);
    EXPECT_TRUE(ReadProbeMatches(Reply("urn:other", kMatch)).empty());
}

TEST(ProbeMatches, OfEveryLengthAreReadWholeOrNotAtAll) {
    const std::string whole = Reply(kVersion11, kMatch);
    for (size_t size = 0; size < whole.size(); ++size) {
        // In a block of exactly that size, so that a sanitizer sees a read behind its end.
        const std::unique_ptr<char[]> block(new char[size]);
        whole.copy(block.get(), size);
        EXPECT_TRUE(ReadProbeMatches({block.get(), size}).empty()) << size;
    }
}

TEST(ProbeMatches, BringNoControlCharacters) {
    const auto matches = ReadProbeMatches(
        Reply(kVersion11,
              "<a:EndpointReference><a:Address>&#27;[2J</a:Address></a:EndpointReference>"
              "<d:Types>n&#x9b;one</d:Types><d:XAddrs>http://a/&#7;</d:XAddrs>"));
    ASSERT_EQ(1u, matches.size());
    EXPECT_EQ("\xEF\xBF\xBD[2J", matches[0].endpoint);
    EXPECT_EQ("{http://www.w3.org/2003/05/soap-envelope}n\xEF\xBF\xBDone", matches[0].types.at(0));
    EXPECT_EQ("http://a/\xEF\xBF\xBD", matches[0].xAddrs.at(0));
    // Nesting as deep as a datagram allows, entities, markup that is none.
    std::string nested;
    while (nested.size() < 2045) nested += "<a>";
    for (const std::string& text :
         {nested, std::string("<!DOCTYPE a [<!ENTITY b \"c\"><!ENTITY d \"&b;&b;\">]><a>&d;</a>"),
          std::string(2048, '<'), std::string("\xFF\xFE<\0a\0", 6), std::string("<a b='"),
          std::string("<![CDATA[")}) {
        EXPECT_TRUE(ReadProbeMatches(text).empty());
    }
}

TEST(MatchLists, CountRepliesOfOneDevice) {
    MatchList list;
    EXPECT_EQ("", list.Table());
    EXPECT_EQ("[]\n", list.Json());
    const std::string reply = Reply(kVersion11, kMatch);
    list.Add("10.0.0.1", reply);
    list.Add("10.0.0.2", reply);
    list.Add("10.0.0.1", reply);
    list.Add("10.0.0.3", "no XML");
    EXPECT_EQ(
        "10.0.0.1         wprt:PrintDeviceType {urn:x}Fax\n"
        "                 http://10.0.0.1:80/a\n"
        "                 http://[fe80::1]/b\n"
        "                 urn:uuid:1\n"
        "                 (2 replies)\n"
        "10.0.0.2         wprt:PrintDeviceType {urn:x}Fax\n"
        "                 http://10.0.0.1:80/a\n"
        "                 http://[fe80::1]/b\n"
        "                 urn:uuid:1\n"
        "10.0.0.3         (a reply that is no ProbeMatches: see --raw)\n",
        list.Table());
    EXPECT_EQ(0u, list.Json().find(
                      "[\n  {\"address\":\"10.0.0.1\",\"endpoint\":\"urn:uuid:1\",\"types\":"
                      "[\"wprt:PrintDeviceType\",\"{urn:x}Fax\"],\"xAddrs\":"
                      "[\"http://10.0.0.1:80/a\",\"http://[fe80::1]/b\"],\"replies\":2},\n"));
}

TEST(Probes, AreWellFormedAndDeclareTheirTypes) {
    std::string problem;
    const auto types = CheckTypes(" wprt:PrintDeviceType, wsdp:Device", problem);
    ASSERT_EQ("wprt:PrintDeviceType wsdp:Device", types);
    const std::string probe = BuildProbe(*types, "0123");
    EXPECT_LE(probe.size(), 2048u);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_buffer(probe.data(), probe.size()));
    const pugi::xml_node envelope = document.child("soap:Envelope");
    EXPECT_STREQ("http://schemas.microsoft.com/windows/2006/08/wdp/print",
                 envelope.attribute("xmlns:wprt").value());
    EXPECT_STREQ("http://schemas.xmlsoap.org/ws/2006/02/devprof",
                 envelope.attribute("xmlns:wsdp").value());
    EXPECT_FALSE(envelope.attribute("xmlns:wscn"));
    const pugi::xml_node header = envelope.child("soap:Header");
    EXPECT_STREQ("http://schemas.xmlsoap.org/ws/2005/04/discovery/Probe",
                 header.child_value("wsa:Action"));
    EXPECT_STREQ("urn:uuid:0123", header.child_value("wsa:MessageID"));
    EXPECT_STREQ("urn:schemas-xmlsoap-org:ws:2005:04:discovery", header.child_value("wsa:To"));
    const pugi::xml_node body = envelope.child("soap:Body").child("wsd:Probe");
    EXPECT_EQ(*types, body.child_value("wsd:Types"));
    EXPECT_EQ(std::string::npos, BuildProbe("", "0123").find("Types"));
    for (const char* text : {"Device", "x:Device", "wsdp:", "wsdp:a<b", "wsdp:Device wprt"}) {
        EXPECT_FALSE(CheckTypes(text, problem)) << text;
    }
    EXPECT_EQ("", CheckTypes("", problem));
}

TEST(Uuids, AreRandomAndSaySo) {
    const std::string uuid = NewUuid();
    ASSERT_EQ(36u, uuid.size());
    EXPECT_EQ('4', uuid[14]);
    EXPECT_NE(std::string::npos, std::string("89ab").find(uuid[19]));
    EXPECT_NE(uuid, NewUuid());
}

}  // namespace
}  // namespace vndiscover::host
