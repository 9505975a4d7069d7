// BRoster on Linux: see Roster.h for how applications and signatures map.
//
// Finding an application goes through the storage kit's application database
// (desktop entries, mimeapps.list, signatures); starting one builds its command
// lines (a desktop entry's Exec with its field codes, or the executable with the
// files as arguments) and hands them to LaunchHelper; RunningApps remembers the
// children until they end. This process itself counts as running under be_app's
// signature, and launches of it that it refuses (single launch) are delivered to
// be_app as Be does.
#include <Roster.h>

#include "LaunchHelper.h"
#include "RunningApps.h"
#include "storage/AppDatabase.h"
#include "storage/DesktopEntry.h"
#include "storage/XdgFolders.h"

#include <AppDefs.h>
#include <Application.h>
#include <Entry.h>
#include <List.h>
#include <Message.h>
#include <Messenger.h>
#include <Node.h>
#include <NodeInfo.h>
#include <Path.h>

#include <limits.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace BPrivate;

namespace {

const BRoster* roster_instance() {
    // Never destroyed: launched children are reaped by a thread that outlives main().
    static const BRoster* sRoster = new BRoster;
    return sRoster;
}

// What a launch carries to the application.
struct LaunchRequest {
    std::vector<entry_ref> refs;
    std::vector<std::string> arguments;
    bool hasArguments = false;
    const BMessage* message = nullptr;
    const BList* messages = nullptr;
};

std::string path_for_ref(const entry_ref& ref) {
    BPath path(&ref);
    return path.InitCheck() == B_OK ? path.Path() : std::string();
}

void add_refs(const BMessage* message, std::vector<entry_ref>* refs) {
    if (message == nullptr || message->what != B_REFS_RECEIVED)
        return;
    entry_ref ref;
    for (int32 i = 0; message->FindRef("refs", i, &ref) == B_OK; i++)
        refs->push_back(ref);
}

// This process as the roster sees it: be_app's signature and flags when there is
// an application object, the executable's own otherwise.
RunningApp self_app() {
    // The executable and its own signature do not change while it runs.
    static const RunningApp* sExecutable = [] {
        auto* executable = new RunningApp;
        executable->team = getpid();
        char path[PATH_MAX];
        ssize_t length = readlink("/proc/self/exe", path, sizeof(path) - 1);
        if (length > 0) {
            path[length] = '\0';
            executable->path = path;
            AppDatabase::SignatureFor(path, &executable->signature);
        }
        executable->flags = B_MULTIPLE_LAUNCH;
        return executable;
    }();
    RunningApp self = *sExecutable;
    app_info info;
    if (be_app != nullptr && be_app->GetAppInfo(&info) == B_OK && info.signature[0] != '\0') {
        self.signature = info.signature;
        self.flags = info.flags;
    }
    if (!self.signature.empty() && !self.path.empty())
        AppDatabase::RememberApp(self.signature.c_str(), self.path.c_str());
    return self;
}

std::vector<RunningApp> running_apps() {
    std::vector<RunningApp> apps;
    apps.push_back(self_app());
    std::vector<RunningApp> children = RunningApps::List();
    apps.insert(apps.end(), children.begin(), children.end());
    return apps;
}

bool same_file(const std::string& first, const std::string& second) {
    struct stat firstInfo;
    struct stat secondInfo;
    return stat(first.c_str(), &firstInfo) == 0 && stat(second.c_str(), &secondInfo) == 0 &&
           firstInfo.st_dev == secondInfo.st_dev && firstInfo.st_ino == secondInfo.st_ino;
}

bool find_running(const char* signature, const std::string* path, RunningApp* found) {
    for (const RunningApp& app : running_apps()) {
        bool matches = signature != nullptr ? !app.signature.empty() &&
                                                  strcasecmp(app.signature.c_str(), signature) == 0
                                            : path != nullptr && same_file(app.path, *path);
        if (matches) {
            *found = app;
            return true;
        }
    }
    return false;
}

status_t fill_app_info(const RunningApp& app, app_info* info) {
    info->thread = app.team;
    info->team = app.team;
    info->port = -1;
    info->flags = app.flags;
    snprintf(info->signature, sizeof(info->signature), "%s", app.signature.c_str());
    entry_ref ref;
    if (!app.path.empty() && get_ref_for_path(app.path.c_str(), &ref) == B_OK)
        info->ref = ref;
    return B_OK;
}

bool is_in_trash(const std::string& path) {
    std::string trash = home_trash_folder();
    return !trash.empty() && path.compare(0, trash.size() + 1, trash + "/") == 0;
}

// The application that opens a document: its "BEOS:PREF_APP", else the
// default application of its type.
status_t find_app_for_document(const std::string& path, std::string* application) {
    BNode node(path.c_str());
    if (node.InitCheck() != B_OK)
        return node.InitCheck();
    BNodeInfo nodeInfo(&node);
    char signature[B_MIME_TYPE_LENGTH];
    if (nodeInfo.GetPreferredApp(signature) == B_OK) {
        status_t status = AppDatabase::FindApp(signature, application);
        return status == B_OK ? B_OK : B_LAUNCH_FAILED_FILES_APP_NOT_FOUND;
    }
    char type[B_MIME_TYPE_LENGTH];
    struct stat info;
    if (nodeInfo.GetType(type) != B_OK) {
        if (stat(path.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
            return B_LAUNCH_FAILED_NO_PREFERRED_APP;
        strcpy(type, "inode/directory");
    }
    status_t status = AppDatabase::DefaultAppFor(type, application);
    return status == B_OK ? B_OK : B_LAUNCH_FAILED_NO_PREFERRED_APP;
}

// Resolves a ref to the file behind it, following links as a launch does.
status_t resolve_ref(const entry_ref* ref, std::string* path, struct stat* info) {
    BEntry entry(ref, true);
    if (entry.InitCheck() != B_OK) {
        BEntry link(ref, false);
        return link.InitCheck() == B_OK && link.Exists() ? B_LAUNCH_FAILED_NO_RESOLVE_LINK
                                                         : entry.InitCheck();
    }
    if (!entry.Exists()) {
        BEntry link(ref, false);
        return link.Exists() ? B_LAUNCH_FAILED_NO_RESOLVE_LINK : B_ENTRY_NOT_FOUND;
    }
    BPath resolved;
    status_t status = entry.GetPath(&resolved);
    if (status != B_OK)
        return status;
    *path = resolved.Path();
    return stat(path->c_str(), info) == 0 ? B_OK : B_ENTRY_NOT_FOUND;
}

// Hands a launch that this very process refuses to its application object.
void deliver_to_self(const LaunchRequest& request) {
    if (be_app == nullptr)
        return;
    BMessenger messenger(be_app);
    if (request.hasArguments) {
        BMessage argv(B_ARGV_RECEIVED);
        argv.AddInt32("argc", int32(request.arguments.size()));
        for (const std::string& argument : request.arguments)
            argv.AddString("argv", argument.c_str());
        messenger.SendMessage(&argv);
        return;
    }
    bool sent = false;
    if (request.message != nullptr) {
        messenger.SendMessage(const_cast<BMessage*>(request.message));
        sent = true;
    }
    for (int32 i = 0; request.messages != nullptr && i < request.messages->CountItems(); i++) {
        messenger.SendMessage(static_cast<BMessage*>(request.messages->ItemAt(i)));
        sent = true;
    }
    if (!sent && !request.refs.empty()) {
        BMessage refs(B_REFS_RECEIVED);
        for (const entry_ref& ref : request.refs)
            refs.AddRef("refs", &ref);
        messenger.SendMessage(&refs);
        sent = true;
    }
    if (!sent)
        messenger.SendMessage(B_SILENT_RELAUNCH);
}

status_t launch(const char* signature, const entry_ref* ref, LaunchRequest request, team_id* team) {
    if (team != nullptr)
        *team = -1;
    std::string application;
    if (signature != nullptr) {
        status_t status = AppDatabase::FindApp(signature, &application);
        if (status != B_OK)
            return status;
    } else if (ref != nullptr) {
        std::string path;
        struct stat info;
        status_t status = resolve_ref(ref, &path, &info);
        if (status != B_OK)
            return status;
        if (AppDatabase::KindOf(path.c_str(), info) != kNotAnApplication) {
            application = path;
        } else {
            status = find_app_for_document(path, &application);
            if (status != B_OK)
                return status;
            // The document goes first; with arguments it becomes one of them.
            if (request.hasArguments) {
                request.arguments.push_back(path);
            } else {
                entry_ref document;
                if (get_ref_for_path(path.c_str(), &document) == B_OK)
                    request.refs.insert(request.refs.begin(), document);
            }
        }
    } else {
        return B_BAD_VALUE;
    }

    struct stat info;
    if (stat(application.c_str(), &info) != 0)
        return B_LAUNCH_FAILED_APP_NOT_FOUND;
    app_kind kind = AppDatabase::KindOf(application.c_str(), info);
    if (kind == kNotAnApplication)
        return B_LAUNCH_FAILED_EXECUTABLE;
    if (is_in_trash(application))
        return B_LAUNCH_FAILED_APP_IN_TRASH;

    RunningApp app;
    app.path = application;
    AppDatabase::SignatureFor(application.c_str(), &app.signature);
    app.flags = AppDatabase::FlagsFor(application.c_str());
    RunningApp self = self_app();
    if (same_file(self.path, application))
        app.flags = self.flags;

    uint32 launchFlags = app.flags & B_LAUNCH_MASK;
    if (launchFlags != B_MULTIPLE_LAUNCH) {
        RunningApp running;
        bool found = launchFlags == B_EXCLUSIVE_LAUNCH && !app.signature.empty()
                         ? find_running(app.signature.c_str(), nullptr, &running)
                         : find_running(nullptr, &application, &running);
        if (found) {
            if (running.team == self.team)
                deliver_to_self(request);
            if (team != nullptr)
                *team = running.team;
            return B_ALREADY_RUNNING;
        }
    }

    std::vector<std::string> values;
    bool valuesAreFiles = !request.hasArguments;
    if (request.hasArguments) {
        values = request.arguments;
    } else {
        for (const entry_ref& fileRef : request.refs) {
            std::string path = path_for_ref(fileRef);
            if (!path.empty())
                values.push_back(path);
        }
    }

    std::vector<std::vector<std::string>> commands;
    std::string workingDirectory;
    if (kind == kDesktopApplication) {
        DesktopEntry entry;
        status_t status = entry.SetTo(application.c_str());
        if (status != B_OK)
            return B_LAUNCH_FAILED;
        if (!entry.TryExecFound())
            return B_LAUNCH_FAILED_APP_NOT_FOUND;
        status = entry.Commands(values, valuesAreFiles, &commands);
        if (status != B_OK)
            return B_LAUNCH_FAILED;
        if (entry.Boolean("Terminal")) {
            for (std::vector<std::string>& command : commands) {
                status = LaunchHelper::WrapInTerminal(&command);
                if (status != B_OK)
                    return status;
            }
        }
        workingDirectory = entry.String("Path");
    } else {
        std::vector<std::string> command = {application};
        command.insert(command.end(), values.begin(), values.end());
        commands.push_back(command);
    }

    std::vector<team_id> teams;
    status_t status = LaunchHelper::Spawn(commands, workingDirectory, &teams);
    for (team_id child : teams) {
        app.team = child;
        RunningApps::Add(app);
    }
    if (status != B_OK)
        return status;
    if (team != nullptr)
        *team = teams.front();
    return B_OK;
}

status_t arguments_request(int argc, const char* const* args, LaunchRequest* request) {
    if (argc < 0 || (argc > 0 && args == nullptr))
        return B_BAD_VALUE;
    request->hasArguments = true;
    for (int i = 0; i < argc; i++) {
        if (args[i] == nullptr)
            return B_BAD_VALUE;
        request->arguments.push_back(args[i]);
    }
    return B_OK;
}

} // namespace

const BRoster* be_roster = roster_instance();

app_info::app_info() : thread(-1), team(-1), port(-1), flags(B_SINGLE_LAUNCH) {
    signature[0] = '\0';
}

app_info::~app_info() {}

BRoster::BRoster() {}

BRoster::~BRoster() {}

bool BRoster::IsRunning(const char* signature) const {
    return TeamFor(signature) >= 0;
}

bool BRoster::IsRunning(entry_ref* ref) const {
    return TeamFor(ref) >= 0;
}

team_id BRoster::TeamFor(const char* signature) const {
    app_info info;
    status_t status = GetAppInfo(signature, &info);
    return status == B_OK ? info.team : status;
}

team_id BRoster::TeamFor(entry_ref* ref) const {
    app_info info;
    status_t status = GetAppInfo(ref, &info);
    return status == B_OK ? info.team : status;
}

void BRoster::GetAppList(BList* teamIDList) const {
    if (teamIDList == nullptr)
        return;
    for (const RunningApp& app : running_apps())
        teamIDList->AddItem(reinterpret_cast<void*>(intptr_t(app.team)));
}

void BRoster::GetAppList(const char* signature, BList* teamIDList) const {
    if (signature == nullptr || teamIDList == nullptr)
        return;
    for (const RunningApp& app : running_apps()) {
        if (strcasecmp(app.signature.c_str(), signature) == 0)
            teamIDList->AddItem(reinterpret_cast<void*>(intptr_t(app.team)));
    }
}

status_t BRoster::GetAppInfo(const char* signature, app_info* info) const {
    if (signature == nullptr || info == nullptr)
        return B_BAD_VALUE;
    RunningApp app;
    if (!find_running(signature, nullptr, &app))
        return B_ERROR;
    return fill_app_info(app, info);
}

status_t BRoster::GetAppInfo(const entry_ref* ref, app_info* info) const {
    if (ref == nullptr || info == nullptr)
        return B_BAD_VALUE;
    std::string path = path_for_ref(*ref);
    RunningApp app;
    if (path.empty() || !find_running(nullptr, &path, &app))
        return B_ERROR;
    return fill_app_info(app, info);
}

status_t BRoster::GetRunningAppInfo(team_id team, app_info* info) const {
    if (info == nullptr)
        return B_BAD_VALUE;
    for (const RunningApp& app : running_apps()) {
        if (app.team == team)
            return fill_app_info(app, info);
    }
    return B_BAD_TEAM_ID;
}

status_t BRoster::FindApp(const char* mimeType, entry_ref* app) const {
    if (mimeType == nullptr || app == nullptr)
        return B_BAD_VALUE;
    // Our own signature answers with our own executable.
    self_app();
    std::string path;
    status_t status = AppDatabase::FindApp(mimeType, &path);
    if (status != B_OK)
        return status;
    return get_ref_for_path(path.c_str(), app);
}

status_t BRoster::FindApp(entry_ref* ref, entry_ref* app) const {
    if (ref == nullptr || app == nullptr)
        return B_BAD_VALUE;
    std::string path;
    struct stat info;
    status_t status = resolve_ref(ref, &path, &info);
    if (status != B_OK)
        return status;
    std::string application;
    if (AppDatabase::KindOf(path.c_str(), info) != kNotAnApplication) {
        application = path;
    } else {
        status = find_app_for_document(path, &application);
        if (status != B_OK)
            return status;
    }
    return get_ref_for_path(application.c_str(), app);
}

status_t BRoster::Launch(const char* mimeType, BMessage* initialMessage, team_id* team) const {
    if (mimeType == nullptr)
        return B_BAD_VALUE;
    LaunchRequest request;
    request.message = initialMessage;
    add_refs(initialMessage, &request.refs);
    return launch(mimeType, nullptr, request, team);
}

status_t BRoster::Launch(const char* mimeType, BList* messageList, team_id* team) const {
    if (mimeType == nullptr)
        return B_BAD_VALUE;
    LaunchRequest request;
    request.messages = messageList;
    for (int32 i = 0; messageList != nullptr && i < messageList->CountItems(); i++)
        add_refs(static_cast<const BMessage*>(messageList->ItemAt(i)), &request.refs);
    return launch(mimeType, nullptr, request, team);
}

status_t BRoster::Launch(const char* mimeType, int argc, const char* const* args,
                         team_id* team) const {
    if (mimeType == nullptr)
        return B_BAD_VALUE;
    LaunchRequest request;
    status_t status = arguments_request(argc, args, &request);
    if (status != B_OK)
        return status;
    return launch(mimeType, nullptr, request, team);
}

status_t BRoster::Launch(const entry_ref* ref, const BMessage* initialMessage,
                         team_id* team) const {
    if (ref == nullptr)
        return B_BAD_VALUE;
    LaunchRequest request;
    request.message = initialMessage;
    add_refs(initialMessage, &request.refs);
    return launch(nullptr, ref, request, team);
}

status_t BRoster::Launch(const entry_ref* ref, const BList* messageList, team_id* team) const {
    if (ref == nullptr)
        return B_BAD_VALUE;
    LaunchRequest request;
    request.messages = messageList;
    for (int32 i = 0; messageList != nullptr && i < messageList->CountItems(); i++)
        add_refs(static_cast<const BMessage*>(messageList->ItemAt(i)), &request.refs);
    return launch(nullptr, ref, request, team);
}

status_t BRoster::Launch(const entry_ref* ref, int argc, const char* const* args,
                         team_id* team) const {
    if (ref == nullptr)
        return B_BAD_VALUE;
    LaunchRequest request;
    status_t status = arguments_request(argc, args, &request);
    if (status != B_OK)
        return status;
    return launch(nullptr, ref, request, team);
}
