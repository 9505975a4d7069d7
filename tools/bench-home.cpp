// Prepares a home folder for measuring the bar on a desktop: one layer called
// "Bench" with a given number of real files, shown on every workspace, and the
// bar in a chosen corner (3, bottom-left, unless told otherwise).
//
//   glimrow-bench-home <home> <items> [location]
//
// The files get their types through the storage kit, as a file manager would
// give them, so the bar finds icons and applications for them.
#include "LayerFile.h"
#include "Settings.h"

#include <Directory.h>
#include <File.h>
#include <Message.h>
#include <NodeInfo.h>
#include <Path.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <string>

namespace {

const char* const kTypes[] = {"text/plain", "text/html", "image/png", "application/pdf"};
const char* const kExtensions[] = {"txt", "html", "png", "pdf"};

status_t make_item_file(const std::string& folder, int32 index, std::string* path) {
    int32 kind = index % 4;
    char name[64];
    snprintf(name, sizeof(name), "item %02d.%s", (int)index + 1, kExtensions[kind]);
    *path = folder + "/" + name;
    BFile file(path->c_str(), B_READ_WRITE | B_CREATE_FILE | B_ERASE_FILE);
    status_t status = file.InitCheck();
    if (status != B_OK)
        return status;
    const char* body = "a file to show on the bar\n";
    file.Write(body, strlen(body));
    BNodeInfo info(&file);
    return info.SetType(kTypes[kind]);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        fprintf(stderr, "usage: %s <home> <items> [location]\n", argv[0]);
        return 2;
    }
    std::string home = argv[1];
    int32 itemCount = atoi(argv[2]);
    int32 location = argc > 3 ? atoi(argv[3]) : 3;
    setenv("HOME", home.c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");

    char failure[B_PATH_NAME_LENGTH + 256] = "";
    if (check_settings_folders(failure, sizeof(failure)) != B_OK) {
        fprintf(stderr, "bench-home: %s\n", failure);
        return 1;
    }

    std::string folder = home + "/bench-files";
    mkdir(folder.c_str(), 0755);
    BMessage request(0x6772000d);
    request.AddString("name", "Bench");
    request.AddBool("icon", false);
    for (int32 index = 0; index < itemCount; index++) {
        std::string path;
        status_t status = make_item_file(folder, index, &path);
        if (status != B_OK) {
            fprintf(stderr, "bench-home: cannot make %s: %s\n", path.c_str(), strerror(status));
            return 1;
        }
        request.AddString("paths", path.c_str());
    }

    std::string layersPath = home + "/.config/Glimrow/layers";
    BDirectory layers(layersPath.c_str());
    status_t status = write_layer_file(&layers, "Bench", &request);
    if (status != B_OK) {
        fprintf(stderr, "bench-home: cannot write the layer: %s\n", strerror(status));
        return 1;
    }

    settings record;
    BMessage archive;
    record.archive_to(&archive);
    for (int32 index = 0; index < kLayerNameCount; index++)
        archive.ReplaceString("layerName", index, "Bench");
    archive.ReplaceInt32("location", location);
    // The strips run away from the corner, so the whole bar stays on the screen.
    archive.ReplaceInt32("direction", location < 2 ? 0 : 1);
    record.set_to(&archive);
    status = write_settings_file(&record);
    if (status != B_OK) {
        fprintf(stderr, "bench-home: cannot write the settings: %s\n", strerror(status));
        return 1;
    }
    return 0;
}
