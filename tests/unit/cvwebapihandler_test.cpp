#include "webapi/cvwebapihandler.h"

#include "fake/json.h"
#include "fake/script.h"

#include "cases.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// The smallest handler, to reach what the base offers to all.
class SmallHandler final : public CVWebAPIHandler<SmallHandler, void*, void*, void*> {
public:
    using CVWebAPIHandler::CVWebAPIHandler;
    bool IsRelayed() const { return m_blRelayedCmd; }
    void SetErrorCodeAlone(int code) { m_iErrorCode = code; }
};

struct RelayedCase {
    const char* name;
    const char* params;
    bool isHost;
    bool isRelayed;
};

const RelayedCase kRelayedCases[] = {
    {"unmarked_on_host", "{}", true, false},
    {"marked_on_host", R"({"relayedCmd":true})", true, true},
    {"unmarked_elsewhere", "{}", false, false},
    {"marked_elsewhere", R"({"relayedCmd":true})", false, false},
};

using Relayed = TableTest<RelayedCase>;

TEST_P(Relayed, NeedsTheMarkAndAHost) {
    fake::Answer("IsCmsHost", GetParam().isHost);
    const ORVA::RequestContent content = fake::Authorized("", GetParam().params);
    ORVA::APIRequest request(content);
    EXPECT_EQ(GetParam().isRelayed, SmallHandler(&request, nullptr).IsRelayed());
    EXPECT_EQ(fake::Lines({"GetParam relayedCmd false", "IsCmsHost"}), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, Relayed, testing::ValuesIn(kRelayedCases), CaseName<RelayedCase>);

// A handler with a request and a response of its own, for what comes after its construction.
class HandlerTest : public testing::Test {
    fake::Session session_;
    ORVA::RequestContent requestContent_ = fake::Authorized("");
    ORVA::ResponseContent responseContent_;
    ORVA::APIRequest request_{requestContent_};
    ORVA::APIResponse response_{responseContent_};

protected:
    const std::string& Answer() const { return responseContent_.answer; }

    SmallHandler handler_{&request_, &response_};
};

struct WriteResponseCase {
    const char* name;
    int code;
    const char* param1;
    const char* param2;
    const char* result;
    const char* answer;
};

const WriteResponseCase kWriteResponseCases[] = {
    {"success_leaves_texts_out", 0, "p", "q", R"({"a":1})", R"(SetSuccess {"a":1})"},
    {"error_with_null", 400, "", "", "null", R"(SetError 400 {"param1":"","param2":""})"},
    {"error_with_both_texts", 117, "p", "q", "null", R"(SetError 117 {"param1":"p","param2":"q"})"},
    {"error_with_object", 400, "p", "q", R"({"a":1,"param1":"old"})",
     R"(SetError 400 {"a":1,"param1":"p","param2":"q"})"},
};

class WriteResponse : public HandlerTest, public testing::WithParamInterface<WriteResponseCase> {};

TEST_P(WriteResponse, Answers) {
    const WriteResponseCase& row = GetParam();
    handler_.SetErrorCode(row.code, row.param1, row.param2);
    handler_.WriteResponse(fake::ParseJson(row.result));
    EXPECT_EQ(row.answer, Answer());
}

INSTANTIATE_TEST_SUITE_P(, WriteResponse, testing::ValuesIn(kWriteResponseCases),
                         CaseName<WriteResponseCase>);

TEST_F(HandlerTest, AnswersMissingTextsAsEmpty) {
    handler_.SetErrorCodeAlone(400);
    handler_.WriteResponse(Json::Value());
    EXPECT_EQ(R"(SetError 400 {"param1":"","param2":""})", Answer());
}

struct CmsClosedCase {
    const char* name;
    bool isHost;
    int owner;
    bool isClosed;
    std::vector<std::string> steps;
};

const CmsClosedCase kCmsClosedCases[] = {
    {"on_host", true, 3, true, {"IsCmsHost"}},
    {"own_camera", false, 0, true, {"IsCmsHost", "GetCamOwnerHxId 7"}},
    {"camera_of_another_server",
     false,
     3,
     false,
     {"IsCmsHost", "GetCamOwnerHxId 7",
      "CVPrintf 0 null null cvwebapihandler IsCMSClosed "
      "'Camera[7]: Modify detection param while CMS closed.\\n'"}},
};

class CmsClosed : public HandlerTest, public testing::WithParamInterface<CmsClosedCase> {};

TEST_P(CmsClosed, LogsWhenItSaysNo) {
    const CmsClosedCase& row = GetParam();
    const std::string constructed = fake::Journal();
    fake::Answer("IsCmsHost", row.isHost);
    fake::Answer("GetCamOwnerHxId", row.owner);
    EXPECT_EQ(row.isClosed, handler_.IsCMSClosed(7));
    EXPECT_EQ(constructed + fake::Lines(row.steps), fake::Journal());
}

INSTANTIATE_TEST_SUITE_P(, CmsClosed, testing::ValuesIn(kCmsClosedCases), CaseName<CmsClosedCase>);

}  // namespace
