#include "BarWindow.h"

#include "AppMenu.h"
#include "Commands.h"
#include "DrawingHelpers.h"
#include "Glimrow.h"
#include "Globals.h"
#include "KeyDownFilter.h"
#include "KeyUpFilter.h"
#include "LayerBar.h"
#include "LayerInfo.h"
#include "ShelfBar.h"

#include <Application.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <Messenger.h>
#include <Screen.h>
#include <View.h>

#include <malloc.h>
#include <string.h>

#include <algorithm>

namespace {

const uint32 kBarWindowFlags = B_NOT_MOVABLE | B_NOT_RESIZABLE | B_WILL_ACCEPT_FIRST_CLICK |
                               B_AVOID_FRONT | B_NO_WORKSPACE_ACTIVATION | B_NOT_MINIMIZABLE;
const float kBackgroundTint = 1.555;
// Strips that do not show wait here, outside the window, keeping their state.
const BPoint kParkingPlace(-2000, -2000);
const bigtime_t kChoresInterval = 30000;
const bigtime_t kItemCheckInterval = 2500000;
// By then the layers are read and the bar drawn: what start-up allocated and
// freed goes back to the system instead of staying in the process for good.
const bigtime_t kSettleTime = 2000000;
// A looper busy for longer (a launch alert in the application, a blinking
// item in the bar) costs the chores that round only, never the whole thread.
const bigtime_t kChoresLockTimeout = kChoresInterval;

// The layer name remembered for a workspace, or NULL when the workspace has
// no slot.
const char* layer_name_for(const settings& record, int32 workspace) {
    if (workspace < 0 || workspace >= kLayerNameCount)
        return NULL;
    return record.layerName[workspace];
}

// What the chores thread is given to start with.
struct chores_start {
    BarWindow* window;
    thread_id windowThread;
    BMessenger target;
    BMessenger application;
    sem_id wakeUp;
};

bool workspace_in_mask(uint32 mask, int32 workspace) {
    if (workspace < 0 || workspace >= 32)
        return false;
    return (mask & ((uint32)1 << workspace)) != 0;
}

} // namespace

BarWindow::BarWindow()
    : LayerManager(BRect(-300, -300, -100, -100), gr_app_name, kBarWindowFlags, which_bar_items,
                   which_menu_items),
      fLayerBar(NULL), fAppMenu(NULL), fShelfBar(NULL), fShelf(NULL), fChoresThread(-1),
      fChoresWakeUp(-1), fShowShelf(true) {
    SetLook(B_BORDERED_WINDOW_LOOK);
    SetFeel(B_NORMAL_WINDOW_FEEL);
    SetSizeLimits(0, 3000, 0, 3000);
    SetWorkspaces(fSettings.workspaces);

    gr_manager = this;
    gr_settings = &fSettings;

    BView* bottom = new BView(Bounds(), "bottom", B_FOLLOW_ALL_SIDES, B_WILL_DRAW);
    bottom->SetViewColor(tint_color(ui_color2(kPanelBackgroundColor2), kBackgroundTint));
    AddChild(bottom);

    fLayerBar = new LayerBar();
    bottom->AddChild(fLayerBar);
    LayerInfo* layer = FindLayer(layer_name_for(fSettings, current_workspace()));
    if (layer != NULL && layer->LayerName()[0] == '\0')
        layer = NULL;
    fLayerBar->SetLayer(layer);

    fAppMenu = new AppMenu();
    bottom->AddChild(fAppMenu);
    SetKeyMenuBar(fAppMenu);

    // NOTE: the replicant container (GRShelf, restored from the "shelf" file)
    // is not built yet; the shelf bar stands empty and fShelf stays NULL.
    fShelfBar = new ShelfBar();
    bottom->AddChild(fShelfBar);
    // Every menu bar claims the key menu bar as it attaches: give it back.
    SetKeyMenuBar(fAppMenu);

    AddCommonFilter(new KeyDownFilter(this));
    AddCommonFilter(new KeyUpFilter(this));

    BMessage next(kSwitchLayer);
    next.AddBool("direction", true);
    AddShortcut(B_DOWN_ARROW, 0, new BMessage(next));
    AddShortcut(B_RIGHT_ARROW, 0, new BMessage(next));
    BMessage previous(kSwitchLayer);
    previous.AddBool("direction", false);
    AddShortcut(B_UP_ARROW, 0, new BMessage(previous));
    AddShortcut(B_LEFT_ARROW, 0, new BMessage(previous));

    Reshape(true);
}

BarWindow::~BarWindow() {
    fChoresThread = -1;
    _EndChores();
    // Strips still in the window are taken out first: the window deletes its
    // own views, and a view is never deleted while attached.
    BView* strips[] = {fLayerBar, fAppMenu, fShelfBar};
    for (BView* strip : strips) {
        if (strip == NULL)
            continue;
        if (strip->Window() != NULL)
            strip->RemoveSelf();
        delete strip;
    }
    fLayerBar = NULL;
    fAppMenu = NULL;
    fShelfBar = NULL;
    fShelf = NULL;

    // Nobody may reach a bar that is gone through the globals.
    if (gr_manager == this) {
        gr_manager = NULL;
        gr_settings = NULL;
    }
}

// #pragma mark - Messages

void BarWindow::MessageReceived(BMessage* message) {
    switch (message->what) {
    case kSwitchLayer:
        SwitchLayer(message);
        break;

    case kSwitchWorkspace: {
        int32 workspace;
        if (message->FindInt32("workspace", &workspace) != B_OK)
            workspace = current_workspace();
        if (workspace != current_workspace())
            activate_workspace(workspace);
        break;
    }

    case kShowShelf: {
        BeginViewTransaction();
        bool show;
        if (message->FindBool("show", &show) == B_OK)
            fShowShelf = show;
        Reshape(true);
        EndViewTransaction();
        if (fAppMenu != NULL)
            fAppMenu->Modify();
        break;
    }

    default:
        LayerManager::MessageReceived(message);
        break;
    }
}

void BarWindow::DispatchMessage(BMessage* message, BHandler* handler) {
    switch (message->what) {
    case kUpdateIcon:
    case kWorkspaceCountChanged:
        if (fAppMenu != NULL)
            handler = fAppMenu;
        break;

    case kClearReplicants:
        if (fShelf == NULL) {
            // The replicant container is not built yet: with no shelf the
            // command has nobody to clear.
            return;
        }
        handler = fShelf;
        break;

    case kLayerItemsFound: {
        LayerManager::DispatchMessage(message, handler);
        if (!Lock())
            return;
        LayerInfo* layer = dynamic_cast<LayerInfo*>(handler);
        if (layer != NULL && fLayerBar != NULL && layer == fLayerBar->Layer()) {
            fLayerBar->RescanItems();
            // Full, even when the bar is folded: new items must be seen.
            if (!IsHidden())
                Reshape(true);
        }
        Unlock();
        return;
    }

    default:
        break;
    }
    LayerManager::DispatchMessage(message, handler);
}

// #pragma mark - Life

void BarWindow::Show() {
    BLooper* looper = this;
    LayerManager::Show();
    // Once shown, the window runs on its own thread and may already have been
    // closed and deleted: it is locked through a messenger, which fails for a
    // window that is gone, before anything of it is touched.
    BMessenger window(NULL, looper);
    if (!window.LockTarget())
        return;
    // Show() nests; one chores thread is enough.
    if (fChoresThread < 0) {
        fChoresWakeUp = create_sem(0, "chores wake-up");
        chores_start* start =
            new chores_start{this, Thread(), BMessenger(this), be_app_messenger, fChoresWakeUp};
        fChoresThread = spawn_thread(Chores, "chores_slave", B_LOW_PRIORITY, start);
        if (fChoresThread >= 0)
            resume_thread(fChoresThread);
        else
            delete start;
    }
    Unlock();
}

void BarWindow::Quit() {
    if (fShelf != NULL && fShelf->Looper() != NULL) {
        RemoveHandler(fShelf);
        delete fShelf;
        fShelf = NULL;
    }
    BView* strips[] = {fLayerBar, fAppMenu, fShelfBar};
    for (BView* strip : strips) {
        if (strip != NULL && strip->Window() != NULL)
            strip->RemoveSelf();
    }
    fChoresThread = -1;
    _EndChores();
    LayerManager::Quit();
}

bool BarWindow::QuitRequested() {
    fChoresThread = -1;
    // Closing the bar ends the program.
    be_app_messenger.SendMessage(B_QUIT_REQUESTED);
    return LayerManager::QuitRequested();
}

// #pragma mark - Screen and workspaces

void BarWindow::WorkspaceActivated(int32 workspace, bool active) {
    if (!active)
        return;
    bool full = (fSettings.flags & kMinimizeFlag) == 0 || IsActive();
    LayerInfo* layer = FindLayer(layer_name_for(fSettings, workspace));
    BeginViewTransaction();
    if (fLayerBar != NULL && layer != fLayerBar->Layer())
        fLayerBar->SetLayer(layer);
    Reshape(full);
    EndViewTransaction();
    if (fAppMenu != NULL)
        fAppMenu->Modify();
}

void BarWindow::ScreenChanged(BRect frame, color_space mode) {
    if (!workspace_in_mask(fSettings.workspaces, current_workspace())) {
        BRect bounds = Bounds();
        MoveTo(-(bounds.right - bounds.left) - 10, 0);
    } else
        _MoveToCorner(frame);
    LayerManager::ScreenChanged(frame, mode);
}

void BarWindow::WindowActivated(bool active) {
    if ((fSettings.flags & kMinimizeFlag) != 0)
        Reshape(active);
    LayerManager::WindowActivated(active);
}

// #pragma mark - Layout

void BarWindow::Reshape(bool full) {
    BRect screenFrame = BScreen(this).Frame();
    bool hasLayer = fLayerBar != NULL && fLayerBar->Layer() != NULL;

    // An odd direction puts the application menu at the far end; the shelf
    // stands next to it unless it goes to the tail.
    bool shelfOnTail = (fSettings.flags & kShelfOnTailFlag) != 0;
    BView* strips[3];
    if ((fSettings.direction & 1) == 0) {
        strips[0] = fAppMenu;
        strips[1] = shelfOnTail ? (BView*)fLayerBar : (BView*)fShelfBar;
        strips[2] = shelfOnTail ? (BView*)fShelfBar : (BView*)fLayerBar;
    } else {
        strips[0] = shelfOnTail ? (BView*)fShelfBar : (BView*)fLayerBar;
        strips[1] = shelfOnTail ? (BView*)fLayerBar : (BView*)fShelfBar;
        strips[2] = fAppMenu;
    }

    bool showShelf = (fSettings.flags & kShelfFlag) != 0 && fShowShelf;
    BRect running(0, 0, -2, -2);
    for (BView* strip : strips) {
        if (strip == NULL)
            continue;
        bool hidden = (strip == fLayerBar && !hasLayer) || (!full && strip != fAppMenu) ||
                      (strip == fShelfBar && !showShelf);
        if (hidden) {
            strip->MoveTo(kParkingPlace);
            continue;
        }
        if (fSettings.direction < 2)
            strip->MoveTo(0, running.bottom + 2);
        else
            strip->MoveTo(running.right + 2, 0);
        strip->InvalidateLayout();
        strip->ResizeToPreferred();
        running = strip->Frame();
    }

    // The cross size is the last placed strip's, as the bar has always done.
    BRect frame = Frame();
    if (frame.right - frame.left != running.right || frame.bottom - frame.top != running.bottom)
        ResizeTo(running.right, running.bottom);

    _MoveToCorner(screenFrame);
}

void BarWindow::_MoveToCorner(BRect screenFrame) {
    if (fAppMenu == NULL)
        return;
    // The screen's left-top is the origin.
    BRect menu = fAppMenu->Frame();
    switch (fSettings.location) {
    case 0:
        MoveTo(-menu.left, -menu.top);
        break;
    case 1:
        MoveTo(screenFrame.right - menu.right, -menu.top);
        break;
    case 2:
        MoveTo(screenFrame.right - menu.right, screenFrame.bottom - menu.bottom);
        break;
    case 3:
        MoveTo(-menu.left, screenFrame.bottom - menu.bottom);
        break;
    default:
        break;
    }
}

void BarWindow::SwitchLayer(BMessage* message) {
    LayerInfo* target = NULL;
    const char* name;
    bool forward;
    if (message != NULL && message->FindString("layer_name", &name) == B_OK)
        target = FindLayer(name);
    else if (message != NULL && message->FindBool("direction", &forward) == B_OK) {
        LayerInfo* layer = fLayerBar != NULL ? fLayerBar->Layer() : NULL;
        // The walk wraps around; a list of nothing but the targets would let
        // it go round for ever, so it ends after one visit of every handler.
        for (int32 steps = CountHandlers(); steps >= 0; steps--) {
            layer = FindNextLayer(layer, forward ? 1 : -1);
            if (layer == NULL || layer->LayerName()[0] != '\0')
                break;
        }
        if (layer != NULL && layer->LayerName()[0] != '\0')
            target = layer;
    }

    if (target == NULL || fLayerBar == NULL) {
        beep();
        return;
    }

    BeginViewTransaction();
    fLayerBar->SetLayer(target);
    SetKeyMenuBar(fLayerBar);
    Reshape(true);
    EndViewTransaction();
    if (fAppMenu != NULL)
        fAppMenu->Modify();
}

bool BarWindow::IsShowingShelf() const {
    return fShowShelf;
}

// #pragma mark - Settings

void BarWindow::UpdateSettings(settings* newSettings) {
    BView* bottom = FindView("bottom");
    if (newSettings == NULL || bottom == NULL)
        return;
    int32 difference = fSettings.compare(newSettings, true);
    if (difference == 0)
        return;

    // No intermediate layout is ever seen.
    MoveTo(kParkingPlace);
    BeginViewTransaction();

    if (difference != 5) {
        fSettings.set_to(*newSettings);
        BView* strips[] = {fLayerBar, fAppMenu};
        for (BView* strip : strips) {
            if (strip == NULL)
                continue;
            strip->InvalidateLayout();
            strip->ResizeToPreferred();
        }
    } else {
        // The strips fix their row or column layout when they are made: a new
        // direction needs new ones. The layers go back to the loader so that
        // the new bar borrows complete, freshly read layers.
        BView* strips[] = {fLayerBar, fAppMenu};
        for (BView* strip : strips) {
            if (strip == NULL)
                continue;
            strip->RemoveSelf();
            delete strip;
        }
        fLayerBar = NULL;
        fAppMenu = NULL;
        for (int32 index = 0; index < CountHandlers(); index++) {
            if (LayerInfo* layer = dynamic_cast<LayerInfo*>(HandlerAt(index))) {
                layer->Initialize();
                layer->SetEnabled(true);
            }
        }
        fSettings.set_to(*newSettings);
        fLayerBar = new LayerBar();
        fAppMenu = new AppMenu();
        bottom->AddChild(fLayerBar);
        bottom->AddChild(fAppMenu);
        SetKeyMenuBar(fAppMenu);
    }

    SetWorkspaces(fSettings.workspaces);
    fLayerBar->SetLayer(FindLayer(layer_name_for(fSettings, current_workspace())));
    Reshape((fSettings.flags & kMinimizeFlag) == 0 || IsActive());
    if (!IsActive())
        Activate(true);
    EndViewTransaction();
    fAppMenu->Modify();
}

// #pragma mark - Accessors

LayerBar* BarWindow::LayerBarView() const {
    return fLayerBar;
}

AppMenu* BarWindow::AppMenuView() const {
    return fAppMenu;
}

ShelfBar* BarWindow::ShelfBarView() const {
    return fShelfBar;
}

thread_id BarWindow::ChoresThread() const {
    return fChoresThread;
}

// #pragma mark - Chores

int32 BarWindow::Chores(void* data) {
    chores_start* start = static_cast<chores_start*>(data);
    ChoreTask(start->window, start->windowThread, start->target, start->application, start->wakeUp);
    delete start;
    return 0;
}

void BarWindow::ChoreTask(BarWindow* window, thread_id windowThread, const BMessenger& target,
                          const BMessenger& application, sem_id wakeUp) {
    // The window may be deleted at any moment once its thread is gone, and the
    // application once Run() returns: both are locked through messengers,
    // whose locks fail cleanly on a looper that went away, and only touched
    // while locked.
    auto lock = [](const BMessenger& messenger) {
        return messenger.LockTargetWithTimeout(kChoresLockTimeout) == B_OK;
    };
    int32 workspaceCount = count_workspaces();
    bigtime_t lastTick = 0;
    int32 index = 0;
    // The application sets its hot-key record before the bar shows and never
    // changes it: a copy taken once spares every later round the application's
    // lock, and the keyboard is not even asked when there is no hot key.
    uint8 hotKey[kHotKeyLength];
    bool hotKeyRead = false;
    bool hasHotKey = false;
    bigtime_t trimTime = system_time() + kSettleTime;

    while (BLooper::LooperForThread(windowThread) != NULL) {
        bigtime_t now = system_time();
        // Asked before anything is read, so that a change after the reading
        // still wakes the next round. Asking again changes nothing.
        bool watched = wakeUp >= 0 && watch_keys_and_workspaces(wakeUp) == B_OK;
        // A duty skipped for a lock is tried again at the next 30 ms round.
        bool behind = false;

        int32 count = count_workspaces();
        if (count != workspaceCount) {
            if (lock(target)) {
                window->PostMessage(kWorkspaceCountChanged);
                workspaceCount = count;
                window->Unlock();
            } else
                behind = true;
        }

        if (now - lastTick > kItemCheckInterval && lock(target)) {
            LayerInfo* layer = window->fLayerBar != NULL ? window->fLayerBar->Layer() : NULL;
            if (layer != NULL) {
                if (index >= layer->CountItems())
                    index = 0;
                BMessage check(kLayerCheckItem);
                check.AddInt32("index", index);
                window->PostMessage(&check, layer);
                index++;
            } else
                index = 0;
            lastTick = now;
            window->Unlock();
        }

        if (!hotKeyRead && lock(application)) {
            BLooper* looper = NULL;
            application.Target(&looper);
            Glimrow* glimrow = dynamic_cast<Glimrow*>(looper);
            const uint8* record = glimrow != NULL ? glimrow->HotKey() : NULL;
            if (record != NULL) {
                memcpy(hotKey, record, sizeof(hotKey));
                hasHotKey = true;
            }
            hotKeyRead = true;
            if (looper != NULL)
                looper->Unlock();
        }
        behind = behind || !hotKeyRead;

        key_info keys;
        // Exactly the recorded keys: one more held key defeats it.
        bool hotKeyHeld = hasHotKey && get_key_info(&keys) == B_OK &&
                          memcmp(hotKey, keys.key_states, sizeof(keys.key_states)) == 0;
        if (hotKeyHeld && lock(target)) {
            if (!window->IsHidden() && !window->IsActive())
                window->Activate(true);
            window->Unlock();
        }

        if (trimTime != 0 && now >= trimTime) {
            malloc_trim(0);
            trimTime = 0;
        }

        // While the hot key is held the bar is activated again each round, as
        // long as it is held. Otherwise nothing the rounds look at changes
        // before the next item check unless the display server says so: a bar
        // that woke every 30 ms for nothing would cost more than all else it
        // does while idle.
        bigtime_t wait = kChoresInterval;
        if (watched && !hotKeyHeld && !behind) {
            bigtime_t next = lastTick + kItemCheckInterval;
            if (trimTime != 0)
                next = std::min(next, trimTime);
            wait = std::max(kChoresInterval, next - now);
        }
        if (wakeUp < 0) {
            snooze(wait);
            continue;
        }
        if (acquire_sem_etc(wakeUp, 1, B_RELATIVE_TIMEOUT, wait) == B_BAD_SEM_ID) {
            // The window deleted it as it quit.
            break;
        }
        // Several changes at once need one round only.
        int32 pending;
        if (get_sem_count(wakeUp, &pending) == B_OK && pending > 0)
            acquire_sem_etc(wakeUp, pending, B_RELATIVE_TIMEOUT, 0);
    }
}

void BarWindow::_EndChores() {
    if (fChoresWakeUp < 0)
        return;
    stop_watching_keys_and_workspaces(fChoresWakeUp);
    delete_sem(fChoresWakeUp);
    fChoresWakeUp = -1;
}
