// The global functions of the interface kit that ask the display server:
// workspaces, the keyboard and pointer state, beeping.
#include <InterfaceDefs.h>

#include "server/DisplayServer.h"

#include <Point.h>

#include <string.h>

using BPrivate::DisplayServer;

int32 count_workspaces() {
    DisplayServer* server = DisplayServer::Default();
    return server != NULL ? server->CountWorkspaces() : 1;
}

void set_workspace_count(int32 count) {
    if (DisplayServer* server = DisplayServer::Default())
        server->SetWorkspaceCount(count);
}

int32 current_workspace() {
    DisplayServer* server = DisplayServer::Default();
    return server != NULL ? server->CurrentWorkspace() : 0;
}

void activate_workspace(int32 workspace) {
    if (DisplayServer* server = DisplayServer::Default())
        server->ActivateWorkspace(workspace);
}

status_t get_key_info(key_info* info) {
    if (info == NULL)
        return B_BAD_VALUE;
    DisplayServer* server = DisplayServer::Default();
    if (server == NULL) {
        memset(info, 0, sizeof(key_info));
        return B_NO_INIT;
    }
    server->GetKeyInfo(info);
    return B_OK;
}

status_t watch_keys_and_workspaces(sem_id semaphore) {
    DisplayServer* server = DisplayServer::Default();
    if (server == NULL)
        return B_NO_INIT;
    return server->WatchKeysAndWorkspaces(semaphore);
}

void stop_watching_keys_and_workspaces(sem_id semaphore) {
    if (DisplayServer* server = DisplayServer::Default())
        server->StopWatchingKeysAndWorkspaces(semaphore);
}

uint32 modifiers() {
    DisplayServer* server = DisplayServer::Default();
    return server != NULL ? server->Modifiers() : 0;
}

status_t get_mouse(BPoint* position, uint32* buttons) {
    if (position == NULL && buttons == NULL)
        return B_BAD_VALUE;
    DisplayServer* server = DisplayServer::Default();
    if (server == NULL)
        return B_NO_INIT;
    server->GetPointer(position, buttons);
    return B_OK;
}

status_t get_click_speed(bigtime_t* speed) {
    if (speed == NULL)
        return B_BAD_VALUE;
    *speed = DisplayServer::kClickSpeed;
    return B_OK;
}

status_t beep() {
    DisplayServer* server = DisplayServer::Default();
    if (server == NULL)
        return B_NO_INIT;
    server->Beep();
    return B_OK;
}
