#include "RecordingApps.h"

#include "Watchdog.h"

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include <stdlib.h>

namespace testing_support {

namespace {

std::vector<std::string> split_types(const std::string& types) {
    std::vector<std::string> result;
    std::stringstream stream(types);
    std::string type;
    while (std::getline(stream, type, ';')) {
        if (!type.empty())
            result.push_back(type);
    }
    return result;
}

} // namespace

RecordingApps::RecordingApps(const TestHome& home) : fHome(home) {
    std::string system = home.MakeFolder("system-data");
    std::error_code ignored;
    std::filesystem::create_directory_symlink("/usr/share/mime", system + "/mime", ignored);
    setenv("XDG_DATA_DIRS", system.c_str(), 1);

    fApplications = home.MakeFolder(".local/share/applications");
    fRecords = home.MakeFolder("records");
    // Each run writes its arguments, one a line, to a file of its own and then
    // renames it into place, so a reader never sees half a record.
    fScript = home.WriteFile("bin/record-arguments",
                             "#!/bin/sh\n"
                             "id=\"$1\"\n"
                             "shift\n"
                             "out=\"" +
                                 fRecords +
                                 "/$id.$$\"\n"
                                 ": > \"$out.part\"\n"
                                 "for argument in \"$@\"; do\n"
                                 "    printf '%s\\n' \"$argument\" >> \"$out.part\"\n"
                                 "done\n"
                                 "mv \"$out.part\" \"$out.run\"\n",
                             true);
}

std::string RecordingApps::Add(const std::string& id, const std::string& mimeTypes,
                               const std::string& fieldCode) {
    std::string path = DesktopFile(id);
    std::ofstream stream(path, std::ios::trunc);
    stream << "[Desktop Entry]\n"
           << "Type=Application\n"
           << "Name=" << id << "\n"
           << "Exec=" << fScript << " " << id << " " << fieldCode << "\n"
           << "Terminal=false\n";
    if (!mimeTypes.empty())
        stream << "MimeType=" << mimeTypes << "\n";
    stream.close();
    fTypes.push_back({id, mimeTypes});
    _WriteCaches();
    return path;
}

void RecordingApps::SetDefault(const std::string& mimeType, const std::string& id) {
    fDefaults.push_back({mimeType, id});
    _WriteCaches();
}

std::string RecordingApps::DesktopFile(const std::string& id) const {
    return fApplications + "/" + id + ".desktop";
}

std::vector<std::vector<std::string>> RecordingApps::Runs(const std::string& id) const {
    std::vector<std::vector<std::string>> runs;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(fRecords, error)) {
        std::string name = entry.path().filename().string();
        if (name.rfind(id + ".", 0) != 0 || entry.path().extension() != ".run")
            continue;
        // "<id>.<pid>.run": the id must be followed by the process number only.
        std::string middle = name.substr(id.size() + 1, name.size() - id.size() - 5);
        if (middle.empty() || middle.find_first_not_of("0123456789") != std::string::npos)
            continue;
        std::vector<std::string> arguments;
        std::ifstream stream(entry.path());
        std::string line;
        while (std::getline(stream, line))
            arguments.push_back(line);
        runs.push_back(arguments);
    }
    return runs;
}

bool RecordingApps::WaitForRuns(const std::string& id, size_t count,
                                std::chrono::milliseconds deadline) const {
    return wait_until([&] { return Runs(id).size() >= count; }, deadline);
}

void RecordingApps::_WriteCaches() const {
    // GIO builds its type-to-application tables from these files rather than
    // from the entries' MimeType lines.
    std::map<std::string, std::vector<std::string>> byType;
    for (const auto& [id, types] : fTypes) {
        for (const std::string& type : split_types(types))
            byType[type].push_back(id + ".desktop");
    }
    {
        std::ofstream cache(fApplications + "/mimeinfo.cache", std::ios::trunc);
        cache << "[MIME Cache]\n";
        for (const auto& [type, ids] : byType) {
            cache << type << "=";
            for (const std::string& id : ids)
                cache << id << ";";
            cache << "\n";
        }
    }
    std::ofstream list(fHome.ConfigHome() + "/mimeapps.list", std::ios::trunc);
    list << "[Default Applications]\n";
    for (const auto& [type, id] : fDefaults)
        list << type << "=" << id << ".desktop;\n";
    list << "[Added Associations]\n";
    for (const auto& [type, id] : fDefaults)
        list << type << "=" << id << ".desktop;\n";
}

} // namespace testing_support
