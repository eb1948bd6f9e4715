#include "ps_snapshot.h"

#include "column_text.h"
#include "edebug.h"
#include "translation.h"

#include <cstdlib>

namespace
{

constexpr int lineSize = 1024;
constexpr int lineLimit = 1023;

} // namespace

PsSnapshot parsePsSnapshot(FILE *stream)
{
	PsSnapshot snapshot;
	// Outlives the line: a line without a number belongs to the process above it.
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
		PsEntry &row = snapshot.rows.emplace_back();
		row.text = translate(line);
		appendNumber(row.pid, pid);
	}
	return snapshot;
}

PsSnapshot takePsSnapshot()
{
	[[maybe_unused]] const int status = system("ps >/var/tmp/ps.tmp");
	eDebug("[write ps info]");
	FILE *const stream = fopen("/var/tmp/ps.tmp", "r");
	PsSnapshot snapshot = stream ? parsePsSnapshot(stream) : PsSnapshot();
	fclose(stream); // also when it is null
	remove("/var/tmp/ps.tmp");
	return snapshot;
}

void killPid(const std::string &pid)
{
	eDebug("-----kill pid  - %s-----", pid.c_str());
	std::string command;
	appendFormatted(command, "kill -9 %s", pid.c_str());
	[[maybe_unused]] const int status = system(command.c_str());
}
