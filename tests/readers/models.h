#ifndef VEXLO_MODELS_H
#define VEXLO_MODELS_H

#include "meminfo_columns.h"
#include "mount_columns.h"
#include "mtd_columns.h"
#include "ps_snapshot.h"
#include "scanlog_contents.h"

#include <string>
#include <vector>

/// What each reader must return for these bytes, without libc's reading, scanning or formatting. Texts are not
/// translated. Character classes are those of the "C" locale, numbers those of glibc with this processor's `long`.
MemInfoColumns modelMemInfo(const std::string &bytes);
MtdColumns modelMtd(const std::string &bytes);
MountColumns modelMounts(const std::string &bytes);
PsSnapshot modelPs(const std::string &bytes);

/// ScanLogContents in a plain container.
struct ModelScanLog
{
	std::vector<ScanLogEntry> entries;
	std::string summary;
};

ModelScanLog modelScanLog(const std::string &bytes, const std::string &path);

/// All of a result as one text, to compare a reader's with its model's. A NUL byte separates its parts, which have none.
std::string textOf(const MemInfoColumns &columns);
std::string textOf(const MtdColumns &columns);
std::string textOf(const MountColumns &columns);
std::string textOf(const PsSnapshot &snapshot);
std::string textOf(const ScanLogContents &log);
std::string textOf(const ModelScanLog &log);

#endif
