// What a message tells about itself: system codes, drops, delivery history and its
// printed form.
#include <Message.h>

#include <Messenger.h>

#include <gtest/gtest.h>

#include <string>

#include "app/MessagePrivate.h"

namespace {

TEST(MessageInfo, SystemCodesAreRecognised) {
    EXPECT_TRUE(BMessage(B_QUIT_REQUESTED).IsSystem());
    EXPECT_TRUE(BMessage(B_MOUSE_DOWN).IsSystem());
    EXPECT_FALSE(BMessage('TEST').IsSystem());
    EXPECT_FALSE(BMessage(0x67720001).IsSystem());
}

TEST(MessageInfo, DropPointReadsTheDropFields) {
    BMessage message(B_SIMPLE_DATA);
    message.AddPoint("_drop_point_", BPoint(100, 200));
    message.AddPoint("_drop_offset_", BPoint(5, 6));
    BPoint offset;
    EXPECT_EQ(message.DropPoint(&offset), BPoint(100, 200));
    EXPECT_EQ(offset, BPoint(5, 6));
    EXPECT_EQ(BMessage().DropPoint(), BPoint(0, 0));
}

TEST(MessageInfo, WasDroppedFollowsTheDeliveryData) {
    BMessage message(B_SIMPLE_DATA);
    EXPECT_FALSE(message.WasDropped());
    BPrivate::MessagePrivate(&message).SetWasDropped(true);
    EXPECT_TRUE(message.WasDropped());
    BMessage copy(message);
    EXPECT_TRUE(copy.WasDropped());
}

TEST(MessageInfo, FreshMessageHasNoDeliveryHistory) {
    BMessage message('TEST');
    EXPECT_FALSE(message.WasDelivered());
    EXPECT_FALSE(message.IsSourceWaiting());
    EXPECT_FALSE(message.IsSourceRemote());
    EXPECT_FALSE(message.IsReply());
    EXPECT_EQ(message.Previous(), nullptr);
    EXPECT_FALSE(message.ReturnAddress().IsValid());
}

TEST(MessageInfo, PrintToStreamShowsWhatAndEachItem) {
    BMessage inner('INNR');
    inner.AddBool("deep", true);
    BMessage message('TEST');
    message.AddInt32("x", 5);
    message.AddString("s", "hi");
    message.AddString("s", "there");
    message.AddMessage("nested", &inner);

    testing::internal::CaptureStdout();
    message.PrintToStream();
    std::string output = testing::internal::GetCapturedStdout();

    EXPECT_NE(output.find("BMessage: what = TEST (0x54455354, or 1413829460)"), std::string::npos);
    EXPECT_NE(output.find("x, type='LONG', c=1, size= 4, data[0]: 5 (0x5)"), std::string::npos);
    EXPECT_NE(output.find("s, type='CSTR', c=2, size= 3, data[0]: \"hi\""), std::string::npos);
    EXPECT_NE(output.find("data[1]: \"there\""), std::string::npos);
    EXPECT_NE(output.find("what = INNR"), std::string::npos);
    EXPECT_NE(output.find("deep, type='BOOL'"), std::string::npos);
}

} // namespace
