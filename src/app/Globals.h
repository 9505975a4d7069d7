// The process-wide names and pointers of the program. The pointers are plain
// globals: each is set once by the object it names (the application sets
// gr_slave, the bar window sets gr_manager and gr_settings) and read from any
// thread without a lock, so nobody but their owner may change them.
#ifndef GLIMROW_GLOBALS_H
#define GLIMROW_GLOBALS_H

#include <SupportDefs.h>

class BLooper;
class BarWindow;
class settings;

extern BLooper* gr_slave;
extern BarWindow* gr_manager;
extern settings* gr_settings;

extern const char* const gr_app_name;
extern const char* const gr_signature;
extern const char* const gr_settings_name;
extern const char* const gr_layers_name;
extern const char* const gr_targets_name;
extern const char* const gr_shelf_name;

// The program's own icons in the system colour map, one palette index a pixel,
// rows top to bottom (index 0xff is transparent).
extern const uint8 gr_mini_icon[256];
extern const uint8 gr_large_icon[1024];

#endif // GLIMROW_GLOBALS_H
