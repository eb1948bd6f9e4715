#ifndef DESK_INTERPOSE_LIBC_H
#define DESK_INTERPOSE_LIBC_H

#include <dlfcn.h>

namespace desk
{

/// The next function of that name after this program's: libc's, or a library's in between such as a sanitizer's.
template <class Function> Function *next(const char *name)
{
	return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace desk

#endif
