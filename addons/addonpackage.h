// The services that have packages of their own, and by what such a package is known.
#pragma once

#include "platform/services.h"

#include <string>

struct AddOnPackage {
    ADDON_SERVICE service;
    const char* displayName;
    const char* package;        // the identifier in INFO
    const char* tree;           // the folder of the add-on's tree in the work directory
    const char* place;          // where the installed tree lies
    const char* minVersionKey;  // the main package's setting for the lowest version it accepts
};

// The row of `service`; null for a service without packages.
const AddOnPackage* FindAddOnPackage(ADDON_SERVICE service);

// The row of the package identifier, compared exactly; null for any other text.
const AddOnPackage* FindAddOnPackage(const std::string& package);
