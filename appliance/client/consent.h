// A person's consent to what a command is going to change.
#pragma once

#include <string>

namespace client {

class Command;
class Session;
class Table;

class Consent {
public:
    // Adds the flags "--yes" and "--dry-run", which write here: it must live until the command has run.
    void AddTo(Command command);

    // True when only the plan is wanted.
    bool IsDryRun() const { return isDryRun_; }

    // Throws Failure (kUsage) when consent has yet to be given and there is nobody to ask.
    void CheckCanBeHad(const Session& session) const;

    // Tells the plan and, unless consent was given on the command line, asks. Throws Failure (kFailed)
    // without consent.
    //   question  one sentence
    //   refusal   what has come of it then, a sentence without its full stop
    void Ask(const Session& session, const Table& plan, const std::string& question,
             const std::string& refusal) const;

private:
    bool isGiven_ = false;
    bool isDryRun_ = false;
};

}  // namespace client
