// BView: life, hooks and the tree of views. Geometry and invalidation are in
// ViewGeometry.cpp, drawing in ViewDrawing.cpp, input in ViewEvents.cpp.
//
// Every view caches, per geometry serial of its window, where its origin lies in
// the window, the part of the window it may draw on (its frame clipped by its
// ancestors) and that part minus its children. Anything that moves, resizes,
// hides or reparents a view bumps the serial, so the caches refill lazily.
#include <View.h>

#include "interface/ViewData.h"
#include "interface/WindowData.h"

#include <Message.h>
#include <Region.h>
#include <Window.h>

#include <algorithm>
#include <math.h>
#include <string.h>

ViewState::ViewState() : font(*be_plain_font) {}

ViewState::ViewState(const ViewState& other)
    : highColor(other.highColor), lowColor(other.lowColor), drawingMode(other.drawingMode),
      sourceAlpha(other.sourceAlpha), alphaFunction(other.alphaFunction), penSize(other.penSize),
      penLocation(other.penLocation), font(other.font),
      clipping(other.clipping != NULL ? new BRegion(*other.clipping) : NULL) {}

ViewState& ViewState::operator=(const ViewState& other) {
    if (this == &other)
        return *this;
    highColor = other.highColor;
    lowColor = other.lowColor;
    drawingMode = other.drawingMode;
    sourceAlpha = other.sourceAlpha;
    alphaFunction = other.alphaFunction;
    penSize = other.penSize;
    penLocation = other.penLocation;
    font = other.font;
    clipping.reset(other.clipping != NULL ? new BRegion(*other.clipping) : NULL);
    return *this;
}

BView::Private::Private(BRect frame, uint32 resizingMode, uint32 flags)
    : frame(frame), scrollOrigin(0, 0), resizingMode(resizingMode), flags(flags) {}

namespace {

BRect rounded(BRect rect) {
    return BRect(roundf(rect.left), roundf(rect.top), roundf(rect.right), roundf(rect.bottom));
}

} // namespace

// #pragma mark - Life

BView::BView(BRect frame, const char* name, uint32 resizingMode, uint32 flags)
    : BHandler(name), fPrivate(new Private(rounded(frame), resizingMode & _RESIZE_MASK_,
                                           flags & ~(uint32)_RESIZE_MASK_)) {}

BView::~BView() {
    if (fPrivate->window != NULL) {
        debugger("Trying to delete a view that belongs to a window. Call RemoveSelf first.");
        return;
    }
    if (fPrivate->parent != NULL)
        RemoveSelf();
    std::vector<BView*> children;
    children.swap(fPrivate->children);
    for (BView* child : children) {
        child->fPrivate->parent = NULL;
        delete child;
    }
    delete fPrivate;
    fPrivate = NULL;
}

void BView::_CheckLock() const {
    BWindow* window = fPrivate->window;
    if (window != NULL && !window->IsLocked())
        debugger("A view method was called without its window locked.");
}

// #pragma mark - Hooks

void BView::AttachedToWindow() {
    // Hook function
}

void BView::AllAttached() {
    // Hook function
}

void BView::DetachedFromWindow() {
    // Hook function
}

void BView::AllDetached() {
    // Hook function
}

void BView::MessageReceived(BMessage* message) {
    BHandler::MessageReceived(message);
}

void BView::Draw(BRect updateRect) {
    // Hook function
}

void BView::DrawAfterChildren(BRect updateRect) {
    // Hook function
}

void BView::WindowActivated(bool active) {
    // Hook function
}

void BView::Pulse() {
    // Hook function
}

void BView::FrameMoved(BPoint newPosition) {
    // Hook function
}

void BView::FrameResized(float newWidth, float newHeight) {
    // Hook function
}

void BView::TargetedByScrollView(BScrollView* scrollView) {
    // Hook function
}

void BView::GetPreferredSize(float* width, float* height) {
    if (width != NULL)
        *width = fPrivate->frame.Width();
    if (height != NULL)
        *height = fPrivate->frame.Height();
}

void BView::ResizeToPreferred() {
    float width;
    float height;
    GetPreferredSize(&width, &height);
    ResizeTo(width, height);
}

void BView::InvalidateLayout(bool descendants) {
    // Views lay themselves out; there is nothing cached to forget here.
    if (descendants) {
        for (BView* child : fPrivate->children)
            child->InvalidateLayout(true);
    }
}

BScrollBar* BView::ScrollBar(orientation posture) const {
    return posture == B_VERTICAL ? fPrivate->verticalScrollBar : fPrivate->horizontalScrollBar;
}

// #pragma mark - The tree

void BView::AddChild(BView* child, BView* before) {
    if (child == NULL)
        return;
    _CheckLock();
    if (child->fPrivate->parent != NULL || child->fPrivate->window != NULL) {
        debugger("BView::AddChild(): the view already has a parent");
        return;
    }
    if (child == this) {
        debugger("BView::AddChild(): a view cannot be its own child");
        return;
    }
    std::vector<BView*>& children = fPrivate->children;
    auto position = std::find(children.begin(), children.end(), before);
    children.insert(position, child);
    child->fPrivate->parent = this;

    BWindow* window = fPrivate->window;
    if (window == NULL)
        return;
    child->_Attach(window);
    child->SetNextHandler(this);
    window->fPrivate->geometrySerial++;
    child->_AttachedHooks();
    child->_AllAttachedHooks();
    // The hooks may have removed it again.
    if (child->fPrivate->window == window)
        child->_InvalidateVisible();
    window->_UpdatePointerViews();
    window->_UpdatePulse();
}

bool BView::RemoveChild(BView* child) {
    if (child == NULL || child->fPrivate->parent != this)
        return false;
    return child->RemoveSelf();
}

bool BView::RemoveSelf() {
    BView* parent = fPrivate->parent;
    BWindow* window = fPrivate->window;
    if (window != NULL) {
        _CheckLock();
        _InvalidateVisible();
        _DetachedHooks();
        _AllDetachedHooks();
        // The hooks ran with the view still in place; now it leaves.
        if (fPrivate->window == window)
            _Detach();
    }
    parent = fPrivate->parent;
    if (parent != NULL) {
        std::vector<BView*>& siblings = parent->fPrivate->children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), this), siblings.end());
        fPrivate->parent = NULL;
    }
    if (window != NULL) {
        // The window's caches are rebuilt from its tree, so only once this view is
        // out of it: a view left in the pointer listeners would get the next mouse
        // event after its owner deleted it.
        window->fPrivate->geometrySerial++;
        window->_UpdatePointerViews();
        window->_UpdatePulse();
    }
    return parent != NULL;
}

void BView::_Attach(BWindow* window) {
    fPrivate->window = window;
    fPrivate->geometrySerial = 0;
    window->AddHandler(this);
    window->fPrivate->views.insert(this);
    for (BView* child : fPrivate->children) {
        child->_Attach(window);
        child->SetNextHandler(this);
    }
}

void BView::_Detach() {
    for (BView* child : fPrivate->children)
        child->_Detach();
    BWindow* window = fPrivate->window;
    if (window == NULL)
        return;
    BWindow::Private* data = window->fPrivate;
    if (data->focus == this) {
        data->focus = NULL;
        window->SetPreferredHandler(NULL);
    }
    if (data->lastMouseMovedView == this)
        data->lastMouseMovedView = NULL;
    if (data->painterView == this)
        data->painterView = NULL;
    // A BMenuBar is a BView at the same address (single inheritance all the way).
    if (static_cast<void*>(data->keyMenuBar) == static_cast<void*>(this))
        data->keyMenuBar = NULL;
    if (static_cast<void*>(data->defaultButton) == static_cast<void*>(this))
        data->defaultButton = NULL;
    data->views.erase(this);
    data->pointerViews.erase(
        std::remove(data->pointerViews.begin(), data->pointerViews.end(), this),
        data->pointerViews.end());
    fPrivate->pointerInside = false;
    window->RemoveHandler(this);
    fPrivate->window = NULL;
}

// The hooks are called for a whole subtree: AttachedToWindow() from the top
// down, then AllAttached() from the bottom up; the detaching hooks likewise.
void BView::_AttachedHooks() {
    BWindow* window = fPrivate->window;
    AttachedToWindow();
    std::vector<BView*> children = fPrivate->children;
    for (BView* child : children) {
        if (window->fPrivate->views.count(child) != 0 && child->fPrivate->parent == this)
            child->_AttachedHooks();
    }
}

void BView::_AllAttachedHooks() {
    BWindow* window = fPrivate->window;
    std::vector<BView*> children = fPrivate->children;
    for (BView* child : children) {
        if (window->fPrivate->views.count(child) != 0 && child->fPrivate->parent == this)
            child->_AllAttachedHooks();
    }
    AllAttached();
}

void BView::_DetachedHooks() {
    BWindow* window = fPrivate->window;
    DetachedFromWindow();
    std::vector<BView*> children = fPrivate->children;
    for (BView* child : children) {
        if (window->fPrivate->views.count(child) != 0 && child->fPrivate->parent == this)
            child->_DetachedHooks();
    }
}

void BView::_AllDetachedHooks() {
    BWindow* window = fPrivate->window;
    std::vector<BView*> children = fPrivate->children;
    for (BView* child : children) {
        if (window->fPrivate->views.count(child) != 0 && child->fPrivate->parent == this)
            child->_AllDetachedHooks();
    }
    AllDetached();
}

int32 BView::CountChildren() const {
    _CheckLock();
    return (int32)fPrivate->children.size();
}

BView* BView::ChildAt(int32 index) const {
    _CheckLock();
    if (index < 0 || index >= (int32)fPrivate->children.size())
        return NULL;
    return fPrivate->children[index];
}

BView* BView::NextSibling() const {
    BView* parent = fPrivate->parent;
    if (parent == NULL)
        return NULL;
    const std::vector<BView*>& siblings = parent->fPrivate->children;
    auto position = std::find(siblings.begin(), siblings.end(), this);
    if (position == siblings.end() || position + 1 == siblings.end())
        return NULL;
    return *(position + 1);
}

BView* BView::PreviousSibling() const {
    BView* parent = fPrivate->parent;
    if (parent == NULL)
        return NULL;
    const std::vector<BView*>& siblings = parent->fPrivate->children;
    auto position = std::find(siblings.begin(), siblings.end(), this);
    if (position == siblings.end() || position == siblings.begin())
        return NULL;
    return *(position - 1);
}

BWindow* BView::Window() const {
    return fPrivate->window;
}

BView* BView::Parent() const {
    // The window's top view is nobody's business.
    BView* parent = fPrivate->parent;
    if (parent != NULL && fPrivate->window != NULL && parent == fPrivate->window->fPrivate->topView)
        return NULL;
    return parent;
}

BView* BView::FindView(const char* name) const {
    if (name == NULL)
        return NULL;
    if (Name() != NULL && strcmp(Name(), name) == 0)
        return const_cast<BView*>(this);
    for (BView* child : fPrivate->children) {
        if (BView* found = child->FindView(name))
            return found;
    }
    return NULL;
}
