// Work in several processes at once.
#pragma once

#include "libcamvora/store.h"

#include <sys/types.h>

#include <functional>
#include <memory>

// Forks `count` children that start together; each does `work` with its number. Returns how many of them
// reported success and did not die or throw. None is left.
int CountSuccesses(int count, const std::function<bool(int)>& work);

// The same with one child: true when it reported success.
bool SucceedsInChild(const std::function<bool()>& work);

// For a child of root: from now on it may do no more than the files' modes let their owner do.
bool GiveUpPrivileges();

// A child that does `work` and then stays until it is killed.
class Background {
public:
    explicit Background(const std::function<bool()>& work);
    ~Background() { Kill(); }
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    // Waits for the end of the work: true when it reported success.
    bool Worked() const;

    // Ends it with SIGKILL and waits until it is gone.
    void Kill();

    pid_t Pid() const { return pid_; }

private:
    int result_ = -1;
    pid_t pid_ = -1;
};

// A child that has `store` as after any fork.
std::unique_ptr<Background> StartWith(camvora::Store& store, const std::function<bool()>& work);

// The same: true when it reported success.
bool WorksInChild(camvora::Store& store, const std::function<bool()>& work);
