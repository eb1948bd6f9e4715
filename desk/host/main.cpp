#include "half.h"
#include "last_words.h"
#include "pipe_peer.h"

#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>

// Moves the messages from standard input and output to other descriptors. The plugin and its commands then print to
// standard error.
int main()
{
	const int in = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3);
	const int out = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
	if (in < 0 || out < 0 || isatty(in)) {
		std::fputs(
			"deskhost-plugin: this is the half of deskhost that runs the plugin; start deskhost instead\n",
			stderr);
		return 2;
	}
	const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
	dup2(nothing, STDIN_FILENO);
	if (fcntl(STDERR_FILENO, F_GETFD) < 0)
		dup2(nothing, STDERR_FILENO);
	dup2(STDERR_FILENO, STDOUT_FILENO);
	close(nothing);
	std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // flushed at each line, so that a crash loses none

	desk::prepareLastWords(in, out);
	desk::PipePeer viewer(in, out);
	return desk::runHalf(viewer);
}
