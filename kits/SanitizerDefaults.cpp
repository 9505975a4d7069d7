// Defaults for the sanitizer runtimes, which call these hooks at start-up; other
// builds never call them.
//
// Fontconfig keeps its caches behind encoded offsets that the leak checker cannot
// follow, so what it reports there is not lost memory. GLib and pango do their work
// on threads of their own (GIO's worker, pango's font loader) and hand it over
// through locks built on futexes the race detector cannot see; the races it reports
// inside those libraries are not ours.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}

extern "C" const char* __tsan_default_suppressions() {
    return "race:libfontconfig.so\n"
           "called_from_lib:libglib-2.0.so.0\n"
           "called_from_lib:libgio-2.0.so.0\n"
           "called_from_lib:libgobject-2.0.so.0\n"
           "called_from_lib:libfontconfig.so.1\n"
           "called_from_lib:libpango-1.0.so.0\n"
           "called_from_lib:libpangoft2-1.0.so.0\n"
           "called_from_lib:libpangocairo-1.0.so.0\n"
           "race:libglib-2.0.so\n"
           "race:libgio-2.0.so\n"
           "race:libpango\n"
           "race:libcairo.so\n"
           "mutex:libpangocairo-1.0.so\n"
           "mutex:libglib-2.0.so\n"
           // Cairo's scaled-font lock is reported as locked twice when cairo frees
           // and reuses a font's memory under its own cache lock.
           "mutex:cairo_scaled_font_glyph_extents\n"
           "mutex:libcairo.so\n"
           // The text engine holds its own lock around pango and cairo calls, and
           // cairo takes its font lock inside them; cairo never calls back into us,
           // so the order inversion the detector reports cannot close a cycle.
           "deadlock:TextEngine\n"
           "deadlock:TextLayout\n";
}
