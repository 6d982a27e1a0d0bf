// The commands, each in a source of its own name. Each function adds its command to the program's command
// line; the command runs when the whole line has been parsed, and throws Failure when it is not done. Program
// and session must live until then.
#pragma once

namespace CLI {
class App;
}

namespace client {

class Session;

void AddList(CLI::App& program, Session& session);
void AddStatus(CLI::App& program, Session& session);
void AddControl(CLI::App& program, Session& session);  // start, stop and restart
void AddEvents(CLI::App& program, Session& session);
void AddLog(CLI::App& program, Session& session);
void AddApps(CLI::App& program, Session& session);
void AddMethods(CLI::App& program, Session& session);
void AddCall(CLI::App& program, Session& session);
void AddUpload(CLI::App& program, Session& session);
void AddCheck(CLI::App& program, Session& session);
void AddPkg(CLI::App& program, Session& session);
void AddPair(CLI::App& program, Session& session);  // code, join, list and remove

}  // namespace client
