#include "libcamvora/uploadfolder.h"

#include "libcamvora/keyvalue.h"
#include "libcamvora/paths.h"

namespace camvora {

std::string UploadFolder() {
    const std::string folder = TextOfKey(kPackageConf, "addons_upload_dir", kDefaultUploadFolder);
    return folder.substr(0, folder.find_last_not_of('/') + 1);
}

}  // namespace camvora
