#include <EntryList.h>

BEntryList::BEntryList() {}

BEntryList::~BEntryList() {}
