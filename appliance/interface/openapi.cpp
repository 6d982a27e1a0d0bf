#include "interface/openapi.h"

#include "interface/methodtable.h"

#include <json/reader.h>

#include <sstream>
#include <string>

namespace interface {
namespace {

constexpr char kJsonBody[] = "application/json";
constexpr char kFormBody[] = "multipart/form-data";

// What does not depend on the methods.
constexpr char kFrame[] = R"json({
  "openapi": "3.1.0",
  "info": {
    "title": "Camvora add-ons",
    "version": "1",
    "description": "Manages the add-on services of a Camvora appliance. Whenever the module answered, the HTTP status is 200, for its errors too."
  },
  "security": [{"token": []}],
  "paths": {},
  "components": {
    "securitySchemes": {
      "token": {"type": "http", "scheme": "bearer", "description": "The token lies in the appliance's folder, in the file \"token\"."}
    },
    "schemas": {
      "Success": {
        "type": "object",
        "required": ["success", "data"],
        "properties": {"success": {"const": true}, "data": {"description": "What the method answers."}}
      },
      "Error": {
        "type": "object",
        "required": ["success", "error"],
        "properties": {
          "success": {"const": false},
          "error": {
            "type": "object",
            "required": ["code", "data"],
            "properties": {
              "code": {"type": "integer", "description": "105 not admitted, 400 failed, 401 no method name; from 1001 on the framework's."},
              "data": {"description": "Details: of a refused package \"errinfo\", an object that names the reason by \"sec\", \"key\" and \"param1\" to \"param3\"; of a framework's error a sentence in \"text\"."}
            }
          }
        }
      }
    },
    "headers": {
      "RequestId": {"description": "Under which the logs know the request.", "schema": {"type": "string"}}
    },
    "responses": {
      "FrameworkError": {
        "description": "The framework did not pass the request on, or had no answer to it.",
        "headers": {"X-Request-Id": {"$ref": "#/components/headers/RequestId"}},
        "content": {"application/json": {"schema": {"$ref": "#/components/schemas/Error"}}}
      }
    }
  }
})json";

Json::Value Parsed(const std::string& text) {
    Json::Value value;
    std::istringstream(text) >> value;
    return value;
}

Json::Value SchemaOf(Type type) {
    Json::Value schema;
    schema["type"] = type == Type::kText || type == Type::kFile ? "string" : WordFor(type);
    if (type == Type::kFile) {
        schema["format"] = "binary";
    }
    return schema;
}

Json::Value SchemaOf(const Field& field) {
    Json::Value schema = SchemaOf(field.type);
    schema["description"] = field.meaning;
    if (field.byDefault != nullptr) {
        schema["default"] = Parsed(field.byDefault);
    }
    return schema;
}

Json::Value PropertiesOf(const std::vector<Field>& fields) {
    Json::Value properties(Json::objectValue);
    for (const Field& field : fields) {
        properties[field.name] = SchemaOf(field);
    }
    return properties;
}

bool IsForm(const Method& method) {
    return !method.parameters.empty() && method.parameters.front().type == Type::kFile;
}

Json::Value RequestBodyOf(const Method& method) {
    Json::Value schema;
    schema["type"] = "object";
    schema["properties"] = PropertiesOf(method.parameters);
    for (const Field& field : method.parameters) {
        if (field.byDefault == nullptr) {
            schema["required"].append(field.name);
        }
    }
    Json::Value body;
    body["required"] = schema.isMember("required");
    body["content"][IsForm(method) ? kFormBody : kJsonBody]["schema"] = schema;
    return body;
}

Json::Value DataOf(const Method& method) {
    Json::Value schema;
    schema["type"] = method.members.empty() ? "null" : "object";
    if (!method.members.empty()) {
        schema["properties"] = PropertiesOf(method.members);
    }
    return schema;
}

// The module answers its errors with 200, too.
Json::Value AnswerOf(const Method& method) {
    Json::Value success;
    success["allOf"][0]["$ref"] = "#/components/schemas/Success";
    success["allOf"][1]["properties"]["data"] = DataOf(method);
    Json::Value error;
    error["$ref"] = "#/components/schemas/Error";
    Json::Value answer;
    answer["description"] = std::string(method.answers) + ".";
    answer["headers"]["X-Request-Id"]["$ref"] = "#/components/headers/RequestId";
    Json::Value& choices = answer["content"][kJsonBody]["schema"]["oneOf"];
    choices.append(success);
    choices.append(error);
    return answer;
}

Json::Value OperationOf(const Method& method) {
    Json::Value operation;
    operation["operationId"] = method.name;
    operation["summary"] = method.summary;
    operation["description"] = method.effect == Effect::kNone ? "Changes nothing." : "Changes the appliance.";
    operation["requestBody"] = RequestBodyOf(method);
    operation["responses"]["200"] = AnswerOf(method);
    operation["responses"]["default"]["$ref"] = "#/components/responses/FrameworkError";
    return operation;
}

}  // namespace

Json::Value OpenApiDocument() {
    Json::Value document = Parsed(kFrame);
    const std::string folder = std::string("/api/") + kApi + "/v" + std::to_string(kVersion) + "/";
    for (const Method& method : Methods()) {
        document["paths"][folder + method.name]["post"] = OperationOf(method);
    }
    return document;
}

}  // namespace interface
