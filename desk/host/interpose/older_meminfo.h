#ifndef DESK_INTERPOSE_OLDER_MEMINFO_H
#define DESK_INTERPOSE_OLDER_MEMINFO_H

#include <cstdio>
#include <string>

namespace desk
{

/// The kernel's memory summary in its older layout: a table of three lines in bytes, then fourteen quantities in kB.
/// `meminfo` is this kernel's; quantities that it lacks become 0.
std::string olderMeminfo(FILE *meminfo);

} // namespace desk

#endif
