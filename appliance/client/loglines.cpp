#include "client/loglines.h"

#include "client/jsontext.h"
#include "client/table.h"

#include <string>

namespace client {
namespace {

std::string Place(const Json::Value& line) {
    const std::string source = LeafText(Member(line, "source"));
    return source.empty() ? "" : source + ":" + LeafText(Member(line, "line"));
}

}  // namespace

void AddLogLines(Table& table, const Json::Value& lines) {
    for (const Json::Value& line : lines) {
        table.AddRow({LeafText(Member(line, "time")), Place(line), LeafText(Member(line, "function")),
                      LeafText(Member(line, "text"))});
    }
}

}  // namespace client
