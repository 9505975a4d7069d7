// glimrow-demo-setup HOME: fills a fresh home with what makes the bar
// worth looking at: a settings file, an "Apps" layer of the desktop entries
// installed on this system, a "Docs" layer of typed files in ~/Demo together
// with a nested layer item (the "Apps" layer file itself), and a targets list.
// Workspace 0 shows "Docs", workspace 1 "Apps". Everything is written through
// the kits, so the files carry their types as the bar reads them.
#include "Globals.h"
#include "Settings.h"

#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <NodeInfo.h>
#include <Path.h>
#include <StorageDefs.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

const char* const kApplicationsFolder = "/usr/share/applications";
const size_t kMaximumApps = 6;
// Looked for first; any other entries fill the layer up.
const char* const kPreferredApps[] = {"xterm.desktop",      "pcmanfm.desktop",
                                      "vim.desktop",        "display-im6.q16.desktop",
                                      "python3.11.desktop", "tint2conf.desktop"};

struct DemoFile {
    const char* name;
    const char* type;
    const char* contents;
    bool executable;
};

const DemoFile kDemoFiles[] = {
    {"Notes.txt", "text/plain", "Things to remember:\n- water the plants\n", false},
    {"Welcome.html", "text/html", "<html><body><h1>Welcome</h1></body></html>\n", false},
    {"Report.md", "text/markdown", "# Report\n\nAll is well.\n", false},
    {"hello.sh", "application/x-shellscript", "#!/bin/sh\necho hello\n", true},
};

status_t write_file(const std::string& path, const char* contents, const char* type,
                    bool executable) {
    BFile file(path.c_str(), B_WRITE_ONLY | B_CREATE_FILE | B_ERASE_FILE);
    status_t status = file.InitCheck();
    if (status != B_OK)
        return status;
    size_t length = strlen(contents);
    ssize_t written = file.Write(contents, length);
    if (written < 0)
        return (status_t)written;
    if ((size_t)written != length)
        return B_IO_ERROR;
    if (executable) {
        status = file.SetPermissions(0755);
        if (status != B_OK)
            return status;
    }
    if (type == NULL)
        return B_OK;
    BNodeInfo info(&file);
    return info.SetType(type);
}

status_t write_layer(const std::string& path, const std::vector<std::string>& items) {
    std::string body;
    for (const std::string& item : items)
        body += item + "\n";
    // Layer files are plain text; the type is what makes them layers.
    return write_file(path, body.c_str(), "text/plain", false);
}

std::vector<std::string> installed_apps() {
    std::vector<std::string> names;
    BDirectory folder(kApplicationsFolder);
    if (folder.InitCheck() != B_OK)
        return names;
    BEntry entry;
    while (folder.GetNextEntry(&entry, false) == B_OK) {
        char name[B_FILE_NAME_LENGTH];
        if (entry.GetName(name) != B_OK || entry.IsDirectory())
            continue;
        size_t length = strlen(name);
        if (length > 8 && strcmp(name + length - 8, ".desktop") == 0)
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());

    std::vector<std::string> chosen;
    for (const char* preferred : kPreferredApps) {
        if (std::find(names.begin(), names.end(), preferred) != names.end())
            chosen.push_back(preferred);
    }
    for (const std::string& name : names) {
        if (chosen.size() >= kMaximumApps)
            break;
        if (std::find(chosen.begin(), chosen.end(), name) == chosen.end())
            chosen.push_back(name);
    }
    if (chosen.size() > kMaximumApps)
        chosen.resize(kMaximumApps);

    std::vector<std::string> paths;
    for (const std::string& name : chosen)
        paths.push_back(std::string(kApplicationsFolder) + "/" + name);
    return paths;
}

void set_layer_name(settings* record, int32 workspace, const char* name) {
    char* copy = new char[strlen(name) + 1];
    strcpy(copy, name);
    delete[] record->layerName[workspace];
    record->layerName[workspace] = copy;
}

int fail(const char* what, status_t status) {
    fprintf(stderr, "glimrow-demo-setup: %s: %s\n", what, strerror(status));
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        fprintf(stderr, "usage: glimrow-demo-setup HOME\n");
        return 2;
    }
    const std::string home = argv[1];

    // The settings folder is found through the home, as the bar will find it.
    setenv("HOME", home.c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
    unsetenv("XDG_DATA_HOME");

    char failure[512] = "";
    status_t status = check_settings_folders(failure, sizeof(failure));
    if (status != B_OK) {
        fprintf(stderr, "glimrow-demo-setup: %s\n", failure);
        return 1;
    }
    char settingsFolder[B_PATH_NAME_LENGTH];
    status = find_user_settings_directory(settingsFolder, sizeof(settingsFolder));
    if (status != B_OK)
        return fail("settings folder", status);
    const std::string programFolder = std::string(settingsFolder) + "/" + gr_app_name;
    const std::string layersFolder = programFolder + "/" + gr_layers_name;

    const std::string demoFolder = home + "/Demo";
    status = create_directory((demoFolder + "/Projects").c_str(), 0755);
    if (status != B_OK)
        return fail(demoFolder.c_str(), status);

    std::vector<std::string> docs;
    for (const DemoFile& file : kDemoFiles) {
        std::string path = demoFolder + "/" + file.name;
        status = write_file(path, file.contents, file.type, file.executable);
        if (status != B_OK)
            return fail(path.c_str(), status);
        docs.push_back(path);
    }
    docs.push_back(demoFolder + "/Projects");

    const std::string appsLayer = layersFolder + "/Apps";
    status = write_layer(appsLayer, installed_apps());
    if (status != B_OK)
        return fail(appsLayer.c_str(), status);
    // An item whose file is a layer file opens that layer: layers nest.
    docs.push_back(appsLayer);
    const std::string docsLayer = layersFolder + "/Docs";
    status = write_layer(docsLayer, docs);
    if (status != B_OK)
        return fail(docsLayer.c_str(), status);

    const std::string targets = programFolder + "/" + gr_targets_name;
    status = write_layer(targets, {demoFolder, demoFolder + "/Projects"});
    if (status != B_OK)
        return fail(targets.c_str(), status);

    settings record;
    record.location = 0;
    record.direction = 2;
    record.which = 32;
    record.flags = kDrawBorderFlag | kWorkspaceCommandFlag | kShelfOnTailFlag;
    set_layer_name(&record, 0, "Docs");
    set_layer_name(&record, 1, "Apps");
    status = write_settings_file(&record);
    if (status != B_OK)
        return fail("settings file", status);

    printf("glimrow-demo-setup: demo written to %s\n", programFolder.c_str());
    return 0;
}
