#include "FileMenuItem.h"

#include <Bitmap.h>
#include <Entry.h>
#include <Looper.h>
#include <Menu.h>
#include <Message.h>
#include <OS.h>
#include <Window.h>

#include <math.h>

namespace {

const BRect kIconBounds(0, 0, 15, 15);
const float kIconColumnWidth = 20.0f;
const float kLabelDrop = 3.0f;
const float kMinimumHeight = 18.0f;
// A redraw requested from another thread gives up rather than wait on a window
// whose thread may itself be waiting for the caller's looper.
const bigtime_t kRedrawLockTimeout = 100000;

RefRetriever archived_reference(BMessage* archive) {
    const char* path = NULL;
    if (archive != NULL && archive->FindString("p:path", &path) == B_OK && path != NULL)
        return RefRetriever(path);
    return RefRetriever();
}

RefRetriever copied_reference(const RefRetriever* other) {
    if (other != NULL)
        return RefRetriever(*other);
    return RefRetriever();
}

const char* path_or_empty(const char* path) {
    return path != NULL ? path : "";
}

} // namespace

FileMenuItem::FileMenuItem(const entry_ref* ref, BMenu* menu, BMessage* message)
    : RefRetriever(ref), BMenuItem(menu, message), fIcon(NULL), fAvailable(true) {
    _Init();
}

FileMenuItem::FileMenuItem(const entry_ref* ref, BMessage* message)
    : RefRetriever(ref), BMenuItem(ref != NULL ? ref->name : "", message), fIcon(NULL),
      fAvailable(true) {
    RefUpdated();
    // The ref's own leaf name, which is what the user sees in the folder.
    SetLabel(ref != NULL && ref->name != NULL ? ref->name : "");
}

FileMenuItem::FileMenuItem(const char* path, BMenu* menu, BMessage* message)
    : RefRetriever(path_or_empty(path)), BMenuItem(menu, message), fIcon(NULL), fAvailable(true) {
    _Init();
}

FileMenuItem::FileMenuItem(const char* path, BMessage* message)
    : RefRetriever(path_or_empty(path)), BMenuItem("", message), fIcon(NULL), fAvailable(true) {
    _Init();
}

FileMenuItem::FileMenuItem(const RefRetriever* ref, BMenu* menu, BMessage* message)
    : RefRetriever(copied_reference(ref)), BMenuItem(menu, message), fIcon(NULL), fAvailable(true) {
    _Init();
}

FileMenuItem::FileMenuItem(const RefRetriever* ref, BMessage* message)
    : RefRetriever(copied_reference(ref)), BMenuItem("", message), fIcon(NULL), fAvailable(true) {
    _Init();
}

FileMenuItem::FileMenuItem(BMessage* archive)
    : RefRetriever(archived_reference(archive)), BMenuItem(archive), fIcon(NULL), fAvailable(true) {
}

FileMenuItem::~FileMenuItem() {
    delete fIcon;
}

void FileMenuItem::_Init() {
    RefUpdated();
    SetLabel(RefName());
}

BArchivable* FileMenuItem::Instantiate(BMessage* archive) {
    if (!validate_instantiation(archive, "FileMenuItem"))
        return NULL;
    if (!archive->HasString("p:path"))
        return NULL;
    return new FileMenuItem(archive);
}

status_t FileMenuItem::Archive(BMessage* archive, bool deep) const {
    status_t status = BMenuItem::Archive(archive, deep);
    if (status != B_OK)
        return status;
    return archive->AddString("p:path", Path());
}

status_t FileMenuItem::RefUpdated() {
    status_t status = Status();
    if (status == B_OK) {
        if (fIcon == NULL)
            fIcon = new BBitmap(kIconBounds, B_CMAP8);
        status = fIcon->InitCheck();
        if (status == B_OK)
            status = GetIcon(fIcon, B_MINI_ICON);
        if (status == B_OK) {
            if (!fAvailable) {
                fAvailable = true;
                _Redraw();
            }
            return B_OK;
        }
    }

    delete fIcon;
    fIcon = NULL;
    if (fAvailable) {
        fAvailable = false;
        _Redraw();
    }
    return status;
}

void FileMenuItem::_Redraw() {
    BMenu* menu = Menu();
    BWindow* window = menu != NULL ? menu->Window() : NULL;
    if (window == NULL || window->LockWithTimeout(kRedrawLockTimeout) != B_OK)
        return;
    // The menu may have left the window while we waited for its lock.
    if (Menu() == menu && menu->Window() == window)
        menu->Invalidate(Frame());
    window->Unlock();
}

status_t FileMenuItem::Invoke(BMessage* message) {
    if (!IsEnabled())
        return B_OK;
    BMessage* model = message != NULL ? message : Message();
    if (model == NULL)
        return B_ERROR;

    BLooper* looper = NULL;
    BHandler* handler = Target(&looper);
    if (looper == NULL)
        return BMenuItem::Invoke(message);

    BMessage copy(*model);
    copy.AddInt64("when", system_time());
    copy.AddPointer("source", this);
    if (handler == NULL)
        return looper->PostMessage(&copy);
    return looper->PostMessage(&copy, handler);
}

bool FileMenuItem::IsEnabled() const {
    return fAvailable && BMenuItem::IsEnabled();
}

bool FileMenuItem::IsSelected() const {
    return BMenuItem::IsSelected();
}

BBitmap* FileMenuItem::Icon() const {
    return fIcon;
}

void FileMenuItem::GetContentSize(float* width, float* height) {
    float labelWidth = 0.0f;
    float labelHeight = 0.0f;
    BMenuItem::GetContentSize(&labelWidth, &labelHeight);
    if (width != NULL)
        *width = labelWidth + kIconColumnWidth;
    if (height != NULL)
        *height = fmaxf(labelHeight, kMinimumHeight);
}

void FileMenuItem::DrawContent() {
    BMenu* menu = Menu();
    if (menu == NULL)
        return;
    BPoint pen = menu->PenLocation();
    rgb_color high = menu->HighColor();

    if (fIcon != NULL) {
        menu->SetDrawingMode(B_OP_OVER);
        menu->DrawBitmap(fIcon, pen);
        menu->SetDrawingMode(B_OP_COPY);
    }
    if (!fAvailable && BMenuItem::IsEnabled())
        menu->SetHighColor(tint_color(high, B_LIGHTEN_1_TINT));

    menu->MovePenTo(pen + BPoint(kIconColumnWidth, kLabelDrop));
    BMenuItem::DrawContent();
    menu->SetHighColor(high);
}
