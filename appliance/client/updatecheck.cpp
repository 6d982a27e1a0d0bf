#include "client/updatecheck.h"

#include "client/failure.h"
#include "client/jsontext.h"
#include "client/session.h"
#include "client/table.h"

#include <algorithm>
#include <iterator>

namespace client {
namespace {

constexpr std::chrono::seconds kCheckLimit(120);  // others may be waited for, and then the feed

struct Meaning {
    UpdateState state;
    const char* words;
    bool isReleaseThere;
    ExitStatus whenWanted;  // kDone where a release can be had or is known not to be there
};

constexpr Meaning kMeanings[] = {
    {UpdateState::kOthersCheck, "not known: others check for too long", false, ExitStatus::kBusy},
    {UpdateState::kNothingNewer, "up to date", false, ExitStatus::kDone},
    {UpdateState::kNewer, "can be downloaded", true, ExitStatus::kDone},
    {UpdateState::kDownloaded, "is downloaded", true, ExitStatus::kDone},
    {UpdateState::kDownloading, "is being downloaded", true, ExitStatus::kDone},
    {UpdateState::kDownloadFailed, "download failed", true, ExitStatus::kDone},
    {UpdateState::kUpdating, "an update is under way", false, ExitStatus::kBusy},
    {UpdateState::kNotAnswered, "not known: the check failed", false, ExitStatus::kFailed},
};

const Meaning& MeaningOf(UpdateState state) {
    static constexpr Meaning kOther{UpdateState::kNotAnswered, "not known", false, ExitStatus::kFailed};
    const auto* found = std::find_if(std::begin(kMeanings), std::end(kMeanings),
                                     [state](const Meaning& meaning) { return meaning.state == state; });
    return found == std::end(kMeanings) ? kOther : *found;
}

Answer Ask(Session& session, const Service& service) {
    Json::Value params;
    params["service"] = service.number;
    return session.Host().Within(session.TimeLimit(kCheckLimit)).Ask("CheckUpdateInfo", params);
}

UpdateState StateIn(const Answer& answer) {
    const Json::Value status = Member(answer.data, "status");
    if (!status.isInt()) {
        throw Failure(ExitStatus::kFailed, "CheckUpdateInfo failed: the answer holds no status");
    }
    return UpdateState{status.asInt()};
}

}  // namespace

UpdateState CheckForUpdate(Session& session, const Service& service) {
    return StateIn(Ask(session, service));
}

UpdateState CheckForRelease(Session& session, const Service& service) {
    const Answer answer = Ask(session, service);
    const UpdateState state = StateIn(answer);
    const Meaning& meaning = MeaningOf(state);
    if (meaning.whenWanted != ExitStatus::kDone) {
        Failure failure(meaning.whenWanted, "The newest release of " + service.name + ": " + meaning.words);
        session.Host().AddRequest(failure, answer.requestId);
        throw Failure(failure);
    }
    return state;
}

bool IsReleaseThere(UpdateState state) {
    return MeaningOf(state).isReleaseThere;
}

bool IsKnown(UpdateState state) {
    return MeaningOf(state).whenWanted == ExitStatus::kDone || state == UpdateState::kUpdating;
}

std::string StateWords(UpdateState state) {
    return MeaningOf(state).words;
}

void PrintNothingNewer(const Session& session, const Service& service) {
    Json::Value data;
    data["service"] = service.number;
    data["status"] = static_cast<int>(UpdateState::kNothingNewer);
    Table table;
    table.AddRow({"There is no newer release of " + service.name});
    session.Print(data, table);
}

}  // namespace client
