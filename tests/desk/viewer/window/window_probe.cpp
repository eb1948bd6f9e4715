// Shows a green picture with a red corner in deskhost's window, and prints the name of every key that arrives on
// standard error. After "red" it has a blue picture, which it shows after "green". It prints where it is clicked, and
// says that a click means "up ok". It has two notes to look back at. Two times "exit" end it.
// `window_probe busy` asks for no key.

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
