// Files, folders and text conversions.
// Implemented by the package library; each call may be made from any process of a request.
#pragma once

#include <json/value.h>

#include <cstddef>
#include <list>
#include <string>

// True when something of that name exists, whatever it is.
bool IsFileExist(const std::string& path);

// True when `path` is a folder.
bool IsExistDir(const std::string& path);

// Removes the file if there is one. Returns 0 when it is gone, -1 otherwise.
int RemoveFileIfExist(const std::string& path);

// Makes the folder and all missing parents. Returns 0 when it is there, -1 otherwise.
int CreateFullDirPath(const std::string& path);

// Removes the file or the folder with everything in it; follows no link. Returns 0 when it is gone.
int CVRm(const std::string& path);

// Splits `text` at each `separator`; empty elements are dropped.
std::list<std::string> String2StrList(const std::string& text, const std::string& separator);

// Reads a whole file into a new buffer that the caller releases with free().
//   wholeFile  true: all of it, not only the first block
//   buffer     null on failure; `sizeBytes` is then 0
//   returns    0 on success
int ReadContentFromFileToBuf(const std::string& path, bool wholeFile, unsigned char*& buffer,
                             std::size_t& sizeBytes);

// Decodes base64 `text` into the caller's `buffer` and writes exactly `sizeBytes` bytes to the file.
// Fills no more than `sizeBytes`. Returns 0 on success; otherwise no file is left.
int WriteFileByBase64String(const std::string& path, const std::string& text, unsigned char* buffer,
                            int sizeBytes);

// The bytes as base64 text, padded, without line breaks.
std::string HttpBase64EncodeUnsigned(const unsigned char* bytes, std::size_t sizeBytes);

// The value as JSON text; on one line when `compact`.
std::string JsonWrite(const Json::Value& value, bool compact);

// The number in decimal.
std::string itos(long long number);
