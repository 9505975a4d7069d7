// BTextView's styles: fonts and colours over ranges, run arrays.
#include <TextView.h>

#include "interface/TextViewData.h"

#include <algorithm>
#include <new>
#include <stddef.h>
#include <stdlib.h>
#include <string.h>

using BPrivate::StyleRun;
using BPrivate::TextStyle;

void BTextView::SetFontAndColor(const BFont* font, uint32 mode, const rgb_color* color) {
    Private* data = fPrivate;
    if (data->selectionStart == data->selectionEnd && data->stylable) {
        if (!data->hasTypingStyle)
            data->typingStyle =
                data->StyleAt(data->selectionStart > 0 ? data->selectionStart - 1 : 0);
        data->hasTypingStyle = true;
        if (font != NULL)
            BPrivate::apply_font(&data->typingStyle.font, *font, mode);
        if (color != NULL)
            data->typingStyle.color = *color;
        return;
    }
    SetFontAndColor(data->selectionStart, data->selectionEnd, font, mode, color);
}

void BTextView::SetFontAndColor(int32 startOffset, int32 endOffset, const BFont* font, uint32 mode,
                                const rgb_color* color) {
    Private* data = fPrivate;
    if (!data->stylable) {
        startOffset = 0;
        endOffset = data->Length();
        // The one style also holds for an empty text.
        StyleRun& first = data->runs.front();
        if (font != NULL)
            BPrivate::apply_font(&first.style.font, *font, mode);
        if (color != NULL)
            first.style.color = *color;
    }
    startOffset = data->AlignToCharacter(startOffset);
    endOffset = data->AlignToCharacter(endOffset);
    if (startOffset < endOffset)
        data->ChangeStyle(startOffset, endOffset, font, mode, color);
    _Changed(false);
}

void BTextView::GetFontAndColor(int32 offset, BFont* font, rgb_color* color) const {
    const TextStyle& style = fPrivate->StyleAt(fPrivate->Clamp(offset));
    if (font != NULL)
        *font = style.font;
    if (color != NULL)
        *color = style.color;
}

void BTextView::GetFontAndColor(BFont* font, uint32* mode, rgb_color* color,
                                bool* sameColor) const {
    Private* data = fPrivate;
    int32 start = data->selectionStart;
    int32 end = data->selectionEnd;
    TextStyle first = data->hasTypingStyle ? data->typingStyle : data->StyleAt(start);
    uint32 same = B_FONT_ALL;
    bool colorsMatch = true;
    for (int32 index = data->RunIndexAt(start);
         index < (int32)data->runs.size() && data->runs[index].offset < end; index++) {
        const TextStyle& style = data->runs[index].style;
        font_family family1, family2;
        font_style style1, style2;
        first.font.GetFamilyAndStyle(&family1, &style1);
        style.font.GetFamilyAndStyle(&family2, &style2);
        if (strcmp(family1, family2) != 0 || strcmp(style1, style2) != 0)
            same &= ~B_FONT_FAMILY_AND_STYLE;
        if (first.font.Size() != style.font.Size())
            same &= ~B_FONT_SIZE;
        if (first.font.Shear() != style.font.Shear())
            same &= ~B_FONT_SHEAR;
        if (first.font.Rotation() != style.font.Rotation())
            same &= ~B_FONT_ROTATION;
        if (first.font.Spacing() != style.font.Spacing())
            same &= ~B_FONT_SPACING;
        if (first.font.Encoding() != style.font.Encoding())
            same &= ~B_FONT_ENCODING;
        if (first.font.Face() != style.font.Face())
            same &= ~B_FONT_FACE;
        if (first.font.Flags() != style.font.Flags())
            same &= ~B_FONT_FLAGS;
        if (style.color.red != first.color.red || style.color.green != first.color.green ||
            style.color.blue != first.color.blue || style.color.alpha != first.color.alpha)
            colorsMatch = false;
    }
    if (font != NULL)
        *font = first.font;
    if (mode != NULL)
        *mode = same;
    if (color != NULL)
        *color = first.color;
    if (sameColor != NULL)
        *sameColor = colorsMatch;
}

void BTextView::SetRunArray(int32 startOffset, int32 endOffset, const text_run_array* runs) {
    Private* data = fPrivate;
    if (runs == NULL || runs->count <= 0)
        return;
    if (!data->stylable) {
        SetFontAndColor(0, data->Length(), &runs->runs[0].font, B_FONT_ALL, &runs->runs[0].color);
        return;
    }
    startOffset = data->AlignToCharacter(startOffset);
    endOffset = data->AlignToCharacter(endOffset);
    data->ApplyRuns(startOffset, endOffset, runs);
    data->Layout();
    _Changed(false);
}

text_run_array* BTextView::RunArray(int32 startOffset, int32 endOffset, int32* length) const {
    Private* data = fPrivate;
    startOffset = data->Clamp(startOffset);
    endOffset = std::max(data->Clamp(endOffset), startOffset);
    int32 first = data->RunIndexAt(startOffset);
    int32 count = 1;
    while (first + count < (int32)data->runs.size() && data->runs[first + count].offset < endOffset)
        count++;
    text_run_array* array = AllocRunArray(count, length);
    if (array == NULL)
        return NULL;
    text_run* entries = array->runs;
    for (int32 index = 0; index < count; index++) {
        const StyleRun& run = data->runs[first + index];
        entries[index].offset = std::max(run.offset - startOffset, (int32)0);
        entries[index].font = run.style.font;
        entries[index].color = run.style.color;
    }
    return array;
}

text_run_array* BTextView::AllocRunArray(int32 entryCount, int32* outSize) {
    if (entryCount <= 0)
        return NULL;
    size_t size = offsetof(text_run_array, runs) + sizeof(text_run) * (size_t)entryCount;
    text_run_array* array = (text_run_array*)malloc(size);
    if (array == NULL)
        return NULL;
    array->count = entryCount;
    text_run* entries = array->runs;
    for (int32 index = 0; index < entryCount; index++)
        new (&entries[index]) text_run{0, BFont(), make_color(0, 0, 0)};
    if (outSize != NULL)
        *outSize = (int32)size;
    return array;
}

text_run_array* BTextView::CopyRunArray(const text_run_array* orig, int32 countDelta) {
    if (orig == NULL)
        return NULL;
    int32 count = std::max(orig->count + countDelta, (int32)0);
    text_run_array* copy = AllocRunArray(count);
    if (copy == NULL)
        return NULL;
    const text_run* source = orig->runs;
    text_run* target = copy->runs;
    for (int32 index = 0; index < std::min(count, orig->count); index++)
        target[index] = source[index];
    return copy;
}

void BTextView::FreeRunArray(text_run_array* array) {
    // text_run holds nothing that needs destroying: free() is as good.
    free(array);
}
