// A layer item inside an open layer menu asks the bar window for its nested
// layer while the menu's own window draws it. The bar's thread may hold its
// lock and wait for that menu window (quitting, or removing the item), so the
// item must not wait for the bar without end.
#include "LayerItem.h"
#include "LayerMenu.h"

#include "BarWindowTestSupport.h"

#include "../menus/FileMenusTestSupport.h"

#include <Messenger.h>

using namespace bar_window_testing;
using file_menus_testing::center_of;
using file_menus_testing::menu_labels;
using file_menus_testing::MenuLock;
using file_menus_testing::wait_for_menu_count;
using file_menus_testing::wait_until_shown;
using testing_support::wait_until;

namespace {

// Nothing handles it: the window answers it when it gets to it.
const uint32 kPing = 'ping';

class LayerItemLockTest : public BarWindowTest {
protected:
    void TearDown() override {
        if (!file_menus_testing::menu_windows().empty()) {
            EXPECT_EQ(B_OK, HeadlessTestApi::Click(BPoint(900, 400)));
            EXPECT_TRUE(wait_for_menu_count(0));
            EXPECT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
        }
        BarWindowTest::TearDown();
    }

    std::string LayerPath(const std::string& name) {
        return fHome.ConfigHome() + "/Glimrow/layers/" + name;
    }

    // "main" holds the layer file "sub", which holds the layer file "deep".
    void StartNestedLayers() {
        MakeLayer("deep", {MakeFile("one")});
        MakeLayer("sub", {LayerPath("deep")});
        MakeLayer("main", {LayerPath("sub")});
        WriteSettings([&](settings& record) { SetName(record, 0, "main"); });
        StartBar();
        ASSERT_TRUE(WaitForBarItems(1));
        ASSERT_TRUE(wait_until([&] { return LayersLoaded(); }));
    }

    // Expands the bar's first item with a primary press: the menu of "sub".
    LayerMenu* ExpandFirst() {
        LayerMenu* menu = Locked<LayerMenu*>([&] {
            LayerItem* item = fBar->LayerBarView()->LayerItemAt(0);
            return item != NULL ? dynamic_cast<LayerMenu*>(item->Submenu()) : NULL;
        });
        EXPECT_NE(nullptr, menu);
        if (menu == NULL)
            return NULL;
        BRect frame = Locked<BRect>([&] {
            LayerBar* bar = fBar->LayerBarView();
            return bar->ConvertToScreen(bar->ItemAt(0)->Frame());
        });
        EXPECT_EQ(B_OK, HeadlessTestApi::Click(center_of(frame)));
        EXPECT_TRUE(wait_until_shown(menu));
        EXPECT_EQ(B_OK, HeadlessTestApi::WaitForIdle());
        return menu;
    }
};

} // namespace

TEST_F(LayerItemLockTest, NestedLayerItemStillDrawsWhileTheBarWindowIsHeld) {
    StartNestedLayers();
    LayerMenu* menu = ExpandFirst();
    ASSERT_NE(nullptr, menu);
    BWindow* menuWindow = NULL;
    {
        MenuLock lock(menu);
        ASSERT_TRUE(lock.IsLocked());
        ASSERT_EQ(1, menu->CountItems());
        LayerItem* deep = menu->LayerItemAt(0);
        ASSERT_NE(nullptr, deep);
        LayerMenu* deepMenu = dynamic_cast<LayerMenu*>(deep->Submenu());
        ASSERT_NE(nullptr, deepMenu);
        // Never opened: drawing the item has to ask the bar for its layer.
        ASSERT_TRUE(deepMenu->ExpandLayer());
        ASSERT_EQ(nullptr, deepMenu->CurrentList());
        menuWindow = menu->Window();
    }

    // The bar is held as its thread holds it while it waits for the menu.
    ASSERT_TRUE(fBar->Lock());
    {
        MenuLock lock(menu);
        if (lock.IsLocked())
            menu->Invalidate();
    }
    // The ping is queued after the redraw, so its answer means the redraw is over.
    BMessage ping(kPing);
    BMessage reply;
    status_t status =
        BMessenger(menuWindow).SendMessage(&ping, &reply, B_INFINITE_TIMEOUT, 5000000);
    fBar->Unlock();
    EXPECT_EQ(B_OK, status);
    EXPECT_EQ(B_MESSAGE_NOT_UNDERSTOOD, reply.what);
}

TEST_F(LayerItemLockTest, BarQuitsWhileANestedLayerMenuIsOpen) {
    StartNestedLayers();
    LayerMenu* menu = ExpandFirst();
    ASSERT_NE(nullptr, menu);
    ASSERT_EQ(std::vector<std::string>({"deep"}), menu_labels(menu));

    // The menu starts to redraw while the bar is held, then the bar quits
    // with the menu still open: the bar's thread closes it while the menu's
    // thread may still be asking the bar about "deep".
    ASSERT_TRUE(fBar->Lock());
    {
        MenuLock lock(menu);
        if (lock.IsLocked())
            menu->Invalidate();
    }
    BMessenger bar(fBar);
    thread_id chores = fBar->ChoresThread();
    fBar->Quit();
    fBar = NULL;
    bool gone = wait_until([&] { return !bar.IsValid(); });
    ASSERT_TRUE(gone) << "the bar's thread never finished quitting";
    EXPECT_TRUE(wait_for_menu_count(0));
    if (chores >= 0) {
        status_t result;
        wait_for_thread(chores, &result);
    }
}
