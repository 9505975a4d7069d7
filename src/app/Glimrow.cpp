#include "Glimrow.h"

#include "AlertBox.h"
#include "BarWindow.h"
#include "Commands.h"
#include "FileHelpers.h"
#include "Globals.h"
#include "HotKeyWindow.h"
#include "IOSlave.h"
#include "LayerInfo.h"
#include "LayerManager.h"
#include "Settings.h"

#include <Alert.h>
#include <Entry.h>
#include <Font.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <Node.h>
#include <OS.h>
#include <Roster.h>
#include <StorageDefs.h>
#include <TextView.h>
#include <Window.h>

#include <stdio.h>
#include <string.h>
#include <string>

namespace {

const char* const kFileManagerSignature = "application/x-vnd.Be-TRAK";

// How often the start-up looks whether the hot-key window has closed.
const bigtime_t kHotKeyPollInterval = 20000;

const char* const kAboutText = "Glimrow 1.1.3\n"
                               "helps your life be easier.\n"
                               "\n"
                               "The Glimrow for Linux developers\n"
                               "Contact: through the project's issue tracker\n"
                               "Support: see the README that comes with it\n";
// Character ranges of the About text that are styled: the first line, and the
// letters b and e of "be" in the second.
const int32 kAboutTitleEnd = 13;
const int32 kAboutLetterB = 30;
const int32 kAboutLetterE = 31;
const float kAboutTitleGrowth = 2.0;

char* copy_bytes(const void* data, size_t size) {
    char* copy = new char[size + 1];
    if (size > 0)
        memcpy(copy, data, size);
    copy[size] = '\0';
    return copy;
}

// Reports a launch whose team did not come back: by signature when one was used,
// otherwise by the file's name.
void report_launch(team_id team, const char* signature, const entry_ref& file, status_t status) {
    if (team >= 0)
        return;
    alert(kLaunchFailedAlert, signature[0] != '\0' ? signature : file.name, status);
}

// The bar sets gr_manager and gr_settings, reads the settings and loads the
// layers as it is made; showing it enables the layers and starts its chores.
void show_new_bar() {
    BarWindow* bar = new BarWindow();
    bar->Show();
}

} // namespace

Glimrow::Glimrow(bool convert, bool setHotKey)
    : BApplication(gr_signature), fSlave(NULL), fPrefsWindow(NULL), fHotKey(NULL) {
    init_settings();

    fSlave = new IOSlave();
    fSlave->Run();
    gr_slave = fSlave;

    if (convert)
        ConvertSettings();

    if (setHotKey) {
        // The window fills (or clears) fHotKey and stores it itself; its
        // destructor sets done.
        bool done = false;
        HotKeyWindow* window = new HotKeyWindow(&fHotKey, &done);
        window->Show();
        while (!hot_key_window_done(&done))
            snooze(kHotKeyPollInterval);
        return;
    }

    // Zeroed, so that a short attribute (or none that can be read) leaves no
    // stray bits in the record.
    fHotKey = new uint8[kHotKeyLength]();
    BNode node;
    if (get_settings_node(&node) != B_OK)
        return;
    ssize_t size = node.ReadAttr("hotKey", B_UINT8_TYPE, 0, fHotKey, kHotKeyLength);
    if (size < 0) {
        delete[] fHotKey;
        fHotKey = NULL;
    }
}

Glimrow::~Glimrow() {
    delete[] fHotKey;
}

void Glimrow::MessageReceived(BMessage* message) {
    switch (message->what) {
    case kRebuildBar:
        if (gr_manager == NULL)
            break;
        // Quit() from this thread returns once the old bar's thread has ended,
        // so the new bar never meets the old one's layers or globals.
        if (gr_manager->Lock())
            gr_manager->Quit();
        show_new_bar();
        break;

    case kOpen:
        Open(message);
        break;
    case kOpenWith:
        OpenWith(message);
        break;
    case kOpenParent:
        OpenParent(message);
        break;
    case kShowDialog:
        ShowDialog(message);
        break;

    case kShowPreferences:
        _ShowPreferences();
        break;
    case kPreferencesClosed:
        fPrefsWindow = NULL;
        break;

    default:
        BApplication::MessageReceived(message);
        break;
    }
}

bool Glimrow::QuitRequested() {
    if (gr_slave != NULL)
        gr_slave->PostMessage(B_QUIT_REQUESTED);
    return BApplication::QuitRequested();
}

void Glimrow::ReadyToRun() {
    show_new_bar();
}

void Glimrow::AboutRequested() {
    BAlert* about = new BAlert("about Glimrow", kAboutText, "Easy ?", NULL, NULL,
                               B_WIDTH_FROM_WIDEST, B_INFO_ALERT);
    BTextView* view = about->TextView();
    if (view != NULL) {
        view->MakeSelectable(true);
        view->SetStylable(true);
        const rgb_color darkBlue = {0, 0, 125, 0};
        const rgb_color darkRed = {120, 0, 0, 0};
        BFont font;
        view->GetFontAndColor(0, &font);
        font.SetSize(font.Size() + kAboutTitleGrowth);
        view->SetFontAndColor(0, kAboutTitleEnd, &font, B_FONT_ALL, &darkBlue);
        font.SetSize(font.Size() - kAboutTitleGrowth);
        view->SetFontAndColor(kAboutLetterB, kAboutLetterB + 1, &font, B_FONT_ALL, &darkBlue);
        view->SetFontAndColor(kAboutLetterE, kAboutLetterE + 1, &font, B_FONT_ALL, &darkRed);
    }
    about->ResizeBy(40, 20);
    about->Go();
}

// #pragma mark - Launching

void Glimrow::Open(BMessage* message) const {
    entry_ref file;
    if (message == NULL || message->FindRef("file", &file) != B_OK)
        return;

    char signature[B_MIME_TYPE_LENGTH];
    bool isApplication = false;
    if (get_signature(&file, signature, &isApplication) != B_OK) {
        signature[0] = '\0';
        entry_ref appRef;
        status_t status = be_roster->FindApp(&file, &appRef);
        if (status != B_OK) {
            alert(kLaunchFailedAlert, file.name, status);
            return;
        }
        file = appRef;
    }
    bool bySignature = signature[0] != '\0';

    // Dropped entries become the application's refs; an application is never
    // handed itself.
    BMessage refs(B_REFS_RECEIVED);
    type_code type;
    int32 count;
    if (message->GetInfo("entries", &type, &count) != B_OK)
        count = 0;
    int32 collected = 0;
    for (int32 index = 0; index < count; index++) {
        entry_ref ref;
        if (message->FindRef("entries", index, &ref) != B_OK)
            continue;
        BEntry entry;
        if (entry.SetTo(&ref, false) != B_OK || !entry.Exists())
            continue;
        if (ref == file && isApplication && !entry.IsDirectory())
            continue;
        if (refs.AddRef("refs", &ref) == B_OK)
            collected++;
    }

    bool launched = false;
    team_id team = -1;
    if (collected > 0) {
        status_t status = bySignature ? be_roster->Launch(signature, &refs, &team)
                                      : be_roster->Launch(&file, &refs, &team);
        report_launch(team, signature, file, status);
        launched = true;
    }
    refs.MakeEmpty();

    // Dragged text becomes the command line.
    if (message->GetInfo("text/plain", &type, &count) == B_OK && count > 0) {
        char** arguments = new char*[count + 1];
        for (int32 index = 0; index < count; index++) {
            const void* data;
            ssize_t size;
            if (message->FindData("text/plain", B_ANY_TYPE, index, &data, &size) == B_OK &&
                size >= 0)
                arguments[index] = copy_bytes(data, (size_t)size);
            else
                arguments[index] = copy_bytes("", 0);
        }
        arguments[count] = NULL;
        team = -1;
        status_t status = bySignature ? be_roster->Launch(signature, count, arguments, &team)
                                      : be_roster->Launch(&file, count, arguments, &team);
        report_launch(team, signature, file, status);
        for (int32 index = 0; index < count; index++)
            delete[] arguments[index];
        delete[] arguments;
        launched = true;
    }

    if (!launched) {
        team = -1;
        status_t status = bySignature ? be_roster->Launch(signature, (BMessage*)NULL, &team)
                                      : be_roster->Launch(&file, (BMessage*)NULL, &team);
        report_launch(team, signature, file, status);
    }
}

void Glimrow::OpenWith(BMessage* message) const {
    if (message == NULL)
        return;
    const char* signature;
    for (int32 index = 0; message->FindString("applications", index, &signature) == B_OK; index++) {
        if (signature == NULL)
            continue;
        BMessage refs(B_REFS_RECEIVED);
        std::string lastName;
        entry_ref ref;
        for (int32 fileIndex = 0; message->FindRef("file", fileIndex, &ref) == B_OK; fileIndex++) {
            refs.AddRef("refs", &ref);
            lastName = ref.name != NULL ? ref.name : "";
        }
        status_t status = be_roster->Launch(signature, &refs);
        if (status == B_OK || status == B_ALREADY_RUNNING)
            continue;
        alert(kLaunchFailedAlert, lastName.c_str(), status);
        break;
    }
}

void Glimrow::OpenParent(BMessage* message) const {
    entry_ref file;
    if (message == NULL || message->FindRef("file", &file) != B_OK)
        return;

    BEntry entry;
    status_t status = entry.SetTo(&file, false);
    if (status == B_OK && !entry.Exists())
        status = B_ENTRY_NOT_FOUND;
    BEntry parent;
    entry_ref parentRef;
    if (status == B_OK)
        status = entry.GetParent(&parent);
    if (status == B_OK)
        status = parent.GetRef(&parentRef);
    if (status == B_OK) {
        BMessage refs(B_REFS_RECEIVED);
        refs.AddRef("refs", &parentRef);
        status = be_roster->Launch(kFileManagerSignature, &refs);
        if (status == B_ALREADY_RUNNING)
            status = B_OK;
    }
    if (status != B_OK)
        alert(kLaunchFailedAlert, file.name, status);
}

void Glimrow::ShowDialog(BMessage* message) {
    const char* path;
    LayerInfo* layer;
    if (message == NULL || message->FindString("path", &path) != B_OK || path == NULL ||
        message->FindPointer("layer", (void**)&layer) != B_OK || layer == NULL)
        return;

    char layerPath[B_PATH_NAME_LENGTH];
    if (find_user_settings_directory(layerPath, sizeof(layerPath)) != B_OK) {
        beep();
        return;
    }
    std::string layerName;
    if (!_LayerName(layer, &layerName)) {
        beep();
        return;
    }
    size_t length = strlen(layerPath);
    int written = snprintf(layerPath + length, sizeof(layerPath) - length, "/%s/%s/%s", gr_app_name,
                           gr_layers_name, layerName.c_str());
    if (written < 0 || (size_t)written >= sizeof(layerPath) - length) {
        beep();
        return;
    }

    entry_ref layerRef;
    char signature[B_MIME_TYPE_LENGTH];
    if (get_ref_for_path(layerPath, &layerRef) != B_OK ||
        get_signature(&layerRef, signature, NULL) != B_OK) {
        beep();
        return;
    }

    char text[2 * B_PATH_NAME_LENGTH + 64];
    snprintf(text, sizeof(text), "The item \"%s\" was not found.\nEdit the layer \"%s\"?", path,
             ref_name(layerPath));
    BAlert* dialog = new BAlert("Glimrow Alert", text, "Edit from Prefs", "Edit from TextEditor",
                                "Don't Edit", B_WIDTH_FIXED, B_INFO_ALERT);
    beep();
    switch (dialog->Go()) {
    case 0:
        _ShowPreferences();
        break;
    case 1: {
        BMessage refs(B_REFS_RECEIVED);
        refs.AddRef("refs", &layerRef);
        be_roster->Launch(signature, &refs);
        break;
    }
    default:
        break;
    }
}

void Glimrow::ConvertSettings() const {
    // TODO: turning the previous release's settings file into layer files and a
    // settings file comes with the conversion.
}

const uint8* Glimrow::HotKey() const {
    return fHotKey;
}

bool Glimrow::_LayerName(LayerInfo* layer, std::string* name) const {
    // The message may have waited while the layer went away: it is looked for
    // among the layer managers' handlers, each with its window locked, rather
    // than asked for its looper.
    for (int32 index = 0; BWindow* window = WindowAt(index); index++) {
        if (!window->Lock())
            continue;
        LayerManager* manager = dynamic_cast<LayerManager*>(window);
        bool found = manager != NULL && manager->IndexOf(layer) >= 0;
        if (found)
            *name = layer->LayerName();
        window->Unlock();
        if (found)
            return true;
    }
    return false;
}

void Glimrow::_ShowPreferences() {
    if (fPrefsWindow != NULL) {
        // Locking also proves the window is still there.
        if (fPrefsWindow->Lock()) {
            fPrefsWindow->Activate();
            fPrefsWindow->Unlock();
        }
        return;
    }
    // TODO: create the preferences window (new PrefsWindow()), remember it in
    // fPrefsWindow and Show() it; it comes with the preferences.
}
