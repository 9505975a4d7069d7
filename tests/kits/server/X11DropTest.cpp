// Drops from other programs through XDND: a file dragged out of pcmanfm (GTK's
// XDND, driven by xdotool), and a small XDND v5 source of the test's own, on its
// own X connection, for what a file manager cannot be made to do on demand
// (text, a type nobody reads, watching the answers): Enter with the types
// inline, Position, waiting for Status, Drop, serving the selection, waiting
// for Finished.
// Before the X headers, whose macros (None, Bool) would clash with its names.
#include <gtest/gtest.h>

#include "X11TestSupport.h"

#include "TestHome.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>

using x11_testing::RecordingWindow;
using x11_testing::X11BareTest;
using x11_testing::X11ManagedTest;

namespace {

class XdndSource {
public:
    XdndSource() {
        fDisplay = XOpenDisplay(NULL);
        if (fDisplay == NULL)
            return;
        fWindow = XCreateSimpleWindow(fDisplay, DefaultRootWindow(fDisplay), 0, 0, 1, 1, 0, 0, 0);
        const char* names[] = {"XdndEnter",      "XdndPosition",  "XdndStatus",
                               "XdndDrop",       "XdndFinished",  "XdndSelection",
                               "XdndActionCopy", "text/uri-list", "text/plain;charset=utf-8",
                               "image/png",      "XdndLeave"};
        XInternAtoms(fDisplay, (char**)names, 11, False, fAtoms);
    }
    ~XdndSource() {
        if (fDisplay != NULL)
            XCloseDisplay(fDisplay);
    }

    Atom UriList() const { return fAtoms[7]; }
    Atom Text() const { return fAtoms[8]; }
    Atom Png() const { return fAtoms[9]; }

    // Drags the data over the target to the root point and drops it if the target
    // accepts; answers whether it accepted, and whether it then finished well.
    bool Drag(Window target, int x, int y, Atom type, const std::string& data, bool* finished) {
        *finished = false;
        if (fDisplay == NULL)
            return false;
        XSetSelectionOwner(fDisplay, fAtoms[5], fWindow, CurrentTime);
        _Send(target, fAtoms[0], 5L << 24, (long)type, 0, 0);
        _Send(target, fAtoms[1], 0, ((long)x << 16) | (y & 0xffff), CurrentTime, (long)fAtoms[6]);
        XEvent status;
        if (!_WaitFor(fAtoms[2], &status, type, data))
            return false;
        bool accepted = (status.xclient.data.l[1] & 1) != 0;
        if (!accepted) {
            _Send(target, fAtoms[10], 0, 0, 0, 0);
            return false;
        }
        _Send(target, fAtoms[3], 0, CurrentTime, 0, 0);
        XEvent done;
        if (_WaitFor(fAtoms[4], &done, type, data))
            *finished = (done.xclient.data.l[1] & 1) != 0;
        return true;
    }

private:
    void _Send(Window target, Atom kind, long data1, long data2, long data3, long data4) {
        XEvent event;
        memset(&event, 0, sizeof(event));
        event.xclient.type = ClientMessage;
        event.xclient.window = target;
        event.xclient.message_type = kind;
        event.xclient.format = 32;
        event.xclient.data.l[0] = (long)fWindow;
        event.xclient.data.l[1] = data1;
        event.xclient.data.l[2] = data2;
        event.xclient.data.l[3] = data3;
        event.xclient.data.l[4] = data4;
        XSendEvent(fDisplay, target, False, NoEventMask, &event);
        XFlush(fDisplay);
    }

    // Serves the selection while it waits (at most ten seconds) for a message.
    bool _WaitFor(Atom kind, XEvent* found, Atom type, const std::string& data) {
        auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (std::chrono::steady_clock::now() < end) {
            while (XPending(fDisplay) > 0) {
                XEvent event;
                XNextEvent(fDisplay, &event);
                if (event.type == ClientMessage && event.xclient.message_type == kind) {
                    *found = event;
                    return true;
                }
                if (event.type == SelectionRequest)
                    _Serve(event.xselectionrequest, type, data);
            }
            struct pollfd watched = {ConnectionNumber(fDisplay), POLLIN, 0};
            poll(&watched, 1, 100);
        }
        return false;
    }

    void _Serve(const XSelectionRequestEvent& request, Atom type, const std::string& data) {
        XEvent reply;
        memset(&reply, 0, sizeof(reply));
        reply.xselection.type = SelectionNotify;
        reply.xselection.requestor = request.requestor;
        reply.xselection.selection = request.selection;
        reply.xselection.target = request.target;
        reply.xselection.time = request.time;
        reply.xselection.property = None;
        if (request.target == type) {
            XChangeProperty(fDisplay, request.requestor, request.property, type, 8, PropModeReplace,
                            (const unsigned char*)data.data(), (int)data.size());
            reply.xselection.property = request.property;
        }
        XSendEvent(fDisplay, request.requestor, False, NoEventMask, &reply);
        XFlush(fDisplay);
    }

    Display* fDisplay = NULL;
    Window fWindow = 0;
    Atom fAtoms[11];
};

class X11DropTest : public X11ManagedTest {
protected:
    RecordingWindow* ShowTarget() {
        RecordingWindow* window =
            new RecordingWindow(BRect(300, 300, 499, 399), &fLog, B_TITLED_WINDOW_LOOK, 0);
        window->Show();
        EXPECT_TRUE(WaitForGeometry(window, 300, 300, 200, 100));
        return window;
    }
};

} // namespace

TEST_F(X11DropTest, DroppedFileArrivesAsRefAtTheViewUnderThePointer) {
    testing_support::TestHome home;
    std::string path = home.WriteFile("drop here/my file.txt", "contents");
    RecordingWindow* window = ShowTarget();
    XdndSource source;
    bool finished = false;
    std::string uri = "file://" + home.Path() + "/drop%20here/my%20file.txt\r\n";
    EXPECT_TRUE(source.Drag(XWindow(window), 350, 340, source.UriList(), uri, &finished));
    EXPECT_TRUE(finished);
    EXPECT_EQ("dropped ref " + path, fLog.WaitFor("dropped"));
}

TEST_F(X11DropTest, HoveringDragReachesTheViewWithItsMessage) {
    testing_support::TestHome home;
    home.WriteFile("hover.txt", "contents");
    RecordingWindow* window = ShowTarget();
    XdndSource source;
    bool finished = false;
    std::string uri = "file://" + home.Path() + "/hover.txt";
    EXPECT_TRUE(source.Drag(XWindow(window), 350, 340, source.UriList(), uri, &finished));
    EXPECT_FALSE(fLog.WaitFor("drag over").empty());
    // Once fetched, the data itself is in the hovering message.
    EXPECT_FALSE(fLog.WaitFor("drag over transit 1 hover.txt").empty() &&
                 fLog.WaitFor("drag over transit 0 hover.txt").empty());
}

TEST_F(X11DropTest, DroppedTextArrivesAsPlainTextData) {
    RecordingWindow* window = ShowTarget();
    XdndSource source;
    bool finished = false;
    EXPECT_TRUE(source.Drag(XWindow(window), 350, 340, source.Text(), "hello there", &finished));
    EXPECT_TRUE(finished);
    EXPECT_EQ("dropped text hello there", fLog.WaitFor("dropped"));
}

TEST_F(X11DropTest, DragOfUnknownTypeIsRefused) {
    RecordingWindow* window = ShowTarget();
    XdndSource source;
    bool finished = false;
    EXPECT_FALSE(source.Drag(XWindow(window), 350, 340, source.Png(), "\x89PNG", &finished));
    EXPECT_EQ(0u, fLog.Count("dropped"));
}

// Without a window manager, so nothing but the two programs decides where windows
// are and who gets the pointer.
TEST_F(X11BareTest, FileDraggedFromPcmanfmArrivesAsRef) {
    if (fDisplay.Run("command -v pcmanfm > /dev/null") != 0)
        FAIL() << "pcmanfm is not installed (scripts/install-deps installs it)";
    testing_support::TestHome home;
    std::string path = home.WriteFile("files/drop me.txt", "contents");
    // A list: the file is the first row, right of the places pane.
    home.WriteFile(".config/pcmanfm/default/pcmanfm.conf", "[ui]\nview_mode=list\n");
    RecordingWindow* window =
        new RecordingWindow(BRect(600, 300, 799, 399), &fLog, B_TITLED_WINDOW_LOOK, 0);
    window->Show();
    ASSERT_TRUE(WaitForGeometry(window, 600, 300, 200, 100));

    ASSERT_EQ(0, fDisplay.Run("pcmanfm '" + home.Path() + "/files' > /dev/null 2>&1 &"));
    std::string found;
    ASSERT_TRUE(testing_support::wait_until(
        [&] {
            found = fDisplay.Output("xdotool search --onlyvisible --class pcmanfm");
            return !found.empty();
        },
        std::chrono::seconds(20)));
    std::string manager = found.substr(0, found.find('\n'));
    ASSERT_EQ(0, fDisplay.Run("xdotool windowmove " + manager + " 0 0 windowsize " + manager +
                              " 500 400"));
    ASSERT_TRUE(testing_support::wait_until([&] {
        return fDisplay.Output("xdotool getwindowgeometry " + manager).find("Position: 0,0") !=
               std::string::npos;
    }));
    // Press on the row, move past GTK's drag threshold, over our window, let go.
    ASSERT_EQ(0, fDisplay.Run("xdotool mousemove 225 105 sleep 0.5 mousedown 1 sleep 0.3 "
                              "mousemove 245 115 sleep 0.2 mousemove 300 200 sleep 0.2 "
                              "mousemove 650 340 sleep 0.3 mousemove 660 345 sleep 0.5 "
                              "mouseup 1"));
    EXPECT_EQ("dropped ref " + path, fLog.WaitFor("dropped"));
    std::string pid = fDisplay.Output("xdotool getwindowpid " + manager);
    if (!pid.empty())
        kill((pid_t)atoi(pid.c_str()), SIGTERM);
}

namespace {

// Starts dragging a message with some text when pressed.
class DragSourceView : public BView {
public:
    explicit DragSourceView(BRect frame) : BView(frame, "source", B_FOLLOW_ALL, B_WILL_DRAW) {}

    void MouseDown(BPoint where) override {
        BMessage message(B_MIME_DATA);
        message.AddData("text/plain", B_MIME_TYPE, "between windows", 15);
        DragMessage(&message, BRect(where.x - 5, where.y - 5, where.x + 5, where.y + 5));
    }
};

} // namespace

TEST_F(X11BareTest, DragBetweenOurWindowsDropsOnTheOther) {
    BWindow* source = new BWindow(BRect(50, 50, 249, 149), "source", B_TITLED_WINDOW_LOOK,
                                  B_NORMAL_WINDOW_FEEL, B_WILL_ACCEPT_FIRST_CLICK);
    source->AddChild(new DragSourceView(source->Bounds()));
    source->Show();
    RecordingWindow* target = new RecordingWindow(BRect(400, 300, 599, 399), &fLog,
                                                  B_TITLED_WINDOW_LOOK, B_WILL_ACCEPT_FIRST_CLICK);
    target->Show();
    ASSERT_TRUE(WaitForGeometry(source, 50, 50, 200, 100));
    ASSERT_TRUE(WaitForGeometry(target, 400, 300, 200, 100));
    ASSERT_EQ(0, fDisplay.Run("xdotool mousemove 100 100 sleep 0.2 mousedown 1 sleep 0.2 "
                              "mousemove 300 200 sleep 0.2 mousemove 450 350 sleep 0.2 "
                              "mousemove 455 352 sleep 0.2 mouseup 1"));
    EXPECT_EQ("dropped text between windows", fLog.WaitFor("dropped"));
}
