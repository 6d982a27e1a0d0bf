#include "interface/openapi.h"

#include "interface/methodtable.h"
#include "support/jsonschema.h"

#include <gtest/gtest.h>
#include <json/value.h>

#include <string>
#include <vector>

namespace {

TEST(OpenApi, IsADocumentOfThatForm) {
    EXPECT_EQ("", SchemaProblems(interface::OpenApiDocument(), OPENAPI_SCHEMA));
}

void CollectReferences(const Json::Value& value, std::vector<std::string>& references) {
    if (value.isObject() && value.isMember("$ref")) {
        references.push_back(value["$ref"].asString());
    }
    for (const Json::Value& part : value) {
        CollectReferences(part, references);
    }
}

TEST(OpenApi, RefersOnlyToWhatItHas) {
    const Json::Value document = interface::OpenApiDocument();
    std::vector<std::string> references;
    CollectReferences(document, references);
    ASSERT_FALSE(references.empty());
    for (std::string path : references) {
        ASSERT_EQ(0U, path.rfind("#/", 0)) << path;
        for (char& byte : path) {
            byte = byte == '/' ? '.' : byte;
        }
        EXPECT_TRUE(Json::Path(path.substr(1)).resolve(document).isObject()) << path;
    }
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
