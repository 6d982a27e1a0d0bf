#include "client/envelope.h"

#include "failswith.h"

#include <gtest/gtest.h>

namespace client {
namespace {

constexpr char kFramework[] = R"({"success":false,"error":{"code":1004,"data":{"text":"why"}}})";
constexpr char kWhy[] = "X failed (error 1004): why";
constexpr char kForeign[] = "X failed: the reply is not an appliance's";

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
    {"framework_not_authorised", 401, ExitStatus::kNotAuthorised, kFramework, kWhy},
    {"framework_not_found", 404, ExitStatus::kNotFound, kFramework, kWhy},
    {"framework_too_large", 413, ExitStatus::kRefused, kFramework, kWhy},
    {"framework_crashed", 500, ExitStatus::kFailed, kFramework, kWhy},
    {"framework_busy", 503, ExitStatus::kBusy, kFramework, kWhy},
    {"framework_timed_out", 504, ExitStatus::kTimedOut, kFramework, kWhy},
    {"proxy_error", 503, ExitStatus::kBusy, "<html>", "X failed: HTTP status 503"},
    {"success_with_an_error_status", 500, ExitStatus::kFailed, R"({"success":true,"data":1})",
     "X failed: HTTP status 500"},
    {"html", 200, ExitStatus::kFailed, "<html>", kForeign},
    {"no_object", 200, ExitStatus::kFailed, "[true]", kForeign},
    {"no_data", 200, ExitStatus::kFailed, R"({"success":true})", kForeign},
    {"success_is_text", 200, ExitStatus::kFailed, R"({"success":"true","data":1})", kForeign},
    {"error_is_text", 200, ExitStatus::kFailed, R"({"success":false,"error":"code"})", kForeign},
    {"code_is_text", 200, ExitStatus::kFailed, R"({"success":false,"error":{"code":"105"}})", kForeign},
    {"text_is_a_number", 500, ExitStatus::kFailed,
     R"({"success":false,"error":{"code":1001,"data":{"text":5}}})", "X failed (error 1001): 5"},
};

TEST(EnvelopeFailureTest, SaysWhatFailed) {
    for (const FailureCase& row : kFailureCases) {
        SCOPED_TRACE(row.name);
        EXPECT_THAT([&] { DataOf({row.httpStatus, row.body, ""}, "X"); }, FailsWith(row.status, row.text));
    }
}

}  // namespace
}  // namespace client
