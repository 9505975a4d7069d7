#include "Settings.h"

#include "Globals.h"

#include <Entry.h>
#include <File.h>
#include <InterfaceDefs.h>
#include <Message.h>
#include <Node.h>

#include <gtest/gtest.h>

#include "TestHome.h"
#include "server/headless/HeadlessTestApi.h"

#include <stdio.h>
#include <string.h>

namespace {

void fill_archive(BMessage* message) {
    message->AddInt32("location", 0);
    message->AddInt32("direction", 2);
    message->AddInt32("forInvoke", 1);
    message->AddInt32("forExpand", 3);
    message->AddInt32("flags", 0x55);
    message->AddInt32("which", 32);
    message->AddInt32("workspaces", 0x0f);
}

} // namespace

TEST(SettingsTest, NewRecordHasTheDefaults) {
    settings record;
    EXPECT_EQ(record.location, 3);
    EXPECT_EQ(record.direction, 1);
    EXPECT_EQ(record.forInvoke, 2);
    EXPECT_EQ(record.forExpand, 1);
    EXPECT_EQ(record.flags, 0x1a4);
    EXPECT_EQ(record.which, 16);
    EXPECT_EQ(record.workspaces, 0xffffffffu);
    EXPECT_EQ(record.shelfSize, 1);
    for (int32 index = 0; index < kLayerNameCount; index++) {
        ASSERT_NE(record.layerName[index], nullptr);
        EXPECT_STREQ(record.layerName[index], "");
    }
}

TEST(SettingsTest, DefaultFlagsSetLabelWorkspaceCommandShelfTailAndBorder) {
    settings record;
    EXPECT_EQ(record.flags,
              kDrawLabelFlag | kWorkspaceCommandFlag | kShelfOnTailFlag | kDrawBorderFlag);
}

TEST(SettingsTest, ArchiveAddsTheNineKeysInOrder) {
    settings record;
    BMessage archive;
    ASSERT_EQ(record.archive_to(&archive), B_OK);

    const char* expected[] = {"location", "direction",  "forInvoke", "forExpand", "flags",
                              "which",    "workspaces", "shelfSize", "layerName"};
    const type_code types[] = {B_INT32_TYPE, B_INT32_TYPE, B_INT32_TYPE, B_INT32_TYPE, B_INT32_TYPE,
                               B_INT32_TYPE, B_INT32_TYPE, B_INT32_TYPE, B_STRING_TYPE};
    ASSERT_EQ(archive.CountNames(B_ANY_TYPE), 9);
    for (int32 index = 0; index < 9; index++) {
        char* name;
        type_code type;
        int32 count;
        ASSERT_EQ(archive.GetInfo(B_ANY_TYPE, index, &name, &type, &count), B_OK);
        EXPECT_STREQ(name, expected[index]);
        EXPECT_EQ(type, types[index]);
        EXPECT_EQ(count, index == 8 ? 32 : 1);
    }
}

TEST(SettingsTest, ArchiveDoesNotEmptyTheMessage) {
    settings record;
    BMessage archive;
    archive.AddString("prefs_frame", "kept");
    ASSERT_EQ(record.archive_to(&archive), B_OK);
    const char* kept;
    EXPECT_EQ(archive.FindString("prefs_frame", &kept), B_OK);
}

TEST(SettingsTest, ArchiveAndSetToRoundTrip) {
    settings original;
    original.location = 1;
    original.direction = 2;
    original.forInvoke = 3;
    original.forExpand = 0;
    original.flags = 0x7f;
    original.which = 32;
    original.workspaces = 0x80000001;
    original.shelfSize = 3;
    settings other;
    other.set_to(original);
    BMessage archive;
    ASSERT_EQ(original.archive_to(&archive), B_OK);

    settings copy;
    ASSERT_EQ(copy.set_to(&archive), B_OK);
    EXPECT_EQ(copy.compare(&original, true), 0);
    EXPECT_EQ(copy.workspaces, 0x80000001u);
    EXPECT_EQ(copy.shelfSize, 3);
}

TEST(SettingsTest, LayerNamesRoundTripByWorkspace) {
    settings original;
    BMessage names;
    for (int32 index = 0; index < kLayerNameCount; index++) {
        char name[16];
        snprintf(name, sizeof(name), "layer %d", (int)index);
        names.AddString("layerName", name);
    }
    fill_archive(&names);
    ASSERT_EQ(original.set_to(&names), B_OK);

    BMessage archive;
    ASSERT_EQ(original.archive_to(&archive), B_OK);
    settings copy;
    ASSERT_EQ(copy.set_to(&archive), B_OK);
    EXPECT_STREQ(copy.layerName[0], "layer 0");
    EXPECT_STREQ(copy.layerName[31], "layer 31");
}

TEST(SettingsTest, MissingShelfSizeReadsAsFour) {
    BMessage archive;
    fill_archive(&archive);
    settings record;
    EXPECT_EQ(record.shelfSize, 1);
    ASSERT_EQ(record.set_to(&archive), B_OK);
    EXPECT_EQ(record.shelfSize, 4);
}

TEST(SettingsTest, MissingFlagsLeavesTheRecordPartlyRead) {
    BMessage archive;
    archive.AddInt32("location", 0);
    archive.AddInt32("direction", 2);
    archive.AddInt32("forInvoke", 1);
    archive.AddInt32("forExpand", 3);
    archive.AddInt32("which", 32);
    archive.AddInt32("workspaces", 0x0f);
    archive.AddInt32("shelfSize", 2);
    archive.AddString("layerName", "Work");

    settings record;
    EXPECT_EQ(record.set_to(&archive), B_NAME_NOT_FOUND);
    EXPECT_EQ(record.location, 0);
    EXPECT_EQ(record.direction, 2);
    EXPECT_EQ(record.forInvoke, 1);
    EXPECT_EQ(record.forExpand, 3);
    // Everything from the missing key on is left as it was.
    EXPECT_EQ(record.flags, 0x1a4);
    EXPECT_EQ(record.which, 16);
    EXPECT_EQ(record.workspaces, 0xffffffffu);
    EXPECT_EQ(record.shelfSize, 1);
    EXPECT_STREQ(record.layerName[0], "");
}

TEST(SettingsTest, MissingFirstKeyChangesNothing) {
    BMessage archive;
    archive.AddInt32("direction", 2);
    settings record;
    EXPECT_EQ(record.set_to(&archive), B_NAME_NOT_FOUND);
    EXPECT_EQ(record.direction, 1);
}

TEST(SettingsTest, FewerLayerNamesChangeOnlyTheirWorkspaces) {
    settings record;
    BMessage first;
    fill_archive(&first);
    for (int32 index = 0; index < kLayerNameCount; index++)
        first.AddString("layerName", "Old");
    ASSERT_EQ(record.set_to(&first), B_OK);

    BMessage second;
    fill_archive(&second);
    second.AddString("layerName", "New 0");
    second.AddString("layerName", "New 1");
    ASSERT_EQ(record.set_to(&second), B_OK);
    EXPECT_STREQ(record.layerName[0], "New 0");
    EXPECT_STREQ(record.layerName[1], "New 1");
    for (int32 index = 2; index < kLayerNameCount; index++)
        EXPECT_STREQ(record.layerName[index], "Old");
}

TEST(SettingsTest, MoreThanThirtyTwoNamesKeepTheFirstThirtyTwo) {
    BMessage archive;
    fill_archive(&archive);
    for (int32 index = 0; index < 40; index++) {
        char name[16];
        snprintf(name, sizeof(name), "n%d", (int)index);
        archive.AddString("layerName", name);
    }
    settings record;
    ASSERT_EQ(record.set_to(&archive), B_OK);
    EXPECT_STREQ(record.layerName[31], "n31");
}

TEST(SettingsTest, CopyingMakesItsOwnNames) {
    settings original;
    BMessage archive;
    fill_archive(&archive);
    archive.AddString("layerName", "Work");
    ASSERT_EQ(original.set_to(&archive), B_OK);

    settings copy;
    copy.set_to(original);
    EXPECT_STREQ(copy.layerName[0], "Work");
    EXPECT_NE(copy.layerName[0], original.layerName[0]);
    EXPECT_EQ(copy.compare(&original, true), 0);
}

TEST(SettingsTest, SetToNullMessageIsRefused) {
    settings record;
    EXPECT_EQ(record.set_to((BMessage*)NULL), B_BAD_VALUE);
    EXPECT_EQ(record.archive_to(NULL), B_BAD_VALUE);
}

TEST(SettingsTest, EqualRecordsCompareAsZero) {
    settings one;
    settings two;
    EXPECT_EQ(one.compare(&two, true), 0);
    EXPECT_EQ(one.compare(&two, false), 0);
}

TEST(SettingsTest, DirectionDifferenceAlwaysComesFirst) {
    settings one;
    settings two;
    two.direction = 3;
    two.workspaces = 1;
    two.which = 32;
    two.forInvoke = 0;
    EXPECT_EQ(one.compare(&two, true), 5);
    EXPECT_EQ(one.compare(&two, false), 5);
}

TEST(SettingsTest, WorkspaceMaskDifferenceGivesFour) {
    settings one;
    settings two;
    two.workspaces = 0xfffffffe;
    EXPECT_EQ(one.compare(&two, true), 4);
}

TEST(SettingsTest, LayerNameDifferenceGivesThree) {
    settings one;
    settings other;
    BMessage archive;
    fill_archive(&archive);
    for (int32 index = 0; index < 6; index++)
        archive.AddString("layerName", index == 5 ? "Games" : "");
    ASSERT_EQ(other.set_to(&archive), B_OK);
    one.set_to(other);
    BMessage changed;
    fill_archive(&changed);
    for (int32 index = 0; index < 6; index++)
        changed.AddString("layerName", "");
    ASSERT_EQ(other.set_to(&changed), B_OK);
    EXPECT_EQ(one.compare(&other, true), 3);
}

TEST(SettingsTest, LookChangesGiveTwo) {
    settings base;
    {
        settings other;
        other.which = 32;
        EXPECT_EQ(base.compare(&other, true), 2);
    }
    {
        settings other;
        other.location = 0;
        EXPECT_EQ(base.compare(&other, true), 2);
    }
    {
        settings other;
        other.shelfSize = 2;
        EXPECT_EQ(base.compare(&other, true), 2);
    }
}

TEST(SettingsTest, LabelAndShelfFlagsGiveTwo) {
    settings base;
    for (int32 bit : {0x004, 0x040}) {
        settings other;
        other.flags = base.flags ^ bit;
        EXPECT_EQ(base.compare(&other, true), 2) << "bit " << bit;
    }
}

TEST(SettingsTest, OtherFlagsAloneGiveOne) {
    settings base;
    for (int32 bit : {0x008, 0x001, 0x002, 0x010, 0x020, 0x080, 0x100}) {
        settings other;
        other.flags = base.flags ^ bit;
        EXPECT_EQ(base.compare(&other, true), 1) << "bit " << bit;
    }
}

TEST(SettingsTest, MouseOperationsGiveOne) {
    settings base;
    settings invoke;
    invoke.forInvoke = 3;
    EXPECT_EQ(base.compare(&invoke, true), 1);
    settings expand;
    expand.forExpand = 0;
    EXPECT_EQ(base.compare(&expand, true), 1);
}

namespace {

// Puts the headless screen on workspace 3 of 8.
void use_workspace_three() {
    ASSERT_EQ(BPrivate::HeadlessTestApi::Use(), B_OK);
    ASSERT_EQ(BPrivate::HeadlessTestApi::SetWorkspaceCount(8), B_OK);
    ASSERT_EQ(BPrivate::HeadlessTestApi::SetWorkspace(3), B_OK);
    ASSERT_EQ(current_workspace(), 3);
}

void set_name(settings* record, int32 workspace, const char* name) {
    BMessage archive;
    ASSERT_EQ(record->archive_to(&archive), B_OK);
    ASSERT_EQ(archive.ReplaceString("layerName", workspace, name), B_OK);
    ASSERT_EQ(record->set_to(&archive), B_OK);
}

} // namespace

TEST(SettingsTest, CurrentWorkspaceOnlyIgnoresOtherWorkspaces) {
    use_workspace_three();
    settings one;
    settings other;
    other.workspaces = one.workspaces & ~(1u << 5);
    set_name(&other, 5, "Elsewhere");
    EXPECT_EQ(one.compare(&other, false), 0);
    EXPECT_EQ(one.compare(&other, true), 4);
}

TEST(SettingsTest, CurrentWorkspaceMaskBitGivesFour) {
    use_workspace_three();
    settings one;
    settings other;
    other.workspaces = one.workspaces & ~(1u << 3);
    EXPECT_EQ(one.compare(&other, false), 4);
}

TEST(SettingsTest, CurrentWorkspaceNameGivesThree) {
    use_workspace_three();
    settings one;
    settings other;
    set_name(&other, 3, "Here");
    EXPECT_EQ(one.compare(&other, false), 3);
}

TEST(SettingsTest, DirectionWinsOnTheCurrentWorkspaceToo) {
    use_workspace_three();
    settings one;
    settings other;
    other.direction = 0;
    other.workspaces = 0;
    set_name(&other, 3, "Here");
    EXPECT_EQ(one.compare(&other, false), 5);
}
