// Where uploaded files lie until they are taken.
#pragma once

#include <string>

namespace camvora {

// The folder that the main package's settings name, without final "/". Called by the host at its start.
std::string UploadFolder();

}  // namespace camvora
