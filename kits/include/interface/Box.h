// BBox: a border around a group of views, with an optional label (a string or
// a view) set into its top edge.
#ifndef _BOX_H
#define _BOX_H

#include <View.h>

class BBox : public BView {
public:
    BBox(BRect frame, const char* name = NULL, uint32 resizingMode = B_FOLLOW_LEFT | B_FOLLOW_TOP,
         uint32 flags = B_WILL_DRAW | B_FRAME_EVENTS | B_NAVIGABLE_JUMP,
         border_style border = B_FANCY_BORDER);
    virtual ~BBox();

    virtual void SetBorder(border_style border);
    border_style Border() const;

    // The string is copied; it replaces a label view, which is deleted.
    void SetLabel(const char* string);
    // The box takes ownership of the view and makes it its child at the top
    // left; it replaces the label (a previous label view is deleted).
    status_t SetLabel(BView* viewLabel);
    const char* Label() const;
    BView* LabelView() const;

    virtual void Draw(BRect updateRect);
    virtual void AttachedToWindow();
    virtual void FrameResized(float width, float height);

private:
    BBox(const BBox&);
    BBox& operator=(const BBox&);

    float _TopBorderOffset() const;
    void _ClearLabel();

    char* fLabel;
    BView* fLabelView;
    border_style fStyle;
};

#endif // _BOX_H
