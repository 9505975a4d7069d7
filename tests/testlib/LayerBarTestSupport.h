// What the layer bar and layer item tests share: a private home with the
// settings folders and a few files carrying their own icons, an application
// (not running, so what items post to it waits in its queue), and a layer
// manager window that holds a LayerBar showing one layer of bar items. The
// settings record the bar reads (gr_settings) belongs to the fixture.
#ifndef GLIMROW_LAYER_BAR_TEST_SUPPORT_H
#define GLIMROW_LAYER_BAR_TEST_SUPPORT_H

#include "Commands.h"
#include "CreateRefItem.h"
#include "Globals.h"
#include "LayerBar.h"
#include "LayerInfo.h"
#include "LayerItem.h"
#include "LayerManager.h"
#include "RefRetriever.h"
#include "Settings.h"

#include "server/headless/HeadlessTestApi.h"

#include <AppDefs.h>
#include <Application.h>
#include <Entry.h>
#include <Message.h>
#include <MessageQueue.h>
#include <Node.h>
#include <Screen.h>
#include <TypeConstants.h>
#include <View.h>
#include <Window.h>

#include <gtest/gtest.h>

#include "TestHome.h"
#include "Watchdog.h"

#include <string>
#include <vector>

#include <stdlib.h>

namespace bar_testing {

using BPrivate::HeadlessTestApi;

// The colour that the icons of the fixture's files are painted in.
inline rgb_color icon_color() {
    BScreen screen;
    return screen.ColorForIndex(screen.IndexForColor(0, 160, 0));
}

inline bool same_color(rgb_color a, rgb_color b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

inline std::string color_text(rgb_color color) {
    return std::to_string(color.red) + "," + std::to_string(color.green) + "," +
           std::to_string(color.blue);
}

// Starts a drag of "refs" and a text clipping when pressed.
class DragSource : public BView {
public:
    DragSource(BRect frame, const std::vector<entry_ref>& refs)
        : BView(frame, "drag source", B_FOLLOW_NONE, 0), fRefs(refs) {}

    void MouseDown(BPoint where) override {
        BMessage message(B_SIMPLE_DATA);
        for (const entry_ref& ref : fRefs)
            message.AddRef("refs", &ref);
        message.AddData("text/plain", B_MIME_TYPE, "clipped text", 12);
        DragMessage(&message, BRect(where.x, where.y, where.x + 10, where.y + 10));
    }

private:
    std::vector<entry_ref> fRefs;
};

// The smallest of red, green and blue over the area: how dark the darkest
// pixel of some text is.
inline int32 darkest_value(const BPrivate::Capture& capture, BRect area) {
    int32 darkest = 255;
    for (int32 y = (int32)area.top; y <= (int32)area.bottom; y++) {
        for (int32 x = (int32)area.left; x <= (int32)area.right; x++) {
            rgb_color color = capture.ColorAt(x, y);
            int32 value = color.red;
            if (color.green < value)
                value = color.green;
            if (color.blue < value)
                value = color.blue;
            if (value < darkest)
                darkest = value;
        }
    }
    return darkest;
}

// A manager of bar items that is also the window the bar sits in, as the bar
// window is.
class BarHostWindow : public LayerManager {
public:
    explicit BarHostWindow(BRect frame)
        : LayerManager(frame, "bar host", B_ASYNCHRONOUS_CONTROLS | B_WILL_ACCEPT_FIRST_CLICK,
                       which_bar_items, which_menu_items) {}
};

class LayerBarFixture : public testing::Test {
protected:
    void SetUp() override {
        setenv("GLIMROW_DISPLAY", "headless", 1);
        ASSERT_EQ(B_OK, HeadlessTestApi::Use());
        ASSERT_EQ(B_OK, HeadlessTestApi::Reset());
        char text[512] = "";
        ASSERT_EQ(check_settings_folders(text, sizeof(text)), B_OK) << text;
        fApplication = new BApplication("application/x-vnd.glimrow-bar-tests");
        fSettings.flags = 0;
        fSettings.which = 16;
        fSettings.direction = 0;
        fSettings.forInvoke = 2;
        fSettings.forExpand = 1;
        gr_settings = &fSettings;
    }

    void TearDown() override {
        HeadlessTestApi::WaitForIdle();
        CloseBar();
        delete fApplication;
        gr_settings = NULL;
    }

    // Gives the items back to their layer before the window (and with it the
    // layers and their items) goes away.
    void CloseBar() {
        if (fWindow == NULL)
            return;
        if (fWindow->Lock()) {
            if (fBar != NULL) {
                fBar->RemoveSelf();
                delete fBar;
            }
            fWindow->Quit();
        }
        fWindow = NULL;
        fBar = NULL;
    }

    // A file below the home whose own icon attributes (both sizes) are filled
    // with icon_color().
    std::string MakeFile(const std::string& name) {
        std::string path = fHome.WriteFile("files/" + name, "contents of " + name);
        PaintIcon(path);
        return path;
    }

    static void PaintIcon(const std::string& path) {
        BScreen screen;
        uint8 index = screen.IndexForColor(0, 160, 0);
        std::vector<uint8> mini(16 * 16, index);
        std::vector<uint8> large(32 * 32, index);
        BNode node(path.c_str());
        ASSERT_EQ(node.InitCheck(), B_OK);
        ASSERT_EQ(node.WriteAttr("BEOS:M:STD_ICON", B_MINI_ICON_TYPE, 0, mini.data(), mini.size()),
                  (ssize_t)mini.size());
        ASSERT_EQ(
            node.WriteAttr("BEOS:L:STD_ICON", B_LARGE_ICON_TYPE, 0, large.data(), large.size()),
            (ssize_t)large.size());
    }

    // A layer file in the layers folder, typed as a layer. Make them before the
    // bar: the manager reads the folder when it is made.
    std::string MakeLayerFile(const std::string& name, const std::string& body = "") {
        std::string path = fHome.WriteFile(".config/Glimrow/layers/" + name, body);
        BNode node(path.c_str());
        node.WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain", 11);
        return path;
    }

    // Opens the bar window at (100, 100) showing the layer of that name (whose
    // file must exist), filled with one item per path made by the item factory.
    void OpenBar(const std::string& layerName, const std::vector<std::string>& paths) {
        fWindow = new BarHostWindow(BRect(100, 100, 399, 399));
        ASSERT_TRUE(fWindow->Lock());
        fLayer = fWindow->FindLayer(layerName.c_str());
        ASSERT_NE(fLayer, nullptr);
        fLayer->SetEnabled(true);
        BMessage found(kLayerItemsFound);
        for (const std::string& path : paths) {
            RefRetriever* item = NULL;
            ASSERT_EQ(create_ref_item(path.c_str(), fLayer, &item), B_OK) << path;
            found.AddPointer("items", item);
        }
        found.AddBool("finish", true);
        fLayer->ItemsFound(&found);
        fBar = new LayerBar;
        fWindow->AddChild(fBar);
        fBar->SetLayer(fLayer);
        fBar->ResizeToPreferred();
        fWindow->Unlock();
        fWindow->Show();
        ASSERT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
    }

    LayerItem* ItemAt(int32 index) {
        if (!fWindow->Lock())
            return NULL;
        LayerItem* item = fBar->LayerItemAt(index);
        fWindow->Unlock();
        return item;
    }

    BRect ItemFrame(int32 index) {
        BRect frame;
        if (fWindow->Lock()) {
            LayerItem* item = fBar->LayerItemAt(index);
            if (item != NULL)
                frame = item->Frame();
            fWindow->Unlock();
        }
        return frame;
    }

    // The screen point of a point in the bar's coordinates.
    BPoint BarPoint(BPoint point) { return HeadlessTestApi::ScreenPoint(fWindow, point); }

    BPrivate::Capture CaptureBar() {
        EXPECT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
        BPrivate::Capture capture;
        EXPECT_EQ(B_OK, HeadlessTestApi::CaptureWindow(fWindow, &capture));
        return capture;
    }

    rgb_color BarLowColor() {
        rgb_color color = {0, 0, 0, 255};
        if (fWindow->Lock()) {
            color = fBar->LowColor();
            fWindow->Unlock();
        }
        return color;
    }

    rgb_color BarHighColor() {
        rgb_color color = {0, 0, 0, 255};
        if (fWindow->Lock()) {
            color = fBar->HighColor();
            fWindow->Unlock();
        }
        return color;
    }

    // Redraws the whole bar and waits until it is on screen.
    void RedrawBar() {
        if (fWindow->Lock()) {
            fBar->Invalidate();
            fWindow->Unlock();
        }
        HeadlessTestApi::WaitForIdle();
    }

    // The messages with that command waiting in the application's queue.
    std::vector<BMessage> AppMessages(uint32 what) {
        std::vector<BMessage> messages;
        if (!be_app->Lock())
            return messages;
        BMessageQueue* queue = be_app->MessageQueue();
        for (int32 index = 0;; index++) {
            BMessage* message = queue->FindMessage(what, index);
            if (message == NULL)
                break;
            messages.push_back(*message);
        }
        be_app->Unlock();
        return messages;
    }

    bool WaitForAppMessages(uint32 what, size_t count) {
        return testing_support::wait_until([&] { return AppMessages(what).size() >= count; });
    }

    // Whether a menu window (one that the bar opens to expand an item) shows.
    static bool MenuIsOpen() {
        for (const BPrivate::WindowListing& listing : HeadlessTestApi::Windows()) {
            if (listing.look == B_NO_BORDER_WINDOW_LOOK && listing.visible)
                return true;
        }
        return false;
    }

    testing_support::TestHome fHome;
    settings fSettings;
    BApplication* fApplication = NULL;
    BarHostWindow* fWindow = NULL;
    LayerBar* fBar = NULL;
    LayerInfo* fLayer = NULL;
};

} // namespace bar_testing

#endif // GLIMROW_LAYER_BAR_TEST_SUPPORT_H
