#include <List.h>

#include <stdlib.h>
#include <string.h>

BList::BList(int32 count)
    : fObjectList(NULL), fPhysicalSize(0), fItemCount(0), fBlockSize(count > 0 ? count : 1),
      fResizeThreshold(0) {}

BList::BList(const BList& other)
    : fObjectList(NULL), fPhysicalSize(0), fItemCount(0), fBlockSize(other.fBlockSize),
      fResizeThreshold(0) {
    *this = other;
}

BList::~BList() {
    free(fObjectList);
}

BList& BList::operator=(const BList& other) {
    if (&other == this)
        return *this;

    fBlockSize = other.fBlockSize;
    if (_ResizeArray(other.fItemCount)) {
        fItemCount = other.fItemCount;
        if (fItemCount > 0)
            memcpy(fObjectList, other.fObjectList, fItemCount * sizeof(void*));
    } else {
        // Out of memory: leave an empty list rather than a partial copy.
        MakeEmpty();
    }
    return *this;
}

bool BList::operator==(const BList& other) const {
    if (fItemCount != other.fItemCount)
        return false;
    return fItemCount == 0 ||
           memcmp(fObjectList, other.fObjectList, fItemCount * sizeof(void*)) == 0;
}

bool BList::operator!=(const BList& other) const {
    return !(*this == other);
}

// #pragma mark - Adding and removing

bool BList::AddItem(void* item, int32 index) {
    if (index < 0 || index > fItemCount || fItemCount == INT32_MAX)
        return false;
    if (!_ResizeArray(fItemCount + 1))
        return false;

    memmove(fObjectList + index + 1, fObjectList + index, (fItemCount - index) * sizeof(void*));
    fObjectList[index] = item;
    fItemCount++;
    return true;
}

bool BList::AddItem(void* item) {
    return AddItem(item, fItemCount);
}

bool BList::AddList(const BList* list, int32 index) {
    if (list == NULL || index < 0 || index > fItemCount)
        return false;

    // The list may be this one: take its count before growing.
    int32 count = list->fItemCount;
    if (count == 0)
        return true;
    if (count > INT32_MAX - fItemCount || !_ResizeArray(fItemCount + count))
        return false;

    memmove(fObjectList + index + count, fObjectList + index, (fItemCount - index) * sizeof(void*));
    if (list == this) {
        // The original items now sit at [0, index) and [index + count, end).
        memcpy(fObjectList + index, fObjectList, index * sizeof(void*));
        memcpy(fObjectList + 2 * index, fObjectList + index + count,
               (count - index) * sizeof(void*));
    } else {
        memcpy(fObjectList + index, list->fObjectList, count * sizeof(void*));
    }
    fItemCount += count;
    return true;
}

bool BList::AddList(const BList* list) {
    return AddList(list, fItemCount);
}

bool BList::RemoveItem(void* item) {
    int32 index = IndexOf(item);
    if (index < 0)
        return false;
    RemoveItem(index);
    return true;
}

void* BList::RemoveItem(int32 index) {
    if (index < 0 || index >= fItemCount)
        return NULL;

    void* item = fObjectList[index];
    RemoveItems(index, 1);
    return item;
}

bool BList::RemoveItems(int32 index, int32 count) {
    if (index < 0 || index >= fItemCount || count < 0)
        return false;
    if (count > fItemCount - index)
        count = fItemCount - index;

    memmove(fObjectList + index, fObjectList + index + count,
            (fItemCount - index - count) * sizeof(void*));
    fItemCount -= count;
    _ResizeArray(fItemCount);
    return true;
}

bool BList::ReplaceItem(int32 index, void* item) {
    if (index < 0 || index >= fItemCount)
        return false;
    fObjectList[index] = item;
    return true;
}

void BList::MakeEmpty() {
    fItemCount = 0;
    _ResizeArray(0);
}

// #pragma mark - Reordering

void BList::SortItems(int (*compareFunc)(const void*, const void*)) {
    // As qsort() does, the function gets pointers to the slots (void**), not the items.
    if (compareFunc != NULL && fItemCount > 1)
        qsort(fObjectList, fItemCount, sizeof(void*), compareFunc);
}

bool BList::SwapItems(int32 indexA, int32 indexB) {
    if (indexA < 0 || indexA >= fItemCount || indexB < 0 || indexB >= fItemCount)
        return false;

    void* item = fObjectList[indexA];
    fObjectList[indexA] = fObjectList[indexB];
    fObjectList[indexB] = item;
    return true;
}

bool BList::MoveItem(int32 fromIndex, int32 toIndex) {
    if (fromIndex < 0 || fromIndex >= fItemCount || toIndex < 0 || toIndex >= fItemCount)
        return false;

    void* item = fObjectList[fromIndex];
    if (fromIndex < toIndex) {
        memmove(fObjectList + fromIndex, fObjectList + fromIndex + 1,
                (toIndex - fromIndex) * sizeof(void*));
    } else if (fromIndex > toIndex) {
        memmove(fObjectList + toIndex + 1, fObjectList + toIndex,
                (fromIndex - toIndex) * sizeof(void*));
    }
    fObjectList[toIndex] = item;
    return true;
}

// #pragma mark - Retrieving and querying

void* BList::ItemAt(int32 index) const {
    if (index < 0 || index >= fItemCount)
        return NULL;
    return fObjectList[index];
}

void* BList::FirstItem() const {
    return fItemCount > 0 ? fObjectList[0] : NULL;
}

void* BList::ItemAtFast(int32 index) const {
    return fObjectList[index];
}

void* BList::LastItem() const {
    return fItemCount > 0 ? fObjectList[fItemCount - 1] : NULL;
}

void* BList::Items() const {
    return fObjectList;
}

bool BList::HasItem(void* item) const {
    return IndexOf(item) >= 0;
}

bool BList::HasItem(const void* item) const {
    return IndexOf(item) >= 0;
}

int32 BList::IndexOf(void* item) const {
    return IndexOf(static_cast<const void*>(item));
}

int32 BList::IndexOf(const void* item) const {
    for (int32 index = 0; index < fItemCount; index++) {
        if (fObjectList[index] == item)
            return index;
    }
    return -1;
}

int32 BList::CountItems() const {
    return fItemCount;
}

bool BList::IsEmpty() const {
    return fItemCount == 0;
}

void BList::DoForEach(bool (*func)(void* item)) {
    if (func == NULL)
        return;
    for (int32 index = 0; index < fItemCount; index++) {
        if (func(fObjectList[index]))
            break;
    }
}

void BList::DoForEach(bool (*func)(void* item, void* arg2), void* arg2) {
    if (func == NULL)
        return;
    for (int32 index = 0; index < fItemCount; index++) {
        if (func(fObjectList[index], arg2))
            break;
    }
}

// #pragma mark - Private

// Makes room for `count` items: the array grows a block at a time and shrinks once
// fewer than a quarter of its slots are used.
bool BList::_ResizeArray(int32 count) {
    if (count < 0)
        return false;
    if (count <= fPhysicalSize && count >= fResizeThreshold)
        return true;

    int64 blocks = ((int64)count + fBlockSize - 1) / fBlockSize;
    if (blocks == 0)
        blocks = 1;
    int64 newSize = blocks * fBlockSize;
    if (newSize > INT32_MAX || (uint64)newSize > SIZE_MAX / sizeof(void*))
        return false;
    if (newSize == fPhysicalSize)
        return true;

    void** newList = (void**)realloc(fObjectList, (size_t)newSize * sizeof(void*));
    if (newList == NULL)
        return count <= fPhysicalSize;

    fObjectList = newList;
    fPhysicalSize = (int32)newSize;
    fResizeThreshold = fPhysicalSize / 4 > fBlockSize ? fPhysicalSize / 4 : 0;
    return true;
}
