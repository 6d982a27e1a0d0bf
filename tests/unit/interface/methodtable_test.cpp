#include "interface/methodtable.h"

#include "webapi/apitable.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using Names = std::set<std::string>;

TEST(MethodTable, HasTheMethodsOfTheModule) {
    Names served;
    for (const APIMethodEntry* row = GetAPITable(); row->method != nullptr; ++row) {
        EXPECT_STREQ(interface::kApi, row->api);
        EXPECT_EQ(interface::kVersion, row->version);
        served.insert(row->method);
    }
    Names described;
    for (const interface::Method& method : interface::Methods()) {
        described.insert(method.name);
    }
    EXPECT_EQ(served, described);
    EXPECT_EQ(described.size(), interface::Methods().size());
}

}  // namespace
