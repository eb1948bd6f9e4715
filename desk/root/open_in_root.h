#ifndef DESK_INTERPOSE_OPEN_IN_ROOT_H
#define DESK_INTERPOSE_OPEN_IN_ROOT_H

namespace desk
{

/// Opens `path` as if the folder `root`, a descriptor, were /: links and .. lead to places in it. `flags`
/// are those of open(), to which O_CLOEXEC is added. Returns a descriptor, or -1 with errno set.
int openInRoot(int root, const char *path, int flags);

/// The same where the kernel (before Linux 5.6) or an emulator has no openat2(): links and .. are refused.
int openWithoutLinks(int root, const char *path, int flags);

} // namespace desk

#endif
