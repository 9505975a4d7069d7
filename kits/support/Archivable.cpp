#include <Archivable.h>

#include "support/ArchivablePrivate.h"

#include <Message.h>

#include <cxxabi.h>
#include <dlfcn.h>
#include <errno.h>
#include <mutex>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <string>
#include <typeinfo>
#include <unordered_map>

namespace {

struct ClassRegistry {
    std::mutex lock;
    std::unordered_map<std::string, instantiation_func> functions;
};

// Never destroyed: objects may be unarchived while static destructors run.
ClassRegistry& class_registry() {
    static ClassRegistry* sRegistry = new ClassRegistry;
    return *sRegistry;
}

// The Itanium-mangled name of Class::Instantiate(BMessage*), nested names included
// ("BPrivate::Foo" gives _ZN8BPrivate3Foo11InstantiateEP8BMessage).
bool mangled_instantiate_name(const char* className, std::string& mangled) {
    mangled = "_ZN";
    const char* part = className;
    while (*part != '\0') {
        const char* end = strstr(part, "::");
        size_t length = end != NULL ? (size_t)(end - part) : strlen(part);
        if (length == 0)
            return false;
        for (size_t index = 0; index < length; index++) {
            char c = part[index];
            if (!(c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                  (index > 0 && c >= '0' && c <= '9'))) {
                return false;
            }
        }
        mangled += std::to_string(length);
        mangled.append(part, length);
        part += length;
        if (end != NULL)
            part += 2;
    }
    mangled += "11InstantiateEP8BMessage";
    return true;
}

// Classes of the program itself are found by their symbol when the executable
// exports its symbols, as on Be systems.
instantiation_func find_by_symbol(const char* className) {
    std::string mangled;
    if (!mangled_instantiate_name(className, mangled))
        return NULL;
    void* symbol = dlsym(RTLD_DEFAULT, mangled.c_str());
    return reinterpret_cast<instantiation_func>(symbol);
}

} // namespace

namespace BPrivate {

status_t register_instantiation_func(const char* className, instantiation_func function) {
    if (className == NULL || className[0] == '\0')
        return B_BAD_VALUE;

    ClassRegistry& registry = class_registry();
    std::lock_guard<std::mutex> locker(registry.lock);
    if (function == NULL)
        registry.functions.erase(className);
    else
        registry.functions[className] = function;
    return B_OK;
}

} // namespace BPrivate

// #pragma mark - BArchivable

BArchivable::BArchivable(BMessage* from) {}

BArchivable::BArchivable() {}

BArchivable::~BArchivable() {}

status_t BArchivable::Archive(BMessage* into, bool deep) const {
    if (into == NULL)
        return B_BAD_VALUE;

    const char* rawName = typeid(*this).name();
    int status = 0;
    char* demangled = abi::__cxa_demangle(rawName, NULL, NULL, &status);
    status_t result = into->AddString("class", demangled != NULL ? demangled : rawName);
    free(demangled);
    return result;
}

BArchivable* BArchivable::Instantiate(BMessage* archive) {
    // A plain BArchivable has nothing to restore; archives never name it.
    errno = B_BAD_VALUE;
    return NULL;
}

status_t BArchivable::Perform(perform_code d, void* arg) {
    return B_ERROR;
}

status_t BArchivable::AllUnarchived(const BMessage* archive) {
    return B_OK;
}

status_t BArchivable::AllArchived(BMessage* archive) const {
    return B_OK;
}

// #pragma mark - Instantiation

instantiation_func find_instantiation_func(const char* className, const char* signature) {
    if (className == NULL || className[0] == '\0') {
        errno = B_BAD_VALUE;
        return NULL;
    }

    {
        ClassRegistry& registry = class_registry();
        std::lock_guard<std::mutex> locker(registry.lock);
        auto found = registry.functions.find(className);
        if (found != registry.functions.end())
            return found->second;
    }

    // The add-on signature would name an image to load on a Be system; there are no
    // add-ons here, so every known class is already in the registry or the executable.
    instantiation_func function = find_by_symbol(className);
    if (function == NULL)
        errno = B_NAME_NOT_FOUND;
    return function;
}

instantiation_func find_instantiation_func(const char* className) {
    return find_instantiation_func(className, NULL);
}

instantiation_func find_instantiation_func(BMessage* archive) {
    if (archive == NULL) {
        errno = B_BAD_VALUE;
        return NULL;
    }

    const char* className = NULL;
    if (archive->FindString("class", 0, &className) != B_OK) {
        errno = B_BAD_VALUE;
        return NULL;
    }
    const char* signature = NULL;
    if (archive->FindString("add_on", 0, &signature) != B_OK)
        signature = NULL;
    return find_instantiation_func(className, signature);
}

BArchivable* instantiate_object(BMessage* from, image_id* id) {
    if (id != NULL)
        *id = B_BAD_VALUE;

    instantiation_func function = find_instantiation_func(from);
    if (function == NULL)
        return NULL;
    return function(from);
}

BArchivable* instantiate_object(BMessage* from) {
    return instantiate_object(from, NULL);
}

bool validate_instantiation(BMessage* from, const char* className) {
    if (from == NULL || className == NULL) {
        errno = B_BAD_VALUE;
        return false;
    }

    // Kit classes may live in the private namespace and archive under that name.
    std::string privateName = std::string("BPrivate::") + className;
    const char* name = NULL;
    for (int32 index = 0; from->FindString("class", index, &name) == B_OK; index++) {
        if (strcmp(name, className) == 0 || privateName == name)
            return true;
    }

    errno = B_MISMATCHED_VALUES;
    return false;
}
