#include "client/releasedownload.h"

#include "client/deferredinterrupt.h"
#include "client/failure.h"
#include "client/interruptnote.h"
#include "client/jsontext.h"
#include "client/progress.h"
#include "client/releases.h"
#include "client/session.h"
#include "client/transferrate.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace client {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds kPollInterval{250};
constexpr std::chrono::hours kDownloadLimit{24};

// An earlier failure stands in the appliance's record until the download that was ordered has begun.
constexpr std::chrono::seconds kPatienceBefore{3};

constexpr char kDownloadsOn[] = "The appliance may go on downloading; \"camvoractl cancel\" ends that\n";

constexpr int kReady = 2;
constexpr int kFailed = 4;

class ReleaseDownload {
public:
    ReleaseDownload(Session& session, Service service)
        : host_(session.Host()),
          service_(std::move(service)),
          progress_(session.ShowsProgress()),
          limit_(session.TimeLimit(kDownloadLimit)) {
        params_["service"] = service_.number;
    }

    std::string Run(UpdateState state) {
        if (state != UpdateState::kDownloaded) {
            progress_.Step("Downloading " + service_.name);
        }
        if (state == UpdateState::kDownloadFailed) {
            earlierFailure_ = DownloadOf(host_, service_);
            patienceEnd_ = begin_ + kPatienceBefore;
        }
        if (state == UpdateState::kNewer || state == UpdateState::kDownloadFailed) {
            requestId_ = host_.Ask("DownloadStart", params_).requestId;
        }
        return Follow();
    }

private:
    // Returns the version.
    std::string Follow() {
        for (;;) {
            if (interrupt_.HasCome()) {
                throw Cancelled();
            }
            const Json::Value record = DownloadOf(host_, service_);  // first: it may begin in between
            const Json::Value answer = host_.Call("DownloadProgress", params_);
            const Json::Value status = Member(answer, "status");
            if (status == Json::Value(kReady)) {
                return VersionIn(answer);
            }
            if (status == Json::Value(kFailed) && !IsEarlierFailure(record)) {
                throw Failed(DownloadOf(host_, service_));
            }
            if (steady_clock::now() - begin_ >= limit_) {
                throw Failure(ExitStatus::kTimedOut, "After " + std::to_string(limit_.count()) +
                                                         " s, the appliance goes on downloading");
            }
            Show(answer, record);
            std::this_thread::sleep_for(kPollInterval);
        }
    }

    // The appliance puts the add-on's short name and a blank in front of it.
    static std::string VersionIn(const Json::Value& answer) {
        const std::string text = LeafText(Member(answer, "version"));
        const std::size_t blank = text.find(' ');
        return blank == std::string::npos ? text : text.substr(blank + 1);
    }

    bool IsEarlierFailure(const Json::Value& record) const {
        return steady_clock::now() < patienceEnd_ && record == earlierFailure_;
    }

    void Show(const Json::Value& answer, const Json::Value& record) {
        const Json::Value bytes = Member(record, "bytes");
        const Json::Value size = Member(record, "size");
        const Json::Value percent = Member(answer, "percent");
        if (bytes.isUInt64() && size.isUInt64() && size.asUInt64() > 0) {
            rate_.Add(steady_clock::now(), bytes.asUInt64());
            ShowShare(static_cast<double>(bytes.asUInt64()) / static_cast<double>(size.asUInt64()),
                      rate_.Words(size.asUInt64()));
        } else if (percent.isInt()) {
            constexpr double kWhole = 100;
            ShowShare(percent.asInt() / kWhole, "");
        }
    }

    void ShowShare(double share, const std::string& words) {
        progress_.SetDone(std::clamp(share, 0.0, 1.0), words);
    }

    Failure Failed(const Json::Value& record) const {
        const std::string problem = LeafText(Member(record, "problem"));
        const bool isGone = record.isNull() && host_.HasRecords();
        Failure failure(ExitStatus::kFailed, "The download of " + service_.name +
                                                 (isGone ? " was cancelled, or never began" : " failed") +
                                                 (problem.empty() ? "" : ": " + problem));
        host_.AddRequest(failure, requestId_);
        return failure;
    }

    Failure Cancelled() const {
        (void)host_.Call("DownloadCancel", params_);
        const bool isReady = Member(DownloadOf(host_, service_), "status") == Json::Value(kReady);
        return {ExitStatus::kInterrupted,
                "Interrupted; the download of " + service_.name +
                    (isReady ? " was complete by then, and stays" : " is cancelled")};
    }

    const Appliance& host_;
    const Service service_;
    Json::Value params_;
    const InterruptNote note_{kDownloadsOn};
    const DeferredInterrupt interrupt_;
    Progress progress_;
    TransferRate rate_;
    const std::chrono::seconds limit_;
    const steady_clock::time_point begin_ = steady_clock::now();
    steady_clock::time_point patienceEnd_ = begin_;
    Json::Value earlierFailure_;
    std::string requestId_;  // of the order; empty for a download that was joined
};

}  // namespace

std::string DownloadRelease(Session& session, const Service& service, UpdateState state) {
    return ReleaseDownload(session, service).Run(state);
}

}  // namespace client
