// BSeparatorItem: a line between groups of items; it is never chosen.
#ifndef _SEPARATOR_ITEM_H
#define _SEPARATOR_ITEM_H

#include <MenuItem.h>

class BSeparatorItem : public BMenuItem {
public:
    BSeparatorItem();
    BSeparatorItem(BMessage* archive);
    virtual ~BSeparatorItem();

    static BArchivable* Instantiate(BMessage* archive);
    virtual status_t Archive(BMessage* archive, bool deep = true) const;

    // A separator stays disabled.
    virtual void SetEnabled(bool enabled);

protected:
    virtual void GetContentSize(float* width, float* height);
    virtual void Draw();

private:
    BSeparatorItem(const BSeparatorItem&);
    BSeparatorItem& operator=(const BSeparatorItem&);
};

#endif // _SEPARATOR_ITEM_H
