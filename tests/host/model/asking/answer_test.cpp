// Answers, as they are made of what the module delivers.
#include "model/asking/answer.h"

#include <gtest/gtest.h>

#include <tuple>

#include "values/module_types.h"

namespace vndiscover::host {
namespace {

TEST(LongValues, AreShownWithoutTheirLengthByte) {
    const std::string text(128, 'x');
    const std::tuple<std::string, size_t, size_t> rows[] = {
        {"\xAF" + text, 128, 0xAF},
        {"\x80" + text, 128, 128},
        {text.substr(1), 127, 127},
        {"x" + text, 129, 129}};  // no such length: unchanged
    for (const auto& [bytes, shown, whole] : rows) {
        const Answer answer = AnsweredWith({}, kOctetString, bytes);
        EXPECT_EQ(bytes.substr(bytes.size() - shown), answer.bytes);
        EXPECT_EQ(whole, answer.wholeSize);
    }
}

}  // namespace
}  // namespace vndiscover::host
