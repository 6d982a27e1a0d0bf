#include "libcamvora/packagefetch.h"

#include "libcamvora/httpget.h"

#include <cerrno>
#include <string>
#include <system_error>
#include <thread>

namespace camvora {

namespace {

constexpr int kOk = 200;
constexpr int kPartialContent = 206;
constexpr int kRangeNotSatisfiable = 416;
constexpr int kServerFailure = 500;

// Only such a one tells that not a byte is another.
bool IsStrong(const std::string& etag) {
    return !etag.empty() && etag.front() == '"';
}

class PackageFetch {
public:
    PackageFetch(const UpdateSettings& settings, const Release& release, ArrivingFile& file,
                 const std::function<void(long long)>& onProgress)
        : settings_(settings), release_(release), file_(file), onProgress_(onProgress) {}

    void Run() {
        for (auto pause = settings_.pauses.begin(); !HasArrived() || !IsAsPublished(); ++pause) {
            if (isFinal_ || pause == settings_.pauses.end()) {
                throw UpdateFailure(problem_);
            }
            std::this_thread::sleep_for(*pause);
        }
    }

private:
    // One attempt. Returns false, with `problem_` set, when the file is not complete after it.
    bool HasArrived() {
        problem_.clear();
        if (file_.SizeBytes() > release_.sizeBytes && !Restart()) {
            return false;
        }
        isFromBeginning_ = file_.SizeBytes() == 0;
        if (file_.SizeBytes() == release_.sizeBytes) {
            return true;
        }
        const HttpEnd end = Fetch(RestOfFile());
        if (problem_.empty()) {
            problem_ = end.problem;
        }
        if (problem_.empty() && file_.SizeBytes() < release_.sizeBytes) {
            problem_ = "the connection ended without the whole file";
        }
        return problem_.empty();
    }

    // A part that was there before may have been damaged: without it the file may be right.
    bool IsAsPublished() {
        if (file_.Sha256() == release_.sha256) {
            return true;
        }
        problem_ = "what arrived is not the file that was published: its SHA-256 is another";
        if (isFromBeginning_) {
            Discard(problem_);
        } else {
            (void)Restart();
        }
        return false;
    }

    HttpGet RestOfFile() {
        HttpGet get;
        get.url = FeedAddress(settings_.conf, release_.file);
        get.pace = settings_.downloadPace;
        if (!isFromBeginning_) {
            get.headers.emplace("Range", "bytes=" + std::to_string(file_.SizeBytes()) + "-");
        }
        if (!isFromBeginning_ && IsStrong(etag_)) {
            get.headers.emplace("If-Range", etag_);
        }
        get.onHead = [this](const httplib::Response& response) { return TakeHead(response); };
        get.onBytes = [this](const char* bytes, std::size_t sizeBytes) {
            return TakeBytes(bytes, sizeBytes);
        };
        return get;
    }

    // Returns false when the body is of no use.
    bool TakeHead(const httplib::Response& response) {
        switch (response.status) {
            case kOk:
                return TakeWholeFile(response);
            case kPartialContent:
                return TakeRest(response.get_header_value("Content-Range"));
            case kRangeNotSatisfiable:
                problem_ = "the server does not have the rest of the file";
                (void)Restart();
                return false;
            default:
                problem_ = "the server answers with status " + std::to_string(response.status);
                isFinal_ = response.status < kServerFailure;
                return false;
        }
    }

    bool TakeWholeFile(const httplib::Response& response) {
        etag_ = response.get_header_value("ETag");
        isFromBeginning_ = true;
        const std::string length = response.get_header_value("Content-Length");
        if (!length.empty() && length != std::to_string(release_.sizeBytes)) {
            RefuseLength();
            return false;
        }
        return Restart();
    }

    bool TakeRest(const std::string& range) {
        const std::string beginning = "bytes " + std::to_string(file_.SizeBytes()) + "-";
        const std::string end = "/" + std::to_string(release_.sizeBytes);
        const bool isTheRest = range.size() > beginning.size() + end.size() &&
                               range.rfind(beginning, 0) == 0 &&
                               range.compare(range.size() - end.size(), end.size(), end) == 0;
        if (!isTheRest) {
            problem_ = "the server sends another part of the file than it was asked for";
            (void)Restart();
        }
        return isTheRest;
    }

    bool TakeBytes(const char* bytes, std::size_t sizeBytes) {
        if (static_cast<long long>(sizeBytes) > release_.sizeBytes - file_.SizeBytes()) {
            RefuseLength();
            return false;
        }
        if (!file_.Append(bytes, sizeBytes)) {
            RefuseDisk();
            return false;
        }
        onProgress_(file_.SizeBytes());
        return true;
    }

    bool Restart() {
        const bool isEmpty = file_.Restart();
        if (!isEmpty) {
            RefuseDisk();
        }
        return isEmpty;
    }

    void RefuseLength() { Discard("the server's file has another size than the one that was published"); }

    void RefuseDisk() { Discard("the file cannot be written: " + std::generic_category().message(errno)); }

    // No attempt more, and nothing of the file is kept.
    void Discard(const std::string& problem) {
        problem_ = problem;
        isFinal_ = true;
        file_.Remove();
    }

    const UpdateSettings& settings_;
    const Release& release_;
    ArrivingFile& file_;
    const std::function<void(long long)>& onProgress_;
    std::string etag_;
    std::string problem_;
    bool isFromBeginning_ = false;  // all of the file came with this attempt
    bool isFinal_ = false;
};

}  // namespace

void FetchPackage(const UpdateSettings& settings, const Release& release, ArrivingFile& file,
                  const std::function<void(long long)>& onProgress) {
    PackageFetch(settings, release, file, onProgress).Run();
}

}  // namespace camvora
