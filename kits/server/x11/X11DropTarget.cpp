#include "server/x11/X11DropTarget.h"

#include <AppDefs.h>
#include <Entry.h>
#include <TypeConstants.h>

#include <X11/Xatom.h>

#include <string.h>

namespace BPrivate {

namespace {

// What a source lists, most wanted first.
int32 type_rank(const X11Atoms& atoms, Atom type) {
    if (type == atoms.textUriList)
        return 5;
    if (type == atoms.textPlainUTF8)
        return 4;
    if (type == atoms.utf8String)
        return 3;
    if (type == atoms.textPlain)
        return 2;
    if (type == atoms.string)
        return 1;
    return 0;
}

int hex_value(char digit) {
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    if (digit >= 'a' && digit <= 'f')
        return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F')
        return digit - 'A' + 10;
    return -1;
}

// The path of a file: URI, or an empty string. "file:///p", "file://localhost/p"
// and the old "file:/p" are local.
std::string path_for_uri(const std::string& uri) {
    if (uri.compare(0, 5, "file:") != 0)
        return std::string();
    std::string rest = uri.substr(5);
    if (rest.compare(0, 2, "//") == 0) {
        size_t slash = rest.find('/', 2);
        if (slash == std::string::npos)
            return std::string();
        std::string host = rest.substr(2, slash - 2);
        if (!host.empty() && host != "localhost")
            return std::string();
        rest = rest.substr(slash);
    }
    if (rest.empty() || rest[0] != '/')
        return std::string();
    std::string path;
    for (size_t index = 0; index < rest.size(); index++) {
        char character = rest[index];
        if (character == '%' && index + 2 < rest.size()) {
            int high = hex_value(rest[index + 1]);
            int low = hex_value(rest[index + 2]);
            if (high >= 0 && low >= 0) {
                char decoded = (char)(high * 16 + low);
                // A NUL cannot be part of a path.
                if (decoded == '\0')
                    return std::string();
                path += decoded;
                index += 2;
                continue;
            }
        }
        path += character;
    }
    return path;
}

} // namespace

X11DropTarget::X11DropTarget(Display* display, const X11Atoms& atoms)
    : fDisplay(display), fAtoms(atoms) {
    _Reset();
}

void X11DropTarget::_Reset() {
    fSource = 0;
    fTarget = 0;
    fVersion = 0;
    fType = None;
    fAction = None;
    fRequested = false;
    fHaveData = false;
    fDropPending = false;
    fMessage.MakeEmpty();
    fMessage.what = B_SIMPLE_DATA;
}

void X11DropTarget::ParseUriList(const char* data, size_t length, std::vector<std::string>* paths) {
    size_t start = 0;
    while (start < length) {
        size_t end = start;
        while (end < length && data[end] != '\n' && data[end] != '\r' && data[end] != '\0')
            end++;
        std::string line(data + start, end - start);
        start = end + 1;
        if (line.empty() || line[0] == '#')
            continue;
        std::string path = path_for_uri(line);
        if (!path.empty())
            paths->push_back(path);
    }
}

status_t X11DropTarget::MessageForData(bool uriList, const char* data, size_t length,
                                       BMessage* message) {
    message->MakeEmpty();
    if (data == NULL || length == 0)
        return B_BAD_VALUE;
    if (uriList) {
        message->what = B_SIMPLE_DATA;
        std::vector<std::string> paths;
        ParseUriList(data, length, &paths);
        for (const std::string& path : paths) {
            entry_ref ref;
            if (get_ref_for_path(path.c_str(), &ref) == B_OK)
                message->AddRef("refs", &ref);
        }
        return message->HasRef("refs") ? B_OK : B_BAD_VALUE;
    }
    // Text ends at its first NUL, if any.
    size_t textLength = strnlen(data, length);
    if (textLength == 0)
        return B_BAD_VALUE;
    message->what = B_MIME_DATA;
    message->AddData("text/plain", B_MIME_TYPE, data, (ssize_t)textLength);
    return B_OK;
}

void X11DropTarget::_SendStatus(bool accept) {
    XClientMessageEvent reply;
    memset(&reply, 0, sizeof(reply));
    reply.type = ClientMessage;
    reply.display = fDisplay;
    reply.window = fSource;
    reply.message_type = fAtoms.xdndStatus;
    reply.format = 32;
    reply.data.l[0] = (long)fTarget;
    // Bit 1: keep sending positions, the view under the pointer may change.
    reply.data.l[1] = accept ? 3 : 2;
    reply.data.l[4] = accept ? (long)fAtoms.xdndActionCopy : (long)None;
    XSendEvent(fDisplay, fSource, False, NoEventMask, (XEvent*)&reply);
}

void X11DropTarget::_SendFinished(bool success) {
    XClientMessageEvent reply;
    memset(&reply, 0, sizeof(reply));
    reply.type = ClientMessage;
    reply.display = fDisplay;
    reply.window = fSource;
    reply.message_type = fAtoms.xdndFinished;
    reply.format = 32;
    reply.data.l[0] = (long)fTarget;
    if (fVersion >= 5) {
        reply.data.l[1] = success ? 1 : 0;
        reply.data.l[2] = success ? (long)fAtoms.xdndActionCopy : (long)None;
    }
    XSendEvent(fDisplay, fSource, False, NoEventMask, (XEvent*)&reply);
}

bool X11DropTarget::HandleClientMessage(const XClientMessageEvent& message, Event* event) {
    event->kind = Event::kNone;
    if (message.format != 32)
        return false;
    Atom kind = message.message_type;
    ::Window source = (::Window)message.data.l[0];

    if (kind == fAtoms.xdndEnter) {
        _Reset();
        fSource = source;
        fTarget = message.window;
        fVersion = (int32)(((unsigned long)message.data.l[1] >> 24) & 0xff);
        if (fVersion < 3) {
            fSource = 0;
            return true;
        }
        std::vector<Atom> types;
        if ((message.data.l[1] & 1) != 0) {
            Atom actualType;
            int actualFormat;
            unsigned long count = 0;
            unsigned long remaining = 0;
            unsigned char* data = NULL;
            if (XGetWindowProperty(fDisplay, source, fAtoms.xdndTypeList, 0, 64, False, XA_ATOM,
                                   &actualType, &actualFormat, &count, &remaining,
                                   &data) == Success &&
                data != NULL && actualFormat == 32) {
                Atom* list = (Atom*)data;
                types.assign(list, list + count);
            }
            if (data != NULL)
                XFree(data);
        } else {
            for (int index = 2; index <= 4; index++) {
                if (message.data.l[index] != 0)
                    types.push_back((Atom)message.data.l[index]);
            }
        }
        for (Atom type : types) {
            if (type_rank(fAtoms, type) > type_rank(fAtoms, fType))
                fType = type;
        }
        return true;
    }

    if (fSource == 0 || source != fSource)
        return kind == fAtoms.xdndPosition || kind == fAtoms.xdndLeave || kind == fAtoms.xdndDrop;

    if (kind == fAtoms.xdndPosition) {
        fTarget = message.window;
        long packed = message.data.l[2];
        fWhere.Set((float)(int16)((packed >> 16) & 0xffff), (float)(int16)(packed & 0xffff));
        bool usable = fType != None;
        if (usable && !fRequested) {
            Time time = fVersion >= 1 ? (Time)message.data.l[3] : CurrentTime;
            XConvertSelection(fDisplay, fAtoms.xdndSelection, fType, fAtoms.glimrowDropData,
                              fTarget, time);
            fRequested = true;
        }
        _SendStatus(usable);
        event->kind = Event::kHover;
        event->window = fTarget;
        event->where = fWhere;
        event->message = fMessage;
        return true;
    }

    if (kind == fAtoms.xdndLeave) {
        event->kind = Event::kLeave;
        event->window = fTarget;
        event->where = fWhere;
        _Reset();
        return true;
    }

    if (kind == fAtoms.xdndDrop) {
        fTarget = message.window;
        if (fType == None) {
            _SendFinished(false);
            event->kind = Event::kLeave;
            event->window = fTarget;
            _Reset();
            return true;
        }
        if (!fRequested) {
            XConvertSelection(fDisplay, fAtoms.xdndSelection, fType, fAtoms.glimrowDropData,
                              fTarget, (Time)message.data.l[2]);
            fRequested = true;
        }
        fDropPending = true;
        if (fHaveData)
            _FinishDrop(event);
        return true;
    }
    return false;
}

bool X11DropTarget::_FinishDrop(Event* event) {
    bool success = fMessage.CountNames(B_ANY_TYPE) > 0;
    _SendFinished(success);
    event->kind = success ? Event::kDrop : Event::kLeave;
    event->window = fTarget;
    event->where = fWhere;
    event->message = fMessage;
    _Reset();
    return true;
}

bool X11DropTarget::HandleSelectionNotify(const XSelectionEvent& selection, Event* event) {
    event->kind = Event::kNone;
    if (selection.selection != fAtoms.xdndSelection)
        return false;
    if (fSource == 0 || !fRequested || fHaveData)
        return true;
    fHaveData = true;
    fMessage.MakeEmpty();
    if (selection.property != None) {
        Atom actualType;
        int actualFormat;
        unsigned long count = 0;
        unsigned long remaining = 0;
        unsigned char* data = NULL;
        // Up to 4 MB of names or text; the INCR protocol for more is not spoken.
        if (XGetWindowProperty(fDisplay, selection.requestor, selection.property, 0, 1 << 20, True,
                               AnyPropertyType, &actualType, &actualFormat, &count, &remaining,
                               &data) == Success &&
            data != NULL && actualFormat == 8 && actualType != fAtoms.incr) {
            MessageForData(fType == fAtoms.textUriList, (const char*)data, count, &fMessage);
        }
        if (data != NULL)
            XFree(data);
    }
    if (fDropPending)
        return _FinishDrop(event);
    // The views see the data while it still hovers.
    event->kind = Event::kHover;
    event->window = fTarget;
    event->where = fWhere;
    event->message = fMessage;
    return true;
}

} // namespace BPrivate
