// A list on the desk host's terminal screen without a plugin. Digits make it crash in many ways. At its end it prints
// the keys that it received.
//
//   1 a note                5 a wild pointer     8 the message box comes or goes
//   2 1200 notes            6 abort              9 busy, without waiting for keys, until a signal comes
//   3 exit with status 7    7 a full stack       0 a command, as plugins run them
//   4 what the variable DEMO_END says: a signal's number, or a word of end()

#include "fake_half.h"

#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

using desk::Align;
using desk::Canvas;
using desk::Color;
using desk::Emphasis;
using desk::Face;
using desk::Fill;
using desk::Key;
using desk::Part;

namespace
{

constexpr Color white{236, 240, 246}, grey{138, 150, 168}, night{16, 22, 34}, panel{26, 36, 54},
	accent{30, 110, 200}, rim{84, 104, 136}, bar{44, 58, 82};

struct State
{
	int current = 0;
	bool asks = false;
	std::string last = "none";
};

std::string entry(int number)
{
	switch (number) {
	case 2:
		return "wide \xE6\x97\xA5\xE6\x9C\xAC, combining e\xCC\x81, box \xE2\x94\x80, euro \xE2\x82\xAC";
	case 3:
		return "control \033[31m and \001 and \xFF";
	default:
		return "entry " + std::to_string(number);
	}
}

void paint(Canvas &canvas, const State &state)
{
	canvas.fill({0, 0, 720, 576}, {{34, 52, 84}, night, 0, Part::backdrop});
	const desk::WindowStyle frame{rim, bar, panel, white, panel, 8};
	canvas.window({106, 33, 508, 484}, {110, 63, 500, 450}, "Demonstration", frame);
	canvas.pushClip({110, 63, 500, 450});
	desk::TextStyle style;
	style.color = white;
	canvas.text({115, 68, 500, 20}, "last key: " + state.last, style);
	const desk::Rect list{115, 93, 490, 380};
	const int rows = 19, top = state.current >= rows ? state.current - rows + 1 : 0;
	for (int i = 0; i < rows; ++i) {
		const bool current = top + i == state.current;
		const desk::Rect row{list.x, list.y + i * 20, list.w - 12, 20};
		style.emphasis = current ? Emphasis::current : Emphasis::none;
		if (current)
			canvas.fill(row, Fill::plain(accent, 4, Part::currentLine));
		canvas.text({row.x + 6, row.y, row.w - 12, 20}, entry(top + i), style);
	}
	canvas.fill({list.right() - 8, list.y, 8, list.h}, Fill::plain(bar, 4, Part::track));
	canvas.fill({list.right() - 8, list.y + state.current * 3, 8, 60}, Fill::plain(grey, 4, Part::thumb));
	style.emphasis = Emphasis::none;
	canvas.fill({120, 473, 160, 40}, Fill::plain(bar, 6, Part::button));
	canvas.keySymbol({128, 483, 24, 20}, desk::Key::red, {200, 40, 40});
	style.face = Face::prose;
	canvas.text({160, 473, 120, 40}, "delete log", style);
	canvas.popClip();

	if (!state.asks)
		return;
	canvas.window({146, 211, 428, 154}, {150, 241, 420, 120}, "kill pid", frame);
	style.align = Align::centre;
	canvas.text({170, 261, 380, 20}, "Kill 123 pid?", style);
	for (int i = 0; i < 2; ++i) {
		const desk::Rect button{210 + i * 160, 301, 140, 40};
		style.emphasis = i == 0 ? Emphasis::current : Emphasis::none;
		canvas.fill(button,
		            Fill::plain(i == 0 ? accent : bar, 6, i == 0 ? Part::currentButton : Part::button));
		canvas.text(button, i == 0 ? "Yes" : "No", style);
	}
}

void show(FakeHalf &viewer, const State &state, bool waits)
{
	desk::DisplayList frame;
	paint(frame, state);
	viewer.show(frame, waits);
}

int fillStack(volatile unsigned *depth)
{
	volatile char here[4096];
	here[0] = 1;
	return ++*depth ? fillStack(depth) + here[0] : 0;
}

void end(const std::string &way)
{
	if (way == "_exit")
		_exit(7);
	if (way == "quick_exit")
		quick_exit(7);
	if (way == "exec")
		execlp("sh", "sh", "-c", "echo written by another program; exit 7", nullptr);
	if (way == "print") {
		printf("printed \033[31m in red\n");
		system("echo by a command; echo and its error >&2; cat");
	} else if (way == "ignore") {
		for (const int signal : {SIGINT, SIGTERM, SIGHUP})
			std::signal(signal, SIG_IGN);
		system("sleep 4323 & trap '' INT TERM; while :; do sleep 1; done");
	} else
		raise(std::stoi(way));
}

void misbehave(Key key, FakeHalf &viewer, State &state)
{
	switch (key) {
	case Key::digit1:
		viewer.note("a note \033[31m in red");
		break;
	case Key::digit2:
		for (int i = 0; i < 1200; ++i)
			viewer.note("note " + std::to_string(i) + ".");
		break;
	case Key::digit3:
		exit(7);
	case Key::digit4:
		if (const char *way = getenv("DEMO_END"))
			end(way);
		break;
	case Key::digit5: {
		// Not null, which a sanitizer handles in its own way.
		volatile uintptr_t nothing = 64;
		*reinterpret_cast<volatile int *>(nothing) = 1;
		break;
	}
	case Key::digit6:
		abort();
	case Key::digit7: {
		volatile unsigned depth = 0;
		printf("%d", fillStack(&depth));
		break;
	}
	case Key::digit8:
		state.asks = !state.asks;
		break;
	case Key::digit9:
		state.last = "busy";
		show(viewer, state, false);
		for (volatile unsigned i = 0;;)
			i = i + 1;
	case Key::digit0:
		state.last = "command " + std::to_string(system("stty -a >/dev/null; true"));
		break;
	default:
		break;
	}
}

} // namespace

int main()
{
	FakeHalf viewer;
	State state;
	std::string keys;
	for (;;) {
		show(viewer, state, true);
		const std::optional<Key> key = viewer.key();
		if (!key)
			return 1;
		state.last = keyName(*key);
		keys += " " + state.last;
		if (*key == Key::exit)
			break;
		if (*key == Key::down)
			++state.current;
		if (*key == Key::up && state.current > 0)
			--state.current;
		misbehave(*key, viewer, state);
	}
	viewer.note("keys:" + keys);
	viewer.returned(0);
	return 0;
}
