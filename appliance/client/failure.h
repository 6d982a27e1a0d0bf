// Why a command was not done: thrown where it is noticed, reported in one place.
#pragma once

#include "client/exitstatus.h"

#include <json/value.h>

#include <stdexcept>
#include <string>

namespace client {

struct Failure : std::runtime_error {
    // `text` is a sentence without its full stop; it may quote the appliance as it is.
    Failure(ExitStatus exitStatus, const std::string& text) : std::runtime_error(text), status(exitStatus) {}

    ExitStatus status;

    // What the appliance said; empty when it did not answer.
    int code = 0;           // the error's number, 0 for none
    Json::Value data;       // the error's details
    std::string requestId;  // under which the appliance logged the request
    Json::Value log;        // the request's log lines, an array
};

// `failure` for a person: lines of printable text, each with its line end.
std::string FailureText(const Failure& failure);

// `failure` for a program: an object with the one member "error".
Json::Value FailureDocument(const Failure& failure);

}  // namespace client
