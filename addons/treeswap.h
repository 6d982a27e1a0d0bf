// Putting a new tree in the place of an installed one, so that a power cut at any moment leaves a whole tree
// to be found. Nothing here follows a link.
//
//   PLACE           the installed tree
//   PLACE.aside     while it is there, whole, and what belongs into the place: the tree that was installed,
//   or
//                   an empty folder where none was
//   PLACE.dropped   what nobody needs any more, perhaps half removed
//
// The one witness is PLACE.aside: it appears, and goes, by one step. Called in the request process with the
// package lock held, and when the appliance starts.
#pragma once

#include "addons/disktree.h"

#include <functional>
#include <optional>
#include <string>

// One replacement, its steps in the order in which they are called.
class TreeSwap {
public:
    // `place` is the installed tree, `fresh` the new one.
    TreeSwap(std::string place, std::string fresh);

    // Brings the new tree to the disk. Returns false when it is no folder.
    bool Prepare();

    // Sets the installed tree aside, right before it would be removed. Returns false when it could not be.
    bool SetAside() const;

    // Whether nothing lies in the place. A tree that is moved to a folder ends up within it.
    bool IsPlaceFree() const;

    // After the move: whether the new tree has arrived, and is on the disk. If so, it stays from now on.
    bool Seal() const;

    // Instead, whatever has failed: what was set aside is in its place again, and what lay there is removed.
    // A new tree that the move has begun to remove is removed to its end, so that nobody installs it.
    void PutBack() const;

    // Removes the tree that was replaced.
    void Drop() const;

private:
    const std::string place_;
    const std::string fresh_;
    long freshEntries_ = 0;
    std::optional<FolderIdentity> freshIdentity_;
};

// What a replacement left that did not come to its end: what was set aside is in its place again afterwards.
// Returns false when it is not, or when something is left that stands in the way of the next replacement.
//   forgetFresh   called before, as a cut move may have thinned a new tree: sees to it that none counts;
//                 nothing is put back when it returns false
bool RecoverTree(const std::string& place, const std::function<bool()>& forgetFresh);
