// Trees of add-ons in a real appliance, and their updates.
#pragma once

#include "e2e/inspection.h"

#include <filesystem>
#include <string>
#include <vector>

namespace e2e {

// A tree of the add-on with files, folders and, for the Device Pack, scripts. All that is in it says
// `version`, so two of them have no file in common.
class AddOnTree {
public:
    AddOnTree(const AddOn& addOn, const std::string& version);

    // Copies it to `place`, where nothing or another one may lie.
    void CopyTo(const std::filesystem::path& place) const;

    // Replaces the script.
    void SetScript(const std::string& name, const std::string& text);

    // What a place that holds all of it, and nothing else, looks like.
    Listing Content() const { return ListingOf(folder_.Path()); }

private:
    TemporaryFolder folder_;
};

// Where it is installed.
std::filesystem::path PlaceOf(const Appliance& appliance, const AddOn& addOn);

// The parameter "filePath" that stands for a work directory, the other one where the package came from the
// host.
std::string FilePath(const AddOn& addOn, bool isFromHost = false);

// Puts the trees into the place and into the work directory, and removes what an earlier update left.
void Arrange(const Appliance& appliance, const AddOn& addOn, const AddOnTree& old, const AddOnTree& fresh);

// Sends "Update".
Answer Update(const Appliance& appliance, const AddOn& addOn, const std::string& filePath);

// Inspects two packages in turn, `count` times, each time at a random moment of an update that installs what
// was inspected before. Returns what is wrong with what is installed afterwards, a line for each fault.
std::vector<std::string> InspectDuringUpdates(const Appliance& appliance, const AddOn& addOn, unsigned seed,
                                              unsigned count);

}  // namespace e2e
