// entry_ref: the plain (device, folder, name) triple. Only the name is owned.
#include <Entry.h>

#include <stdlib.h>
#include <string.h>

entry_ref::entry_ref() : device((dev_t)-1), directory((ino_t)-1), name(NULL) {}

entry_ref::entry_ref(dev_t device, ino_t directory, const char* name)
    : device(device), directory(directory), name(NULL) {
    set_name(name);
}

entry_ref::entry_ref(const entry_ref& other)
    : device(other.device), directory(other.directory), name(NULL) {
    set_name(other.name);
}

entry_ref::~entry_ref() {
    free(name);
}

status_t entry_ref::set_name(const char* newName) {
    if (newName == name && newName != NULL)
        return B_OK;
    char* copy = NULL;
    if (newName != NULL) {
        copy = strdup(newName);
        if (copy == NULL)
            return B_NO_MEMORY;
    }
    free(name);
    name = copy;
    return B_OK;
}

bool entry_ref::operator==(const entry_ref& other) const {
    if (device != other.device || directory != other.directory)
        return false;
    if (name == NULL || other.name == NULL)
        return name == other.name;
    return strcmp(name, other.name) == 0;
}

bool entry_ref::operator!=(const entry_ref& other) const {
    return !(*this == other);
}

bool entry_ref::operator<(const entry_ref& other) const {
    if (device != other.device)
        return device < other.device;
    if (directory != other.directory)
        return directory < other.directory;
    if (name == NULL || other.name == NULL)
        return name == NULL && other.name != NULL;
    return strcmp(name, other.name) < 0;
}

entry_ref& entry_ref::operator=(const entry_ref& other) {
    if (this == &other)
        return *this;
    device = other.device;
    directory = other.directory;
    set_name(other.name);
    return *this;
}
