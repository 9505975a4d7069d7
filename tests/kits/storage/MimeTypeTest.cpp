// BMimeType: the string rules, the database's descriptions and icons, and the
// applications the freedesktop associations give a type.
#include <Bitmap.h>
#include <Entry.h>
#include <Message.h>
#include <MimeType.h>

#include "RecordingApps.h"
#include "TestHome.h"

#include <cairo.h>
#include <gtest/gtest.h>

#include <string.h>

using testing_support::RecordingApps;
using testing_support::TestHome;

namespace {

std::vector<std::string> strings_of(const BMessage& message, const char* name) {
    std::vector<std::string> result;
    const char* value = nullptr;
    for (int32 i = 0; message.FindString(name, i, &value) == B_OK; i++)
        result.push_back(value);
    return result;
}

std::string signature_for(const char* id) {
    return std::string("application/x-vnd.desktop-") + id;
}

} // namespace

TEST(MimeTypeTest, MimeTypeAcceptsValidStrings) {
    EXPECT_TRUE(BMimeType::IsValid("text/plain"));
    EXPECT_TRUE(BMimeType::IsValid("text"));
    EXPECT_TRUE(BMimeType::IsValid("application/x-vnd.Be-TRAK"));
}

TEST(MimeTypeTest, MimeTypeRefusesInvalidStrings) {
    EXPECT_FALSE(BMimeType::IsValid(nullptr));
    EXPECT_FALSE(BMimeType::IsValid(""));
    EXPECT_FALSE(BMimeType::IsValid("/plain"));
    EXPECT_FALSE(BMimeType::IsValid("text/"));
    EXPECT_FALSE(BMimeType::IsValid("a/b/c"));
    EXPECT_FALSE(BMimeType::IsValid("text/pl ain"));
    EXPECT_FALSE(BMimeType::IsValid("text/pl;ain"));
    EXPECT_FALSE(BMimeType::IsValid("text/\xc3\xa9"));
    EXPECT_FALSE(BMimeType::IsValid(std::string(B_MIME_TYPE_LENGTH, 'a').c_str()));
}

TEST(MimeTypeTest, MimeTypeSetToInvalidStringLeavesItUninitialised) {
    BMimeType type("text/plain");
    EXPECT_EQ(B_BAD_VALUE, type.SetTo("no good/"));
    EXPECT_EQ(B_BAD_VALUE, type.InitCheck());
    EXPECT_EQ(nullptr, type.Type());
    EXPECT_FALSE(type.IsValid());
    type.Unset();
    EXPECT_EQ(B_NO_INIT, type.InitCheck());
}

TEST(MimeTypeTest, MimeTypeKnowsItsSupertype) {
    BMimeType type("text/plain");
    BMimeType supertype;
    ASSERT_EQ(B_OK, type.GetSupertype(&supertype));
    EXPECT_STREQ("text", supertype.Type());
    EXPECT_TRUE(supertype.IsSupertypeOnly());
    EXPECT_FALSE(type.IsSupertypeOnly());
    BMimeType top;
    EXPECT_EQ(B_BAD_VALUE, supertype.GetSupertype(&top));
}

TEST(MimeTypeTest, MimeTypeComparesWithoutCase) {
    BMimeType type("Text/Plain");
    EXPECT_TRUE(type == "text/plain");
    EXPECT_TRUE(type == BMimeType("TEXT/PLAIN"));
    EXPECT_FALSE(type == "text/html");
}

TEST(MimeTypeTest, MimeTypeSupertypeContainsItsSubtypes) {
    BMimeType text("text");
    BMimeType plain("text/plain");
    BMimeType image("image/png");
    EXPECT_TRUE(text.Contains(&plain));
    EXPECT_TRUE(plain.Contains(&plain));
    EXPECT_FALSE(plain.Contains(&text));
    EXPECT_FALSE(text.Contains(&image));
}

TEST(MimeTypeTest, MimeTypeDescriptionComesFromTheDatabase) {
    char description[B_MIME_TYPE_LENGTH];
    ASSERT_EQ(B_OK, BMimeType("image/png").GetShortDescription(description));
    EXPECT_NE(nullptr, strstr(description, "PNG"));
    EXPECT_EQ(B_ENTRY_NOT_FOUND,
              BMimeType("application/x-vnd.nobody-knows").GetShortDescription(description));
}

TEST(MimeTypeTest, MimeTypeKnowsInstalledTypes) {
    EXPECT_TRUE(BMimeType("text/plain").IsInstalled());
    EXPECT_TRUE(BMimeType("image").IsInstalled());
    EXPECT_FALSE(BMimeType("application/x-vnd.nobody-knows").IsInstalled());
}

TEST(MimeTypeTest, MimeTypeGuessesFromNamesAndData) {
    BMimeType type;
    ASSERT_EQ(B_OK, BMimeType::GuessMimeType("picture.png", &type));
    EXPECT_STREQ("image/png", type.Type());
    const char script[] = "#!/bin/sh\necho hi\n";
    ASSERT_EQ(B_OK, BMimeType::GuessMimeType(script, int32(sizeof(script) - 1), &type));
    EXPECT_STREQ("application/x-shellscript", type.Type());
    EXPECT_EQ(B_BAD_VALUE, BMimeType::GuessMimeType(static_cast<const char*>(nullptr), &type));
}

TEST(MimeTypeTest, MimeTypePreferredAppIsTheDefaultApplication) {
    TestHome home;
    RecordingApps apps(home);
    apps.Add("first-viewer", "image/png;");
    apps.Add("second-viewer", "image/png;");
    apps.SetDefault("image/png", "second-viewer");
    char signature[B_MIME_TYPE_LENGTH];
    ASSERT_EQ(B_OK, BMimeType("image/png").GetPreferredApp(signature));
    EXPECT_EQ(signature_for("second-viewer"), signature);
}

TEST(MimeTypeTest, MimeTypeWithoutApplicationHasNoPreferredApp) {
    TestHome home;
    RecordingApps apps(home);
    char signature[B_MIME_TYPE_LENGTH];
    EXPECT_EQ(B_ENTRY_NOT_FOUND,
              BMimeType("audio/x-nothing-plays-this").GetPreferredApp(signature));
}

TEST(MimeTypeTest, MimeTypeSupportingAppsListsTypeThenParentSupporters) {
    TestHome home;
    RecordingApps apps(home);
    apps.Add("c-editor", "text/x-csrc;");
    apps.Add("text-editor", "text/plain;");
    apps.Add("image-viewer", "image/png;");
    BMessage signatures;
    ASSERT_EQ(B_OK, BMimeType("text/x-csrc").GetSupportingApps(&signatures));
    std::vector<std::string> expected = {signature_for("c-editor"), signature_for("text-editor")};
    EXPECT_EQ(expected, strings_of(signatures, "applications"));
    EXPECT_EQ(1, signatures.GetInt32("be:sub", -1));
    EXPECT_EQ(1, signatures.GetInt32("be:super", -1));
}

TEST(MimeTypeTest, MimeTypeSupportingAppsLeavesOutAnyFileApplications) {
    TestHome home;
    RecordingApps apps(home);
    apps.Add("text-editor", "text/plain;");
    apps.Add("hex-editor", "application/octet-stream;");
    BMessage signatures;
    ASSERT_EQ(B_OK, BMimeType("text/plain").GetSupportingApps(&signatures));
    std::vector<std::string> expected = {signature_for("text-editor")};
    EXPECT_EQ(expected, strings_of(signatures, "applications"));
    EXPECT_EQ(1, signatures.GetInt32("be:sub", -1));
    EXPECT_EQ(0, signatures.GetInt32("be:super", -1));
}

TEST(MimeTypeTest, MimeTypeSupportingAppsOfUnsupportedTypeIsEmpty) {
    TestHome home;
    RecordingApps apps(home);
    apps.Add("text-editor", "text/plain;");
    BMessage signatures;
    signatures.AddString("applications", "stale");
    ASSERT_EQ(B_OK, BMimeType("audio/x-nothing-plays-this").GetSupportingApps(&signatures));
    EXPECT_TRUE(strings_of(signatures, "applications").empty());
    EXPECT_EQ(0, signatures.GetInt32("be:sub", -1));
    EXPECT_EQ(0, signatures.GetInt32("be:super", -1));
}

TEST(MimeTypeTest, MimeTypeWildcardAppsTakeAnyFile) {
    TestHome home;
    RecordingApps apps(home);
    apps.Add("text-editor", "text/plain;");
    apps.Add("hex-editor", "application/octet-stream;");
    BMessage signatures;
    ASSERT_EQ(B_OK, BMimeType::GetWildcardApps(&signatures));
    std::vector<std::string> expected = {signature_for("hex-editor")};
    EXPECT_EQ(expected, strings_of(signatures, "applications"));
}

TEST(MimeTypeTest, MimeTypeAppHintOfSignatureIsTheApplicationFile) {
    TestHome home;
    RecordingApps apps(home);
    std::string path = apps.Add("text-editor", "text/plain;");
    entry_ref hint;
    ASSERT_EQ(B_OK, BMimeType(signature_for("text-editor").c_str()).GetAppHint(&hint));
    entry_ref expected;
    ASSERT_EQ(B_OK, get_ref_for_path(path.c_str(), &expected));
    EXPECT_EQ(expected, hint);
    EXPECT_EQ(B_ENTRY_NOT_FOUND, BMimeType("text/plain").GetAppHint(&hint));
}

TEST(MimeTypeTest, MimeTypeIconComesFromTheTheme) {
    TestHome home;
    RecordingApps apps(home);
    home.WriteFile(".local/share/icons/hicolor/index.theme",
                   "[Icon Theme]\nName=Hicolor\nDirectories=16x16/mimetypes\n\n"
                   "[16x16/mimetypes]\nSize=16\nType=Fixed\n");
    std::string png =
        home.MakeFolder(".local/share/icons/hicolor/16x16/mimetypes") + "/image-x-generic.png";
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 16, 16);
    cairo_t* context = cairo_create(surface);
    cairo_set_source_rgb(context, 0, 1, 0);
    cairo_paint(context);
    cairo_destroy(context);
    ASSERT_EQ(CAIRO_STATUS_SUCCESS, cairo_surface_write_to_png(surface, png.c_str()));
    cairo_surface_destroy(surface);

    BBitmap icon(BRect(0, 0, 15, 15), B_CMAP8);
    ASSERT_EQ(B_OK, BMimeType("image/png").GetIcon(&icon, B_MINI_ICON));
    EXPECT_EQ(52, static_cast<const uint8*>(icon.Bits())[0]);
    EXPECT_EQ(B_ENTRY_NOT_FOUND,
              BMimeType("audio/x-nothing-plays-this").GetIcon(&icon, B_MINI_ICON));
}
