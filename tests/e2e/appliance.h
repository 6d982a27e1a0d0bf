// A real appliance in a temporary folder: laid out as an installation is, started by its launcher, stopped
// with SIGTERM.
#pragma once

#include "e2e/httpcalls.h"
#include "support/program.h"
#include "support/temporaryfolder.h"

#include <gtest/gtest.h>
#include <sys/types.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace e2e {

class Appliance {
public:
    // Lays one out, starts it with these options of the host, and returns when it serves.
    // Throws std::runtime_error with the launcher's output when it does not.
    explicit Appliance(const std::vector<std::string>& hostOptions = {});

    // Stops it if it still runs, and removes its folder.
    ~Appliance();
    Appliance(const Appliance&) = delete;
    Appliance& operator=(const Appliance&) = delete;

    // The same with the tests' own module in place of the real one.
    static std::vector<std::string> WithTestModule(std::vector<std::string> hostOptions = {});

    // Starts it; returns when it serves, at an address of its own.
    void Launch(const std::vector<std::string>& hostOptions = {});

    // Stops it; expects that it ends well and that no process is left.
    void Stop();

    // Kills all its processes, as a power cut would.
    void Kill();

    // Waits until it ends by itself. Returns the launcher's exit status.
    int WaitForEnd();
    bool IsRunning() const;

    // Clients that show the token, or nothing.
    HttpCalls Owner() const { return HttpCalls(url_, token_); }
    HttpCalls Stranger() const { return HttpCalls(url_, ""); }

    const std::string& Url() const { return url_; }
    const std::string& Token() const { return token_; }

    // The file `name` in its folder.
    std::string PathOf(const std::string& name) const { return folder_.PathOf(name); }

    // The running appliance's own /tmp, wherever that is.
    std::filesystem::path TemporaryPath() const;

    // The file or folder `path` of the package, as seen from outside of the appliance.
    std::filesystem::path PackagePath(const std::string& path) const;

    // The diagnostic log.
    std::string Log() const;

    // Waits until that many requests are being served. Returns false when that does not come about.
    bool WaitForRequests(std::size_t count) const;

    // Processes of the host: the supervisor, and the two that it starts. -1 where there is none.
    pid_t Supervisor() const;
    pid_t RequestServer() const;
    pid_t HttpProcess() const;

    // The host's processes that work on a request, or on what it has ordered.
    std::vector<pid_t> Workers() const;

    // The package's daemons that run.
    std::vector<pid_t> Daemons() const;

private:
    void LayOut() const;
    void WaitUntilServing();

    TemporaryFolder folder_;
    std::unique_ptr<Program> launcher_;  // until its end
    std::string errors_;                 // of the launcher, after its end
    std::string url_;
    std::string token_;
};

// Tests that share the appliance which their suite starts.
class ApplianceTest : public testing::Test {
protected:
    static void Start(const std::vector<std::string>& hostOptions = {}) {
        appliance_ = std::make_unique<Appliance>(hostOptions);
    }
    static void TearDownTestSuite() { appliance_.reset(); }

    inline static std::unique_ptr<Appliance> appliance_;
    HttpCalls owner_ = appliance_->Owner();
    HttpCalls stranger_ = appliance_->Stranger();
};

}  // namespace e2e
