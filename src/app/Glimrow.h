// The application object: it checks the settings folders, starts the loader,
// reads the hot key, opens the bar window, and runs the launch commands that
// items and menus send it. Launch commands run in the application's own thread;
// their alerts block only that thread.
#ifndef GLIMROW_GLIMROW_H
#define GLIMROW_GLIMROW_H

#include <Application.h>

#include <string>

class BWindow;
class IOSlave;
class LayerInfo;

// Length of the hot-key record: one bit per key code, as in key_info.key_states.
const int32 kHotKeyLength = 16;

class Glimrow : public BApplication {
public:
    Glimrow(bool convert, bool setHotKey);
    virtual ~Glimrow();

    virtual void MessageReceived(BMessage* message);
    virtual bool QuitRequested();
    virtual void ReadyToRun();
    virtual void AboutRequested();

    // Starts the item of "file", handing it the "entries" or the "text/plain"
    // arguments of the message.
    void Open(BMessage* message) const;
    // Hands every "file" to each of the "applications" in turn, stopping at the
    // first that fails.
    void OpenWith(BMessage* message) const;
    // Shows the folder of "file" in the file manager.
    void OpenParent(BMessage* message) const;
    // Offers to edit the layer whose item "path" was not found.
    void ShowDialog(BMessage* message);
    void ConvertSettings() const;

    // The 16-byte hot-key record, or NULL when no hot key is set. Owned by the
    // application; read it with the application locked.
    const uint8* HotKey() const;

private:
    bool _LayerName(LayerInfo* layer, std::string* name) const;
    void _ShowPreferences();

    IOSlave* fSlave;
    BWindow* fPrefsWindow;
    uint8* fHotKey;
};

#endif // GLIMROW_GLIMROW_H
