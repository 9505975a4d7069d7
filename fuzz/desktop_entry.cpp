// Desktop entries come from any package or user: the reader and the Exec
// expansion must take whatever bytes a file holds.
#include "storage/DesktopEntry.h"

#include <stddef.h>
#include <stdint.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    BPrivate::DesktopEntry entry;
    if (entry.SetTo(reinterpret_cast<const char*>(data), size, "/fuzz/entry.desktop") != B_OK)
        return 0;
    entry.LocaleString("Name");
    entry.List("MimeType");
    entry.Boolean("Terminal");
    entry.IsApplication();
    std::vector<std::vector<std::string>> commands;
    entry.Commands({"/a file", "/b"}, true, &commands);
    entry.Commands({"argument"}, false, &commands);
    entry.Commands({}, true, &commands);
    return 0;
}
