// Receiving drops from other programs through XDND (version 5, older sources
// from version 3 on).
//
// The server hands it the Xdnd client messages and the SelectionNotify events
// that arrive for its windows; it answers the source itself (XdndStatus,
// XdndFinished) and tells the server what the windows must see: the drag
// hovering at a screen point, leaving, or dropped. The dragged data is fetched
// at the first position, so views can look at it while it hovers: files become a
// B_SIMPLE_DATA message with "refs", text a B_MIME_DATA message with "text/plain"
// data of type B_MIME_TYPE.
#ifndef _SERVER_X11_DROP_TARGET_H
#define _SERVER_X11_DROP_TARGET_H

#include "server/x11/X11Atoms.h"

#include <Message.h>
#include <Point.h>

#include <string>
#include <vector>

namespace BPrivate {

class X11DropTarget {
public:
    struct Event {
        enum Kind { kNone, kHover, kLeave, kDrop };
        Kind kind = kNone;
        ::Window window = 0;
        BPoint where;
        BMessage message;
    };

    X11DropTarget(Display* display, const X11Atoms& atoms);

    // Both answer whether the event was part of a drag; event tells what the
    // windows must see.
    bool HandleClientMessage(const XClientMessageEvent& message, Event* event);
    bool HandleSelectionNotify(const XSelectionEvent& selection, Event* event);

    // Splits a text/uri-list into the paths of its file: URIs (percent-decoded);
    // comments, blank lines and other schemes are skipped.
    static void ParseUriList(const char* data, size_t length, std::vector<std::string>* paths);
    // Builds the message a drop of this data turns into; B_BAD_VALUE when it holds
    // nothing usable.
    static status_t MessageForData(bool uriList, const char* data, size_t length,
                                   BMessage* message);

private:
    void _Reset();
    void _SendStatus(bool accept);
    void _SendFinished(bool success);
    bool _FinishDrop(Event* event);

    Display* fDisplay;
    const X11Atoms& fAtoms;
    ::Window fSource;
    ::Window fTarget;
    int32 fVersion;
    Atom fType;
    Atom fAction;
    bool fRequested;
    bool fHaveData;
    bool fDropPending;
    BPoint fWhere;
    BMessage fMessage;
};

} // namespace BPrivate

#endif // _SERVER_X11_DROP_TARGET_H
