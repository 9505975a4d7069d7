// The roster: finds applications, starts them and knows which of them run.
//
// On Linux an application is a desktop entry (a .desktop file) or an executable
// file. Signatures are Be MIME strings:
//   - an executable or a desktop entry carrying the "BEOS:APP_SIG" attribute has
//     that signature;
//   - any other desktop entry has "application/x-vnd.desktop-" followed by its
//     desktop file ID without the ".desktop" suffix (org.gnome.gedit.desktop is
//     "application/x-vnd.desktop-org.gnome.gedit");
//   - any other executable has "application/x-vnd.exec-" followed by its absolute
//     path ("/usr/bin/xterm" is "application/x-vnd.exec-%2Fusr%2Fbin%2Fxterm").
//   In both derived forms every byte other than A-Z a-z 0-9 . _ + - is written as
//   %XX (two upper-case hex digits), so the result is always a valid MIME string
//   and the rule runs backwards.
//   - "application/x-vnd.Be-TRAK" stands for the default application of
//     inode/directory (the desktop's file manager).
// The roster knows as running: this process (under be_app's signature) and every
// process it started itself until that process ends. It reaps its children.
#ifndef _ROSTER_H
#define _ROSTER_H

#include <Entry.h>
#include <OS.h>
#include <StorageDefs.h>
#include <SupportDefs.h>

class BList;
class BMessage;

struct app_info {
    app_info();
    ~app_info();

    thread_id thread;
    team_id team;
    port_id port;
    uint32 flags;
    entry_ref ref;
    char signature[B_MIME_TYPE_LENGTH];
};

// Application flags ("BEOS:APP_FLAGS")
#define B_SINGLE_LAUNCH (0x0)
#define B_MULTIPLE_LAUNCH (0x1)
#define B_EXCLUSIVE_LAUNCH (0x2)
#define B_LAUNCH_MASK (0x3)
#define B_BACKGROUND_APP (0x4)
#define B_ARGV_ONLY (0x8)

class BRoster {
public:
    BRoster();
    ~BRoster();

    // Running applications
    bool IsRunning(const char* signature) const;
    bool IsRunning(entry_ref* ref) const;
    team_id TeamFor(const char* signature) const;
    team_id TeamFor(entry_ref* ref) const;
    // Appends the team ids (cast to void*) of the running applications.
    void GetAppList(BList* teamIDList) const;
    void GetAppList(const char* signature, BList* teamIDList) const;

    // B_ERROR when the application does not run.
    status_t GetAppInfo(const char* signature, app_info* info) const;
    status_t GetAppInfo(const entry_ref* ref, app_info* info) const;
    status_t GetRunningAppInfo(team_id team, app_info* info) const;

    // By signature, or by a document type (then its preferred application).
    status_t FindApp(const char* mimeType, entry_ref* app) const;
    // An application file gives itself; a document its preferred application.
    status_t FindApp(entry_ref* ref, entry_ref* app) const;

    // Starting applications. On success *team (when given) is the new process id.
    // When a single or exclusive launch application already runs, the result is
    // B_ALREADY_RUNNING and *team is the running team. The messages are not
    // taken over: the roster reads the "refs" of B_REFS_RECEIVED messages and
    // passes those files on the command line. Argument vectors are passed as
    // they are, all argc strings, after the program.
    status_t Launch(const char* mimeType, BMessage* initialMessage = NULL,
                    team_id* team = NULL) const;
    status_t Launch(const char* mimeType, BList* messageList, team_id* team = NULL) const;
    status_t Launch(const char* mimeType, int argc, const char* const* args,
                    team_id* team = NULL) const;
    status_t Launch(const entry_ref* ref, const BMessage* initialMessage = NULL,
                    team_id* team = NULL) const;
    status_t Launch(const entry_ref* ref, const BList* messageList, team_id* team = NULL) const;
    status_t Launch(const entry_ref* ref, int argc, const char* const* args,
                    team_id* team = NULL) const;

private:
    BRoster(const BRoster&);
    BRoster& operator=(const BRoster&);
};

// The process's roster; set before main() runs and never deleted.
extern const BRoster* be_roster;

#endif // _ROSTER_H
