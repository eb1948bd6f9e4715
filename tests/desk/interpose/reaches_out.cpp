// A plugin that does by itself what others leave to commands, and worse. What it does is in the variable
// REACH, a word each; what it acts on in ON.
#include "toolkit.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace
{

void show(const char *what, FILE *stream)
{
	char line[80] = "";
	if (!stream)
		eDebug("%s: null", what);
	else if (fgets(line, sizeof line, stream))
		eDebug("%s: %s", what, line);
	else
		eDebug("%s: empty", what);
}

void reach(const char *how, const char *on)
{
	if (!strcmp(how, "signal"))
		eDebug("kill: %d", kill(atoi(on), SIGKILL));
	if (!strcmp(how, "unlink"))
		eDebug("unlink: %d", unlink(on));
	if (!strcmp(how, "remove"))
		eDebug("remove: %d", remove(on));
	if (!strcmp(how, "read")) {
		FILE *file = fopen(on, "r");
		show("fopen", file);
		if (file)
			fclose(file);
	}
	if (!strcmp(how, "write")) {
		if (FILE *file = fopen(on, "w")) {
			fputs("written", file);
			fclose(file);
		}
	}
	if (!strcmp(how, "run"))
		eDebug("system: %d", system(on));
	if (!strcmp(how, "shell"))
		eDebug("system: %d", system(nullptr) != 0);
	if (!strcmp(how, "pipe")) {
		FILE *stream = popen(on, "r");
		show("popen", stream);
		eDebug("pclose: %d", pclose(stream));
	}
	if (!strcmp(how, "feed")) {
		FILE *stream = popen(on, "w");
		fputs("fed\n", stream);
		eDebug("pclose: %d", pclose(stream));
	}
}

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	reach(getenv("REACH"), getenv("ON"));
	return 0;
}
