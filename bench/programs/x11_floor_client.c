/* The floor for bench_x11_startup: the least a program on this stack does to show
 * a window with text in it. It opens the display and maps its window at once,
 * then sets up cairo and pango and draws its text when the window is exposed,
 * and waits to be ended. Plain C, nothing of the kits. */
#include <X11/Xlib.h>
#include <cairo-xlib.h>
#include <pango/pangocairo.h>

#include <stdio.h>

int main(void) {
    Display* display = XOpenDisplay(NULL);
    if (display == NULL) {
        fprintf(stderr, "x11_floor_client: cannot open display\n");
        return 1;
    }
    int screen = DefaultScreen(display);
    Window window = XCreateSimpleWindow(display, RootWindow(display, screen), 100, 100, 300, 200,
                                        0, 0, 0xd8d8d8);
    XSelectInput(display, window, ExposureMask | StructureNotifyMask);
    XStoreName(display, window, "floor");
    XMapWindow(display, window);

    cairo_surface_t* surface = NULL;
    cairo_t* cairo = NULL;
    PangoLayout* layout = NULL;
    for (;;) {
        XEvent event;
        XNextEvent(display, &event);
        if (event.type != Expose || event.xexpose.count != 0)
            continue;
        if (surface == NULL) {
            surface = cairo_xlib_surface_create(display, window, DefaultVisual(display, screen),
                                                300, 200);
            cairo = cairo_create(surface);
            layout = pango_cairo_create_layout(cairo);
            PangoFontDescription* font = pango_font_description_from_string("Sans 10");
            pango_layout_set_font_description(layout, font);
            pango_font_description_free(font);
            pango_layout_set_text(layout, "floor", -1);
        }
        cairo_set_source_rgb(cairo, 0.85, 0.85, 0.85);
        cairo_paint(cairo);
        cairo_set_source_rgb(cairo, 0, 0, 0);
        cairo_move_to(cairo, 10, 10);
        pango_cairo_show_layout(cairo, layout);
        cairo_surface_flush(surface);
        XFlush(display);
    }
    return 0;
}
