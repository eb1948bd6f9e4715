// Opens a window, paints it green with a red corner, and prints the name of every key that arrives.
// After "red" it paints a blue frame without presenting it, after "green" it presents that.
// It prints where it is clicked, and says that a click means "up ok". It has two notes to look back at.
// `window_probe busy` asks for no key.

#include "window_screen.h"

#include <unistd.h>

#include <cstdio>

int main(int argc, char **)
{
	std::string error;
	const auto screen = desk::makeWindowScreen("probe", error);
	if (!screen) {
		std::fprintf(stderr, "%s\n", error.c_str());
		return 1;
	}
	const auto paint = [&](desk::Color color) {
		screen->canvas()->fill({0, 0, desk::screenWidth, desk::screenHeight}, desk::Fill::plain(color));
		screen->canvas()->fill({0, 0, 100, 100}, desk::Fill::plain({255, 0, 0}));
	};
	paint({0, 255, 0});
	screen->present(desk::wholeScreen);
	screen->note("a note that is as long as the window is wide and longer still: " + std::string(200, '#'));
	screen->note("the last note");
	std::puts("ready");
	std::fflush(stdout);
	while (argc > 1)
		pause();
	screen->onClick([](int x, int y) {
		std::printf("click %d %d\n", x, y);
		std::fflush(stdout);
		return std::vector<desk::Key>{desk::Key::up, desk::Key::ok};
	});
	while (const auto key = screen->waitKey()) {
		if (key == desk::Key::red)
			paint({0, 0, 255});
		if (key == desk::Key::green)
			screen->present(desk::wholeScreen);
		std::puts(desk::keyName(*key));
		std::fflush(stdout);
	}
	if (!screen->lost().empty())
		std::printf("lost: %s\n", screen->lost().c_str());
	std::puts(screen->waitKey() ? "a key after the end" : "closed");
	return 0;
}
