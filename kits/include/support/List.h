// BList: an ordered array of untyped pointers. The list never owns what its items
// point to; deleting the list (or MakeEmpty) leaves the items alone.
#ifndef _BE_LIST_H
#define _BE_LIST_H

#include <SupportDefs.h>

class BList {
public:
    // count is the block size: the array grows and shrinks by that many slots.
    BList(int32 count = 20);
    BList(const BList& other);
    virtual ~BList();

    BList& operator=(const BList& other);
    bool operator==(const BList& other) const;
    bool operator!=(const BList& other) const;

    // Adding and removing items. Index arguments outside the list make the call
    // fail (false or NULL) without changing the list.
    bool AddItem(void* item, int32 index);
    bool AddItem(void* item);
    bool AddList(const BList* list, int32 index);
    bool AddList(const BList* list);

    bool RemoveItem(void* item);
    void* RemoveItem(int32 index);
    bool RemoveItems(int32 index, int32 count);
    bool ReplaceItem(int32 index, void* item);

    void MakeEmpty();

    // Reordering items.
    void SortItems(int (*compareFunc)(const void*, const void*));
    bool SwapItems(int32 indexA, int32 indexB);
    bool MoveItem(int32 fromIndex, int32 toIndex);

    // Retrieving items.
    void* ItemAt(int32 index) const;
    void* FirstItem() const;
    void* ItemAtFast(int32 index) const;
    void* LastItem() const;
    // The array itself; valid until the list next changes.
    void* Items() const;

    // Querying the list.
    bool HasItem(void* item) const;
    bool HasItem(const void* item) const;
    int32 IndexOf(void* item) const;
    int32 IndexOf(const void* item) const;
    int32 CountItems() const;
    bool IsEmpty() const;

    // Iterating over the list; stops when func returns true.
    void DoForEach(bool (*func)(void* item));
    void DoForEach(bool (*func)(void* item, void* arg2), void* arg2);

private:
    bool _ResizeArray(int32 count);

    void** fObjectList;
    int32 fPhysicalSize;
    int32 fItemCount;
    int32 fBlockSize;
    int32 fResizeThreshold;
};

#endif // _BE_LIST_H
