// The status methods of the real module, on a real appliance.
#include "e2e/appliance.h"

#include <gtest/gtest.h>

#include <memory>

namespace e2e {
namespace {

class StatusTest : public testing::Test {
protected:
    static void SetUpTestSuite() { appliance_ = std::make_unique<Appliance>(); }
    static void TearDownTestSuite() { appliance_.reset(); }

    static std::unique_ptr<Appliance> appliance_;
    HttpCalls owner_ = appliance_->Owner();
};

std::unique_ptr<Appliance> StatusTest::appliance_;

TEST_F(StatusTest, ListDescribesServicesOneToSixInOrder) {
    const Answer answer = owner_.AddOns("List");
    ASSERT_EQ(200, answer.status);
    const Json::Value& list = answer.Data()["list"];
    ASSERT_EQ(6U, list.size());
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(i + 1, list[i]["service"].asInt());
        EXPECT_EQ(owner_.AddOns("GetInfo", Param("service", i + 1)).Data(), list[i]["info"]);
    }
}

TEST_F(StatusTest, GetInfoReadsTheInstalledAddOn) {
    const Json::Value info = owner_.AddOns("GetInfo", Param("service", 1)).Data();
    EXPECT_EQ("device_pack", info["shortName"].asString());
    EXPECT_NE("", info["version"].asString());
    EXPECT_TRUE(info["blHasPackages"].asBool());
    EXPECT_TRUE(info["blFactoryCopy"].asBool());
}

TEST_F(StatusTest, GetInfoAnswersForNumbersThatAreNoService) {
    EXPECT_EQ("none", owner_.AddOns("GetInfo").Data()["shortName"].asString());
    EXPECT_EQ("service7", owner_.AddOns("GetInfo", Param("service", 7)).Data()["shortName"].asString());
    EXPECT_EQ("service-1", owner_.AddOns("GetInfo", Param("service", -1)).Data()["shortName"].asString());
}

TEST_F(StatusTest, GetAppsStatusIsInTheLanguageAskedForOrInEnglish) {
    const Json::Value english = owner_.AddOns("GetAppsStatus", Param("lang", "en")).Data();
    const Json::Value german = owner_.AddOns("GetAppsStatus", Param("lang", "de")).Data();
    ASSERT_FALSE(english["appsStatus"].empty());
    EXPECT_NE(english, german);
    EXPECT_EQ(english, owner_.AddOns("GetAppsStatus").Data());
    EXPECT_EQ(english, owner_.AddOns("GetAppsStatus", Param("lang", "xx")).Data());
}

TEST_F(StatusTest, TheHostTellsWhatItServes) {
    const Json::Value apis = HttpCalls(appliance_->Stranger()).Get("/api").Data()["apis"];
    ASSERT_EQ(1U, apis.size());
    EXPECT_EQ("ORVA.Camvora.AddOns", apis[0]["api"].asString());
    EXPECT_EQ(1, apis[0]["version"].asInt());
    EXPECT_EQ(18U, apis[0]["methods"].size());
}

struct BadInputCase {
    const char* name;
    const char* body;
    int status;
    int code;
};

const BadInputCase kBadInput[] = {
    {"text_for_a_number", R"({"service":"x"})", 500, 1011},
    {"list_for_a_number", R"({"service":[]})", 500, 1011},
    {"number_beyond_integers", R"({"service":1e300})", 500, 1011},
    {"number_beyond_64_bits", R"({"service":99999999999999999999999})", 500, 1011},
    {"number_beyond_32_bits", R"({"service":4294967297})", 500, 1011},
    {"text_that_is_not_utf8", "{\"lang\":\"\xff\"}", 400, 1004},
    {"overlong_utf8", "{\"lang\":\"\xc0\xaf\"}", 400, 1004},
    {"half_a_surrogate_pair", R"({"lang":"\ud800"})", 400, 1004},
    {"member_twice", R"({"service":1,"service":2})", 400, 1004},
    {"nan", R"({"service":NaN})", 400, 1004},
    {"bytes_after_the_object", "{} {}", 400, 1004},
};

class BadInputTest : public StatusTest, public testing::WithParamInterface<BadInputCase> {};

TEST_P(BadInputTest, GetsAClearError) {
    const Answer answer = owner_.Post("/api/ORVA.Camvora.AddOns/v1/GetInfo", GetParam().body);
    EXPECT_EQ(GetParam().status, answer.status);
    EXPECT_EQ(GetParam().code, answer.Code());
    EXPECT_NE("", answer.Text());
    EXPECT_EQ(200, owner_.AddOns("List").status);
}

INSTANTIATE_TEST_SUITE_P(All, BadInputTest, testing::ValuesIn(kBadInput),
                         [](const auto& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace e2e
