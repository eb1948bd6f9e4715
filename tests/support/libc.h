#ifndef VEXLO_TESTS_LIBC_H
#define VEXLO_TESTS_LIBC_H

#include <dlfcn.h>

/// For those who stand in front of libc: the function behind theirs, as `next<int(const char *)>("remove")`.
template <class Function> Function *next(const char *name)
{
	return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

#endif
