// The documents that a sweep with a JSON request delivers.
#include <cjson/cJSON.h>

#include <memory>

#include "exports/support/lab_test.h"

namespace vndiscover {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr UINT kMessage = ResultWindow::kMessage;

std::string Utf8OfAnsi(const std::string& ansi) {
    wchar_t wide[512];
    char utf8[1024];
    MultiByteToWideChar(CP_ACP, 0, ansi.c_str(), -1, wide, 512);
    WideCharToMultiByte(CP_UTF8, 0, wide, -1, utf8, sizeof utf8, nullptr, nullptr);
    return utf8;
}

class SweepJson : public QuickLabTest {
  protected:
    void SweepFor(const std::wstring& request, const wchar_t* community = nullptr) {
        module.DiscoverDevicesByOIDjson(window.Handle(), kMessage, 0, 0, request.c_str(), nullptr,
                                        community, nullptr);
    }
    // A device of neta: what it answers to requests for each OID; it is silent to others.
    void DeviceWith(std::vector<std::pair<std::string, Bytes>> answers) {
        Devices([=](const Request& request) {
            std::vector<Answer> reply;
            for (const auto& [oid, datagram] : answers) {
                if (request.net == "neta" && request.data == SnmpGet(oid))
                    reply.push_back({datagram});
            }
            return reply;
        });
    }
    std::vector<std::string> AskedOfNetA() {
        std::vector<std::string> asked;
        for (const Request& request : agents->Requests()) {
            if (request.net == "neta") asked.push_back(request.sender + " > " + request.local);
        }
        return asked;
    }
};

TEST_F(SweepJson, FillsInEachValueThatTheDeviceHas) {
    DeviceWith({{kDefaultOid, SnmpText("Model")},
                {kSysDescr, SnmpText("A \"fast\" printer", kSysDescr)},
                {kSysName, SnmpText("prn1", kSysName)}});
    SweepFor(
        L"{\"GET\": {\".1.3.6.1.2.1.1.1.0\": \"\", \".1.3.6.1.2.1.1.6.0\": \"unknown\","
        L" \".1.3.6.1.2.1.1.5.0\": \"\"}, \"id\": 7}");
    EXPECT_THAT(window.Texts(),
                ElementsAre("10.77.1.2={\n"
                            "\t\"GET\":\t{\n"
                            "\t\t\".1.3.6.1.2.1.1.1.0\":\t\"A \\\"fast\\\" printer\",\n"
                            "\t\t\".1.3.6.1.2.1.1.6.0\":\t\"unknown\",\n"
                            "\t\t\".1.3.6.1.2.1.1.5.0\":\t\"prn1\"\n"
                            "\t},\n"
                            "\t\"id\":\t7\n"
                            "}",
                            "end"));
    // Each OID was asked for once, of the device alone and from the adapter that it is attached to.
    EXPECT_THAT(AskedOfNetA(), ElementsAre("10.77.1.1 > 255.255.255.255", "10.77.1.1 > 10.77.1.2",
                                           "10.77.1.1 > 10.77.1.2", "10.77.1.1 > 10.77.1.2"));
    // The silent one cost five waits, the two adapters' phases one each.
    EXPECT_THAT(waits.Silent(), SizeIs(5 + 2));
}

TEST_F(SweepJson, AsksEachDeviceInTurnWithTheHostsCommunity) {
    Devices([](const Request& request) {
        if (request.data == SnmpGet(kSysName, "public")) {
            return std::vector<Answer>{{SnmpText("I am " + request.local, kSysName)}};
        }
        if (request.data != SnmpGet(kDefaultOid, "public")) return std::vector<Answer>();
        if (request.net == "netb") return std::vector<Answer>{{SnmpText("Model")}};
        return std::vector<Answer>{{SnmpText("Model"), "10.77.1.11"},
                                   {SnmpText("Model"), "10.77.1.12"}};
    });
    SweepFor(L"{\"GET\": {\".1.3.6.1.2.1.1.5.0\": \"\"}}", L"public");
    const auto document = [](const std::string& address) {
        return address + "={\n\t\"GET\":\t{\n\t\t\".1.3.6.1.2.1.1.5.0\":\t\"I am " + address +
               "\"\n\t}\n}";
    };
    EXPECT_THAT(window.Texts(), ElementsAre(document("10.77.1.11"), document("10.77.1.12"),
                                            document("10.77.2.2"), "end"));
}

TEST_F(SweepJson, SkipsADeviceWhoseAnswerIsEmpty) {
    Devices([](const Request& request) {
        if (request.net != "neta") return std::vector<Answer>();
        return std::vector<Answer>{{SnmpText(""), "10.77.1.11"},
                                   {TextBytes("no answer"), "10.77.1.12"},
                                   {SnmpText("Model"), "10.77.1.13"}};
    });
    SweepFor(L"{}");
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.13={\n}", "end"));
}

TEST_F(SweepJson, DeliversValuesWhoseBytesAreNoText) {
    const std::string value = "\x80\x81\x9d\xff\x01 \xe9";
    DeviceWith({{kDefaultOid, SnmpText("\xff\xfe")}, {kSysName, SnmpText(value, kSysName)}});
    SweepFor(L"{\"GET\": {\".1.3.6.1.2.1.1.5.0\": \"\"}}");
    ASSERT_THAT(window.results, SizeIs(2));
    const std::unique_ptr<cJSON, void (*)(cJSON*)> root(
        cJSON_Parse(window.results[0].value.c_str()), cJSON_Delete);
    const cJSON* get = cJSON_GetObjectItem(root.get(), "GET");
    ASSERT_NE(nullptr, get);
    EXPECT_EQ(Utf8OfAnsi(value), cJSON_GetStringValue(cJSON_GetObjectItem(get, kSysName)));
}

struct RequestCase : Row {
    std::wstring request;
    std::string document;  // empty: nothing is delivered
};
class JsonRequest : public SweepJson, public testing::WithParamInterface<RequestCase> {};

// The device answers each question; what is no question goes back as it came.
TEST_P(JsonRequest, IsAnsweredWithItsDocument) {
    DeviceIn("neta", {{SnmpText("Model")}});
    SweepFor(GetParam().request);
    if (GetParam().document.empty()) {
        EXPECT_THAT(window.Texts(), ElementsAre("end"));
    } else {
        EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2=" + GetParam().document, "end"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Texts, JsonRequest,
    testing::Values(RequestCase{"NoJson", L"GET", ""}, RequestCase{"CutJson", L"{\"GET\": {", ""},
                    RequestCase{"Empty", L"", ""},
                    RequestCase{"NestedTooDeep", std::wstring(2047, L'['), ""},
                    RequestCase{"WithoutGet", L"{\"a\": 1}", "{\n\t\"a\":\t1\n}"},
                    RequestCase{"GetIsText", L"{\"GET\": \"x\"}", "{\n\t\"GET\":\t\"x\"\n}"},
                    RequestCase{"GetIsEmpty", L"{\"GET\": {}}", "{\n\t\"GET\":\t{\n\t}\n}"},
                    RequestCase{"RootIsNumber", L"7", "7"},
                    RequestCase{"ValueIsNumber", L"{\"GET\": {\".1.3.6.1\": 7}}",
                                "{\n\t\"GET\":\t{\n\t\t\".1.3.6.1\":\t\"Model\"\n\t}\n}"},
                    RequestCase{
                        "KeyTooLongForAnOid",
                        L"{\"GET\": {\".1.3." + std::wstring(255, L'0') + L"6\": \"kept\"}}",
                        "{\n\t\"GET\":\t{\n\t\t\".1.3." + std::string(255, '0') +
                            "6\":\t\"kept\"\n\t}\n}"}),
    kNameOfRow);

// Questions take 2,047 bytes at most; a device of neta would answer each sweep.
TEST_F(SweepJson, IsRejectedFrom2048BytesOn) {
    const std::wstring text = L"{\"a\": 1}";
    DeviceIn("neta", {{SnmpText("Model")}});
    SweepFor(text + std::wstring(2048 - text.size(), L' '));
    SweepFor(text + std::wstring(100000, L' '));
    EXPECT_THAT(agents->Requests(), IsEmpty());
    EXPECT_THAT(window.Texts(), ElementsAre("end", "end"));
    window.results.clear();
    SweepFor(text + std::wstring(2047 - text.size(), L' '));
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2={\n\t\"a\":\t1\n}", "end"));
}

// 50 answers of 126 characters that take two bytes each in UTF-8; the text before them moves the
// place of the cut by one byte.
TEST_F(SweepJson, ADocumentThatDoesNotFitIsCutBetweenTwoCharacters) {
    const std::string answer(126, '\xe9');
    DeviceIn("neta", {{SnmpText(answer)}});
    std::vector<size_t> sizes;
    for (const std::string& pad : {std::string(100, 'x'), std::string(101, 'x')}) {
        std::string request = "{\"pad\":\"" + pad + "\",\"GET\":{\".1.3.6.0\":\"\"";
        std::string whole = "{\n\t\"pad\":\t\"" + pad + "\",\n\t\"GET\":\t{\n";
        for (int i = 0; i < 50; ++i) {
            const std::string oid = ".1.3.6." + std::to_string(i);
            if (i != 0) request += ",\"" + oid + "\":\"\"";
            whole += "\t\t\"" + oid + "\":\t\"" + Utf8OfAnsi(answer) + "\",\n";
        }
        request += "}}";
        window.results.clear();
        SweepFor(std::wstring(request.begin(), request.end()));
        ASSERT_THAT(window.results, SizeIs(2));
        const std::string& document = window.results[0].value;
        EXPECT_EQ(nullptr, cJSON_Parse(document.c_str())) << "as the host can see";
        EXPECT_EQ(whole.substr(0, document.size()), document);
        EXPECT_NE(0, MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, document.c_str(), -1,
                                         nullptr, 0));
        sizes.push_back(document.size());
    }
    EXPECT_THAT(sizes, testing::UnorderedElementsAre(4094, 4095)) << "once inside a character";
}

TEST_F(SweepJson, IsWrittenToTheResultFileWhole) {
    wchar_t folder[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    const std::wstring path = folder + std::wstring(L"documents.csv");
    DeviceIn("neta", {{SnmpText("Model")}});
    module.DiscoverDevicesByOIDjson(nullptr, 0, 0, 0,
                                    (L"{\"text\": \"" + std::wstring(1000, L'x') + L"\"}").c_str(),
                                    path.c_str(), nullptr, nullptr);
    FILE* file = _wfopen(path.c_str(), L"rb");
    char content[2048];
    const std::string line(content, std::fread(content, 1, sizeof content, file));
    std::fclose(file);
    EXPECT_EQ("\"10.77.1.2\",\"{\r\n\t\"text\":\t\"" + std::string(1000, 'x') + "\"\r\n}\"\r\n",
              line);
}

TEST_F(SweepJson, StopsBeforeTheNextDeviceWhileOneIsAsked) {
    Devices([&](const Request& request) {
        if (request.local == "255.255.255.255") {
            return std::vector<Answer>{{SnmpText("Model")}, {SnmpText("Model")}};
        }
        module.StopDiscoverSnmp();
        return std::vector<Answer>{{SnmpText("prn1", kSysName)}};
    });
    SweepFor(L"{\"GET\": {\".1.3.6.1.2.1.1.5.0\": \"\"}}");
    EXPECT_THAT(window.Texts(), ElementsAre("10.77.1.2={\n\t\"GET\":\t{\n"
                                            "\t\t\".1.3.6.1.2.1.1.5.0\":\t\"prn1\"\n\t}\n}",
                                            "end"));
}

}  // namespace
}  // namespace vndiscover
