// Whether an archive that is not compressed is whole.
#pragma once

#include <sys/types.h>

namespace camvora {

// False for a tar archive without its end mark, which tar takes for whole when it is cut between two members.
// Walks from header to header of the open file of that size. Anything that does not begin with the header of
// a member counts as whole: a compressed archive tells by itself when it is cut.
bool HasTarEnd(int file, off_t sizeBytes);

}  // namespace camvora
