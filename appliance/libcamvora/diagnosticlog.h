// The diagnostic log: one JSON object a line with the members time, pid, request, source, line, function
// and text. Written by CVPrintf with one append per line; read by the host.
#pragma once

#include <json/value.h>

#include <string>

namespace camvora {

// The lines of one request in the order of writing, as a JSON array of objects; empty when there are none
// (any more). Lines that are damaged are passed over.
Json::Value LogLinesOfRequest(const std::string& requestId);

// Sets the log file, and the file of what programs print, aside in place of the one set aside before, when it
// has grown beyond its limit. Called by the host from time to time; writers need not be stopped.
void RotateLogsIfLarge();

}  // namespace camvora
