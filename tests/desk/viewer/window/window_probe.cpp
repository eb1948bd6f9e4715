// Shows a green picture with a red corner in deskhost's window. Prints the name of every key and the position of
// every click on standard error; a click means "up ok". "red" paints a blue picture, "green" shows it. Writes two
// notes. Two exits in a row end it. `window_probe busy` never waits for a key.

#include "fake_half.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>

int main(int argc, char **argv)
{
	FakeHalf viewer;
	viewer.note("a note that is as long as the window is wide and longer still: " + std::string(200, '#'));
	viewer.note("the last note");
	desk::Color colour = {0, 255, 0}, shown = colour;
	const auto show = [&](bool waits) {
		desk::DisplayList frame;
		frame.fill(desk::wholeScreen, desk::Fill::plain(shown));
		frame.fill({0, 0, 100, 100}, desk::Fill::plain({255, 0, 0}));
		viewer.show(frame, waits);
	};
	if (argc > 1 && std::strcmp(argv[1], "busy") == 0) {
		show(false);
		std::fputs("ready\n", stderr);
		for (;;)
			pause();
	}
	std::fputs("ready\n", stderr);
	for (int exits = 0; exits < 2;) {
		show(true);
		const auto key = viewer.key([](const desk::Click &click) {
			std::fprintf(stderr, "click %d %d\n", click.x, click.y);
			return desk::Meaning{{desk::Key::up, desk::Key::ok}};
		});
		if (!key)
			return 1;
		if (key == desk::Key::red)
			colour = {0, 0, 255};
		if (key == desk::Key::green)
			shown = colour;
		exits = key == desk::Key::exit ? exits + 1 : 0;
		std::fprintf(stderr, "%s\n", desk::keyName(*key));
	}
	viewer.returned(0);
	return 0;
}
