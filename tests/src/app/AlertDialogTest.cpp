// The boxes the application object shows, answered through the headless display:
// the warning box, the About box, launch failures and the missing-item dialog.
#include "AlertBox.h"
#include "Commands.h"
#include "FileHelpers.h"
#include "Glimrow.h"
#include "Globals.h"
#include "LayerInfo.h"
#include "LayerManager.h"

#include <Alert.h>
#include <Entry.h>
#include <Font.h>
#include <Message.h>
#include <Node.h>
#include <TextView.h>

#include <gtest/gtest.h>

#include "AlertAnswerer.h"
#include "RecordingApps.h"
#include "TestHome.h"
#include "server/headless/HeadlessTestApi.h"

#include <string>
#include <vector>

#include <stdlib.h>
#include <string.h>

using BPrivate::HeadlessTestApi;
using testing_support::AlertAnswerer;
using testing_support::RecordingApps;
using testing_support::SeenAlert;
using testing_support::TestHome;

namespace {

typedef std::vector<std::string> Strings;

entry_ref ref_for(const std::string& path) {
    entry_ref ref;
    EXPECT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK) << path;
    return ref;
}

std::string launch_failure(const char* name, status_t error) {
    return std::string("Glimrow Alert: \n\nFailed to launch a file \"") + name + "\".\n" +
           strerror(error);
}

class AlertDialogTest : public testing::Test {
protected:
    void SetUp() override {
        setenv("GLIMROW_DISPLAY", "headless", 1);
        fApplication = new Glimrow(false, false);
    }

    void TearDown() override {
        fApplication->QuitRequested();
        delete fApplication;
        gr_slave = NULL;
    }

    SeenAlert Only(AlertAnswerer& answerer) {
        EXPECT_TRUE(answerer.Wait());
        std::vector<SeenAlert> seen = answerer.Seen();
        EXPECT_EQ(seen.size(), 1u);
        return seen.empty() ? SeenAlert() : seen[0];
    }

    TestHome fHome;
    RecordingApps fApps{fHome};
    Glimrow* fApplication = NULL;
};

} // namespace

TEST_F(AlertDialogTest, WarningBoxShowsItsTextWithOK) {
    uint32 beeps = HeadlessTestApi::CountBeeps();
    AlertAnswerer answerer("OK");
    alert(kReadFailedAlert, "Work", B_BAD_VALUE);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.title, "Glimrow Alert");
    EXPECT_EQ(seen.text, std::string("Glimrow Alert: \n\nFailed to read a file \"Work\".\n") +
                             strerror(B_BAD_VALUE));
    EXPECT_EQ(seen.buttons, Strings{"OK"});
    EXPECT_GT(HeadlessTestApi::CountBeeps(), beeps);
}

TEST_F(AlertDialogTest, AboutBoxStylesItsFirstLines) {
    rgb_color titleColour = {};
    rgb_color letterB = {};
    rgb_color letterE = {};
    float titleSize = 0;
    float plainSize = 0;
    AlertAnswerer answerer("Easy ?", 1, [&](BAlert* about) {
        BFont font;
        about->TextView()->GetFontAndColor(0, &font, &titleColour);
        titleSize = font.Size();
        about->TextView()->GetFontAndColor(30, &font, &letterB);
        plainSize = font.Size();
        about->TextView()->GetFontAndColor(31, &font, &letterE);
    });
    fApplication->AboutRequested();
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.title, "about Glimrow");
    EXPECT_EQ(seen.buttons, Strings{"Easy ?"});
    EXPECT_EQ(seen.text.rfind("Glimrow 1.1.3\nhelps your life be easier.\n\n", 0), 0u);
    EXPECT_EQ(seen.text.substr(30, 2), "be");
    EXPECT_EQ(titleColour.red, 0);
    EXPECT_EQ(titleColour.green, 0);
    EXPECT_EQ(titleColour.blue, 125);
    EXPECT_FLOAT_EQ(titleSize, plainSize + 2.0f);
    EXPECT_EQ(letterB.blue, 125);
    EXPECT_EQ(letterE.red, 120);
    EXPECT_EQ(letterE.blue, 0);
}

TEST_F(AlertDialogTest, OpeningAVanishedFileNamesItInTheAlert) {
    std::string vanished = fHome.WriteFile("vanished.txt", "x");
    BMessage click(kOpen);
    entry_ref ref = ref_for(vanished);
    click.AddRef("file", &ref);
    click.AddRef("entries", &ref);
    remove(vanished.c_str());

    AlertAnswerer answerer("OK");
    fApplication->Open(&click);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.title, "Glimrow Alert");
    EXPECT_EQ(seen.text.rfind("Glimrow Alert: \n\nFailed to launch a file \"vanished.txt\".\n", 0),
              0u)
        << seen.text;
}

TEST_F(AlertDialogTest, OpenWithStopsAtTheFirstFailure) {
    std::string second = fApps.Add("org.example.Second", "text/plain;");
    std::string sentinel = fApps.Add("org.example.Sentinel", "text/plain;");
    std::string document = fHome.WriteFile("letter.txt", "dear\n");
    BMessage message(kOpenWith);
    message.AddString("applications", "application/x-vnd.glimrow-no-such-app");
    char signature[B_MIME_TYPE_LENGTH];
    entry_ref secondApp = ref_for(second);
    ASSERT_EQ(get_signature(&secondApp, signature, NULL), B_OK);
    message.AddString("applications", signature);
    entry_ref ref = ref_for(document);
    message.AddRef("file", &ref);

    AlertAnswerer answerer("OK");
    fApplication->OpenWith(&message);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.text.rfind("Glimrow Alert: \n\nFailed to launch a file \"letter.txt\".\n", 0),
              0u)
        << seen.text;

    // A launch made after the failed one arrives; the second application of
    // the failed command never ran.
    BMessage after(kOpenWith);
    entry_ref sentinelApp = ref_for(sentinel);
    ASSERT_EQ(get_signature(&sentinelApp, signature, NULL), B_OK);
    after.AddString("applications", signature);
    after.AddRef("file", &ref);
    fApplication->OpenWith(&after);
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Sentinel", 1));
    EXPECT_TRUE(fApps.Runs("org.example.Second").empty());
}

TEST_F(AlertDialogTest, OpenParentOfAVanishedFileAlerts) {
    std::string vanished = fHome.WriteFile("Documents/gone.txt", "x");
    BMessage message(kOpenParent);
    entry_ref ref = ref_for(vanished);
    message.AddRef("file", &ref);
    remove(vanished.c_str());

    AlertAnswerer answerer("OK");
    fApplication->OpenParent(&message);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.text, launch_failure("gone.txt", B_ENTRY_NOT_FOUND));
}

TEST_F(AlertDialogTest, MissingItemOffersToEditItsLayer) {
    fApps.Add("org.example.Editor", "text/plain;");
    fApps.SetDefault("text/plain", "org.example.Editor");
    std::string layerFile = fHome.WriteFile(".config/Glimrow/layers/Work", "/gone\n");
    BNode(layerFile.c_str()).WriteAttr("BEOS:TYPE", B_MIME_TYPE, 0, "text/plain", 11);
    LayerManager* manager =
        new LayerManager(BRect(0, 0, 50, 50), "manager", 0, which_test_items, which_test_items);
    manager->Show();
    ASSERT_TRUE(manager->Lock());
    LayerInfo* layer = manager->FindLayer("Work");
    manager->Unlock();
    ASSERT_NE(layer, nullptr);

    BMessage message(kShowDialog);
    message.AddString("path", "/gone");
    message.AddPointer("layer", layer);
    AlertAnswerer answerer("Don't Edit");
    fApplication->ShowDialog(&message);
    SeenAlert seen = Only(answerer);
    EXPECT_EQ(seen.title, "Glimrow Alert");
    EXPECT_EQ(seen.text, "The item \"/gone\" was not found.\nEdit the layer \"Work\"?");
    EXPECT_EQ(seen.buttons, (Strings{"Edit from Prefs", "Edit from TextEditor", "Don't Edit"}));

    AlertAnswerer edit("Edit from TextEditor");
    fApplication->ShowDialog(&message);
    ASSERT_TRUE(edit.Wait());
    ASSERT_TRUE(fApps.WaitForRuns("org.example.Editor", 1));
    EXPECT_EQ(fApps.Runs("org.example.Editor")[0], Strings{layerFile});

    manager->Lock();
    manager->Quit();
}

TEST_F(AlertDialogTest, MissingItemDialogNeedsItsFields) {
    uint32 beeps = HeadlessTestApi::CountBeeps();
    BMessage noLayer(kShowDialog);
    noLayer.AddString("path", "/gone");
    fApplication->ShowDialog(&noLayer);
    BMessage noPath(kShowDialog);
    int layer;
    noPath.AddPointer("layer", &layer);
    fApplication->ShowDialog(&noPath);
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps);
    EXPECT_EQ(fApplication->CountWindows(), 0);
}

TEST_F(AlertDialogTest, MissingItemOfALayerWithoutLooperOnlyBeeps) {
    uint32 beeps = HeadlessTestApi::CountBeeps();
    LayerInfo loose("Loose", true);
    BMessage message(kShowDialog);
    message.AddString("path", "/gone");
    message.AddPointer("layer", &loose);
    fApplication->ShowDialog(&message);
    EXPECT_EQ(HeadlessTestApi::CountBeeps(), beeps + 1);
}
