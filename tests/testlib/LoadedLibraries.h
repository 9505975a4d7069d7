// Whether a shared library is mapped into the test process, for tests of what the
// kits open only when first needed.
#ifndef GLIMROW_TEST_LOADED_LIBRARIES_H
#define GLIMROW_TEST_LOADED_LIBRARIES_H

#include <dlfcn.h>

namespace testing_support {

// Asking never loads the library.
inline bool is_library_loaded(const char* fileName) {
    void* handle = dlopen(fileName, RTLD_NOLOAD | RTLD_LAZY);
    if (handle == nullptr)
        return false;
    dlclose(handle);
    return true;
}

} // namespace testing_support

#endif // GLIMROW_TEST_LOADED_LIBRARIES_H
