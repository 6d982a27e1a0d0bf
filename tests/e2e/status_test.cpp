// The status methods of the real module, on a real appliance.
#include "e2e/appliance.h"

namespace e2e {
namespace {

class StatusTest : public ApplianceTest {
protected:
    static void SetUpTestSuite() { Start(); }
};

TEST_F(StatusTest, ListDescribesTheInstalledServices) {
    const Json::Value list = owner_.AddOns("List").Data()["list"];
    ASSERT_EQ(6U, list.size());
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(i + 1, list[i]["service"].asInt());
        EXPECT_EQ(owner_.AddOns("GetInfo", Param("service", i + 1)).Data(), list[i]["info"]);
    }
    const Json::Value& devicePack = list[0]["info"];
    EXPECT_EQ("device_pack", devicePack["shortName"].asString());
    EXPECT_EQ("2.1.0-0130", devicePack["version"].asString());
    EXPECT_TRUE(devicePack["blHasPackages"].asBool());
    EXPECT_TRUE(devicePack["blFactoryCopy"].asBool());
}

TEST_F(StatusTest, GetInfoAnswersForNumbersThatAreNoService) {
    EXPECT_EQ("none", owner_.AddOns("GetInfo").Data()["shortName"].asString());
    EXPECT_EQ("service-1", owner_.AddOns("GetInfo", Param("service", -1)).Data()["shortName"].asString());
}

TEST_F(StatusTest, TheHostDescribesWhatItServes) {
    const Json::Value apis = stranger_.Get("/api").Data()["apis"];
    ASSERT_EQ(1U, apis.size());
    EXPECT_EQ("ORVA.Camvora.AddOns", apis[0]["api"].asString());
    const Json::Value document = stranger_.Get("/api/openapi.json").body;
    for (const Json::Value& method : apis[0]["methods"]) {
        EXPECT_TRUE(document["paths"].isMember("/api/ORVA.Camvora.AddOns/v1/" + method.asString()))
            << method.asString();
    }
}

}  // namespace
}  // namespace e2e
