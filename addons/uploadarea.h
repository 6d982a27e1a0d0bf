// The upload area: the folder that the main package's settings name in "addons_upload_dir", to which the
// package files that requests name are confined. Where the setting is absent any path is taken. A path that
// carries a NUL is never taken: the parts of the system would not agree on which file it names.
#pragma once

#include <string>

// True when `path` names a place directly in the upload area, whatever is there.
bool IsUploadPath(const std::string& path);

// True when `path` names a plain file directly in the upload area. Without an upload area nothing is
// asked about the file.
bool IsUploadedFile(const std::string& path);
