// What a BWindow keeps behind its private pointer (interface kit only).
#ifndef _INTERFACE_WINDOW_DATA_H
#define _INTERFACE_WINDOW_DATA_H

#include "interface/Painter.h"
#include "server/DisplayServer.h"

#include <Region.h>
#include <Window.h>

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

struct BWindow::Private {
    BPrivate::DisplayServer* server = NULL;
    int32 serverToken = 0;

    BRect frame;
    std::string title;
    window_look look = B_TITLED_WINDOW_LOOK;
    window_feel feel = B_NORMAL_WINDOW_FEEL;
    uint32 flags = 0;
    uint32 workspaces = 0;
    int32 showLevel = 1;
    bool minimized = false;
    bool active = false;
    bool runCalled = false;

    float minWidth = 0.0f;
    float maxWidth = 32768.0f;
    float minHeight = 0.0f;
    float maxHeight = 32768.0f;
    float zoomMaxWidth = 32768.0f;
    float zoomMaxHeight = 32768.0f;
    bigtime_t pulseRate = 500000;
    bool pulsing = false;

    BView* topView = NULL;
    BView* focus = NULL;
    BView* lastMouseMovedView = NULL;
    BMenuBar* keyMenuBar = NULL;
    BButton* defaultButton = NULL;
    // Every view in the tree; hooks are only called on views still in it.
    std::unordered_set<BView*> views;
    // The same, parents before children, as of one geometry serial.
    std::vector<BView*> orderedViews;
    uint64 orderedSerial = 0;
    // Views asking for pointer events wherever the pointer is.
    std::vector<BView*> pointerViews;

    struct Shortcut {
        uint32 key;
        uint32 modifiers;
        BMessage* message;
        BHandler* target;
    };
    std::vector<Shortcut> shortcuts;

    // Drawing: everything is drawn into the back buffer by the window's thread.
    BPrivate::CairoSurfacePointer backBuffer;
    std::unique_ptr<BPrivate::Painter> painter;
    // Which view the painter is set up for, and with which state.
    BView* painterView = NULL;
    uint32 painterState = 0;
    uint64 painterGeometry = 0;
    uint64 painterUpdate = 0;

    // Bumped whenever a view moves, resizes, shows, hides, scrolls or joins or
    // leaves the tree: clip regions are computed again.
    uint64 geometrySerial = 1;
    // Waits for Draw() (window coordinates).
    BRegion dirty;
    bool updatePosted = false;
    bool inUpdate = false;
    BRegion updateRegion;
    uint64 updateSerial = 1;
    // Drawn, not yet handed to the display server.
    BRegion presentPending;
    uint64 presentSerial = 1;
    int32 transactionLevel = 0;
    int32 disabledUpdatesLevel = 0;
    uint32 updatePasses = 0;
    // Numbers the moves and resizes asked of the display server; its messages
    // about older ones describe a frame the window has already left.
    uint32 frameRequest = 0;
    // A move or resize was asked since the lock was last given up: the display
    // server holds it back from the screen until then.
    bool frameChangesHeld = false;
    int32 dispatchDepth = 0;
};

#endif // _INTERFACE_WINDOW_DATA_H
