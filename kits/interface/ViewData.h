// What a BView keeps behind its private pointer (interface kit only).
#ifndef _INTERFACE_VIEW_DATA_H
#define _INTERFACE_VIEW_DATA_H

#include <Font.h>
#include <GraphicsDefs.h>
#include <Region.h>
#include <View.h>

#include <memory>
#include <vector>

// The drawing state PushState() saves and PopState() restores.
struct ViewState {
    rgb_color highColor = make_color(0, 0, 0);
    rgb_color lowColor = make_color(255, 255, 255);
    drawing_mode drawingMode = B_OP_COPY;
    source_alpha sourceAlpha = B_PIXEL_ALPHA;
    alpha_function alphaFunction = B_ALPHA_OVERLAY;
    float penSize = 1.0f;
    BPoint penLocation;
    BFont font;
    // ConstrainClippingRegion() of this state, in view coordinates; NULL: none.
    std::unique_ptr<BRegion> clipping;

    ViewState();
    ViewState(const ViewState& other);
    ViewState& operator=(const ViewState& other);
};

struct BView::Private {
    BRect frame;
    BPoint scrollOrigin;
    uint32 resizingMode;
    uint32 flags;

    BWindow* window = NULL;
    BView* parent = NULL;
    std::vector<BView*> children;
    int32 showLevel = 0;
    rgb_color viewColor = make_color(255, 255, 255);

    ViewState state;
    std::vector<ViewState> savedStates;
    // Bumped whenever something the painter holds for this view changes.
    uint32 stateSerial = 1;

    uint32 eventMask = 0;
    uint32 eventOptions = 0;
    uint32 mouseEventMask = 0;
    uint32 mouseEventOptions = 0;
    // Where the pointer was at this view's last MouseMoved(): inside or not.
    bool pointerInside = false;

    // Window coordinates of the view's origin and what of it can be drawn on,
    // valid for one geometry serial of the window.
    uint64 geometrySerial = 0;
    BPoint windowOrigin;
    BRect visibleRect;
    BRegion clipRegion;
    // The clip region further narrowed by the update in progress and the
    // constrained clipping, valid for one (geometry, update, state) triple.
    uint64 drawClipGeometry = 0;
    uint64 drawClipUpdate = 0;
    uint32 drawClipState = 0;
    BRegion drawClip;
    // The flush cycle in which this view's clip was last added to what the
    // window must present.
    uint64 presentSerial = 0;

    bool inLineArray = false;
    struct Line {
        BPoint start;
        BPoint end;
        rgb_color color;
    };
    std::vector<Line> lines;

    BScrollBar* horizontalScrollBar = NULL;
    BScrollBar* verticalScrollBar = NULL;

    Private(BRect frame, uint32 resizingMode, uint32 flags);
};

#endif // _INTERFACE_VIEW_DATA_H
