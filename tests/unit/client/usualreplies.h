// An appliance where all is well. DP, the add-on 1, runs; its version is 2.1-9 until it is looked at once
// more and is 2.2-1, which is also what can be downloaded. LD, the add-on 6, runs, too.
#pragma once

#include "fakeappliance.h"

#include <string>

// What it answers, but for `others`.
FakeReplies Usual(const FakeReplies& others = {});

// The list of services.
FakeReply ServiceList(bool isDevicePackRunning, bool isDisplayRunning);

// The description of an add-on of that version.
FakeReply Installed(const std::string& version);

// How a download stands.
FakeReply Progress(int status, const std::string& version = "2.2-1");

// What is said of a failure, with the log of the request.
inline const std::string kWhy = "The request was r1\nThe appliance logged:\nT  s:9  F  why\n";
