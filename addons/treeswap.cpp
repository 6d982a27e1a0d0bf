#include "addons/treeswap.h"

#include "addons/disktree.h"
#include "platform/files.h"
#include "platform/log.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

namespace {

constexpr mode_t kFolderMode = 0755;

std::string Aside(const std::string& place) {
    return place + ".aside";
}

std::string Dropped(const std::string& place) {
    return place + ".dropped";
}

bool Rename(const std::string& from, const std::string& to) {
    return rename(from.c_str(), to.c_str()) == 0;
}

// The place is without a tree from its first rename to its second.
bool PutAsideBack(const std::string& place) {
    const std::string dropped = Dropped(place);
    const std::string aside = Aside(place);
    const bool isFree = CVRm(dropped) == 0 && (IsAbsent(place) || Rename(place, dropped));
    const bool wasEmpty = isFree && rmdir(aside.c_str()) == 0;  // no tree was installed
    if (!wasEmpty && !(isFree && Rename(aside, place))) {
        CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "PutBack", "Failed to put back [%s].\n",
                 place.c_str());
        return false;
    }
    (void)SyncParent(place);
    CVPrintf(0, nullptr, nullptr, "addonsservice", __LINE__, "PutBack", "Put back [%s].\n", place.c_str());
    (void)CVRm(dropped);
    return true;
}

}  // namespace

TreeSwap::TreeSwap(std::string place, std::string fresh)
    : place_(std::move(place)), fresh_(std::move(fresh)) {}

bool TreeSwap::Prepare() {
    freshIdentity_ = IdentityOf(fresh_);
    if (!freshIdentity_) {
        return false;
    }
    freshEntries_ = CountEntries(fresh_);
    SyncAll();
    return true;
}

bool TreeSwap::SetAside() const {
    const std::string aside = Aside(place_);
    const bool isAside = IsAbsent(place_) ? mkdir(aside.c_str(), kFolderMode) == 0 : Rename(place_, aside);
    return isAside && SyncParent(place_);
}

bool TreeSwap::IsPlaceFree() const {
    return IsAbsent(place_);
}

// A move to another file system copies, and has nothing on the disk by itself.
bool TreeSwap::Seal() const {
    const std::optional<FolderIdentity> arrived = IdentityOf(place_);
    if (!arrived || !IsAbsent(fresh_)) {
        return false;
    }
    if (*arrived == *freshIdentity_) {
        (void)SyncParent(place_);
    } else {
        SyncAll();
    }
    if (!Rename(Aside(place_), Dropped(place_))) {
        return false;
    }
    (void)SyncParent(place_);  // before anything of what is dropped is removed
    return true;
}

void TreeSwap::PutBack() const {
    if (CountEntries(fresh_) != freshEntries_) {
        (void)CVRm(fresh_);
    }
    if (IsPresent(Aside(place_))) {
        (void)PutAsideBack(place_);
    }
}

void TreeSwap::Drop() const {
    (void)CVRm(Dropped(place_));
}

bool RecoverTree(const std::string& place, const std::function<bool()>& forgetFresh) {
    if (IsAbsent(Aside(place))) {
        return IsAbsent(Dropped(place)) || CVRm(Dropped(place)) == 0;
    }
    return IsPresent(Aside(place)) && forgetFresh() && PutAsideBack(place);
}
