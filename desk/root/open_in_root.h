#ifndef DESK_ROOT_OPEN_IN_ROOT_H
#define DESK_ROOT_OPEN_IN_ROOT_H

namespace desk
{

/// Opens `path` with the folder `root`, a descriptor, as /: links and .. stay within it. `flags` as of open(), plus
/// O_CLOEXEC. Returns a descriptor, or -1 with errno set.
int openInRoot(int root, const char *path, int flags);

/// For kernels before Linux 5.6 and emulators without openat2(): also refuses links and "..".
int openWithoutLinks(int root, const char *path, int flags);

} // namespace desk

#endif
