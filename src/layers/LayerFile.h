// Layer files: one plain-text file per layer in the layers folder, its leaf name
// the layer's name, one path a line with every line ended by "\n". Runs of line
// ends count as one and a line starting with "#" is a comment; nothing else is
// special. A layer file carries the type "text/plain" (as attribute "BEOS:TYPE",
// type 'MIME') and, when made with them, the program's icons (type 'CLRB').
// The targets list is stored the same way in the targets file, outside the
// layers folder, and is the layer with the empty name.
//
// These functions do the disk work for the loader and saver (IOSlave), which
// reports their failures.
#ifndef GLIMROW_LAYER_FILE_H
#define GLIMROW_LAYER_FILE_H

#include <SupportDefs.h>

#include <stddef.h>

class BDirectory;
class BFile;
class BMessage;
struct entry_ref;

// True when the entry has the type "text/plain" and lies directly in the layers
// folder; false on any failure.
bool is_layer_file(const entry_ref* ref);
// True when the path begins with the layers folder's path (its trailing "/"
// included, compared as text) and names something of type "text/plain".
bool is_layer_file(const char* path);

// Writes the type attribute and, when icon is true, the two icons (small one
// first). Individual failures are ignored; returns the status of the last write.
status_t write_layer_attr(BFile* file, bool icon);

// Saves the "paths" strings of a save request into the layer called name (the
// targets file for the empty name). A layer file that does not exist yet is
// created with its attributes, with icons when "icon" is true; an existing
// file's attributes are never touched. The file is cut to what was written.
status_t write_layer_file(BDirectory* layersFolder, const char* name, const BMessage* request);

// Reads the whole body of the layer called name (the targets file for the empty
// name) after checking its type attribute. On success *text is a NUL-terminated
// buffer allocated with new[] that the caller deletes, and *length the number of
// bytes read. A type other than exactly "text/plain" gives B_BAD_VALUE.
status_t read_layer_file(BDirectory* layersFolder, const char* name, char** text, size_t* length);

// Cuts the next counted or comment line out of a read body in place: skips line
// ends, ends the line with a NUL and moves *cursor past it. Returns NULL at the
// end of the body.
char* next_layer_line(char** cursor, char* end);

// Moves the layer file to the Trash under its own name, or under "name 1",
// "name 2"… when that is taken; removes it outright when the Trash cannot take it.
status_t delete_layer_file(BDirectory* layersFolder, const char* name);

#endif // GLIMROW_LAYER_FILE_H
