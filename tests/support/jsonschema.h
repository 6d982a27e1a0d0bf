// JSON Schema.
#pragma once

#include <json/value.h>

#include <string>

// What keeps `document` from being as the schema (draft 7) in the file wants it, a line each with its place;
// empty when it is. The schema may refer to others in its folder by the names of their files. Throws
// std::exception when there is no schema in the file.
std::string SchemaProblems(const Json::Value& document, const std::string& schemaFile);
