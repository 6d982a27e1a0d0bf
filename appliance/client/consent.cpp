#include "client/consent.h"

#include "client/command.h"
#include "client/failure.h"
#include "client/question.h"
#include "client/session.h"
#include "client/table.h"

namespace client {

void Consent::AddTo(Command command) {
    command.Flag("-y,--yes", isGiven_, "Do not ask");
    command.Flag("-n,--dry-run", isDryRun_, "Show what would change, and change nothing");
    command.Exclude("--yes", "--dry-run");
}

void Consent::CheckCanBeHad(const Session& session) const {
    const bool canAsk = !session.IsForPrograms() && CanAsk();
    if (!isGiven_ && !isDryRun_ && !canAsk) {
        throw Failure(
            ExitStatus::kUsage,
            "There is nobody to ask: --yes goes on without asking, --dry-run shows what would change");
    }
}

void Consent::Ask(const Session& session, const Table& plan, const std::string& question,
                  const std::string& refusal) const {
    std::string text = plan.Text();
    text.pop_back();
    if (isGiven_) {
        session.Say(text);
    } else if (!IsAgreed(text, question)) {
        throw Failure(ExitStatus::kFailed, refusal);
    }
}

}  // namespace client
