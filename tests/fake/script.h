// The script: what the fake answers, by the name of the call as it stands in the journal.
#pragma once

#include "fake/journal.h"

#include <json/value.h>

#include <string>

namespace fake {

// Makes `answer` the answer to every call of `function` from now on, once those of AnswerOnce are used up.
void Answer(const std::string& function, const Json::Value& answer);

// Answer for each member of the JSON object `answers`: the function's name with its answer.
void AnswerEach(const std::string& answers);

// Adds `answer` to those that the next calls of `function` get, one call each.
void AnswerOnce(const std::string& function, const Json::Value& answer);

// For the fake's functions: the answer to this call, `otherwise` where the test set none. A forked child
// goes on with a copy of the script as it was at the fork.
Json::Value NextAnswer(const std::string& function, const Json::Value& otherwise);

// The same, with the call recorded.
template <typename... Arguments>
Json::Value Call(const std::string& function, const Json::Value& otherwise, const Arguments&... arguments) {
    Record(function, arguments...);
    return NextAnswer(function, otherwise);
}

// For Session: forgets all answers.
void ClearScript();

}  // namespace fake
