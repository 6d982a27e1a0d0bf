// A folder that lasts as long as a test.
#pragma once

#include <string>

// Makes an empty folder; removes it with all that it holds at the end.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& Path() const { return path_; }

    // Writes the file `name` below the folder, with the folders that lead to it.
    void Write(const std::string& name, const std::string& content) const;

private:
    std::string path_;
};

// The name of the address file below an appliance's folder.
inline constexpr char kAddressFile[] = "var/packages/Camvora/target/@CVData/run/address";
