// The words that fit at the end of a line that is being typed.
#pragma once

#include <string>
#include <vector>

namespace client {

class Session;
struct CommandDescription;

// Stands for the names of files, which the shell knows best.
inline constexpr char kFileNames[] = ":files";

struct CompletionWord {
    std::string word;
    std::string help;  // one line; may be empty
};

// What the appliance has to say it is asked for, two seconds at most; there are no words where it does not
// answer.
//   program  all that can be typed
//   typed    the words behind the program's name; the last one, which may be empty, is being typed
//   session  whose settings hold where the line names no others
std::vector<CompletionWord> CompletionWords(const CommandDescription& program,
                                            const std::vector<std::string>& typed, const Session& session);

}  // namespace client
