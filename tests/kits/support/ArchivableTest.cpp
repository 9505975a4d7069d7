// BArchivable, the class registry and instantiation from archives.
#include <Archivable.h>
#include <Message.h>

#include "support/ArchivablePrivate.h"

#include <gtest/gtest.h>

#include <errno.h>

namespace {

class Widget : public BArchivable {
public:
    explicit Widget(int32 size) : fSize(size) {}
    Widget(BMessage* archive) : BArchivable(archive), fSize(0) {
        archive->FindInt32("size", &fSize);
    }

    status_t Archive(BMessage* into, bool deep = true) const override {
        status_t status = BArchivable::Archive(into, deep);
        if (status != B_OK)
            return status;
        return into->AddInt32("size", fSize);
    }

    static BArchivable* Instantiate(BMessage* archive) {
        if (!validate_instantiation(archive, "Widget"))
            return NULL;
        return new Widget(archive);
    }

    int32 fSize;
};

namespace inner {

class Gadget : public BArchivable {
public:
    static BArchivable* Instantiate(BMessage*) { return new Gadget; }
};

} // namespace inner

} // namespace

TEST(Archivable, ArchiveAddsTheClassName) {
    Widget widget(7);
    BMessage archive;
    ASSERT_EQ(widget.Archive(&archive), B_OK);
    const char* name = NULL;
    ASSERT_EQ(archive.FindString("class", &name), B_OK);
    // The class sits in an anonymous namespace here; the archive names it fully.
    EXPECT_STREQ(name, "(anonymous namespace)::Widget");
}

TEST(Archivable, ArchiveNamesNestedClassesWithTheirNamespaces) {
    inner::Gadget gadget;
    BMessage archive;
    ASSERT_EQ(gadget.Archive(&archive), B_OK);
    const char* name = NULL;
    ASSERT_EQ(archive.FindString("class", &name), B_OK);
    EXPECT_STREQ(name, "(anonymous namespace)::inner::Gadget");
}

TEST(Archivable, ArchiveIntoNothingIsRejected) {
    BArchivable plain;
    EXPECT_EQ(plain.Archive(NULL), B_BAD_VALUE);
}

TEST(Archivable, ValidateInstantiationAcceptsAnyMatchingClassEntry) {
    BMessage archive;
    archive.AddString("class", "Widget");
    archive.AddString("class", "BArchivable");
    EXPECT_TRUE(validate_instantiation(&archive, "Widget"));
    EXPECT_TRUE(validate_instantiation(&archive, "BArchivable"));
}

TEST(Archivable, ValidateInstantiationAcceptsThePrivateNamespace) {
    BMessage archive;
    archive.AddString("class", "BPrivate::Widget");
    EXPECT_TRUE(validate_instantiation(&archive, "Widget"));
}

TEST(Archivable, ValidateInstantiationRejectsOtherClasses) {
    BMessage archive;
    archive.AddString("class", "Gadget");
    errno = 0;
    EXPECT_FALSE(validate_instantiation(&archive, "Widget"));
    EXPECT_EQ(errno, B_MISMATCHED_VALUES);

    BMessage empty;
    EXPECT_FALSE(validate_instantiation(&empty, "Widget"));
    EXPECT_FALSE(validate_instantiation(NULL, "Widget"));
    EXPECT_FALSE(validate_instantiation(&archive, NULL));
}

TEST(Archivable, InstantiateObjectMakesARegisteredClass) {
    ASSERT_EQ(B_REGISTER_ARCHIVABLE(Widget), B_OK);
    BMessage archive;
    archive.AddString("class", "Widget");
    archive.AddInt32("size", 12);

    image_id image = 0;
    BArchivable* object = instantiate_object(&archive, &image);
    ASSERT_NE(object, nullptr);
    Widget* widget = dynamic_cast<Widget*>(object);
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->fSize, 12);
    EXPECT_LT(image, 0);
    delete object;
}

TEST(Archivable, ArchiveAndInstantiateRoundTrip) {
    ASSERT_EQ(BPrivate::register_instantiation_func(
                  "(anonymous namespace)::Widget",
                  [](BMessage* archive) -> BArchivable* { return new Widget(archive); }),
              B_OK);
    Widget original(99);
    BMessage archive;
    ASSERT_EQ(original.Archive(&archive), B_OK);

    BArchivable* object = instantiate_object(&archive);
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(static_cast<Widget*>(object)->fSize, 99);
    delete object;
}

TEST(Archivable, InstantiateObjectDoesNotKnowAnUnregisteredClass) {
    BMessage archive;
    archive.AddString("class", "NobodyKnowsMe");
    errno = 0;
    EXPECT_EQ(instantiate_object(&archive), nullptr);
    EXPECT_EQ(errno, B_NAME_NOT_FOUND);
}

TEST(Archivable, InstantiateObjectNeedsAClassField) {
    BMessage archive;
    archive.AddInt32("size", 1);
    errno = 0;
    EXPECT_EQ(instantiate_object(&archive), nullptr);
    EXPECT_EQ(errno, B_BAD_VALUE);
    errno = 0;
    EXPECT_EQ(instantiate_object(NULL), nullptr);
    EXPECT_EQ(errno, B_BAD_VALUE);
}

TEST(Archivable, InstantiateObjectReturnsNullWhenTheClassRefuses) {
    ASSERT_EQ(B_REGISTER_ARCHIVABLE(Widget), B_OK);
    // Found under another name, the class's own Instantiate() still checks the archive.
    ASSERT_EQ(BPrivate::register_instantiation_func("Impostor", &Widget::Instantiate), B_OK);
    BMessage archive;
    archive.AddString("class", "Impostor");
    EXPECT_EQ(instantiate_object(&archive), nullptr);
}

TEST(Archivable, UnregisteringForgetsTheClass) {
    ASSERT_EQ(B_REGISTER_ARCHIVABLE(Widget), B_OK);
    ASSERT_EQ(BPrivate::register_instantiation_func("Widget", NULL), B_OK);
    EXPECT_EQ(find_instantiation_func("Widget"), nullptr);
    EXPECT_EQ(BPrivate::register_instantiation_func("", &Widget::Instantiate), B_BAD_VALUE);
    EXPECT_EQ(BPrivate::register_instantiation_func(NULL, &Widget::Instantiate), B_BAD_VALUE);
}

TEST(Archivable, FindInstantiationFuncReadsTheArchive) {
    ASSERT_EQ(B_REGISTER_ARCHIVABLE(Widget), B_OK);
    BMessage archive;
    archive.AddString("class", "Widget");
    archive.AddString("add_on", "application/x-vnd.test");
    EXPECT_EQ(find_instantiation_func(&archive), &Widget::Instantiate);
    EXPECT_EQ(find_instantiation_func("Widget", "application/x-vnd.test"), &Widget::Instantiate);
    EXPECT_EQ(find_instantiation_func(static_cast<BMessage*>(NULL)), nullptr);
    EXPECT_EQ(find_instantiation_func(static_cast<const char*>(NULL)), nullptr);
}

TEST(Archivable, FindInstantiationFuncIgnoresNamesThatAreNotClassNames) {
    for (const char* name : {"::", "a::", "::b", "1abc", "with space", "a-b"})
        EXPECT_EQ(find_instantiation_func(name), nullptr) << name;
}

TEST(Archivable, PlainArchivableCannotBeInstantiated) {
    BMessage archive;
    archive.AddString("class", "BArchivable");
    EXPECT_EQ(BArchivable::Instantiate(&archive), nullptr);
}

TEST(Archivable, HooksHaveHarmlessDefaults) {
    Widget widget(1);
    BMessage archive;
    EXPECT_EQ(widget.AllArchived(&archive), B_OK);
    EXPECT_EQ(widget.AllUnarchived(&archive), B_OK);
    EXPECT_EQ(widget.Perform(0, NULL), B_ERROR);
}
