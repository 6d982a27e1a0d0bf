#include "interface/openapi.h"

#include "interface/methodtable.h"
#include "support/jsonschema.h"

#include <gtest/gtest.h>
#include <json/value.h>

namespace {

TEST(OpenApi, IsADocumentOfThatForm) {
    EXPECT_EQ("", SchemaProblems(interface::OpenApiDocument(), OPENAPI_SCHEMA));
}

TEST(OpenApi, HasAPathPerMethodWithItsParameters) {
    const Json::Value paths = interface::OpenApiDocument()["paths"];
    EXPECT_EQ(interface::Methods().size(), paths.size());
    const Json::Value restart = paths["/api/ORVA.Camvora.AddOns/v1/SetAutoUpdate"]["post"]["requestBody"];
    const Json::Value schema = restart["content"]["application/json"]["schema"];
    EXPECT_EQ(0, schema["properties"]["service"]["default"].asInt());
    ASSERT_EQ(1U, schema["required"].size());
    EXPECT_EQ("blEnable", schema["required"][0].asString());
}

}  // namespace
