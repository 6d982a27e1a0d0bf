// The diagnostic log, for developers, and the operation log, for the appliance's owner.
// Implemented by the package library; called in any process of a request.
#pragma once

#include <string>

// Writes one line to the diagnostic log. Takes "%m" from the errno at the time of the call.
//   level, category, device   0 and two null texts for a plain line
//   source                    subject of the source file, without folder and ending
//   line, function            where the call stands
//   format                    as for printf, ending in "\n"
void CVPrintf(int level, const char* category, const char* device, const char* source, int line,
              const char* function, const char* format, ...) __attribute__((format(printf, 7, 8)));

// An event of the operation log. The numbers are the package library's.
enum CV_LOG_TYPE : int {};

// Adds an entry to the operation log: the event, a number and three texts that belong to it.
void CVLog(CV_LOG_TYPE type, long long number, const std::string& text1, const std::string& text2,
           const std::string& text3);
