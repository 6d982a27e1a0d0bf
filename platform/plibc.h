// The platform's base helper library: programs, key-value files, processes.
// Implemented by the platform; plain C functions, called in any process of a request.
#pragma once

#include <sys/types.h>

extern "C" {

// Runs the program at `path` with the arguments up to the first null one, without a shell, and waits for
// its end. Returns its exit status, or -1 when it could not be run or did not end by itself.
int PLIBCExec(const char* path, const char* arg1 = nullptr, const char* arg2 = nullptr,
              const char* arg3 = nullptr, const char* arg4 = nullptr);

// 1 when the file exists, else 0.
int PLIBCFileExist(const char* path);

// Reads the value of `key` from a file of key=value lines into `buffer`, ended by a NUL and cut to
// `bufferSize` bytes with it. Returns the value's length; negative when the file or the key is missing.
// `flags` is 0.
int PLIBCFileGetKeyValue(const char* path, const char* key, char* buffer, int bufferSize, int flags);

// fork(), with its results.
pid_t PLIBCProcFork(void);

// Writes the calling process's id to the file at `path`. Returns 0 on success.
int PLIBCProcPidFileCreate(const char* path);
}
