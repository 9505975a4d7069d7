// BView archiving: the view as fields of a message, and back. The field names
// are those Be systems use, so archives (replicants) read the same there.
#include <View.h>

#include "interface/ViewData.h"

#include <Message.h>

#include <math.h>
#include <string.h>

namespace {

const char* const kFieldFrame = "_frame";
const char* const kFieldResizingMode = "_resize_mode";
const char* const kFieldFlags = "_flags";
const char* const kFieldEventMask = "_evmask";
const char* const kFieldFontNames = "_fname";
const char* const kFieldFontFloats = "_fflt";
const char* const kFieldColors = "_color";
const char* const kFieldPenSize = "_psize";
const char* const kFieldPenLocation = "_ppos";
const char* const kFieldDrawingMode = "_dmod";
const char* const kFieldOrigin = "_origin";
const char* const kFieldHidden = "_hidden";
const char* const kFieldChildren = "_views";

// The colours go as the four bytes of an rgb_color, in their order in memory.
int32 color_to_int32(rgb_color color) {
    int32 value;
    memcpy(&value, &color, sizeof(value));
    return value;
}

rgb_color int32_to_color(int32 value) {
    rgb_color color;
    memcpy(&color, &value, sizeof(color));
    return color;
}

bool is_finite(BPoint point) {
    return isfinite(point.x) && isfinite(point.y);
}

BRect archived_frame(const BMessage* archive) {
    BRect frame(0, 0, -1, -1);
    if (archive == NULL || archive->FindRect(kFieldFrame, &frame) != B_OK)
        return BRect(0, 0, -1, -1);
    if (!isfinite(frame.left) || !isfinite(frame.top) || !isfinite(frame.right) ||
        !isfinite(frame.bottom))
        return BRect(0, 0, -1, -1);
    return frame;
}

} // namespace

BView::BView(BMessage* archive)
    : BView(archived_frame(archive), NULL,
            archive != NULL ? (uint32)archive->GetInt32(kFieldResizingMode, 0) : 0,
            archive != NULL ? (uint32)archive->GetInt32(kFieldFlags, 0) : 0) {
    if (archive == NULL)
        return;
    // The name goes through BHandler's own field.
    const char* name = NULL;
    if (archive->FindString("_name", &name) == B_OK)
        SetName(name);

    Private* data = fPrivate;
    ViewState& state = data->state;
    int32 value;
    if (archive->FindInt32(kFieldColors, 0, &value) == B_OK)
        state.highColor = int32_to_color(value);
    if (archive->FindInt32(kFieldColors, 1, &value) == B_OK)
        state.lowColor = int32_to_color(value);
    if (archive->FindInt32(kFieldColors, 2, &value) == B_OK)
        data->viewColor = int32_to_color(value);

    const char* family = NULL;
    const char* style = NULL;
    if (archive->FindString(kFieldFontNames, 0, &family) == B_OK &&
        archive->FindString(kFieldFontNames, 1, &style) == B_OK)
        state.font.SetFamilyAndStyle(family, style);
    float number;
    if (archive->FindFloat(kFieldFontFloats, 0, &number) == B_OK && number > 0.0f)
        state.font.SetSize(number);
    if (archive->FindFloat(kFieldFontFloats, 1, &number) == B_OK)
        state.font.SetShear(number);
    if (archive->FindFloat(kFieldFontFloats, 2, &number) == B_OK)
        state.font.SetRotation(number);

    if (archive->FindFloat(kFieldPenSize, &number) == B_OK && number >= 0.0f)
        state.penSize = number;
    BPoint point;
    if (archive->FindPoint(kFieldPenLocation, &point) == B_OK && is_finite(point))
        state.penLocation = point;
    int16 mode;
    if (archive->FindInt16(kFieldDrawingMode, &mode) == B_OK && mode >= B_OP_COPY &&
        mode <= B_OP_ALPHA)
        state.drawingMode = (drawing_mode)mode;
    if (archive->FindPoint(kFieldOrigin, &point) == B_OK && is_finite(point))
        data->scrollOrigin = point;
    if (archive->FindInt32(kFieldEventMask, 0, &value) == B_OK)
        data->eventMask = (uint32)value;
    if (archive->FindInt32(kFieldEventMask, 1, &value) == B_OK)
        data->eventOptions = (uint32)value;
    if (archive->GetBool(kFieldHidden, false))
        data->showLevel = 1;

    BMessage childArchive;
    for (int32 index = 0; archive->FindMessage(kFieldChildren, index, &childArchive) == B_OK;
         index++) {
        BArchivable* object = instantiate_object(&childArchive);
        BView* child = dynamic_cast<BView*>(object);
        if (child == NULL) {
            // Something that is not a view has no place in the tree.
            delete object;
            continue;
        }
        AddChild(child);
    }
}

BArchivable* BView::Instantiate(BMessage* archive) {
    if (!validate_instantiation(archive, "BView"))
        return NULL;
    return new BView(archive);
}

status_t BView::Archive(BMessage* archive, bool deep) const {
    if (archive == NULL)
        return B_BAD_VALUE;
    status_t status = BHandler::Archive(archive, deep);
    if (status != B_OK)
        return status;

    const Private* data = fPrivate;
    const ViewState& state = data->state;
    archive->AddRect(kFieldFrame, data->frame);
    archive->AddInt32(kFieldResizingMode, (int32)data->resizingMode);
    archive->AddInt32(kFieldFlags, (int32)data->flags);
    if (data->eventMask != 0 || data->eventOptions != 0) {
        archive->AddInt32(kFieldEventMask, (int32)data->eventMask);
        archive->AddInt32(kFieldEventMask, (int32)data->eventOptions);
    }

    font_family family;
    font_style style;
    state.font.GetFamilyAndStyle(&family, &style);
    archive->AddString(kFieldFontNames, family);
    archive->AddString(kFieldFontNames, style);
    archive->AddFloat(kFieldFontFloats, state.font.Size());
    archive->AddFloat(kFieldFontFloats, state.font.Shear());
    archive->AddFloat(kFieldFontFloats, state.font.Rotation());

    archive->AddInt32(kFieldColors, color_to_int32(state.highColor));
    archive->AddInt32(kFieldColors, color_to_int32(state.lowColor));
    archive->AddInt32(kFieldColors, color_to_int32(data->viewColor));

    archive->AddFloat(kFieldPenSize, state.penSize);
    archive->AddPoint(kFieldPenLocation, state.penLocation);
    archive->AddInt16(kFieldDrawingMode, (int16)state.drawingMode);
    archive->AddPoint(kFieldOrigin, data->scrollOrigin);
    if (data->showLevel > 0)
        archive->AddBool(kFieldHidden, true);

    if (!deep)
        return B_OK;
    for (const BView* child : data->children) {
        BMessage childArchive;
        status = child->Archive(&childArchive, true);
        if (status != B_OK)
            return status;
        status = archive->AddMessage(kFieldChildren, &childArchive);
        if (status != B_OK)
            return status;
    }
    return B_OK;
}
