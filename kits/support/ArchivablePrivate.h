// The class registry behind instantiate_object(). Be systems find a class's
// Instantiate() by its symbol in the loaded images; here each archivable kit class
// registers its function by name, and only program classes fall back to the symbol.
#ifndef _SUPPORT_ARCHIVABLE_PRIVATE_H
#define _SUPPORT_ARCHIVABLE_PRIVATE_H

#include <Archivable.h>

namespace BPrivate {

// Registers (or, with a NULL function, forgets) the function that instantiates the
// class of that name ("BMenuItem"). B_BAD_VALUE for a NULL or empty name.
status_t register_instantiation_func(const char* className, instantiation_func function);

} // namespace BPrivate

// Registers Class::Instantiate under the class's own name.
#define B_REGISTER_ARCHIVABLE(className)                                                           \
    BPrivate::register_instantiation_func(#className, &className::Instantiate)

#endif // _SUPPORT_ARCHIVABLE_PRIVATE_H
