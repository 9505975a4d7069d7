// GLib, GObject and GIO, opened the first time the kits need them: to guess a
// file's type, list the applications for a type, find or start a program, or pick
// a desktop entry's strings for the user's languages. Linking them instead loaded
// and relocated them and their dependencies before main() on every start, about
// 2 ms of the time the bar takes to show its window (kit-private).
//
// Every GLib call of the storage and app kits goes through Get(); the headers are
// included for the types only, and decltype does not reference the symbols.
#ifndef _STORAGE_GIO_LIBRARY_H
#define _STORAGE_GIO_LIBRARY_H

#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>

namespace BPrivate {

// Each function is named once here; the table's members and the loader both come
// from this list.
#define GLIMROW_GIO_FUNCTIONS(FUNCTION)                                                            \
    FUNCTION(g_app_info_equal)                                                                     \
    FUNCTION(g_app_info_get_all)                                                                   \
    FUNCTION(g_app_info_get_all_for_type)                                                          \
    FUNCTION(g_app_info_get_default_for_type)                                                      \
    FUNCTION(g_app_info_get_fallback_for_type)                                                     \
    FUNCTION(g_app_info_get_recommended_for_type)                                                  \
    FUNCTION(g_app_info_get_supported_types)                                                       \
    FUNCTION(g_content_type_can_be_executable)                                                     \
    FUNCTION(g_content_type_from_mime_type)                                                        \
    FUNCTION(g_content_type_get_icon)                                                              \
    FUNCTION(g_content_type_get_mime_type)                                                         \
    FUNCTION(g_content_type_guess)                                                                 \
    FUNCTION(g_content_type_is_a)                                                                  \
    FUNCTION(g_desktop_app_info_get_filename)                                                      \
    FUNCTION(g_desktop_app_info_get_type)                                                          \
    FUNCTION(g_error_free)                                                                         \
    FUNCTION(g_find_program_in_path)                                                               \
    FUNCTION(g_free)                                                                               \
    FUNCTION(g_get_language_names)                                                                 \
    FUNCTION(g_list_append)                                                                        \
    FUNCTION(g_list_free)                                                                          \
    FUNCTION(g_list_free_full)                                                                     \
    FUNCTION(g_object_unref)                                                                       \
    FUNCTION(g_spawn_async)                                                                        \
    FUNCTION(g_spawn_error_quark)                                                                  \
    FUNCTION(g_strfreev)                                                                           \
    FUNCTION(g_themed_icon_get_names)                                                              \
    FUNCTION(g_themed_icon_get_type)                                                               \
    FUNCTION(g_type_check_instance_is_a)

struct GioLibrary {
    // The table, filled on the first call from any thread. When the library or
    // one of its functions is missing, says so on stderr and ends the process:
    // the bar cannot do without file types and applications, and a half-filled
    // table would only crash later. The library stays loaded.
    static const GioLibrary& Get();

#define GLIMROW_GIO_MEMBER(name) decltype(&::name) name;
    GLIMROW_GIO_FUNCTIONS(GLIMROW_GIO_MEMBER)
#undef GLIMROW_GIO_MEMBER
};

// What the G_IS_…() macros answer, through the table (they call GObject directly).
inline bool is_instance_of(gpointer object, GType type) {
    return object != nullptr &&
           GioLibrary::Get().g_type_check_instance_is_a(static_cast<GTypeInstance*>(object), type);
}

} // namespace BPrivate

#endif // _STORAGE_GIO_LIBRARY_H
