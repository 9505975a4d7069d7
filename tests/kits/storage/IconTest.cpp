// Tracker icons: the node's own icon, a desktop entry's, the type's from the icon
// theme, the generic one; scaling and colour-space conversion; volume icons.
#include <Bitmap.h>
#include <Entry.h>
#include <Mime.h>
#include <Node.h>
#include <NodeInfo.h>
#include <Volume.h>

#include "RecordingApps.h"
#include "TestHome.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

using testing_support::RecordingApps;
using testing_support::TestHome;

namespace {

// Palette indices of pure colours (the Be system palette).
const uint8 kRedIndex = 42;
const uint8 kBlueIndex = 32;
const uint8 kGreenIndex = 52;
const uint8 kTransparentIndex = 255;

const char kThemeIndex[] = "[Icon Theme]\nName=Hicolor\nDirectories=16x16/mimetypes,"
                           "32x32/mimetypes,16x16/apps,scalable/apps\n\n"
                           "[16x16/mimetypes]\nSize=16\nType=Fixed\n\n"
                           "[32x32/mimetypes]\nSize=32\nType=Fixed\n\n"
                           "[16x16/apps]\nSize=16\nType=Fixed\n\n"
                           "[scalable/apps]\nSize=48\nMinSize=8\nMaxSize=512\nType=Scalable\n";

// A square PNG of one colour; with halfTransparent its left half is clear.
void write_png(const std::string& path, int size, double red, double green, double blue,
               bool halfTransparent = false, double alpha = 1.0) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, size, size);
    cairo_t* context = cairo_create(surface);
    cairo_set_source_rgba(context, red, green, blue, alpha);
    if (halfTransparent)
        cairo_rectangle(context, size / 2, 0, size - size / 2, size);
    else
        cairo_rectangle(context, 0, 0, size, size);
    cairo_fill(context);
    cairo_destroy(context);
    ASSERT_EQ(CAIRO_STATUS_SUCCESS, cairo_surface_write_to_png(surface, path.c_str()));
    cairo_surface_destroy(surface);
}

class IconTest : public testing::Test {
protected:
    IconTest() : fApps(fHome) {}

    std::string Theme() const { return fHome.DataHome() + "/icons/hicolor"; }

    void InstallTheme() {
        fHome.WriteFile(".local/share/icons/hicolor/index.theme", kThemeIndex);
        fHome.MakeFolder(".local/share/icons/hicolor/16x16/mimetypes");
        fHome.MakeFolder(".local/share/icons/hicolor/32x32/mimetypes");
        fHome.MakeFolder(".local/share/icons/hicolor/16x16/apps");
        fHome.MakeFolder(".local/share/icons/hicolor/scalable/apps");
    }

    status_t TrackerIcon(const std::string& path, BBitmap* icon, icon_size which) {
        entry_ref ref;
        status_t status = get_ref_for_path(path.c_str(), &ref);
        if (status != B_OK)
            return status;
        return BNodeInfo::GetTrackerIcon(&ref, icon, which);
    }

    static uint8 IndexAt(const BBitmap& icon, int32 x, int32 y) {
        return static_cast<const uint8*>(icon.Bits())[y * icon.BytesPerRow() + x];
    }

    TestHome fHome;
    RecordingApps fApps;
};

} // namespace

TEST_F(IconTest, TrackerIconComesFromTheIconAttribute) {
    std::string path = fHome.WriteFile("picture.png", "x");
    uint8 raw[1024];
    for (int i = 0; i < 1024; i++)
        raw[i] = uint8(i % 200);
    BNode node(path.c_str());
    ASSERT_EQ(1024, node.WriteAttr("BEOS:L:STD_ICON", B_LARGE_ICON_TYPE, 0, raw, sizeof(raw)));

    BBitmap icon(BRect(0, 0, 31, 31), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_LARGE_ICON));
    for (int32 y = 0; y < 32; y++) {
        for (int32 x = 0; x < 32; x++)
            ASSERT_EQ(raw[y * 32 + x], IndexAt(icon, x, y));
    }
}

TEST_F(IconTest, TrackerIconAcceptsIconAttributeOfAnyTypeCode) {
    std::string path = fHome.WriteFile("data", "x");
    uint8 raw[256];
    memset(raw, kGreenIndex, sizeof(raw));
    BNode node(path.c_str());
    ASSERT_EQ(256, node.WriteAttr("BEOS:M:STD_ICON", B_RAW_TYPE, 0, raw, sizeof(raw)));
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_MINI_ICON));
    EXPECT_EQ(kGreenIndex, IndexAt(icon, 7, 7));
}

TEST_F(IconTest, TrackerIconEnlargesTheMiniIconWithHardEdges) {
    std::string path = fHome.WriteFile("data", "x");
    uint8 raw[256];
    for (int i = 0; i < 256; i++)
        raw[i] = (i % 16) < 8 ? kRedIndex : kBlueIndex;
    BNode node(path.c_str());
    ASSERT_EQ(256, node.WriteAttr("BEOS:M:STD_ICON", B_MINI_ICON_TYPE, 0, raw, sizeof(raw)));
    BBitmap icon(BRect(0, 0, 31, 31), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_LARGE_ICON));
    EXPECT_EQ(kRedIndex, IndexAt(icon, 0, 0));
    EXPECT_EQ(kRedIndex, IndexAt(icon, 15, 31));
    EXPECT_EQ(kBlueIndex, IndexAt(icon, 16, 0));
    EXPECT_EQ(kBlueIndex, IndexAt(icon, 31, 31));
}

TEST_F(IconTest, TrackerIconOfDesktopEntryUsesItsIconFile) {
    std::string png = fHome.Path() + "/viewer.png";
    write_png(png, 48, 0, 0, 1);
    std::string entry = fHome.WriteFile(".local/share/applications/viewer.desktop",
                                        "[Desktop Entry]\nType=Application\nName=Viewer\n"
                                        "Exec=true\nIcon=" +
                                            png + "\n");
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(entry, &icon, B_MINI_ICON));
    EXPECT_EQ(kBlueIndex, IndexAt(icon, 0, 0));
    EXPECT_EQ(kBlueIndex, IndexAt(icon, 15, 15));
}

TEST_F(IconTest, TrackerIconOfDesktopEntryFindsItsIconNameInTheTheme) {
    InstallTheme();
    write_png(Theme() + "/16x16/apps/viewer-icon.png", 16, 0, 1, 0);
    std::string entry = fHome.WriteFile(".local/share/applications/viewer.desktop",
                                        "[Desktop Entry]\nType=Application\nName=Viewer\n"
                                        "Exec=true\nIcon=viewer-icon\n");
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(entry, &icon, B_MINI_ICON));
    EXPECT_EQ(kGreenIndex, IndexAt(icon, 8, 8));
}

TEST_F(IconTest, TrackerIconOfDocumentIsItsTypeIconFromTheTheme) {
    InstallTheme();
    write_png(Theme() + "/16x16/mimetypes/text-plain.png", 16, 1, 0, 0);
    write_png(Theme() + "/32x32/mimetypes/text-plain.png", 32, 0, 0, 1);
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BBitmap mini(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &mini, B_MINI_ICON));
    EXPECT_EQ(kRedIndex, IndexAt(mini, 3, 3));
    BBitmap large(BRect(0, 0, 31, 31), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &large, B_LARGE_ICON));
    EXPECT_EQ(kBlueIndex, IndexAt(large, 3, 3));
}

TEST_F(IconTest, TrackerIconUsesTheTypeAttributeForTheThemeIcon) {
    InstallTheme();
    write_png(Theme() + "/16x16/mimetypes/image-png.png", 16, 0, 1, 0);
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BNode node(path.c_str());
    BNodeInfo(&node).SetType("image/png");
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_MINI_ICON));
    EXPECT_EQ(kGreenIndex, IndexAt(icon, 3, 3));
}

TEST_F(IconTest, TrackerIconScalesAThemeIconOfAnotherSize) {
    InstallTheme();
    write_png(Theme() + "/16x16/mimetypes/text-plain.png", 16, 1, 0, 0);
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BBitmap icon(BRect(0, 0, 31, 31), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_LARGE_ICON));
    EXPECT_EQ(kRedIndex, IndexAt(icon, 0, 0));
    EXPECT_EQ(kRedIndex, IndexAt(icon, 31, 31));
}

TEST_F(IconTest, TrackerIconRendersScalableThemeIcons) {
    InstallTheme();
    fHome.WriteFile(".local/share/icons/hicolor/scalable/apps/vector-icon.svg",
                    "<svg xmlns='http://www.w3.org/2000/svg' width='48' height='48'>"
                    "<rect width='48' height='48' fill='#0000ff'/></svg>");
    std::string entry = fHome.WriteFile(".local/share/applications/vector.desktop",
                                        "[Desktop Entry]\nType=Application\nName=Vector\n"
                                        "Exec=true\nIcon=vector-icon\n");
    BBitmap icon(BRect(0, 0, 31, 31), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(entry, &icon, B_LARGE_ICON));
    EXPECT_EQ(kBlueIndex, IndexAt(icon, 16, 16));
}

TEST_F(IconTest, TrackerIconTurnsTransparentPixelsIntoTheTransparentIndex) {
    InstallTheme();
    write_png(Theme() + "/16x16/mimetypes/text-plain.png", 16, 1, 0, 0, true);
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_MINI_ICON));
    EXPECT_EQ(kTransparentIndex, IndexAt(icon, 2, 5));
    EXPECT_EQ(kRedIndex, IndexAt(icon, 12, 5));
}

TEST_F(IconTest, TrackerIconLaysHalfTransparentPixelsOnThePanelGrey) {
    InstallTheme();
    // Black at a quarter alpha over the 216 grey is about 162 grey: index 20 (160).
    write_png(Theme() + "/16x16/mimetypes/text-plain.png", 16, 0, 0, 0, false, 0.25);
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_MINI_ICON));
    EXPECT_EQ(20, IndexAt(icon, 8, 8));
}

TEST_F(IconTest, TrackerIconIntoRgba32KeepsColourAndAlpha) {
    InstallTheme();
    write_png(Theme() + "/16x16/mimetypes/text-plain.png", 16, 1, 0, 0, true);
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BBitmap icon(BRect(0, 0, 15, 15), B_RGBA32);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_MINI_ICON));
    const uint8* bits = static_cast<const uint8*>(icon.Bits());
    const uint8* opaque = bits + 5 * icon.BytesPerRow() + 12 * 4;
    EXPECT_EQ(0, opaque[0]);
    EXPECT_EQ(0, opaque[1]);
    EXPECT_EQ(255, opaque[2]);
    EXPECT_EQ(255, opaque[3]);
    const uint8* clear = bits + 5 * icon.BytesPerRow() + 2 * 4;
    EXPECT_EQ(0, clear[3]);
}

TEST_F(IconTest, TrackerIconIntoRgb32MarksTransparentPixels) {
    InstallTheme();
    write_png(Theme() + "/16x16/mimetypes/text-plain.png", 16, 1, 0, 0, true);
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BBitmap icon(BRect(0, 0, 15, 15), B_RGB32);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_MINI_ICON));
    const uint8* bits = static_cast<const uint8*>(icon.Bits());
    uint32 clear;
    memcpy(&clear, bits + 5 * icon.BytesPerRow() + 2 * 4, 4);
    EXPECT_EQ(B_TRANSPARENT_MAGIC_RGBA32, clear);
    EXPECT_EQ(255, bits[5 * icon.BytesPerRow() + 12 * 4 + 2]);
}

TEST_F(IconTest, TrackerIconFallsBackToTheGenericDocument) {
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BBitmap icon(BRect(0, 0, 31, 31), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_LARGE_ICON));
    // A white page with a black outline, on a clear background.
    EXPECT_EQ(kTransparentIndex, IndexAt(icon, 0, 0));
    EXPECT_EQ(63, IndexAt(icon, 16, 16));
    EXPECT_EQ(0, IndexAt(icon, 7, 16));
}

TEST_F(IconTest, TrackerIconOfFolderFallsBackToTheGenericFolder) {
    std::string folder = fHome.MakeFolder("documents");
    BBitmap icon(BRect(0, 0, 31, 31), B_RGBA32);
    ASSERT_EQ(B_OK, TrackerIcon(folder, &icon, B_LARGE_ICON));
    const uint8* middle = static_cast<const uint8*>(icon.Bits()) + 18 * icon.BytesPerRow() + 16 * 4;
    // The folder's yellow: much red, some green, little blue.
    EXPECT_GT(middle[2], 200);
    EXPECT_GT(middle[1], 150);
    EXPECT_LT(middle[0], 150);
}

TEST_F(IconTest, TrackerIconOfBrokenLinkComesFromTheLink) {
    std::string link = fHome.Path() + "/dangling";
    ASSERT_EQ(0, symlink("/nonexistent/target", link.c_str()));
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    EXPECT_EQ(B_OK, TrackerIcon(link, &icon, B_MINI_ICON));
}

TEST_F(IconTest, TrackerIconOfLinkShowsItsTarget) {
    std::string target = fHome.WriteFile("data", "x");
    uint8 raw[256];
    memset(raw, kBlueIndex, sizeof(raw));
    BNode node(target.c_str());
    ASSERT_EQ(256, node.WriteAttr("BEOS:M:STD_ICON", B_MINI_ICON_TYPE, 0, raw, sizeof(raw)));
    std::string link = fHome.Path() + "/link";
    ASSERT_EQ(0, symlink(target.c_str(), link.c_str()));
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(link, &icon, B_MINI_ICON));
    EXPECT_EQ(kBlueIndex, IndexAt(icon, 4, 4));
}

TEST_F(IconTest, TrackerIconRefusesBitmapOfAnotherSize) {
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BBitmap icon(BRect(0, 0, 31, 31), B_CMAP8);
    EXPECT_EQ(B_BAD_VALUE, TrackerIcon(path, &icon, B_MINI_ICON));
    entry_ref ref;
    ASSERT_EQ(B_OK, get_ref_for_path(path.c_str(), &ref));
    EXPECT_EQ(B_BAD_VALUE, BNodeInfo::GetTrackerIcon(&ref, nullptr, B_MINI_ICON));
    EXPECT_EQ(B_BAD_VALUE, BNodeInfo::GetTrackerIcon(nullptr, &icon, B_LARGE_ICON));
}

TEST_F(IconTest, TrackerIconOfMissingEntryIsAnError) {
    entry_ref ref;
    ASSERT_EQ(B_OK, get_ref_for_path((fHome.Path() + "/missing").c_str(), &ref));
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    EXPECT_NE(B_OK, BNodeInfo::GetTrackerIcon(&ref, &icon, B_MINI_ICON));
}

TEST_F(IconTest, TrackerIconIgnoresAnUndecodableThemeFile) {
    InstallTheme();
    fHome.WriteFile(".local/share/icons/hicolor/16x16/mimetypes/text-plain.png", "not a png");
    std::string path = fHome.WriteFile("notes.txt", "hello\n");
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, TrackerIcon(path, &icon, B_MINI_ICON));
    EXPECT_EQ(kTransparentIndex, IndexAt(icon, 0, 0));
}

TEST_F(IconTest, VolumeIconIsADriveIcon) {
    struct stat info;
    ASSERT_EQ(0, stat(fHome.Path().c_str(), &info));
    BVolume volume(info.st_dev);
    ASSERT_EQ(B_OK, volume.InitCheck());
    BBitmap icon(BRect(0, 0, 31, 31), B_RGBA32);
    ASSERT_EQ(B_OK, volume.GetIcon(&icon, B_LARGE_ICON));
    const uint8* middle = static_cast<const uint8*>(icon.Bits()) + 16 * icon.BytesPerRow() + 8 * 4;
    EXPECT_EQ(255, middle[3]);
    BBitmap wrong(BRect(0, 0, 15, 15), B_RGBA32);
    EXPECT_EQ(B_BAD_VALUE, volume.GetIcon(&wrong, B_LARGE_ICON));
}

TEST_F(IconTest, DeviceIconOfAFolderIsItsVolumeIcon) {
    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, get_device_icon(fHome.Path().c_str(), &icon, B_MINI_ICON));
    EXPECT_NE(kTransparentIndex, IndexAt(icon, 8, 8));
    EXPECT_EQ(B_ENTRY_NOT_FOUND, get_device_icon("/nonexistent/device", &icon, B_MINI_ICON));
    EXPECT_EQ(B_BAD_VALUE, get_device_icon(nullptr, &icon, B_MINI_ICON));
}
