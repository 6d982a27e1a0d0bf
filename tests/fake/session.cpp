#include "fake/session.h"

#include "fake/journal.h"
#include "fake/processes.h"
#include "fake/script.h"

namespace fake {

Session::Session() {
    OpenJournal();
}

Session::~Session() {
    CloseJournal();
    ClearScript();
    ResetProcesses();
}

}  // namespace fake
