// The folder in which uploaded files lie until somebody takes them.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace host {

// A file on its way has a name of its own, so that the two kinds are told apart whatever becomes of
// processes.
inline constexpr char kUnfinishedSuffix[] = ".part";

// Any process and thread may use it.
class UploadArea {
public:
    explicit UploadArea(std::string folder) : folder_(std::move(folder)) {}

    // Makes the folder, for its owner only. Without it every upload fails.
    void Make() const;

    // The path of a new file, whose name is used by no other.
    std::string NewPath() const;

    // True when that much more can be stored, and some is left for the appliance itself.
    bool HasRoomFor(std::uint64_t sizeBytes) const;

    // Removes the files on their way. Called when nobody can be writing one.
    void RemoveUnfinished() const;

    // Removes the files that have been there for longer than that, but none on its way.
    void RemoveOlderThan(std::chrono::seconds age) const;

private:
    std::string folder_;
};

}  // namespace host
