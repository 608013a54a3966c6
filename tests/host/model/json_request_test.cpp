#include "model/json_request.h"

#include <gtest/gtest.h>

namespace vndiscover::host {
namespace {

TEST(JsonRequests, AreCompactedAndLimited) {
    std::string problem;
    EXPECT_EQ(RequestFor(".1.3.6"), PrepareRequest(RequestFor(".1.3.6"), problem));
    EXPECT_EQ("{\"GET\":{\".1.3 x\":\"\"}}",
              PrepareRequest("\xEF\xBB\xBF{ \"GET\": {\r\n\".1.3 x\": \"\" } }\n", problem));
    for (const char* text : {"", "[]", "\"GET\"", "{\"GET\": {", "{'GET': 1}"}) {
        EXPECT_FALSE(PrepareRequest(text, problem)) << text;
    }
    const auto sized = [](size_t size) {
        return "{\"a\":\"" + std::string(size - 8, 'x') + "\"}" + std::string(500, ' ');
    };
    EXPECT_TRUE(PrepareRequest(sized(2047), problem));
    EXPECT_FALSE(PrepareRequest(sized(2048), problem));
    EXPECT_NE(std::string::npos, problem.find("2048 bytes"));
}

}  // namespace
}  // namespace vndiscover::host
