#include "platform/releases.h"

#include "fake/journal.h"
#include "fake/script.h"

// Scripted by the version under test, as "AddonsUpdate::IsVersionNewer VERSION".
bool AddonsUpdate::IsVersionNewer(const std::string& version, const std::string& than, bool allowEqual) {
    fake::Record("AddonsUpdate::IsVersionNewer", version, than, allowEqual);
    return fake::NextAnswer("AddonsUpdate::IsVersionNewer " + version, true).asBool();
}
