// BView: a rectangle of a window that draws itself and handles the events that
// fall into it. Views form a tree; each has a frame in its parent's coordinates
// and bounds in its own (whose left-top is the scrolling origin).
#ifndef _VIEW_H
#define _VIEW_H

#include <Font.h>
#include <GraphicsDefs.h>
#include <Handler.h>
#include <InterfaceDefs.h>
#include <Rect.h>

class BBitmap;
class BMessage;
class BRegion;
class BScrollBar;
class BScrollView;
class BString;
class BWindow;

namespace BPrivate {
class Painter;
class ViewPrivate;
class WindowPrivate;
} // namespace BPrivate

// Mouse buttons
enum {
    B_PRIMARY_MOUSE_BUTTON = 0x01,
    B_SECONDARY_MOUSE_BUTTON = 0x02,
    B_TERTIARY_MOUSE_BUTTON = 0x04
};

#define B_MOUSE_BUTTON(n) (1 << ((n)-1))

// Transit codes of MouseMoved()
enum { B_ENTERED_VIEW = 0, B_INSIDE_VIEW, B_EXITED_VIEW, B_OUTSIDE_VIEW };

// Event masks and options of SetEventMask() and SetMouseEventMask()
enum { B_POINTER_EVENTS = 0x00000001, B_KEYBOARD_EVENTS = 0x00000002 };

enum {
    B_LOCK_WINDOW_FOCUS = 0x00000001,
    B_SUSPEND_VIEW_FOCUS = 0x00000002,
    B_NO_POINTER_HISTORY = 0x00000004,
    B_FULL_POINTER_HISTORY = 0x00000008
};

enum { B_TRACK_WHOLE_RECT, B_TRACK_RECT_CORNER };

// View flags: the high bits of the flags argument.
const uint32 B_FULL_UPDATE_ON_RESIZE = 0x80000000UL;
const uint32 _B_RESERVED1_ = 0x40000000UL;
const uint32 B_WILL_DRAW = 0x20000000UL;
const uint32 B_PULSE_NEEDED = 0x10000000UL;
const uint32 B_NAVIGABLE_JUMP = 0x08000000UL;
const uint32 B_FRAME_EVENTS = 0x04000000UL;
const uint32 B_NAVIGABLE = 0x02000000UL;
const uint32 B_SUBPIXEL_PRECISE = 0x01000000UL;
const uint32 B_DRAW_ON_CHILDREN = 0x00800000UL;
const uint32 B_INPUT_METHOD_AWARE = 0x00400000UL;
const uint32 B_SCROLL_VIEW_AWARE = 0x00200000UL;
const uint32 B_SUPPORTS_LAYOUT = 0x00100000UL;
const uint32 B_INVALIDATE_AFTER_LAYOUT = 0x00080000UL;
const uint32 B_TRANSPARENT_BACKGROUND = 0x00040000UL;

// Resizing modes: the low 16 bits, four rules of four bits each, from the most
// significant: what the view's top, left, bottom and right edges follow.
#define _RESIZE_MASK_ (0xffff)

const uint32 _VIEW_TOP_ = 1UL;
const uint32 _VIEW_LEFT_ = 2UL;
const uint32 _VIEW_BOTTOM_ = 3UL;
const uint32 _VIEW_RIGHT_ = 4UL;
const uint32 _VIEW_CENTER_ = 5UL;

inline constexpr uint32 _rule_(uint32 r1, uint32 r2, uint32 r3, uint32 r4) {
    return (r1 << 12) | (r2 << 8) | (r3 << 4) | r4;
}

const uint32 B_FOLLOW_NONE = 0;
const uint32 B_FOLLOW_ALL_SIDES = _rule_(_VIEW_TOP_, _VIEW_LEFT_, _VIEW_BOTTOM_, _VIEW_RIGHT_);
const uint32 B_FOLLOW_ALL = B_FOLLOW_ALL_SIDES;
const uint32 B_FOLLOW_LEFT = _rule_(0, _VIEW_LEFT_, 0, _VIEW_LEFT_);
const uint32 B_FOLLOW_RIGHT = _rule_(0, _VIEW_RIGHT_, 0, _VIEW_RIGHT_);
const uint32 B_FOLLOW_LEFT_RIGHT = _rule_(0, _VIEW_LEFT_, 0, _VIEW_RIGHT_);
const uint32 B_FOLLOW_H_CENTER = _rule_(0, _VIEW_CENTER_, 0, _VIEW_CENTER_);
const uint32 B_FOLLOW_TOP = _rule_(_VIEW_TOP_, 0, _VIEW_TOP_, 0);
const uint32 B_FOLLOW_BOTTOM = _rule_(_VIEW_BOTTOM_, 0, _VIEW_BOTTOM_, 0);
const uint32 B_FOLLOW_TOP_BOTTOM = _rule_(_VIEW_TOP_, 0, _VIEW_BOTTOM_, 0);
const uint32 B_FOLLOW_V_CENTER = _rule_(_VIEW_CENTER_, 0, _VIEW_CENTER_, 0);
const uint32 B_FOLLOW_LEFT_TOP = B_FOLLOW_LEFT | B_FOLLOW_TOP;

class BView : public BHandler {
public:
    BView(BRect frame, const char* name, uint32 resizingMode, uint32 flags);
    // From an archive made by Archive(): the children archived with it are
    // instantiated and added.
    BView(BMessage* archive);
    // Deletes the children. A view still in a window must be removed first.
    virtual ~BView();

    static BArchivable* Instantiate(BMessage* archive);
    // The frame, name, resizing mode, flags, colours, font, pen and drawing
    // mode, scrolling origin and event mask; with deep, every child too.
    virtual status_t Archive(BMessage* archive, bool deep = true) const;

    // Hooks
    virtual void AttachedToWindow();
    virtual void AllAttached();
    virtual void DetachedFromWindow();
    virtual void AllDetached();

    virtual void MessageReceived(BMessage* message);

    // The view takes ownership of the child (and its descendants).
    void AddChild(BView* child, BView* before = NULL);
    // Gives the child back to the caller, who must delete it.
    bool RemoveChild(BView* child);
    int32 CountChildren() const;
    BView* ChildAt(int32 index) const;
    BView* NextSibling() const;
    BView* PreviousSibling() const;
    bool RemoveSelf();

    BWindow* Window() const;

    virtual void Draw(BRect updateRect);
    virtual void DrawAfterChildren(BRect updateRect);
    virtual void MouseDown(BPoint where);
    virtual void MouseUp(BPoint where);
    virtual void MouseMoved(BPoint where, uint32 code, const BMessage* dragMessage);
    virtual void WindowActivated(bool active);
    virtual void KeyDown(const char* bytes, int32 numBytes);
    virtual void KeyUp(const char* bytes, int32 numBytes);
    virtual void Pulse();
    virtual void FrameMoved(BPoint newPosition);
    virtual void FrameResized(float newWidth, float newHeight);
    virtual void TargetedByScrollView(BScrollView* scrollView);

    void BeginRectTracking(BRect startRect, uint32 style = B_TRACK_WHOLE_RECT);
    void EndRectTracking();

    // The pointer and buttons now. With checkMessageQueue, mouse messages waiting
    // in the window's queue are taken out and answered first, oldest first.
    void GetMouse(BPoint* location, uint32* buttons, bool checkMessageQueue = true);

    // Starts dragging a copy of the message from this view. The bitmap forms take
    // ownership of the bitmap. Replies to the dropped message go to replyTo (this
    // view when NULL).
    void DragMessage(BMessage* message, BRect dragRect, BHandler* replyTo = NULL);
    void DragMessage(BMessage* message, BBitmap* bitmap, BPoint offset, BHandler* replyTo = NULL);
    void DragMessage(BMessage* message, BBitmap* bitmap, drawing_mode dragMode, BPoint offset,
                     BHandler* replyTo = NULL);

    BView* FindView(const char* name) const;
    BView* Parent() const;
    BRect Bounds() const;
    BRect Frame() const;
    void ConvertToScreen(BPoint* point) const;
    BPoint ConvertToScreen(BPoint point) const;
    void ConvertFromScreen(BPoint* point) const;
    BPoint ConvertFromScreen(BPoint point) const;
    void ConvertToScreen(BRect* rect) const;
    BRect ConvertToScreen(BRect rect) const;
    void ConvertFromScreen(BRect* rect) const;
    BRect ConvertFromScreen(BRect rect) const;
    void ConvertToParent(BPoint* point) const;
    BPoint ConvertToParent(BPoint point) const;
    void ConvertFromParent(BPoint* point) const;
    BPoint ConvertFromParent(BPoint point) const;
    void ConvertToParent(BRect* rect) const;
    BRect ConvertToParent(BRect rect) const;
    void ConvertFromParent(BRect* rect) const;
    BRect ConvertFromParent(BRect rect) const;
    BPoint LeftTop() const;

    // The region is copied; NULL removes the constraint.
    void GetClippingRegion(BRegion* region) const;
    virtual void ConstrainClippingRegion(BRegion* region);

    virtual void SetDrawingMode(drawing_mode mode);
    drawing_mode DrawingMode() const;

    void SetBlendingMode(source_alpha srcAlpha, alpha_function alphaFunc);
    void GetBlendingMode(source_alpha* srcAlpha, alpha_function* alphaFunc) const;

    virtual void SetPenSize(float size);
    float PenSize() const;

    virtual void SetViewColor(rgb_color color);
    void SetViewColor(uchar red, uchar green, uchar blue, uchar alpha = 255);
    rgb_color ViewColor() const;

    virtual void SetHighColor(rgb_color color);
    void SetHighColor(uchar red, uchar green, uchar blue, uchar alpha = 255);
    rgb_color HighColor() const;

    virtual void SetLowColor(rgb_color color);
    void SetLowColor(uchar red, uchar green, uchar blue, uchar alpha = 255);
    rgb_color LowColor() const;

    void PushState();
    void PopState();

    void MovePenTo(BPoint point);
    void MovePenTo(float x, float y);
    void MovePenBy(float x, float y);
    BPoint PenLocation() const;

    void StrokeLine(BPoint toPoint, ::pattern pattern = B_SOLID_HIGH);
    void StrokeLine(BPoint start, BPoint end, ::pattern pattern = B_SOLID_HIGH);
    void BeginLineArray(int32 count);
    void AddLine(BPoint start, BPoint end, rgb_color color);
    void EndLineArray();

    void StrokePolygon(const BPoint* pointArray, int32 numPoints, bool isClosed = true,
                       ::pattern pattern = B_SOLID_HIGH);
    void StrokePolygon(const BPoint* pointArray, int32 numPoints, BRect bounds,
                       bool isClosed = true, ::pattern pattern = B_SOLID_HIGH);
    void FillPolygon(const BPoint* pointArray, int32 numPoints, ::pattern pattern = B_SOLID_HIGH);
    void FillPolygon(const BPoint* pointArray, int32 numPoints, BRect bounds,
                     ::pattern pattern = B_SOLID_HIGH);

    void StrokeTriangle(BPoint point1, BPoint point2, BPoint point3, BRect bounds,
                        ::pattern pattern = B_SOLID_HIGH);
    void StrokeTriangle(BPoint point1, BPoint point2, BPoint point3,
                        ::pattern pattern = B_SOLID_HIGH);
    void FillTriangle(BPoint point1, BPoint point2, BPoint point3, BRect bounds,
                      ::pattern pattern = B_SOLID_HIGH);
    void FillTriangle(BPoint point1, BPoint point2, BPoint point3,
                      ::pattern pattern = B_SOLID_HIGH);

    void StrokeRect(BRect rect, ::pattern pattern = B_SOLID_HIGH);
    void FillRect(BRect rect, ::pattern pattern = B_SOLID_HIGH);
    void FillRegion(BRegion* region, ::pattern pattern = B_SOLID_HIGH);
    void InvertRect(BRect rect);

    void StrokeRoundRect(BRect rect, float xRadius, float yRadius,
                         ::pattern pattern = B_SOLID_HIGH);
    void FillRoundRect(BRect rect, float xRadius, float yRadius, ::pattern pattern = B_SOLID_HIGH);

    void StrokeEllipse(BPoint center, float xRadius, float yRadius,
                       ::pattern pattern = B_SOLID_HIGH);
    void StrokeEllipse(BRect rect, ::pattern pattern = B_SOLID_HIGH);
    void FillEllipse(BPoint center, float xRadius, float yRadius, ::pattern pattern = B_SOLID_HIGH);
    void FillEllipse(BRect rect, ::pattern pattern = B_SOLID_HIGH);

    // Angles in degrees, counter-clockwise from the positive x axis.
    void StrokeArc(BPoint center, float xRadius, float yRadius, float startAngle, float arcAngle,
                   ::pattern pattern = B_SOLID_HIGH);
    void StrokeArc(BRect rect, float startAngle, float arcAngle, ::pattern pattern = B_SOLID_HIGH);
    void FillArc(BPoint center, float xRadius, float yRadius, float startAngle, float arcAngle,
                 ::pattern pattern = B_SOLID_HIGH);
    void FillArc(BRect rect, float startAngle, float arcAngle, ::pattern pattern = B_SOLID_HIGH);

    // The bitmap is not taken over; it may be deleted once the call returns.
    void DrawBitmapAsync(const BBitmap* bitmap, BRect srcRect, BRect dstRect);
    void DrawBitmapAsync(const BBitmap* bitmap, BRect dstRect);
    void DrawBitmapAsync(const BBitmap* bitmap, BPoint where);
    void DrawBitmapAsync(const BBitmap* bitmap);
    void DrawBitmap(const BBitmap* bitmap, BRect srcRect, BRect dstRect);
    void DrawBitmap(const BBitmap* bitmap, BRect dstRect);
    void DrawBitmap(const BBitmap* bitmap, BPoint where);
    void DrawBitmap(const BBitmap* bitmap);

    // Text is drawn from the pen location (or the given baseline point), which
    // then moves to the end of the text.
    void DrawChar(char aChar);
    void DrawChar(char aChar, BPoint location);
    void DrawString(const char* string, escapement_delta* delta = NULL);
    void DrawString(const char* string, BPoint location, escapement_delta* delta = NULL);
    void DrawString(const char* string, int32 length, escapement_delta* delta = NULL);
    void DrawString(const char* string, int32 length, BPoint location,
                    escapement_delta* delta = NULL);

    virtual void SetFont(const BFont* font, uint32 mask = B_FONT_ALL);
    void GetFont(BFont* font) const;
    void TruncateString(BString* string, uint32 mode, float width) const;
    float StringWidth(const char* string) const;
    float StringWidth(const char* string, int32 length) const;
    void GetStringWidths(char* stringArray[], int32 lengthArray[], int32 numStrings,
                         float widthArray[]) const;
    void SetFontSize(float size);
    void ForceFontAliasing(bool enable);
    void GetFontHeight(font_height* height) const;

    void Invalidate(BRect invalRect);
    void Invalidate(const BRegion* invalRegion);
    void Invalidate();

    void SetFlags(uint32 flags);
    uint32 Flags() const;
    void SetResizingMode(uint32 mode);
    uint32 ResizingMode() const;

    void MoveBy(float dh, float dv);
    void MoveTo(BPoint where);
    void MoveTo(float x, float y);
    void ResizeBy(float dh, float dv);
    void ResizeTo(float width, float height);
    virtual void ScrollTo(BPoint where);
    void ScrollTo(float x, float y) { ScrollTo(BPoint(x, y)); }
    void ScrollBy(float dh, float dv);

    virtual void MakeFocus(bool focusState = true);
    bool IsFocus() const;

    virtual void Show();
    virtual void Hide();
    bool IsHidden() const;
    bool IsHidden(const BView* lookingFrom) const;

    // Drawing is shown once the window's thread returns to its loop; Flush()
    // shows it now and Sync() waits until it is on screen.
    void Flush() const;
    void Sync() const;

    // Pointer events (B_POINTER_EVENTS) reach the view wherever the pointer is:
    // for good with SetEventMask(), until the buttons are released with
    // SetMouseEventMask() (which only works while a button is down).
    status_t SetEventMask(uint32 mask, uint32 options = 0);
    uint32 EventMask();
    status_t SetMouseEventMask(uint32 mask, uint32 options = 0);

    virtual void GetPreferredSize(float* width, float* height);
    virtual void ResizeToPreferred();
    virtual void InvalidateLayout(bool descendants = false);

    BScrollBar* ScrollBar(orientation posture) const;

private:
    friend class BWindow;
    friend class BPrivate::ViewPrivate;
    friend class BPrivate::WindowPrivate;

    BView(const BView&);
    BView& operator=(const BView&);

    void _CheckLock() const;

    void _Attach(BWindow* window);
    void _Detach();
    void _AttachedHooks();
    void _AllAttachedHooks();
    void _DetachedHooks();
    void _AllDetachedHooks();

    void _UpdateGeometry();
    BRect _VisibleRect();
    BPoint _WindowOrigin();
    BView* _ViewAt(BPoint where);
    void _SetFrame(BRect frame);
    void _ParentResized(float deltaWidth, float deltaHeight);
    void _InvalidateVisible();

    const BRegion& _DrawClip();
    BPrivate::Painter* _PrepareDrawing();
    void _StateChanged();
    void _Draw(const BRegion& dirty);

    void _StartDrag(BMessage* message, BPoint offset, BHandler* replyTo);

    struct Private;
    Private* fPrivate;
};

#endif // _VIEW_H
