#ifndef VEXLO_TESTS_LIBC_H
#define VEXLO_TESTS_LIBC_H

#include <dlfcn.h>

/// The libc function behind a replacement, as `next<int(const char *)>("remove")`.
template <class Function> Function *next(const char *name)
{
	return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

#endif
