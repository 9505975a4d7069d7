// TextEngine: the process-wide pango font map, contexts and caches behind
// TextLayout (kit-private). Every method but Default() wants fLock held.
#ifndef _TEXT_ENGINE_H
#define _TEXT_ENGINE_H

#include "CairoPointers.h"

#include <Font.h>

#include <pango/pangocairo.h>

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace BPrivate {

struct TextLibrary;

struct StyleInfo {
    std::string name;
    bool bold;
    bool italic;
    int weight;
    bool normalStretch;
    PangoFontDescription* description;
};

struct FamilyInfo {
    std::string name;
    bool fixed;
    std::vector<StyleInfo> styles;
};

struct FontEntry {
    PangoFontDescription* description;
    font_height height;
};

// The text up to length bytes or the first NUL (all of it for a negative
// length), with invalid UTF-8 replaced so that pango never sees it.
std::string valid_text(const char* text, int32 length);
// Byte offsets of the character boundaries of a valid UTF-8 string, 0 and its
// size included.
std::vector<size_t> character_boundaries(const std::string& text);
// Copies a name into a fixed buffer, always terminated.
void copy_name(char* target, const char* name, size_t size);
// A key naming everything about a font that changes how text looks or measures.
std::string font_key(const BFont& font);

// Whether a family and style name one of the system fonts. Those are the kit's
// own defaults and always usable (fontconfig substitutes the closest face should
// one be missing), so neither choosing nor loading one needs the list of
// installed fonts, which takes milliseconds to read before a first window shows.
bool is_system_face(const char* family, const char* style);

class TextEngine {
public:
    // Made on first use and kept for the life of the process.
    static TextEngine& Default();

    std::mutex fLock;

    // All of the following with fLock held.
    PangoLayout* Prepare(const BFont& font, const std::string& text, const escapement_delta* delta);
    float Width(const BFont& font, const std::string& text);
    const FontEntry& EntryFor(const BFont& font);
    const std::vector<FamilyInfo>& Families();
    const FamilyInfo* FindFamily(const char* name);
    PangoContext* ContextFor(const BFont& font);

    // Rendered strings, kept because windows redraw the same labels again and again.
    struct RenderedText {
        // Glyph coverage, or NULL when the string has no ink.
        SurfacePointer surface;
        // Where the surface's top-left pixel lies from the baseline pixel.
        int32 left = 0;
        int32 top = 0;
        float advance = 0.0f;
    };
    RenderedText Render(const BFont& font, const std::string& text, const escapement_delta* delta,
                        double fractionX, double fractionY, const BRect* clipping);
    const RenderedText* FindRendered(const std::string& key);
    const RenderedText* StoreRendered(const std::string& key, RenderedText&& rendered);

private:
    TextEngine();

    // Every pango call goes through the library opened when the engine is made.
    const TextLibrary& fLibrary;
    PangoFontMap* fFontMap;
    // Antialiased and aliased text differ in their font options.
    PangoContext* fContexts[2];
    PangoLayout* fLayouts[2];
    bool fFamiliesLoaded = false;
    std::vector<FamilyInfo> fFamilies;
    std::unordered_map<std::string, FontEntry> fFonts;
    std::unordered_map<std::string, float> fWidths;
    std::unordered_map<std::string, RenderedText> fRendered;
    int64 fRenderedBytes = 0;
};

} // namespace BPrivate

#endif // _TEXT_ENGINE_H
