#include "ps_snapshot.h"

#include "append.h"
#include "debug_line.h"
#include "line.h"
#include "shell.h"
#include "translation.h"

PsSnapshot parsePsSnapshot(FILE *stream)
{
	PsSnapshot snapshot;
	// Declared outside the loop: a line without a number belongs to the process above it.
	int pid = 0;
	bool first = true;

	char line[lineSize];
	while (fgets(line, lineLimit, stream)) {
		sscanf(line, "%d %*s", &pid);
		if (first) {
			snapshot.header = line;
			first = false;
			continue;
		}
		snapshot.rows.push_back(PsEntry());
		PsEntry &row = snapshot.rows.back();
		row.text = translate(line);
		appendNumber(row.pid, pid);
	}
	return snapshot;
}

PsSnapshot takePsSnapshot()
{
	runInShell("ps >/var/tmp/ps.tmp");
	eDebug("[write ps info]");
	FILE *const stream = fopen("/var/tmp/ps.tmp", "r");
	PsSnapshot snapshot = stream ? parsePsSnapshot(stream) : PsSnapshot();
	fclose(stream); // also when it is null NOLINT(clang-analyzer-core.NonNullParamChecker)
	remove("/var/tmp/ps.tmp");
	return snapshot;
}

void killPid(const std::string &pid)
{
	eDebug("-----kill pid  - %s-----", pid.c_str());
	std::string command;
	appendFormatted(command, "kill -9 %s", pid.c_str());
	runInShell(command.c_str());
}
