// BStringView: one line of text that the user cannot change.
#ifndef _STRING_VIEW_H
#define _STRING_VIEW_H

#include <View.h>

class BStringView : public BView {
public:
    // The text is copied.
    BStringView(BRect frame, const char* name, const char* text,
                uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP, uint32 flags = B_WILL_DRAW);
    virtual ~BStringView();

    void SetText(const char* text);
    const char* Text() const;
    void SetAlignment(alignment flag);
    alignment Alignment() const;

    virtual void AttachedToWindow();
    virtual void Draw(BRect updateRect);
    virtual void SetFont(const BFont* font, uint32 mask = B_FONT_ALL);
    virtual void GetPreferredSize(float* width, float* height);
    virtual void ResizeToPreferred();

private:
    BStringView(const BStringView&);
    BStringView& operator=(const BStringView&);

    char* fText;
    alignment fAlign;
};

#endif // _STRING_VIEW_H
