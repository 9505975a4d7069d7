// TextLibrary: pango, pangocairo and the few GLib calls the text engine makes,
// opened the first time text is measured or drawn (kit-private). Linking them
// would load and relocate some twenty libraries (harfbuzz, fontconfig, GLib...)
// on every start, before main() runs, while nothing the bar shows before its
// first window maps needs text.
#ifndef _TEXT_LIBRARY_H
#define _TEXT_LIBRARY_H

#include <SupportDefs.h>

#include <pango/pangocairo.h>

#include <string>

// Every function the text engine calls. decltype() of a function's address is
// never evaluated, so naming the functions here makes no link reference.
#define GLIMROW_TEXT_FUNCTIONS(FUNCTION)                                                           \
    FUNCTION(g_free)                                                                               \
    FUNCTION(g_utf8_make_valid)                                                                    \
    FUNCTION(g_utf8_validate)                                                                      \
    FUNCTION(pango_attr_letter_spacing_new)                                                        \
    FUNCTION(pango_attr_list_insert)                                                               \
    FUNCTION(pango_attr_list_new)                                                                  \
    FUNCTION(pango_attr_list_unref)                                                                \
    FUNCTION(pango_attr_strikethrough_new)                                                         \
    FUNCTION(pango_attr_underline_new)                                                             \
    FUNCTION(pango_cairo_context_set_font_options)                                                 \
    FUNCTION(pango_cairo_font_map_new)                                                             \
    FUNCTION(pango_cairo_show_layout)                                                              \
    FUNCTION(pango_cairo_update_layout)                                                            \
    FUNCTION(pango_context_get_metrics)                                                            \
    FUNCTION(pango_context_set_base_dir)                                                           \
    FUNCTION(pango_context_set_language)                                                           \
    FUNCTION(pango_context_set_matrix)                                                             \
    FUNCTION(pango_font_description_copy)                                                          \
    FUNCTION(pango_font_description_get_stretch)                                                   \
    FUNCTION(pango_font_description_get_style)                                                     \
    FUNCTION(pango_font_description_get_weight)                                                    \
    FUNCTION(pango_font_description_new)                                                           \
    FUNCTION(pango_font_description_set_absolute_size)                                             \
    FUNCTION(pango_font_description_set_family)                                                    \
    FUNCTION(pango_font_description_set_style)                                                     \
    FUNCTION(pango_font_description_set_weight)                                                    \
    FUNCTION(pango_font_face_describe)                                                             \
    FUNCTION(pango_font_face_get_face_name)                                                        \
    FUNCTION(pango_font_face_is_synthesized)                                                       \
    FUNCTION(pango_font_family_get_name)                                                           \
    FUNCTION(pango_font_family_is_monospace)                                                       \
    FUNCTION(pango_font_family_list_faces)                                                         \
    FUNCTION(pango_font_map_create_context)                                                        \
    FUNCTION(pango_font_map_list_families)                                                         \
    FUNCTION(pango_font_metrics_get_ascent)                                                        \
    FUNCTION(pango_font_metrics_get_descent)                                                       \
    FUNCTION(pango_font_metrics_get_height)                                                        \
    FUNCTION(pango_font_metrics_unref)                                                             \
    FUNCTION(pango_language_from_string)                                                           \
    FUNCTION(pango_layout_get_baseline)                                                            \
    FUNCTION(pango_layout_get_context)                                                             \
    FUNCTION(pango_layout_get_extents)                                                             \
    FUNCTION(pango_layout_new)                                                                     \
    FUNCTION(pango_layout_set_attributes)                                                          \
    FUNCTION(pango_layout_set_font_description)                                                    \
    FUNCTION(pango_layout_set_single_paragraph_mode)                                               \
    FUNCTION(pango_layout_set_text)                                                                \
    FUNCTION(pango_layout_set_width)

namespace BPrivate {

// The members carry the C names, so a call reads as it would against the
// linked library: library.pango_layout_new(context).
struct TextLibrary {
#define GLIMROW_DECLARE_TEXT_FUNCTION(name) decltype(&::name) name = NULL;
    GLIMROW_TEXT_FUNCTIONS(GLIMROW_DECLARE_TEXT_FUNCTION)
#undef GLIMROW_DECLARE_TEXT_FUNCTION

    // The text stack, opened on first use and kept for the life of the process.
    // Thread-safe. Without it the installation is broken and no window could
    // show a label: the process says so on stderr and exits with status 1.
    static const TextLibrary& Get();

    // Opens the library file by name (as dlopen looks it up) and fills every
    // entry, each found in the library or in what it depends on. Returns
    // B_ENTRY_NOT_FOUND when it cannot be opened and B_NAME_NOT_FOUND when it
    // lacks a function; the table is then left empty, the library closed, and
    // the loader's reason put in error (when not NULL).
    status_t Load(const char* fileName, std::string* error);
};

} // namespace BPrivate

#endif // _TEXT_LIBRARY_H
