// What fails with an exit status, and says why.
#pragma once

#include "client/failure.h"

#include <gmock/gmock.h>

#include <exception>
#include <string>

// A call that throws such a client::Failure.
inline auto FailsWith(client::ExitStatus status, const testing::Matcher<std::string>& text = testing::_) {
    return testing::Throws<client::Failure>(testing::AllOf(testing::Field(&client::Failure::status, status),
                                                           testing::Property(&std::exception::what, text)));
}
