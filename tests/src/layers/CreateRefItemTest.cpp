#include "CreateRefItem.h"

#include "ManagerTestSupport.h"
#include "RefRetriever.h"

#include <string>

using namespace layer_testing;

namespace {

class CreateRefItemTest : public ManagerTest {
protected:
    // A manager whose named layers want a kind that cannot be made here and
    // whose targets want plain references.
    LayerManager* MixedManager() {
        return Keep(
            new LayerManager(BRect(0, 0, 50, 50), "mixed", 0, which_list_items, which_test_items));
    }
};

} // namespace

TEST_F(CreateRefItemTest, LayerWithoutNameAlwaysUsesTheTargetsKind) {
    MakeLayer("Work", "/a\n");
    LayerManager* manager = MixedManager();
    ASSERT_TRUE(manager->Lock());
    RefRetriever* item = NULL;
    std::string path = fHome.Path() + "/target";
    EXPECT_EQ(create_ref_item(path.c_str(), manager->FindLayer(""), &item), B_OK);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->Path(), path);
    delete item;

    item = NULL;
    EXPECT_EQ(create_ref_item(path.c_str(), manager->FindLayer("Work"), &item), B_ERROR);
    EXPECT_EQ(item, nullptr);
    manager->Unlock();
}

TEST_F(CreateRefItemTest, LayerOutsideAManagerGetsNoItem) {
    LayerInfo loose("Loose", true);
    RefRetriever* item = NULL;
    EXPECT_NE(create_ref_item("/a", &loose, &item), B_OK);
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(create_ref_item(NULL, &loose, &item), B_BAD_VALUE);
}

TEST_F(CreateRefItemTest, PlainReferenceNeedsTheFolderOfItsPath) {
    LayerManager* manager = MixedManager();
    ASSERT_TRUE(manager->Lock());
    RefRetriever* item = NULL;
    std::string path = fHome.Path() + "/no-such-folder/target";
    EXPECT_NE(create_ref_item(path.c_str(), manager->FindLayer(""), &item), B_OK);
    EXPECT_EQ(item, nullptr);
    manager->Unlock();
}
