// BWindow: construction, the tree of views, its place on the screen and its
// properties. Event dispatch is in WindowEvents.cpp, drawing and updates in
// WindowUpdates.cpp.
//
// A window mirrors its frame, look, feel, flags, workspaces and visibility at the
// display server, which owns the truth about stacking, activation and the
// workspace shown; the server tells the window what changed with messages
// (B_WINDOW_ACTIVATED, B_WINDOW_MOVED...) that DispatchMessage() turns into hooks.
#include <Window.h>

#include "app/AppPrivate.h"
#include "app/LooperPrivate.h"
#include "interface/ViewData.h"
#include "interface/WindowData.h"
#include "interface/WindowPrivate.h"

#include <Application.h>
#include <Autolock.h>
#include <Message.h>
#include <Messenger.h>
#include <View.h>

#include <ctype.h>
#include <math.h>
#include <stdio.h>

using BPrivate::DisplayServer;

namespace {

void decompose_type(window_type type, window_look* look, window_feel* feel) {
    switch (type) {
    case B_DOCUMENT_WINDOW:
        *look = B_DOCUMENT_WINDOW_LOOK;
        *feel = B_NORMAL_WINDOW_FEEL;
        break;
    case B_MODAL_WINDOW:
        *look = B_MODAL_WINDOW_LOOK;
        *feel = B_MODAL_APP_WINDOW_FEEL;
        break;
    case B_FLOATING_WINDOW:
        *look = B_FLOATING_WINDOW_LOOK;
        *feel = B_FLOATING_APP_WINDOW_FEEL;
        break;
    case B_BORDERED_WINDOW:
        *look = B_BORDERED_WINDOW_LOOK;
        *feel = B_NORMAL_WINDOW_FEEL;
        break;
    case B_TITLED_WINDOW:
    case B_UNTYPED_WINDOW:
    default:
        *look = B_TITLED_WINDOW_LOOK;
        *feel = B_NORMAL_WINDOW_FEEL;
        break;
    }
}

} // namespace

// #pragma mark - Life

BWindow::BWindow(BRect frame, const char* title, window_type type, uint32 flags, uint32 workspace)
    : BLooper(title, B_DISPLAY_PRIORITY), fPrivate(new Private) {
    window_look look;
    window_feel feel;
    decompose_type(type, &look, &feel);
    _InitData(frame, title, look, feel, flags, workspace);
}

BWindow::BWindow(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
                 uint32 workspace)
    : BLooper(title, B_DISPLAY_PRIORITY), fPrivate(new Private) {
    _InitData(frame, title, look, feel, flags, workspace);
}

void BWindow::_InitData(BRect frame, const char* title, window_look look, window_feel feel,
                        uint32 flags, uint32 workspace) {
    if (be_app == NULL)
        debugger("You need a valid BApplication object before making a window");

    Private* data = fPrivate;
    data->frame = frame;
    data->title = title != NULL ? title : "";
    data->look = look;
    data->feel = feel;
    data->flags = flags;

    status_t error;
    data->server = DisplayServer::Default(&error);
    data->workspaces = workspace;
    if (workspace == B_CURRENT_WORKSPACE)
        data->workspaces = 1u << (data->server != NULL ? data->server->CurrentWorkspace() : 0);

    _CreateBackBuffer();

    data->topView = new BView(Bounds(), "top view", B_FOLLOW_ALL, B_WILL_DRAW);
    data->topView->_Attach(this);
    data->topView->SetNextHandler(this);

    if (data->server != NULL) {
        data->serverToken = data->server->CreateWindow(BMessenger(this), frame, title, look, feel,
                                                       flags, data->workspaces);
        // Whatever is posted here, by any thread, is work for WaitForIdle().
        BPrivate::LooperPrivate(this).SetDeliveryHook(DisplayServer::NoteDelivery);
        BPrivate::LooperPrivate(this).SetUnlockHook(BPrivate::WindowPrivate::ReleaseFrameChanges);
    }
    BPrivate::AppPrivate::AddWindow(this);

    if ((flags & B_NOT_CLOSABLE) == 0 && !IsModal())
        AddShortcut('W', B_COMMAND_KEY, new BMessage(B_QUIT_REQUESTED));
    AddShortcut('X', B_COMMAND_KEY, new BMessage(B_CUT), NULL);
    AddShortcut('C', B_COMMAND_KEY, new BMessage(B_COPY), NULL);
    AddShortcut('V', B_COMMAND_KEY, new BMessage(B_PASTE), NULL);
    AddShortcut('A', B_COMMAND_KEY, new BMessage(B_SELECT_ALL), NULL);

    // The first update draws everything once the thread runs.
    _Invalidate(BRegion(Bounds()));
}

BWindow::~BWindow() {
    if (!IsLocked())
        Lock();
    Private* data = fPrivate;
    BPrivate::LooperPrivate(this).SetUnlockHook(NULL);

    BView* topView = data->topView;
    topView->_DetachedHooks();
    topView->_AllDetachedHooks();
    topView->_Detach();
    data->topView = NULL;
    delete topView;

    if (data->server != NULL)
        data->server->DestroyWindow(data->serverToken);
    BPrivate::AppPrivate::RemoveWindow(this);

    for (Private::Shortcut& shortcut : data->shortcuts)
        delete shortcut.message;
    data->painter.reset();
    data->backBuffer.reset();
    delete data;
    fPrivate = NULL;
}

void BWindow::Quit() {
    if (!IsLocked()) {
        debugger("BWindow::Quit(): the window must be locked");
        return;
    }
    while (!IsHidden())
        Hide();
    if ((Flags() & B_QUIT_ON_WINDOW_CLOSE) != 0 && be_app != NULL)
        be_app->PostMessage(B_QUIT_REQUESTED);
    BLooper::Quit();
}

bool BWindow::QuitRequested() {
    return BLooper::QuitRequested();
}

thread_id BWindow::Run() {
    thread_id thread = BLooper::Run();
    if (thread >= 0 && fPrivate->server != NULL)
        fPrivate->server->SetWindowRunning(fPrivate->serverToken);
    return thread;
}

// #pragma mark - Views

void BWindow::AddChild(BView* child, BView* before) {
    BAutolock lock(this);
    fPrivate->topView->AddChild(child, before);
}

bool BWindow::RemoveChild(BView* child) {
    BAutolock lock(this);
    return fPrivate->topView->RemoveChild(child);
}

int32 BWindow::CountChildren() const {
    BAutolock lock(const_cast<BWindow*>(this));
    return fPrivate->topView->CountChildren();
}

BView* BWindow::ChildAt(int32 index) const {
    BAutolock lock(const_cast<BWindow*>(this));
    return fPrivate->topView->ChildAt(index);
}

BView* BWindow::FindView(const char* viewName) const {
    BAutolock lock(const_cast<BWindow*>(this));
    return fPrivate->topView->FindView(viewName);
}

BView* BWindow::FindView(BPoint point) const {
    BAutolock lock(const_cast<BWindow*>(this));
    BView* view = fPrivate->topView->_ViewAt(point);
    return view != fPrivate->topView ? view : NULL;
}

BView* BWindow::CurrentFocus() const {
    return fPrivate->focus;
}

BView* BWindow::LastMouseMovedView() const {
    return fPrivate->lastMouseMovedView;
}

// #pragma mark - Hooks

void BWindow::FrameMoved(BPoint newPosition) {
    // Hook function
}

void BWindow::WorkspacesChanged(uint32 oldWorkspaces, uint32 newWorkspaces) {
    // Hook function
}

void BWindow::WorkspaceActivated(int32 workspace, bool state) {
    // Hook function
}

void BWindow::FrameResized(float newWidth, float newHeight) {
    // Hook function
}

void BWindow::ScreenChanged(BRect screenSize, color_space depth) {
    // Hook function
}

void BWindow::WindowActivated(bool active) {
    // Hook function
}

void BWindow::MenusBeginning() {
    // Hook function
}

void BWindow::MenusEnded() {
    // Hook function
}

void BWindow::Minimize(bool minimize) {
    BAutolock lock(this);
    if (fPrivate->minimized == minimize)
        return;
    fPrivate->minimized = minimize;
    if (fPrivate->server != NULL)
        fPrivate->server->MinimizeWindow(fPrivate->serverToken, minimize);
}

bool BWindow::IsMinimized() const {
    return fPrivate->minimized;
}

void BWindow::Zoom(BPoint origin, float width, float height) {
    MoveTo(origin);
    ResizeTo(width, height);
}

void BWindow::Zoom() {
    BRect screen =
        fPrivate->server != NULL ? fPrivate->server->ScreenFrame() : BRect(0, 0, 1279, 799);
    float width = fminf(screen.Width(), fminf(fPrivate->zoomMaxWidth, fPrivate->maxWidth));
    float height = fminf(screen.Height(), fminf(fPrivate->zoomMaxHeight, fPrivate->maxHeight));
    Zoom(screen.LeftTop(), width, height);
}

void BWindow::SetZoomLimits(float maxWidth, float maxHeight) {
    fPrivate->zoomMaxWidth = maxWidth;
    fPrivate->zoomMaxHeight = maxHeight;
}

// #pragma mark - Showing and activation

void BWindow::Show() {
    bool runCalled = true;
    if (Lock()) {
        fPrivate->showLevel--;
        if (fPrivate->showLevel == 0 && fPrivate->server != NULL)
            fPrivate->server->ShowWindow(fPrivate->serverToken);
        runCalled = fPrivate->runCalled;
        fPrivate->runCalled = true;
        Unlock();
    }
    // The first Show() starts the thread; the window is still locked by the
    // thread that made it, as Run() wants.
    if (!runCalled)
        Run();
}

void BWindow::Hide() {
    BAutolock lock(this);
    fPrivate->showLevel++;
    if (fPrivate->showLevel == 1 && fPrivate->server != NULL)
        fPrivate->server->HideWindow(fPrivate->serverToken);
}

bool BWindow::IsHidden() const {
    return fPrivate->showLevel > 0;
}

void BWindow::Activate(bool active) {
    BAutolock lock(this);
    if (fPrivate->server != NULL)
        fPrivate->server->ActivateWindow(fPrivate->serverToken, active);
}

bool BWindow::IsActive() const {
    return fPrivate->active;
}

bool BWindow::IsFront() const {
    return fPrivate->server != NULL && fPrivate->server->IsFrontWindow(fPrivate->serverToken);
}

status_t BWindow::SendBehind(const BWindow* window) {
    if (window == NULL)
        return B_BAD_VALUE;
    if (fPrivate->server == NULL)
        return B_NO_INIT;
    fPrivate->server->SendWindowBehind(fPrivate->serverToken, window->fPrivate->serverToken);
    return B_OK;
}

// #pragma mark - Geometry

BRect BWindow::Frame() const {
    return fPrivate->frame;
}

BRect BWindow::Bounds() const {
    return BRect(0, 0, fPrivate->frame.Width(), fPrivate->frame.Height());
}

void BWindow::MoveBy(float dx, float dy) {
    BAutolock lock(this);
    MoveTo(fPrivate->frame.left + dx, fPrivate->frame.top + dy);
}

void BWindow::MoveTo(BPoint point) {
    MoveTo(point.x, point.y);
}

void BWindow::MoveTo(float x, float y) {
    if (!isfinite(x) || !isfinite(y))
        return;
    BAutolock lock(this);
    x = roundf(x);
    y = roundf(y);
    if (fPrivate->frame.left == x && fPrivate->frame.top == y)
        return;
    fPrivate->frame.OffsetTo(x, y);
    if (fPrivate->server != NULL) {
        fPrivate->server->MoveWindow(fPrivate->serverToken, BPoint(x, y), ++fPrivate->frameRequest);
        fPrivate->frameChangesHeld = true;
    }
}

void BWindow::ResizeBy(float dx, float dy) {
    BAutolock lock(this);
    ResizeTo(fPrivate->frame.Width() + dx, fPrivate->frame.Height() + dy);
}

void BWindow::ResizeTo(float width, float height) {
    if (isnan(width) || isnan(height))
        return;
    BAutolock lock(this);
    Private* data = fPrivate;
    width = roundf(fmaxf(data->minWidth, fminf(width, data->maxWidth)));
    height = roundf(fmaxf(data->minHeight, fminf(height, data->maxHeight)));
    width = fmaxf(0.0f, fminf(width, BPrivate::kMaxBufferExtent - 1));
    height = fmaxf(0.0f, fminf(height, BPrivate::kMaxBufferExtent - 1));
    if (width == data->frame.Width() && height == data->frame.Height())
        return;
    _Resized(width, height);
    if (data->server != NULL) {
        data->server->ResizeWindow(data->serverToken, width, height, ++data->frameRequest);
        data->frameChangesHeld = true;
    }
}

void BWindow::SetSizeLimits(float minWidth, float maxWidth, float minHeight, float maxHeight) {
    BAutolock lock(this);
    if (minWidth > maxWidth || minHeight > maxHeight)
        return;
    fPrivate->minWidth = minWidth;
    fPrivate->maxWidth = maxWidth;
    fPrivate->minHeight = minHeight;
    fPrivate->maxHeight = maxHeight;
    // The window obeys the new limits at once.
    ResizeTo(Bounds().Width(), Bounds().Height());
}

void BWindow::GetSizeLimits(float* minWidth, float* maxWidth, float* minHeight,
                            float* maxHeight) const {
    if (minWidth != NULL)
        *minWidth = fPrivate->minWidth;
    if (maxWidth != NULL)
        *maxWidth = fPrivate->maxWidth;
    if (minHeight != NULL)
        *minHeight = fPrivate->minHeight;
    if (maxHeight != NULL)
        *maxHeight = fPrivate->maxHeight;
}

void BWindow::ConvertToScreen(BPoint* point) const {
    if (point != NULL)
        *point += fPrivate->frame.LeftTop();
}

BPoint BWindow::ConvertToScreen(BPoint point) const {
    ConvertToScreen(&point);
    return point;
}

void BWindow::ConvertFromScreen(BPoint* point) const {
    if (point != NULL)
        *point -= fPrivate->frame.LeftTop();
}

BPoint BWindow::ConvertFromScreen(BPoint point) const {
    ConvertFromScreen(&point);
    return point;
}

void BWindow::ConvertToScreen(BRect* rect) const {
    if (rect != NULL)
        rect->OffsetBy(fPrivate->frame.LeftTop());
}

BRect BWindow::ConvertToScreen(BRect rect) const {
    ConvertToScreen(&rect);
    return rect;
}

void BWindow::ConvertFromScreen(BRect* rect) const {
    if (rect != NULL)
        rect->OffsetBy(-fPrivate->frame.LeftTop());
}

BRect BWindow::ConvertFromScreen(BRect rect) const {
    ConvertFromScreen(&rect);
    return rect;
}

// #pragma mark - Properties

const char* BWindow::Title() const {
    return fPrivate->title.c_str();
}

void BWindow::SetTitle(const char* title) {
    BAutolock lock(this);
    fPrivate->title = title != NULL ? title : "";
    SetName(fPrivate->title.c_str());
    if (fPrivate->server != NULL)
        fPrivate->server->SetWindowTitle(fPrivate->serverToken, fPrivate->title.c_str());
}

status_t BWindow::SetType(window_type type) {
    window_look look;
    window_feel feel;
    decompose_type(type, &look, &feel);
    status_t status = SetLook(look);
    if (status == B_OK)
        status = SetFeel(feel);
    return status;
}

window_type BWindow::Type() const {
    switch (fPrivate->look) {
    case B_MODAL_WINDOW_LOOK:
        return fPrivate->feel == B_MODAL_APP_WINDOW_FEEL ? B_MODAL_WINDOW : B_UNTYPED_WINDOW;
    case B_FLOATING_WINDOW_LOOK:
        return fPrivate->feel == B_FLOATING_APP_WINDOW_FEEL ? B_FLOATING_WINDOW : B_UNTYPED_WINDOW;
    case B_DOCUMENT_WINDOW_LOOK:
        return fPrivate->feel == B_NORMAL_WINDOW_FEEL ? B_DOCUMENT_WINDOW : B_UNTYPED_WINDOW;
    case B_TITLED_WINDOW_LOOK:
        return fPrivate->feel == B_NORMAL_WINDOW_FEEL ? B_TITLED_WINDOW : B_UNTYPED_WINDOW;
    case B_BORDERED_WINDOW_LOOK:
        return fPrivate->feel == B_NORMAL_WINDOW_FEEL ? B_BORDERED_WINDOW : B_UNTYPED_WINDOW;
    default:
        return B_UNTYPED_WINDOW;
    }
}

status_t BWindow::SetLook(window_look look) {
    BAutolock lock(this);
    fPrivate->look = look;
    if (fPrivate->server != NULL)
        fPrivate->server->SetWindowLook(fPrivate->serverToken, look);
    return B_OK;
}

window_look BWindow::Look() const {
    return fPrivate->look;
}

status_t BWindow::SetFeel(window_feel feel) {
    BAutolock lock(this);
    fPrivate->feel = feel;
    if (fPrivate->server != NULL)
        fPrivate->server->SetWindowFeel(fPrivate->serverToken, feel);
    return B_OK;
}

window_feel BWindow::Feel() const {
    return fPrivate->feel;
}

status_t BWindow::SetFlags(uint32 flags) {
    BAutolock lock(this);
    fPrivate->flags = flags;
    if (fPrivate->server != NULL)
        fPrivate->server->SetWindowFlags(fPrivate->serverToken, flags);
    return B_OK;
}

uint32 BWindow::Flags() const {
    return fPrivate->flags;
}

bool BWindow::IsModal() const {
    window_feel feel = fPrivate->feel;
    return feel == B_MODAL_SUBSET_WINDOW_FEEL || feel == B_MODAL_APP_WINDOW_FEEL ||
           feel == B_MODAL_ALL_WINDOW_FEEL;
}

bool BWindow::IsFloating() const {
    window_feel feel = fPrivate->feel;
    return feel == B_FLOATING_SUBSET_WINDOW_FEEL || feel == B_FLOATING_APP_WINDOW_FEEL ||
           feel == B_FLOATING_ALL_WINDOW_FEEL;
}

status_t BWindow::AddToSubset(BWindow* window) {
    if (window == NULL || window->Feel() != B_NORMAL_WINDOW_FEEL)
        return B_BAD_VALUE;
    // Subsets only matter for stacking, which puts every modal and floating
    // window above the normal ones anyway.
    return B_OK;
}

status_t BWindow::RemoveFromSubset(BWindow* window) {
    return window != NULL ? B_OK : B_BAD_VALUE;
}

uint32 BWindow::Workspaces() const {
    return fPrivate->workspaces;
}

void BWindow::SetWorkspaces(uint32 workspaces) {
    BAutolock lock(this);
    if (workspaces == B_CURRENT_WORKSPACE && fPrivate->server != NULL)
        workspaces = 1u << fPrivate->server->CurrentWorkspace();
    if (workspaces == 0 || workspaces == fPrivate->workspaces)
        return;
    fPrivate->workspaces = workspaces;
    if (fPrivate->server != NULL)
        fPrivate->server->SetWindowWorkspaces(fPrivate->serverToken, workspaces);
}

void BWindow::SetKeyMenuBar(BMenuBar* bar) {
    fPrivate->keyMenuBar = bar;
}

BMenuBar* BWindow::KeyMenuBar() const {
    return fPrivate->keyMenuBar;
}

void BWindow::SetDefaultButton(BButton* button) {
    fPrivate->defaultButton = button;
}

BButton* BWindow::DefaultButton() const {
    return fPrivate->defaultButton;
}

void BWindow::SetPulseRate(bigtime_t rate) {
    BAutolock lock(this);
    if (rate < 0)
        return;
    fPrivate->pulseRate = rate;
    _UpdatePulse();
}

bigtime_t BWindow::PulseRate() const {
    return fPrivate->pulseRate;
}
