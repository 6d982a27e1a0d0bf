#include "libcamvora/programlog.h"

#include "libcamvora/records.h"
#include "libcamvora/store.h"

namespace camvora {

std::vector<ProgramRun> ProgramRunsOf(const std::string& requestId, int limit) {
    std::vector<ProgramRun> runs;
    TheStore().Query([&](SQLite::Database& database) { runs = ProgramRunsOf(database, requestId, limit); });
    return runs;
}

}  // namespace camvora
