// The user's whole configuration as one value record, and the settings folder
// that holds it:
//
//   <user settings directory>/Glimrow/            the program's folder
//                                     settings    the record, a flattened BMessage
//                                     layers/     one text file per layer
//                                     targets     the targets list
//                                     shelf       the saved replicant shelf
//
// Each window keeps its own copy of the record; copies travel between loopers as
// archived messages, never by pointer.
#ifndef GLIMROW_SETTINGS_H
#define GLIMROW_SETTINGS_H

#include <SupportDefs.h>

#include <stddef.h>

class BMessage;
class BNode;
struct entry_ref;

const int32 kLayerNameCount = 32;

// Bits of settings::flags.
enum {
    kMinimizeFlag = 0x001,         // fold the bar while it is not active
    kAutoFocusFlag = 0x002,        // activate the bar when the mouse enters it
    kDrawLabelFlag = 0x004,        // draw item labels beside the icons
    kDragActivateFlag = 0x008,     // activate the bar when something is dragged over it
    kPeculiarIconFlag = 0x010,     // new layer files get the program's own icons
    kWorkspaceCommandFlag = 0x020, // offer the "Switch Workspace" command
    kShelfFlag = 0x040,            // show the replicant shelf
    kShelfOnTailFlag = 0x080,      // the shelf sits at the tail of the bar
    kDrawBorderFlag = 0x100,       // frame every layer item
};

class settings {
public:
    settings();
    ~settings();

    // Adds the record's keys to the message (which is not emptied first); stops
    // at the first failing add and returns its error.
    status_t archive_to(BMessage* message) const;
    // Reads the record from an archive. The first seven keys are required: a
    // missing one returns its error at once, with the keys before it already
    // read. A missing "shelfSize" reads as 4; missing names stay as they were.
    status_t set_to(BMessage* message);
    // Copies every field; the names are copied, never shared.
    void set_to(const settings& other);

    // How far the other record differs, as the highest level that applies:
    // 5 the direction, 4 the workspace mask, 3 a layer name, 2 the look (icon
    // size, labels, shelf, location, shelf size), 1 anything else, 0 nothing.
    // With allWorkspaces false only the current workspace's bit and name count.
    int32 compare(const settings* other, bool allWorkspaces) const;

    int32 location;
    int32 direction;
    int32 forInvoke;
    int32 forExpand;
    int32 flags;
    int32 which;
    uint32 workspaces;
    int32 shelfSize;
    // One owned heap string per workspace, never NULL.
    char* layerName[kLayerNameCount];

private:
    settings(const settings&) = delete;
    settings& operator=(const settings&) = delete;

    void _SetName(int32 index, const char* name);
};

// Makes sure the program's folder, its layers folder and the targets file exist.
// Any failure shows the "Glimrow Error" alert and ends the process with status 1.
void init_settings();

// The work of init_settings without the alert: on failure returns the error and
// formats the text that the alert would show into failureText.
status_t check_settings_folders(char* failureText, size_t size);

// The user settings directory (for the boot volume) as a path.
status_t find_user_settings_directory(char* path, size_t size);

// Sets node to the settings file.
status_t get_settings_node(BNode* node);

// The entry_ref of a member of the program's folder; the program's own name gives
// the folder itself. The entry need not exist.
status_t get_settings(const char* name, entry_ref* ref);

// Reads the settings file into the record; on failure the record keeps whatever
// the reading had put into it.
status_t read_settings_file(settings* record);

// Archives the record into the settings file (created if missing).
status_t write_settings_file(const settings* record);

#endif // GLIMROW_SETTINGS_H
