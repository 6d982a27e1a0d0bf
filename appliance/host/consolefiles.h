// The files of the web console.
#pragma once

#include <httplib.h>

#include <map>
#include <string>

namespace host {

// Reads them once; used by all threads at once afterwards. They hold no data of the appliance.
class ConsoleFiles {
public:
    // Reads the files that lie directly in `folder`. Where it cannot be read there are none, and the log says
    // so.
    explicit ConsoleFiles(const std::string& folder);

    // Answers with the file at `path`: "/" or "/console/NAME". Returns false when there is none.
    bool Answer(const std::string& path, const httplib::Request& request, httplib::Response& response) const;

private:
    struct File {
        std::string content;
        std::string type;
        std::string tag;  // of its content, for caches
    };

    std::map<std::string, File> files_;  // by path
};

}  // namespace host
