// Archiving views: what a view is made of comes back from its archive (frame,
// name, resizing mode, flags, colours, font, pen, drawing mode, origin, event
// mask, hidden), deep archives bring the children in order, and damaged
// archives give a view with defaults rather than a crash.
#include <Archivable.h>
#include <Font.h>
#include <Menu.h>
#include <MenuItem.h>
#include <Message.h>
#include <View.h>

#include <gtest/gtest.h>

#include <math.h>
#include <memory>
#include <string>
#include <vector>

namespace {

std::unique_ptr<BView> round_trip(const BView& view, bool deep = true) {
    BMessage archive;
    EXPECT_EQ(B_OK, view.Archive(&archive, deep));
    BArchivable* object = instantiate_object(&archive);
    BView* copy = dynamic_cast<BView*>(object);
    if (copy == NULL)
        delete object;
    return std::unique_ptr<BView>(copy);
}

bool same_color(rgb_color a, rgb_color b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
}

} // namespace

TEST(ViewArchiveTest, FrameNameResizingModeAndFlagsComeBack) {
    BView view(BRect(10, 20, 110, 70), "box", B_FOLLOW_ALL, B_WILL_DRAW | B_FRAME_EVENTS);
    std::unique_ptr<BView> copy = round_trip(view);
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(BRect(10, 20, 110, 70), copy->Frame());
    EXPECT_STREQ("box", copy->Name());
    EXPECT_EQ(B_FOLLOW_ALL, copy->ResizingMode());
    EXPECT_EQ(B_WILL_DRAW | B_FRAME_EVENTS, copy->Flags());
}

TEST(ViewArchiveTest, ColoursComeBack) {
    BView view(BRect(0, 0, 9, 9), "colours", B_FOLLOW_NONE, 0);
    view.SetHighColor(make_color(10, 20, 30, 40));
    view.SetLowColor(make_color(50, 60, 70, 80));
    view.SetViewColor(make_color(90, 100, 110, 255));
    std::unique_ptr<BView> copy = round_trip(view);
    ASSERT_NE(nullptr, copy);
    EXPECT_TRUE(same_color(make_color(10, 20, 30, 40), copy->HighColor()));
    EXPECT_TRUE(same_color(make_color(50, 60, 70, 80), copy->LowColor()));
    EXPECT_TRUE(same_color(make_color(90, 100, 110, 255), copy->ViewColor()));
}

TEST(ViewArchiveTest, FontPenAndDrawingModeComeBack) {
    BView view(BRect(0, 0, 9, 9), "pen", B_FOLLOW_NONE, 0);
    BFont font(be_bold_font);
    font.SetSize(17.0f);
    font.SetShear(80.0f);
    view.SetFont(&font);
    view.SetPenSize(3.0f);
    view.MovePenTo(4, 5);
    view.SetDrawingMode(B_OP_ALPHA);
    std::unique_ptr<BView> copy = round_trip(view);
    ASSERT_NE(nullptr, copy);
    BFont copied;
    copy->GetFont(&copied);
    font_family family;
    font_style style;
    font_family copiedFamily;
    font_style copiedStyle;
    font.GetFamilyAndStyle(&family, &style);
    copied.GetFamilyAndStyle(&copiedFamily, &copiedStyle);
    EXPECT_STREQ(family, copiedFamily);
    EXPECT_STREQ(style, copiedStyle);
    EXPECT_EQ(17.0f, copied.Size());
    EXPECT_EQ(80.0f, copied.Shear());
    EXPECT_EQ(3.0f, copy->PenSize());
    EXPECT_EQ(BPoint(4, 5), copy->PenLocation());
    EXPECT_EQ(B_OP_ALPHA, copy->DrawingMode());
}

TEST(ViewArchiveTest, OriginEventMaskAndHiddenComeBack) {
    BView view(BRect(0, 0, 99, 99), "scrolled", B_FOLLOW_NONE, 0);
    view.ScrollTo(BPoint(30, 40));
    view.SetEventMask(B_POINTER_EVENTS, B_NO_POINTER_HISTORY);
    view.Hide();
    std::unique_ptr<BView> copy = round_trip(view);
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(BRect(30, 40, 129, 139), copy->Bounds());
    EXPECT_EQ(B_POINTER_EVENTS, copy->EventMask());
    EXPECT_TRUE(copy->IsHidden());
}

TEST(ViewArchiveTest, DeepArchiveBringsTheChildrenInOrder) {
    BView view(BRect(0, 0, 99, 99), "parent", B_FOLLOW_NONE, 0);
    BView* first = new BView(BRect(0, 0, 9, 9), "first", B_FOLLOW_NONE, 0);
    first->AddChild(new BView(BRect(1, 1, 2, 2), "grandchild", B_FOLLOW_NONE, 0));
    view.AddChild(first);
    view.AddChild(new BView(BRect(10, 0, 19, 9), "second", B_FOLLOW_NONE, 0));
    std::unique_ptr<BView> copy = round_trip(view);
    ASSERT_NE(nullptr, copy);
    ASSERT_EQ(2, copy->CountChildren());
    EXPECT_STREQ("first", copy->ChildAt(0)->Name());
    EXPECT_STREQ("second", copy->ChildAt(1)->Name());
    EXPECT_EQ(BRect(10, 0, 19, 9), copy->ChildAt(1)->Frame());
    ASSERT_EQ(1, copy->ChildAt(0)->CountChildren());
    EXPECT_STREQ("grandchild", copy->ChildAt(0)->ChildAt(0)->Name());
}

TEST(ViewArchiveTest, ShallowArchiveLeavesTheChildrenOut) {
    BView view(BRect(0, 0, 99, 99), "parent", B_FOLLOW_NONE, 0);
    view.AddChild(new BView(BRect(0, 0, 9, 9), "child", B_FOLLOW_NONE, 0));
    BMessage archive;
    ASSERT_EQ(B_OK, view.Archive(&archive, false));
    EXPECT_FALSE(archive.HasMessage("_views"));
    std::unique_ptr<BView> copy = round_trip(view, false);
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(0, copy->CountChildren());
}

TEST(ViewArchiveTest, ArchiveSurvivesFlattening) {
    BView view(BRect(5, 6, 55, 66), "flat", B_FOLLOW_LEFT_RIGHT, B_WILL_DRAW);
    view.AddChild(new BView(BRect(0, 0, 9, 9), "child", B_FOLLOW_NONE, 0));
    BMessage archive;
    ASSERT_EQ(B_OK, view.Archive(&archive));
    std::vector<char> buffer(archive.FlattenedSize());
    ASSERT_EQ(B_OK, archive.Flatten(buffer.data(), (ssize_t)buffer.size()));
    BMessage restored;
    ASSERT_EQ(B_OK, restored.Unflatten(buffer.data()));
    std::unique_ptr<BView> copy(dynamic_cast<BView*>(instantiate_object(&restored)));
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(BRect(5, 6, 55, 66), copy->Frame());
    EXPECT_EQ(B_FOLLOW_LEFT_RIGHT, copy->ResizingMode());
    EXPECT_EQ(1, copy->CountChildren());
}

TEST(ViewArchiveTest, DamagedFieldsGiveDefaults) {
    BMessage archive;
    archive.AddString("class", "BView");
    archive.AddRect("_frame", BRect(NAN, 0, 10, 10));
    archive.AddInt16("_dmod", 999);
    archive.AddFloat("_psize", -4.0f);
    archive.AddPoint("_origin", BPoint(INFINITY, 0));
    archive.AddString("_fname", "only a family");
    std::unique_ptr<BView> view(dynamic_cast<BView*>(instantiate_object(&archive)));
    ASSERT_NE(nullptr, view);
    EXPECT_FALSE(view->Frame().IsValid());
    EXPECT_EQ(B_OP_COPY, view->DrawingMode());
    EXPECT_EQ(1.0f, view->PenSize());
    EXPECT_EQ(BPoint(0, 0), view->Bounds().LeftTop());
}

TEST(ViewArchiveTest, ChildArchiveThatIsNoViewIsLeftOut) {
    BMessage item;
    BMenuItem menuItem("not a view", NULL);
    ASSERT_EQ(B_OK, menuItem.Archive(&item));
    BMessage child;
    BView childView(BRect(0, 0, 9, 9), "child", B_FOLLOW_NONE, 0);
    ASSERT_EQ(B_OK, childView.Archive(&child));
    BMessage archive;
    archive.AddString("class", "BView");
    archive.AddMessage("_views", &item);
    archive.AddMessage("_views", &child);
    BMessage garbage('junk');
    archive.AddMessage("_views", &garbage);
    std::unique_ptr<BView> view(dynamic_cast<BView*>(instantiate_object(&archive)));
    ASSERT_NE(nullptr, view);
    ASSERT_EQ(1, view->CountChildren());
    EXPECT_STREQ("child", view->ChildAt(0)->Name());
}

TEST(ViewArchiveTest, InstantiateRefusesAnotherClass) {
    BMessage archive;
    archive.AddString("class", "BMenuItem");
    EXPECT_EQ(nullptr, BView::Instantiate(&archive));
    EXPECT_EQ(nullptr, BView::Instantiate(NULL));
}

TEST(ViewArchiveTest, MenuArchiveHoldsTheViewFieldsOnce) {
    BMenu menu("menu");
    BMessage archive;
    ASSERT_EQ(B_OK, menu.Archive(&archive));
    type_code type;
    int32 count = 0;
    ASSERT_EQ(B_OK, archive.GetInfo("_frame", &type, &count));
    EXPECT_EQ(1, count);
    ASSERT_EQ(B_OK, archive.GetInfo("_resize_mode", &type, &count));
    EXPECT_EQ(1, count);
    std::unique_ptr<BMenu> copy(dynamic_cast<BMenu*>(instantiate_object(&archive)));
    ASSERT_NE(nullptr, copy);
    EXPECT_STREQ("menu", copy->Name());
}
