// The bar window: the one small window pinned to a corner of the screen. It is
// the bar's layer manager (it owns every layer and the settings record that the
// rest of the program reads through gr_settings) and it holds three strips side
// by side or one above the other, all children of the background view "bottom":
//
//   LayerBar   the items of the current layer (hidden when there is none)
//   AppMenu    the application's own menu, the strip pinned into the corner
//   ShelfBar   the replicant shelf (shown only when enabled and not hidden)
//
// The window sizes itself around the strips and moves so that the application
// menu sits exactly in the chosen corner. Strips that do not show are parked at
// (-2000, -2000) rather than removed, so they keep their state.
//
// A low-priority "chores_slave" thread does the rounds every 30 ms: the global
// hot key, the number of workspaces, and every 2.5 s a re-check of one item of
// the shown layer. Between changes of the keys held or of the workspace count
// (the display server wakes it for those) it sleeps until the next item check,
// so an idle bar costs next to nothing. It only locks the window, or the
// application, never both at once, and ends by itself once the window's thread
// is gone or the window deleted its wake-up semaphore.
#ifndef GLIMROW_BAR_WINDOW_H
#define GLIMROW_BAR_WINDOW_H

#include "LayerManager.h"

#include <OS.h>

class AppMenu;
class BMessenger;
class LayerBar;
class ShelfBar;

class BarWindow : public LayerManager {
public:
    // Builds the window hidden; sets gr_manager and gr_settings.
    BarWindow();
    virtual ~BarWindow();

    virtual void MessageReceived(BMessage* message);
    virtual void DispatchMessage(BMessage* message, BHandler* handler);
    virtual void Quit();
    virtual bool QuitRequested();
    virtual void WorkspaceActivated(int32 workspace, bool active);
    virtual void ScreenChanged(BRect frame, color_space mode);
    virtual void WindowActivated(bool active);
    // Shows the window and starts the chores thread.
    virtual void Show();

    // Applies a settings record from the preferences window: a changed
    // direction rebuilds the layer bar and the application menu, anything else
    // only lays them out again.
    virtual void UpdateSettings(settings* newSettings);
    using LayerManager::UpdateSettings;

    // Lays the strips out and moves the window into its corner; full false
    // shows the application menu alone.
    void Reshape(bool full);
    // Shows the layer named by "layer_name", or the next (true) or previous
    // (false) one by "direction"; beeps when there is none to show.
    void SwitchLayer(BMessage* message);
    bool IsShowingShelf() const;

    // The strips; the window owns them. NULL only while the window quits.
    LayerBar* LayerBarView() const;
    AppMenu* AppMenuView() const;
    ShelfBar* ShelfBarView() const;
    // The chores thread, or -1 when there is none.
    thread_id ChoresThread() const;

    // The chores thread. Show() hands Chores() a record of what the thread
    // needs (owned by the thread from then on), so the thread never asks a
    // window that may already be gone for its thread or a messenger. The
    // window is only touched while locked through its messenger.
    static int32 Chores(void* data);
    static void ChoreTask(BarWindow* window, thread_id windowThread, const BMessenger& target,
                          const BMessenger& application, sem_id wakeUp);

private:
    void _MoveToCorner(BRect screenFrame);
    void _EndChores();

    LayerBar* fLayerBar;
    AppMenu* fAppMenu;
    ShelfBar* fShelfBar;
    // The GRShelf that keeps the replicants inside the shelf bar.
    BHandler* fShelf;
    thread_id fChoresThread;
    // Released by the display server when the chores have something to look
    // at before their next item check; deleted as the window quits.
    sem_id fChoresWakeUp;
    bool fShowShelf;
};

#endif // GLIMROW_BAR_WINDOW_H
