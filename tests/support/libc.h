#ifndef VEXLO_TESTS_LIBC_H
#define VEXLO_TESTS_LIBC_H

#include <dlfcn.h>

/// For functions that take the place of libc's: the one behind theirs, as `next<int(const char *)>("remove")`.
template <class Function> Function *next(const char *name)
{
	return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

#endif
