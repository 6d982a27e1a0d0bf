#include "support/jsonschema.h"

#include <json/reader.h>
#include <valijson/adapters/jsoncpp_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

#include <fstream>
#include <stdexcept>

namespace {

using valijson::adapters::JsonCppAdapter;

Json::Value ReadJson(const std::string& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error("There is no schema " + path);
    }
    Json::Value value;
    file >> value;
    return value;
}

}  // namespace

std::string SchemaProblems(const Json::Value& document, const std::string& schemaFile) {
    const std::string folder = schemaFile.substr(0, schemaFile.rfind('/') + 1);
    const Json::Value schemaDocument = ReadJson(schemaFile);
    valijson::Schema schema;
    valijson::SchemaParser().populateSchema(
        JsonCppAdapter(schemaDocument), schema,
        [&folder](const std::string& name) { return new Json::Value(ReadJson(folder + name)); },
        [](const Json::Value* fetched) { delete fetched; });
    valijson::ValidationResults results;
    valijson::Validator().validate(schema, JsonCppAdapter(document), &results);
    std::string problems;
    for (const auto& problem : results) {
        for (const std::string& step : problem.context) {
            problems += step;
        }
        problems += ": " + problem.description + "\n";
    }
    return problems;
}
