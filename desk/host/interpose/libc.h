#ifndef DESK_INTERPOSE_LIBC_H
#define DESK_INTERPOSE_LIBC_H

#include <dlfcn.h>

namespace desk
{

/// The function of that name behind this program's own: libc's, or that of a library in between, a
/// sanitizer's for example.
template <class Function> Function *next(const char *name)
{
	return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace desk

#endif
