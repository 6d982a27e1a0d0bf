// The files of one form on their way to the upload area.
#pragma once

#include "host/frameworkerrors.h"
#include "host/uniquefd.h"
#include "host/uploadarea.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace host {

// Used by the one thread that reads the form. Each function but the last two returns why it failed; nothing
// of the form is of use then.
class Uploads {
public:
    //   area           stays the caller's
    //   announcedSize  of the whole form in bytes, 0 when it is not known
    Uploads(const UploadArea& area, std::uint64_t announcedSize);

    // Removes what was stored, unless it is to be kept.
    ~Uploads();
    Uploads(const Uploads&) = delete;
    Uploads& operator=(const Uploads&) = delete;

    // Begins the file of `field`. Of several files of a field the last one counts.
    //   clientName  the file's name as the client sent it
    std::optional<FrameworkError> Begin(const std::string& field, const std::string& clientName);

    // Adds to the file that was begun last.
    std::optional<FrameworkError> Append(const char* bytes, std::size_t sizeBytes);

    // Called when the form has been read to its end: all files are whole now, and have their names.
    std::optional<FrameworkError> Finish();

    // The files as JSON text: {"field":{"name":"as the client sent it","path":"where it lies"},...}; empty
    // when there are none. Bytes that are no text stay as they are.
    std::string ToJsonText() const;

    // From now on the files stay.
    void Keep() { isKept_ = true; }

private:
    struct File {
        std::string clientName;
        std::string path;
    };

    std::optional<FrameworkError> Flush();
    std::optional<FrameworkError> EndFile();
    void Remove(const File& file) const;

    const UploadArea& area_;
    const std::uint64_t announcedSize_;
    std::map<std::string, File> files_;
    UniqueFd current_;
    std::vector<char> buffer_;  // of what is not yet written
    bool isKept_ = false;
};

}  // namespace host
