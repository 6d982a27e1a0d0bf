// What the tests of the module have in common: tables of cases, and requests whose calls are compared.
#pragma once

#include "fake/journal.h"
#include "fake/session.h"
#include "fake/webapi.h"
#include "webapi/apitable.h"

#include <gtest/gtest.h>

#include <string>

using fake::Steps;
using fake::operator+;

// A test that is run for each case of a table, with a session of the fake.
template <typename Case>
class TableTest : public testing::TestWithParam<Case> {
    fake::Session session_;
};

// For INSTANTIATE_TEST_SUITE_P: a case's test has the case's name.
template <typename Case>
std::string CaseName(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

// Serves the first request of a test, an authorised one, and expects these calls after its admission.
inline void ExpectCalls(const ORVA::RequestContent& request, const Steps& steps) {
    fake::Serve(Process, request);
    EXPECT_EQ(fake::Lines(fake::Admission() + steps), fake::Journal());
}
