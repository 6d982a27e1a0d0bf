#include "fakeappliance.h"

#include <sstream>
#include <utility>

namespace {

std::vector<std::string> Words(const std::string& line) {
    std::istringstream stream(line);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

std::string WithoutUrl(std::string text, const std::string& url) {
    const std::size_t at = text.find(url);
    return at == std::string::npos ? text : text.replace(at, url.size(), "URL");
}

}  // namespace

FakeReply Success(const std::string& data) {
    return {200, R"({"success":true,"data":)" + data + "}", "r1", false};
}

FakeReply Error(int httpStatus, const std::string& error) {
    return {httpStatus, R"({"success":false,"error":)" + error + "}", "r1", false};
}

FakeReply InTurn(const std::vector<FakeReply>& replies) {
    FakeReply first = replies.front();
    first.next.assign(replies.begin() + 1, replies.end());
    return first;
}

FakeAppliance::FakeAppliance(std::map<std::string, FakeReply> replies) : host_(std::move(replies)) {
    dir_.Write("token", "secret\n");
    dir_.Write(kAddressFile, host_.Url() + "\n");
}

Outcome FakeAppliance::Run(const std::string& line) const {
    Outcome outcome = Start(line).Wait();
    outcome.out = WithoutUrl(outcome.out, host_.Url());
    outcome.err = WithoutUrl(outcome.err, host_.Url());
    return outcome;
}

ProgramRun FakeAppliance::Start(const std::string& line) const {
    return ProgramRun(Words(line), {"TZ=UTC", "CAMVORA_DIR=" + Dir()});
}
