// Replies of other servers as JSON.
#include "libcamvora/replytext.h"

#include "libcamvora/jsonobject.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

const std::string kLong(3 << 20, 'x');

const std::vector<std::string> kReplies = {
    R"({"success":true,"data":{"fileData":"eHg=","fileSize":2}})",
    R"({"success":true,"data":{"fileData":")" + kLong + R"(","fileSize":2}})",
    "{\n\t\"a\" : [1, \"\", \"\\\"\", \"\\\\\", {\"\\\"b\": \"" + kLong + "\"}], \"c\": \"" + kLong + "\"}",
    "{\"escaped\":\"" + kLong + "\\n\",\"plain\":\"" + kLong + "\"}",
    "{\"a\":\"\\\"\"," + std::string(3 << 20, ' ') + "\"b\":1}",
    "{\"" + kLong + "\":1}",
    "\"" + kLong + "\"",
    "{\"a\":\"" + kLong,
    "{\"a\":\"" + kLong + "\\",
    "{\"a\":1}{\"a\":\"" + kLong + "\"}",
    "",
};

TEST(Reply, IsReadAsAnyOtherJson) {
    for (const std::string& text : kReplies) {
        const bool isLongKey = text.rfind("{\"xxx", 0) == 0;  // which is nobody's
        const auto expected = isLongKey ? std::nullopt : camvora::ParseJsonObject(text);
        EXPECT_TRUE(expected == camvora::ParseReply(text)) << text.substr(0, 40);
    }
}

}  // namespace
