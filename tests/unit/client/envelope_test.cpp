#include "client/envelope.h"

#include "client/failure.h"

#include <gtest/gtest.h>

namespace client {
namespace {

TEST(EnvelopeTest, GivesTheDataOfASuccess) {
    EXPECT_EQ(Json::Value(7), DataOf({200, R"({"success":true,"data":7})", ""}, "X"));
    EXPECT_TRUE(DataOf({200, R"({"success":true,"data":null})", ""}, "X").isNull());
}

constexpr char kFramework[] = R"({"success":false,"error":{"code":1004,"data":{"text":"why"}}})";

struct FailureCase {
    const char* name;
    int httpStatus;
    ExitStatus status;
    const char* body;
    const char* text;
};

const FailureCase kFailureCases[] = {
    {"not_admitted", 200, ExitStatus::kNotAuthorised, R"({"success":false,"error":{"code":105,"data":null}})",
     "X failed (error 105): the appliance does not accept the token, or there was none"},
    {"handler_failed", 200, ExitStatus::kFailed, R"({"success":false,"error":{"code":400,"data":{"a":1}}})",
     "X failed (error 400): the appliance could not do it"},
    {"unknown_code", 200, ExitStatus::kFailed, R"({"success":false,"error":{"code":77}})",
     "X failed (error 77): the appliance does not say why"},
    {"framework_bad_request", 400, ExitStatus::kFailed, kFramework, "X failed (error 1004): why"},
    {"framework_not_authorised", 401, ExitStatus::kNotAuthorised, kFramework, "X failed (error 1004): why"},
    {"framework_not_found", 404, ExitStatus::kNotFound, kFramework, "X failed (error 1004): why"},
    {"framework_too_large", 413, ExitStatus::kRefused, kFramework, "X failed (error 1004): why"},
    {"framework_crashed", 500, ExitStatus::kFailed, kFramework, "X failed (error 1004): why"},
    {"framework_busy", 503, ExitStatus::kBusy, kFramework, "X failed (error 1004): why"},
    {"framework_timed_out", 504, ExitStatus::kTimedOut, kFramework, "X failed (error 1004): why"},
    {"proxy_error", 503, ExitStatus::kBusy, "<html>", "X failed: HTTP status 503"},
    {"redirect", 302, ExitStatus::kFailed, "", "X failed: HTTP status 302"},
    {"success_with_an_error_status", 500, ExitStatus::kFailed, R"({"success":true,"data":1})",
     "X failed: HTTP status 500"},
    {"html", 200, ExitStatus::kFailed, "<html>", "X failed: the reply is not an appliance's"},
    {"empty", 200, ExitStatus::kFailed, "", "X failed: the reply is not an appliance's"},
    {"no_object", 200, ExitStatus::kFailed, "[true]", "X failed: the reply is not an appliance's"},
    {"no_data", 200, ExitStatus::kFailed, R"({"success":true})", "X failed: the reply is not an appliance's"},
    {"success_is_text", 200, ExitStatus::kFailed, R"({"success":"true","data":1})",
     "X failed: the reply is not an appliance's"},
    {"error_is_text", 200, ExitStatus::kFailed, R"({"success":false,"error":"code"})",
     "X failed: the reply is not an appliance's"},
    {"code_is_text", 200, ExitStatus::kFailed, R"({"success":false,"error":{"code":"105"}})",
     "X failed: the reply is not an appliance's"},
    {"text_is_a_number", 500, ExitStatus::kFailed,
     R"({"success":false,"error":{"code":1001,"data":{"text":5}}})", "X failed (error 1001): 5"},
    {"cut_short", 200, ExitStatus::kFailed, R"({"success":true,"data":{)",
     "X failed: the reply is not an appliance's"},
};

class EnvelopeFailureTest : public testing::TestWithParam<FailureCase> {};

TEST_P(EnvelopeFailureTest, SaysWhatFailed) {
    try {
        DataOf({GetParam().httpStatus, GetParam().body, ""}, "X");
        FAIL() << "was taken for a success";
    } catch (const Failure& failure) {
        EXPECT_EQ(GetParam().status, failure.status);
        EXPECT_STREQ(GetParam().text, failure.what());
    }
}

INSTANTIATE_TEST_SUITE_P(All, EnvelopeFailureTest, testing::ValuesIn(kFailureCases),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace client
