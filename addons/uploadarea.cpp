#include "addons/uploadarea.h"

#include "addons/disktree.h"
#include "addons/keyvalue.h"
#include "addons/paths.h"

namespace {

bool HasUploadArea(std::string& folder) {
    return ReadKeyValue(kMainConf, kUploadDirKey, folder) >= 0;
}

// By the text alone; nothing is in a folder that is not named by a full path.
bool IsDirectlyIn(std::string folder, const std::string& path) {
    while (!folder.empty() && folder.back() == '/') {
        folder.pop_back();
    }
    const std::string::size_type nameStart = folder.size() + 1;
    if (folder.rfind('/', 0) != 0 || path.compare(0, nameStart, folder + "/") != 0) {
        return false;
    }
    const std::string name = path.substr(nameStart);
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

bool IsTaken(const std::string& path, bool mustExist) {
    if (path.find('\0') != std::string::npos) {
        return false;
    }
    std::string folder;
    return !HasUploadArea(folder) || (IsDirectlyIn(folder, path) && (!mustExist || IsFile(path)));
}

}  // namespace

bool IsUploadPath(const std::string& path) {
    return IsTaken(path, false);
}

bool IsUploadedFile(const std::string& path) {
    return IsTaken(path, true);
}
