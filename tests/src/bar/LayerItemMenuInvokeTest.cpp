// A layer item shown in an expanded layer menu rather than on the bar: it may
// launch only while the bar window's own layer bar has a selection.
#include "LayerItem.h"

#include "BarWindowTestSupport.h"

#include <Menu.h>
#include <MessageQueue.h>

using namespace bar_window_testing;

namespace {

class LayerItemMenuInvokeTest : public BarWindowTest {
protected:
    size_t CountOpens() {
        size_t count = 0;
        if (!be_app->Lock())
            return 0;
        while (be_app->MessageQueue()->FindMessage((uint32)kOpen, (int32)count) != NULL)
            count++;
        be_app->Unlock();
        return count;
    }

    void* SourceOfOpen(int32 index) {
        void* source = NULL;
        if (!be_app->Lock())
            return NULL;
        BMessage* open = be_app->MessageQueue()->FindMessage((uint32)kOpen, index);
        if (open != NULL)
            open->FindPointer("source", &source);
        be_app->Unlock();
        return source;
    }
};

} // namespace

TEST_F(LayerItemMenuInvokeTest, ItemInAMenuLaunchesOnlyWhileTheBarHasASelection) {
    MakeLayerOf("main", 2);
    WriteSettings([&](settings& record) {
        for (int32 workspace = 0; workspace < kLayerNameCount; workspace++)
            SetName(record, workspace, "main");
    });
    StartBar();
    ASSERT_TRUE(WaitForBarItems(2));

    std::string path = MakeFile("nested");
    BMenu* menu = new BMenu("nested menu");
    LayerItem* item = new LayerItem(path.c_str(), NULL, false);
    menu->AddItem(item);

    // Nothing pressed on the bar yet: the bar's selection is -1.
    EXPECT_EQ(item->Invoke(), 0);
    EXPECT_EQ(CountOpens(), 0u);

    // A tertiary press neither launches nor expands, but selects the cell.
    BPoint cell = Locked<BPoint>([&] {
        LayerBar* layerBar = fBar->LayerBarView();
        return layerBar->ConvertToScreen(BPoint(5, 5));
    });
    HeadlessTestApi::PressMouse(cell, B_TERTIARY_MOUSE_BUTTON, 1);
    HeadlessTestApi::ReleaseMouse(cell, B_TERTIARY_MOUSE_BUTTON);
    ASSERT_EQ(HeadlessTestApi::WaitForIdle(), B_OK);
    ASSERT_EQ(Locked<int32>([&] { return fBar->LayerBarView()->Selection(); }), 0);

    EXPECT_EQ(item->Invoke(), B_OK);
    ASSERT_TRUE(testing_support::wait_until([&] { return CountOpens() == 1; }));
    EXPECT_EQ(SourceOfOpen(0), item);
    delete menu;
}
