// The commands, each in a source of its own name. Each function adds its command to the program's command
// line; the command runs when the whole line has been parsed, and throws Failure when it is not done. Program
// and session must live until then.
#pragma once

namespace client {

class Command;
class Session;

void AddList(Command program, Session& session);
void AddStatus(Command program, Session& session);
void AddControl(Command program, Session& session);  // start, stop and restart
void AddEvents(Command program, Session& session);
void AddLog(Command program, Session& session);
void AddApps(Command program, Session& session);
void AddMethods(Command program, Session& session);
void AddCall(Command program, Session& session);
void AddUpload(Command program, Session& session);
void AddInstall(Command program, Session& session);
void AddCheck(Command program, Session& session);
void AddPkg(Command program, Session& session);
void AddUpdates(Command program, Session& session);
void AddDownload(Command program, Session& session);  // download and cancel
void AddUpdate(Command program, Session& session);
void AddAutoUpdate(Command program, Session& session);
void AddRestore(Command program, Session& session);
void AddFeed(Command program, Session& session);  // key and build
void AddPair(Command program, Session& session);  // code, join, list and remove
void AddConsole(Command program, Session& session);
void AddOperations(Command program, Session& session);
void AddWait(Command program, Session& session);
void AddSettings(Command program, Session& session);
void AddCompletion(Command program, Session& session);
void AddCompletionWords(Command program, Session& session);  // which the shells use
void AddMan(Command program, Session& session);

}  // namespace client
