#include "model/asking/call_text.h"

#include <gmock/gmock.h>

namespace vndiscover::host {
namespace {

using testing::HasSubstr;

Call Ask(const std::string& host, const std::string& user) {
    Call call;
    call.name = "GetNextSnmpRequestV3";
    call.arguments = {{"host", host},
                      {"oid", ".1.3.6.1.2.1.1"},
                      {"userName", user},
                      {"useAuth", "1"},
                      {"authPassword", "VNDISCOVER_AUTH_PASS", true},
                      {"usePriv", "0"},
                      {"authProtocol", "SHA-2(256)"}};
    return call;
}

std::string Command(const std::string& user) {
    return CallText(Ask("10.0.0.1", user), CallLanguage::kCommand);
}

TEST(CallText, CommandTakesSecretsFromTheEnvironment) {
    EXPECT_EQ("vndiscover getnext 10.0.0.1 .1.3.6.1.2.1.1 --v3 -u admin -a \"SHA-2(256)\"",
              Command("admin"));
    EXPECT_EQ("", Command(""));  // the command requires a name
    Call sweep;
    sweep.name = "DiscoverDevicesByOID";
    sweep.arguments = {
        {"useIPv6", "1"}, {"oid", ".1.3"}, {"readCommunity", "VNDISCOVER_COMMUNITY", true}};
    EXPECT_EQ("vndiscover sweep --ipv6 --oid .1.3 --community \"%VNDISCOVER_COMMUNITY%\"",
              CallText(sweep, CallLanguage::kCommand));
    EXPECT_EQ("DiscoverDevicesByOID(useIPv6 1, oid \".1.3\", readCommunity (secret))",
              CallLine(sweep));
}

// What the shell runs is one command with these words, or nothing is offered.
TEST(CallText, NoNameBecomesAnotherCommand) {
    EXPECT_NE(std::string::npos, Command("a & b").find(" -u \"a & b\" "));
    EXPECT_NE(std::string::npos, Command("a b\\").find(" -u \"a b\\\\\" "));
    for (const char* user : {"a\" & calc \"", "%PATH%", "a!b", "-h", "a\nb"})
        EXPECT_EQ("", Command(user)) << user;
    EXPECT_EQ("", CallText({"StopDiscoverSnmp", {}, "", "0", {}, 0}, CallLanguage::kCommand));
    EXPECT_EQ("", CallText({"Format", {}, "", "0", {}, 0}, CallLanguage::kCpp));
}

TEST(CallText, LiteralsHoldEveryCharacter) {
    const std::string user = "a\"\\\n1\xC2\x85\xC3\xA9\xF0\x9F\x98\x80\xFF";
    const std::string cpp = CallText(Ask("1\xC3\xA9", user), CallLanguage::kCpp);
    EXPECT_THAT(cpp, HasSubstr("L\"a\\\"\\\\\\0121\\205\\u00E9\\U0001F600\\u00FF\""));
    EXPECT_THAT(cpp, HasSubstr("\"1\\303\\251\""));
    EXPECT_THAT(cpp, HasSubstr("_wgetenv(L\"VNDISCOVER_AUTH_PASS\")"));
    const std::string sharp = CallText(Ask("1", user), CallLanguage::kCSharp);
    EXPECT_THAT(sharp, HasSubstr("\"a\\\"\\\\\\u000A1\\u0085\\u00E9\\U0001F600\\u00FF\""));
    EXPECT_THAT(sharp, HasSubstr("GetEnvironmentVariable(\"VNDISCOVER_AUTH_PASS\")"));
}

}  // namespace
}  // namespace vndiscover::host
